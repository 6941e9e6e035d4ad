#pragma once

#include "Common/Utils/Singletons/SingletonsID.h"

#include <boost/core/noncopyable.hpp>

#include <list>

namespace Nerix::Common::Utils {

/// Base of every service in the SingletonsRegister. A service derives from it publicly, has a default
/// constructor unless a factory creates it, and hides requirements() with its own if it needs other services.
class RegisterableSingleton : private boost::noncopyable {
public:
    virtual ~RegisterableSingleton() = default;

    /// Returns the services that must be registered before this one and that outlive it.
    static std::list<SingletonsID> requirements() { return {}; }
};

} // namespace Nerix::Common::Utils
