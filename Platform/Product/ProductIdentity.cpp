#include "Platform/Product/IProductInfo.h"

#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/Assert.h"
#include "Platform/Product/SystemInformation.h"

namespace Nerix::Platform {

std::string IProductInfo::getBoardType() {
    return "emulator32";
}

bool IProductInfo::checkBoardType(const std::string& boardType) {
    return boardType == getBoardType();
}

bool IProductInfo::isPostTovin() {
    return checkBoardType("Post_TovinP");
}
bool IProductInfo::isPostPask() {
    return checkBoardType("Post_PaskP");
}
bool IProductInfo::isPostMirel() {
    return checkBoardType("Post_MirelP");
}
bool IProductInfo::isPreCorvanBoard() {
    return isPostTovin() || isPostPask() || isPostMirel();
}

std::string IProductInfo::getCoreName(ProductType type) {
    NerixAssert(type == TV_PRODUCT || type == ZEB_PRODUCT);
    return type == TV_PRODUCT ? CORE_ID_TV : CORE_ID_ZEB;
}

ProductType IProductInfo::getDeviceType() {
    throwIfUninitialized();
    return m_productType;
}

bool IProductInfo::isMasterDevice() {
    throwIfUninitialized();
    return !m_isZebConnected || m_productType == ZEB_PRODUCT;
}

ProductType IProductInfo::getMasterDeviceType() {
    throwIfUninitialized();
    return m_isZebConnected ? ZEB_PRODUCT : TV_PRODUCT;
}

bool IProductInfo::isGuestCore() {
    throwIfUninitialized();
    if (!m_isZebConnected) {
        return false;
    }
    switch (m_productType) {
    case TV_PRODUCT:
        return isGenuineZeb();
    case ZEB_PRODUCT:
        return isGenuineTV();
    default:
        return false;
    }
}

std::vector<std::string> IProductInfo::getListOfCores() {
    throwIfUninitialized();
    std::vector<std::string> cores{CORE_ID_TV};
    if (m_isZebConnected) {
        cores.push_back(CORE_ID_ZEB);
    }
    return cores;
}

std::vector<std::string> IProductInfo::getListOfVerifiers() {
    return getListOfCores();
}

bool IProductInfo::isSecondDeviceConnected() {
    return getListOfCores().size() >= 2;
}

bool IProductInfo::isGenuineTV() {
    return SystemInformation::valueOrThrow(SystemInformation::readBool(SystemInformation::GENUINE_TV),
                                           "Unable to get product type configuration - TV",
                                           BOOST_CURRENT_LOCATION);
}

bool IProductInfo::isGenuineZeb() {
    return SystemInformation::valueOrThrow(SystemInformation::readBool(SystemInformation::GENUINE_ZEB),
                                           "Unable to get product type configuration - Zeb",
                                           BOOST_CURRENT_LOCATION);
}

bool IProductInfo::isScreenRatioFitNeeded() {
    constexpr int linesOfASmallScreen = 540;
    const boost::optional<int> lines = SystemInformation::readInt(SystemInformation::SCREEN_LINES);
    if (!lines || *lines != linesOfASmallScreen) {
        NERIX_LOG_STREAM(ERR) << "Screen ratio fit isn't needed.";
        return false;
    }
    return true;
}

} // namespace Nerix::Platform
