#include "Platform/SystemAPI/VconfSystemAPI/IVConf.h"

#include "Common/Utils/Errors.h"
#include "Tests/Fakes/FakePlatform.h"

#include <boost/exception/get_error_info.hpp>
#include <gtest/gtest.h>

#include <functional>

namespace Nerix::Tests {
namespace {

using Platform::IVConf;

TEST(IVConf, FailuresAreLoggedAndThrownWithTheStoresCode) {
    const std::vector<std::pair<std::string, std::function<void()>>> cases = {
        {"vconf_get_int", [] { IVConf::getInt("k"); }},
        {"vconf_set_int", [] { IVConf::setInt("k", 1); }},
        {"vconf_get_dbl", [] { IVConf::getDouble("k"); }},
        {"vconf_set_dbl", [] { IVConf::setDouble("k", 1); }},
        {"vconf_get_str", [] { IVConf::getString("k"); }},
        {"vconf_set_str", [] { IVConf::setString("k", "v"); }},
        {"vconf_get_bool", [] { IVConf::getBool("k"); }},
        {"vconf_set_bool", [] { IVConf::setBool("k", true); }},
    };
    for (const auto& [call, operation] : cases) {
        FakePlatform::instance().reset();
        FakePlatform::instance().failSetting("k", 1);
        const std::string text = call + " failed while trying to access key: k";
        try {
            operation();
            ADD_FAILURE() << call;
        } catch (const IVConf::VConfException& exception) {
            using Stream = boost::error_info<Common::Utils::tag_errinfo_stream, std::string>;
            EXPECT_EQ(*boost::get_error_info<Stream>(exception), text);
            const int* const code = boost::get_error_info<Common::Utils::errinfo_errorcode>(exception);
            EXPECT_EQ(code != nullptr && *code == FakePlatform::failure, call != "vconf_get_str") << call;
        }
        EXPECT_EQ(FakePlatform::instance().logged("[WRN] IVConf.cpp:"), 1U) << call;
        EXPECT_EQ(FakePlatform::instance().logged(">" + text), 1U);
    }
}

} // namespace
} // namespace Nerix::Tests
