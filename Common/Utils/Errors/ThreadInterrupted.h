#pragma once

#include <boost/exception/exception.hpp>
#include <boost/thread/exceptions.hpp>

#include <exception>

namespace Nerix::Common::Utils {

/// A thread interruption that carries entries. Handlers of boost::thread_interrupted also catch it.
class thread_interrupted : public virtual std::exception,
                           public virtual boost::exception,
                           public virtual boost::thread_interrupted {};

} // namespace Nerix::Common::Utils
