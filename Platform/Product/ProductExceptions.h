#pragma once

#include <boost/exception/exception.hpp>

#include <exception>

namespace Nerix::Platform {

/// Reports that a product fact was requested before IProductInfo::initializeProduct.
class ProductUninitializedException : public virtual boost::exception, public virtual std::exception {};

/// Reports that the request does not apply to this type of product.
class UnproperProductException : public virtual boost::exception, public virtual std::exception {};

/// Reports that the platform's system-information service failed. Contains errinfo_description.
class SystemInfoAPIInternalProblemException : public virtual boost::exception,
                                              public virtual std::exception {};

} // namespace Nerix::Platform
