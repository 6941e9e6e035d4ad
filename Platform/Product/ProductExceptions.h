#pragma once

#include <boost/exception/exception.hpp>

#include <exception>

namespace Nerix::Platform {

/// The product was asked for before IProductInfo::initializeProduct.
class ProductUninitializedException : public virtual boost::exception, public virtual std::exception {};

/// The question has no meaning for this type of product.
class UnproperProductException : public virtual boost::exception, public virtual std::exception {};

/// The platform's system-information service failed; carries errinfo_description.
class SystemInfoAPIInternalProblemException : public virtual boost::exception,
                                              public virtual std::exception {};

} // namespace Nerix::Platform
