#include "Platform/SystemAPI/VconfSystemAPI/IVConf.h"

#include "Common/Utils/Errors.h"
#include "Tests/Fakes/FakePlatform.h"

#include <boost/exception/get_error_info.hpp>
#include <gtest/gtest.h>

#include <functional>

namespace Nerix::Tests {
namespace {

using Platform::IVConf;

class IVConfTest : public testing::Test {
protected:
    IVConfTest() { FakePlatform::instance().reset(); }
};

TEST_F(IVConfTest, ValuesComeBackAsTheyWereSet) {
    IVConf::setInt("int", -5);
    IVConf::setDouble("double", 0.5);
    IVConf::setString("empty", "");
    IVConf::setBool("bool", true);
    EXPECT_EQ(IVConf::getInt("int"), -5);
    EXPECT_EQ(IVConf::getDouble("double"), 0.5);
    EXPECT_EQ(IVConf::getString("empty"), "");
    EXPECT_TRUE(IVConf::getBool("bool"));
}

TEST_F(IVConfTest, FailuresAreLoggedAndThrownWithTheStoresCode) {
    const struct {
        const char* call;
        std::function<void()> operation;
        bool hasCode;
    } cases[] = {
        {"vconf_get_int", [] { IVConf::getInt("k"); }, true},
        {"vconf_set_int", [] { IVConf::setInt("k", 1); }, true},
        {"vconf_get_dbl", [] { IVConf::getDouble("k"); }, true},
        {"vconf_set_dbl", [] { IVConf::setDouble("k", 1); }, true},
        {"vconf_get_str", [] { IVConf::getString("k"); }, false},
        {"vconf_set_str", [] { IVConf::setString("k", "v"); }, true},
        {"vconf_get_bool", [] { IVConf::getBool("k"); }, true},
        {"vconf_set_bool", [] { IVConf::setBool("k", true); }, true},
    };
    for (const auto& failing : cases) {
        SCOPED_TRACE(failing.call);
        FakePlatform::instance().reset();
        FakePlatform::instance().failSetting("k", 1, -13);
        const std::string text = std::string(failing.call) + " failed while trying to access key: k";
        try {
            failing.operation();
            ADD_FAILURE();
        } catch (const IVConf::VConfException& exception) {
            using Stream = boost::error_info<Common::Utils::tag_errinfo_stream, std::string>;
            EXPECT_EQ(*boost::get_error_info<Stream>(exception), text);
            const int* const code = boost::get_error_info<Common::Utils::errinfo_errorcode>(exception);
            EXPECT_EQ(code == nullptr ? 0 : *code, failing.hasCode ? -13 : 0);
        }
        ASSERT_EQ(FakePlatform::instance().log().size(), 1U);
        const std::string record = FakePlatform::instance().log()[0].withoutHeader();
        EXPECT_EQ(record.substr(0, 5), "[WRN]");
        EXPECT_EQ(record.substr(record.find('>') + 1), text);
    }
}

} // namespace
} // namespace Nerix::Tests
