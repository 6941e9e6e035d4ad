#pragma once

#include <boost/exception/exception.hpp>

#include <exception>

namespace Nerix::Platform {

/// A product fact was requested before IProductInfo::initializeProduct.
class ProductUninitializedException : public virtual boost::exception, public virtual std::exception {};

/// The request does not apply to this type of product.
class UnproperProductException : public virtual boost::exception, public virtual std::exception {};

/// The platform's system-information service failed; carries errinfo_description.
class SystemInfoAPIInternalProblemException : public virtual boost::exception,
                                              public virtual std::exception {};

} // namespace Nerix::Platform
