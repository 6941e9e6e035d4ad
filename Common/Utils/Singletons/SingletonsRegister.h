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

/// Makes a service the ordinary way, by its default constructor.
template <class T>
boost::shared_ptr<RegisterableSingleton> standardFactoryFunction() {
    return boost::make_shared<T>();
}

/// The process-wide services: each is created when a scope first declares that it needs it, lives while at
/// least one such declaration is in force, and is destroyed before the services that it requires.
///
/// Scopes declare need with a SingletonServiceGuard; users reach a service with getService. Any thread may
/// call. Misuse (except an empty factory) is a fatal assertion; only factories and std::bad_alloc throw.
class SingletonsRegister : private boost::noncopyable {
public:
    using Factory = std::function<boost::shared_ptr<RegisterableSingleton>()>;

    /// The register of this process.
    static SingletonsRegister& getSingletonsRegister();

    /// Declares the service T needed under id and creates it if it is not there yet. Asserts that what T
    /// requires is registered. Exceptions from the factory propagate; the service is then not registered. A
    /// factory must not be empty (std::bad_function_call) nor return null. Factories run one at a time and
    /// may use the register.
    template <class T>
    void markNeeded(SingletonsID id) {
        markNeeded<T>(id, standardFactoryFunction<T>);
    }
    template <class T>
    void markNeeded(SingletonsID id, const Factory& factory) {
        markNeededImpl(id, T::requirements(), factory);
    }

    /// Withdraws one declaration of need; the last one destroys the service before it returns. Asserts that
    /// id is registered and, when the service goes, that nobody holds a SingletonPointer to it.
    void unmarkNeeded(SingletonsID id);

    /// A handle for user to the service registered under id. Asserts that there is one and that it is a T.
    template <class T>
    SingletonPointer<T> getService(const std::string& user, SingletonsID id) {
        const boost::lock_guard<boost::recursive_mutex> map(m_mapMutex);
        return SingletonPointer<T>(user, require(id, [](const RegisterableSingleton& service) {
                                       // Compare the exact type first: every hash step comes here, and
                                       // dynamic_cast is slower.
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

    /// Call with the map mutex held; it also guards the returned reference.
    const Item& require(SingletonsID id, bool (*isRightType)(const RegisterableSingleton&)) const;

    static SingletonsRegister instance;

    std::map<SingletonsID, Item> m_items;

    // Always locked in this order, an item's own mutex last. Recursive, as marking walks through requirements
    // and factories may use the register.
    mutable boost::recursive_mutex m_operationsMutex; ///< creation and destruction, one at a time
    mutable boost::recursive_mutex m_mapMutex;        ///< guards m_items
};

} // namespace Nerix::Common::Utils
