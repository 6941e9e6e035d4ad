#pragma once

#include "Common/Utils/Singletons/SingletonsRegister.h"

#include <boost/core/noncopyable.hpp>
#include <boost/optional/optional.hpp>

namespace Nerix::Common::Utils {

/// Declares the service T needed for the lifetime of the guard. Create it on the stack of the scope that
/// needs the service, before anything that uses it. Throws what creating the service throws.
template <class T>
class SingletonServiceGuard : private boost::noncopyable {
public:
    explicit SingletonServiceGuard(SingletonsID id) : m_id(id) {
        SingletonsRegister::getSingletonsRegister().markNeeded<T>(id);
    }

    ~SingletonServiceGuard() {
        if (m_id) {
            SingletonsRegister::getSingletonsRegister().unmarkNeeded(*m_id);
        }
    }

private:
    boost::optional<SingletonsID> m_id;
};

} // namespace Nerix::Common::Utils
