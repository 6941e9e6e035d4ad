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

/// The register's record of one service: it owns the service and counts who needs and who uses it. The counts
/// may be changed from any thread; an instance is destroyed by the register alone.
class SRegisterItem : private boost::noncopyable {
public:
    SRegisterItem(boost::shared_ptr<RegisterableSingleton> registerable, SingletonsID id,
                  std::list<SingletonsID> requirements);

    /// Destroys the service, with thread interruption disabled. Asserts that nobody needs it and nobody holds
    /// a SingletonPointer to it.
    ~SRegisterItem();

    /// The only owning pointer; it lives as long as the item.
    const boost::shared_ptr<RegisterableSingleton>& getRegisterable() const { return m_registerable; }
    const std::list<SingletonsID>& getRequirements() const { return m_requirements; }

    void incrementNeeded();
    void decrementNeeded();

    /// Returns true if nobody needs the service any more.
    bool isUseless() const;

    /// Adds one entry for user; a name may be added several times.
    void incrementUsage(const std::string& user);

    /// Removes one entry for user. Asserts that there is one.
    void decrementUsage(const std::string& user);

private:
    void assertUnused() const;
    std::string idTwice() const;

    boost::shared_ptr<RegisterableSingleton> m_registerable;
    const SingletonsID m_id;
    const std::list<SingletonsID> m_requirements;
    mutable boost::mutex m_mutex; ///< guards what follows
    std::int32_t m_needed = 0;
    std::vector<std::string> m_users;
};

} // namespace Nerix::Common::Utils
