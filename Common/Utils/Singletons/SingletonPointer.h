#pragma once

#include "Common/Utils/Errors/Assert.h"
#include "Common/Utils/Singletons/RegisterableSingleton.h"

#include <boost/core/noncopyable.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>
#include <boost/smart_ptr/weak_ptr.hpp>

#include <string>

namespace Nerix::Common::Utils {

class SRegisterItem;

namespace detail {

/// The part of a SingletonPointer that is the same for all types of services: an entry among an item's users.
class SingletonUsage : private boost::noncopyable {
public:
    /// Adds user to the item's users. With a null item, does nothing, and registerable() fails an assertion.
    SingletonUsage(const std::string& user, const boost::shared_ptr<SRegisterItem>& item);

    /// Removes user from the item's users if the item still exists.
    ~SingletonUsage();

    /// Returns the service. Asserts that it still exists.
    boost::shared_ptr<RegisterableSingleton> registerable() const;

private:
    std::string m_user;
    boost::weak_ptr<SRegisterItem> m_item;
};

} // namespace detail

/// A user's handle to a registered service, returned by SingletonsRegister::getService.
///
/// The handle does not keep the service alive; a SingletonServiceGuard must do that. While the handle exists,
/// its user name is in the list of the service's users, and destroying the service fails an assertion whose
/// message contains that list.
template <class T>
class SingletonPointer : private boost::noncopyable {
public:
    /// Adds user to the item's users; the register calls this with its lock held. A null item makes an empty
    /// handle, which must not be dereferenced and needs no lock.
    SingletonPointer(const std::string& user, const boost::shared_ptr<SRegisterItem>& item)
        : m_usage(user, item) {}

    /// Returns the service. Asserts that it still exists. The pointer is valid only as long as it does.
    T* operator->() const {
        T* const service = dynamic_cast<T*>(m_usage.registerable().get());
        if (service == nullptr) {
            NerixAssertMsg(
                0, "It should never happen! Is was checked in getService, but Singleton's type probably "
                   "doesn't match with it's id");
        }
        return service;
    }

private:
    detail::SingletonUsage m_usage;
};

} // namespace Nerix::Common::Utils
