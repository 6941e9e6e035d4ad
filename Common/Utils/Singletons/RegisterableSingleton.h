#pragma once

#include "Common/Utils/Singletons/SingletonsID.h"

#include <boost/core/noncopyable.hpp>

#include <list>

namespace Nerix::Common::Utils {

/// Base of every service that the SingletonsRegister keeps. A service derives from it publicly, has a default
/// constructor, and hides requirements() when it needs other services.
class RegisterableSingleton : private boost::noncopyable {
public:
    virtual ~RegisterableSingleton() = default;

    /// The services that must be registered before this one, and that outlive it.
    static std::list<SingletonsID> requirements() { return {}; }
};

} // namespace Nerix::Common::Utils
