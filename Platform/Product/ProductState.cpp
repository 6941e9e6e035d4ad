#include "Platform/Product/IProductInfo.h"

#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/Assert.h"

#include <boost/throw_exception.hpp>

namespace Nerix::Platform {

const std::string IProductInfo::CORE_ID_TV = "TV";
const std::string IProductInfo::CORE_ID_ZEB = "Zeb";

ProductSpecificInfo IProductInfo::m_productSpecificInfo;
ProductType IProductInfo::m_productType = UNDEFINED_PRODUCT;
bool IProductInfo::m_isZebConnected = false;

void IProductInfo::initializeProduct(ProductType type) {
    NerixAssert(m_productType == UNDEFINED_PRODUCT);
    m_isZebConnected = false;
    NERIX_LOG_STREAM(INF) << "Product was build for " << getBoardType();
    NERIX_LOG_STREAM(INF) << "Flag m_isZebConnected is set to " << (m_isZebConnected ? "true" : "false");
    m_productType = type == DEFAULT_PRODUCT ? TV_PRODUCT : type;
    switch (m_productType) {
    case TV_PRODUCT:
        NERIX_LOG_STREAM(INF) << "Product type set to TV_PRODUCT";
        m_productSpecificInfo = TVProductInfo::getProductSpecificInfo();
        break;
    case ZEB_PRODUCT:
        NERIX_LOG_STREAM(INF) << "Product type set to ZEB_PRODUCT";
        m_productSpecificInfo = ZebProductInfo::getProductSpecificInfo();
        break;
    default:
        NerixAssert(false);
    }
}

const ProductSpecificInfo& IProductInfo::info() {
    throwIfUninitialized();
    return m_productSpecificInfo;
}

void IProductInfo::throwIfUninitialized() {
    if (m_productType == UNDEFINED_PRODUCT) {
        BOOST_THROW_EXCEPTION(ProductUninitializedException());
    }
}

} // namespace Nerix::Platform
