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

/// The part of a SingletonPointer that does not depend on the service's type: one entry among an
/// item's users.
class SingletonUsage : private boost::noncopyable {
public:
    /// Adds user to the item's users. With a null item nothing is registered, and registerable() asserts.
    SingletonUsage(const std::string& user, const boost::shared_ptr<SRegisterItem>& item);

    /// Removes user again, if the item still exists.
    ~SingletonUsage();

    /// The service, alive at this moment. Asserts that it still exists.
    boost::shared_ptr<RegisterableSingleton> registerable() const;

private:
    std::string m_user;
    boost::weak_ptr<SRegisterItem> m_item;
};

} // namespace detail

/// One user's handle to a registered service; obtained from SingletonsRegister::getService.
///
/// It does not keep the service alive; a guard must. While it exists, its user name stands among the
/// service's users, and destroying the service is a fatal assertion that names them.
template <class T>
class SingletonPointer : private boost::noncopyable {
public:
    /// Called only by the register, with its lock held.
    SingletonPointer(const std::string& user, const boost::shared_ptr<SRegisterItem>& item)
        : m_usage(user, item) {}

    /// The service; the raw pointer is valid only while the service lives. Asserts that it does.
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
