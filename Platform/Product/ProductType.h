#pragma once

#include <cstdint>

namespace Nerix::Platform {

/// The type of the device.
enum ProductType : std::int32_t {
    UNDEFINED_PRODUCT = 0, ///< not initialized
    TV_PRODUCT = 1,
    ZEB_PRODUCT = 2,    ///< the second kind of device, which can be attached to a television
    DEFAULT_PRODUCT = 3 ///< valid only for initializeProduct, which treats it as TV_PRODUCT
};

} // namespace Nerix::Platform
