#include "Common/Utils/Singletons/SingletonsRegister.h"

#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/Assert.h"
#include "Common/Utils/Singletons/SRegisterItem.h"

namespace Nerix::Common::Utils {

using Lock = boost::lock_guard<boost::recursive_mutex>;

SingletonsRegister SingletonsRegister::instance;

SingletonsRegister::SingletonsRegister() = default;
SingletonsRegister::~SingletonsRegister() {
    m_items.clear(); // before the mutexes are destroyed, which a service may use
}

SingletonsRegister& SingletonsRegister::getSingletonsRegister() {
    return instance;
}

void SingletonsRegister::markNeededImpl(SingletonsID id, const std::list<SingletonsID>& requirements,
                                        const Factory& factory) {
    NERIX_LOG_STREAM(INF) << "Needed: singleton id: " << id;
    const Lock operations(m_operationsMutex);
    checkRequirements(id, requirements);
    Item item = find(id);
    if (!item) {
        item = create(id, requirements, factory);
    }
    item->incrementNeeded();
    for (const SingletonsID requirement : requirements) {
        internalMarkNeeded(requirement);
    }
}

SingletonsRegister::Item SingletonsRegister::create(SingletonsID id,
                                                    const std::list<SingletonsID>& requirements,
                                                    const Factory& factory) {
    NERIX_LOG_STREAM(INF) << "Creating : singleton id: " << id;
    // Without the map mutex, because a constructor may take a long time and may use registered services.
    auto item = boost::make_shared<SRegisterItem>(factory(), id, requirements);
    const Lock map(m_mapMutex);
    m_items[id] = item;
    return item;
}

void SingletonsRegister::internalMarkNeeded(SingletonsID id) {
    std::list<SingletonsID> requirements;
    {
        const Lock map(m_mapMutex);
        const Item item = find(id);
        requirements = item->getRequirements(); // asserts that item is not null
        checkRequirements(id, requirements);
        item->incrementNeeded();
    }
    for (const SingletonsID requirement : requirements) {
        internalMarkNeeded(requirement);
    }
}

void SingletonsRegister::checkRequirements(SingletonsID id,
                                           const std::list<SingletonsID>& requirements) const {
    const Lock map(m_mapMutex);
    for (const SingletonsID requirement : requirements) {
        if (m_items.count(requirement) != 0) {
            continue;
        }
        std::string all;
        for (const SingletonsID each : requirements) {
            all += ' ';
            all += singletonsIdToString(each);
        }
        NERIX_LOG_STREAM(INF) << "Cannot meet requirements of given singleton: " << id
                              << ". Cannot find singleton: " << requirement
                              << " required by given singleton. All requirements: " << all;
        NerixAssertMsg(
            0, "Cannot meet requirements of given singleton. Cannot find singletons required by given "
               "singleton.");
    }
}

void SingletonsRegister::unmarkNeeded(SingletonsID id) {
    const Lock operations(m_operationsMutex);
    internalUnmarkNeeded(id);
}

void SingletonsRegister::internalUnmarkNeeded(SingletonsID id) {
    NERIX_LOG_STREAM(INF) << "Unmarking needed: singleton id: " << id;
    Item item = find(id);
    if (!item) {
        NerixAssert(0);
    }
    item->decrementNeeded();
    if (item->isUseless()) {
        const Lock map(m_mapMutex);
        NERIX_LOG_STREAM(INF) << "Singleton: " << id << " will be deleted.";
        m_items.erase(id);
    }
    const std::list<SingletonsID> requirements = item->getRequirements();
    // If the service was erased, this destroys it before the services that it requires.
    item.reset();
    for (const SingletonsID requirement : requirements) {
        internalUnmarkNeeded(requirement);
    }
}

SingletonsRegister::Item SingletonsRegister::find(SingletonsID id) const {
    const Lock map(m_mapMutex);
    const auto entry = m_items.find(id);
    return entry == m_items.end() ? Item() : entry->second;
}

const SingletonsRegister::Item&
SingletonsRegister::require(SingletonsID id, bool (*isRightType)(const RegisterableSingleton&)) const {
    const auto entry = m_items.find(id);
    if (entry == m_items.end()) {
        const std::string message = "Singleton " + singletonsIdToString(id) + " does not exist.";
        NerixAssertMsg(0, message.c_str());
    }
    const Item& item = entry->second;
    if (!isRightType(*item->getRegisterable())) {
        NerixAssertMsg(0, "Singleton's type probably doesn't match with its id");
    }
    return item;
}

namespace detail {

SingletonUsage::SingletonUsage(const std::string& user, const boost::shared_ptr<SRegisterItem>& item)
    : m_user(user), m_item(item) {
    if (item) {
        item->incrementUsage(m_user);
    }
}

SingletonUsage::~SingletonUsage() {
    if (const boost::shared_ptr<SRegisterItem> item = m_item.lock()) {
        item->decrementUsage(m_user);
    }
}

boost::shared_ptr<RegisterableSingleton> SingletonUsage::registerable() const {
    const boost::shared_ptr<SRegisterItem> item = m_item.lock();
    if (!item) {
        NerixAssertMsg(
            0, "You are trying to use non-existent singleton! It has been probably destroyed since your "
               "getService. Check scopes of the singleton's guards");
    }
    return item->getRegisterable();
}

} // namespace detail

} // namespace Nerix::Common::Utils
