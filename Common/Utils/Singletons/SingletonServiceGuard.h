#pragma once

#include "Common/Utils/Singletons/SingletonsRegister.h"

#include <boost/core/noncopyable.hpp>

namespace Nerix::Common::Utils {

/// Declares a need for the service T during the lifetime of the guard. Create the guard in the scope that
/// needs the service, before anything that uses it. Throws the exceptions of the service's constructor.
template <class T>
class SingletonServiceGuard : private boost::noncopyable {
public:
    explicit SingletonServiceGuard(SingletonsID id) : m_id(id) {
        SingletonsRegister::getSingletonsRegister().markNeeded<T>(id);
    }

    ~SingletonServiceGuard() { SingletonsRegister::getSingletonsRegister().unmarkNeeded(m_id); }

private:
    const SingletonsID m_id;
};

} // namespace Nerix::Common::Utils
