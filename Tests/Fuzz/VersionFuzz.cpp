#include "NerixCommon/NerixCommonUtils.h"
#include "Platform/Product/IProductInfo.h"

#include "Common/Utils/Errors.h"
#include "Tests/Fakes/FakePlatform.h"

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <string>

using Nerix::Platform::IProductInfo;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const bool isReady = (IProductInfo::initializeProduct(Nerix::Platform::TV_PRODUCT), true);
    static_cast<void>(isReady);
    const std::string text(reinterpret_cast<const char*>(data), size);
    Nerix::Tests::FakePlatform::instance().reset();
    Nerix::Tests::FakePlatform::instance().systemInfo[128] = text.substr(0, text.find('\0'));
    if (Nerix::NerixCommon::NerixCommonUtils::versionStringForUI(text).empty() != text.empty()) {
        __builtin_trap();
    }
    try {
        IProductInfo::getMainSoftwareVersionMajor();
        IProductInfo::getVarikModelString();
    } catch (const boost::bad_lexical_cast&) { // NOLINT(bugprone-empty-catch): no version, which is an answer
    } catch (
        const Nerix::Common::Utils::GenericException&) { // NOLINT(bugprone-empty-catch): no dash, or no 'H'
    }
    return 0;
}
