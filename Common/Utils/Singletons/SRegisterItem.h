#pragma once

#include "Common/Utils/Singletons/RegisterableSingleton.h"
#include "Common/Utils/Singletons/SingletonsID.h"

#include <boost/core/noncopyable.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>

#include <cstdint>
#include <list>
#include <string>
#include <vector>

namespace Nerix::Common::Utils {

/// The register's entry for one service: owns the service, counts the declarations of need, and lists the
/// users. The functions are thread-safe; only the register destroys an item.
class SRegisterItem : private boost::noncopyable {
public:
    SRegisterItem(boost::shared_ptr<RegisterableSingleton> registerable, SingletonsID id,
                  std::list<SingletonsID> requirements);

    /// Destroys the service, with thread interruption disabled. Asserts that no declaration of need and no
    /// SingletonPointer to it is left.
    ~SRegisterItem();

    /// Returns the service. A copy of the pointer must not outlive the item, which destroys the service.
    const boost::shared_ptr<RegisterableSingleton>& getRegisterable() const { return m_registerable; }
    const std::list<SingletonsID>& getRequirements() const { return m_requirements; }

    void incrementNeeded();
    void decrementNeeded();

    /// Returns true if no declaration of need is left.
    bool isUseless() const;

    /// Adds an entry for user; a name may have several entries.
    void incrementUsage(const std::string& user);

    /// Removes one of the entries for user. Asserts that there is one.
    void decrementUsage(const std::string& user);

private:
    void assertUnused() const;
    std::string idTwice() const; ///< "ID=ID", as the messages of the assertions contain it

    boost::shared_ptr<RegisterableSingleton> m_registerable;
    const SingletonsID m_id;
    const std::list<SingletonsID> m_requirements;
    mutable boost::mutex m_mutex; ///< guards m_needed and m_users
    std::int32_t m_needed = 0;
    std::vector<std::string> m_users;
};

} // namespace Nerix::Common::Utils
