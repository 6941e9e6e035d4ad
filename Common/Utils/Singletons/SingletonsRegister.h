#pragma once

#include "Common/Utils/Singletons/RegisterableSingleton.h"
#include "Common/Utils/Singletons/SingletonPointer.h"
#include "Common/Utils/Singletons/SingletonsID.h"

#include <boost/core/noncopyable.hpp>
#include <boost/smart_ptr/make_shared.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>
#include <boost/thread/lock_guard.hpp>
#include <boost/thread/recursive_mutex.hpp>

#include <functional>
#include <list>
#include <map>
#include <string>
#include <typeinfo>

namespace Nerix::Common::Utils {

class SRegisterItem;

/// Creates a service with its default constructor.
template <class T>
boost::shared_ptr<RegisterableSingleton> standardFactoryFunction() {
    return boost::make_shared<T>();
}

/// Holds the services of the process. A service is created when the first scope declares a need for it, lives
/// as long as any declaration is in force, and is destroyed before the services that it requires.
///
/// Scopes declare a need with a SingletonServiceGuard; users access a service with getService. Thread-safe.
/// Misuse fails an assertion, except that an empty factory throws std::bad_function_call. Otherwise, apart
/// from std::bad_alloc, only factories throw.
class SingletonsRegister : private boost::noncopyable {
public:
    using Factory = std::function<boost::shared_ptr<RegisterableSingleton>()>;

    /// Returns the register of this process.
    static SingletonsRegister& getSingletonsRegister();

    /// Declares a need for the service T under id, and creates it if it does not exist. Asserts that the
    /// services that T requires are registered. Exceptions from the factory propagate; the service is then
    /// not registered. The factory must not be empty and must not return null. Factories run one at a time
    /// and may use the register.
    template <class T>
    void markNeeded(SingletonsID id) {
        markNeeded<T>(id, standardFactoryFunction<T>);
    }
    template <class T>
    void markNeeded(SingletonsID id, const Factory& factory) {
        markNeededImpl(id, T::requirements(), factory);
    }

    /// Withdraws one declaration of need. If it was the last one, destroys the service, and asserts that
    /// nobody holds a SingletonPointer to it. Asserts that id is registered.
    void unmarkNeeded(SingletonsID id);

    /// Returns a handle for user to the service registered under id. Asserts that it exists and is a T.
    template <class T>
    SingletonPointer<T> getService(const std::string& user, SingletonsID id) {
        const boost::lock_guard<boost::recursive_mutex> map(m_mapMutex);
        return SingletonPointer<T>(user, require(id, [](const RegisterableSingleton& service) {
                                       // Compare the exact type first. dynamic_cast is slower, and each
                                       // hash step without a DigestSession calls getService.
                                       return typeid(service) == typeid(T) ||
                                              dynamic_cast<const T*>(&service) != nullptr;
                                   }));
    }

private:
    using Item = boost::shared_ptr<SRegisterItem>;

    SingletonsRegister();
    ~SingletonsRegister();

    void markNeededImpl(SingletonsID id, const std::list<SingletonsID>& requirements, const Factory& factory);
    void internalMarkNeeded(SingletonsID id);
    void internalUnmarkNeeded(SingletonsID id);
    void checkRequirements(SingletonsID id, const std::list<SingletonsID>& requirements) const;
    Item find(SingletonsID id) const;
    Item create(SingletonsID id, const std::list<SingletonsID>& requirements, const Factory& factory);

    /// Returns the item of id. Asserts that it exists and has the right type. Call it with the map mutex
    /// held, which also guards the returned reference.
    const Item& require(SingletonsID id, bool (*isRightType)(const RegisterableSingleton&)) const;

    static SingletonsRegister instance;

    std::map<SingletonsID, Item> m_items;

    // Locked in this order, and then the mutex of an item. m_operationsMutex is recursive because factories
    // and services being destroyed may use the register; m_mapMutex because functions that hold it call find
    // and checkRequirements, which lock it.
    mutable boost::recursive_mutex m_operationsMutex; ///< serializes creation and destruction
    mutable boost::recursive_mutex m_mapMutex;        ///< guards m_items
};

} // namespace Nerix::Common::Utils
