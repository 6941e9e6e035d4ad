#include "Common/Utils/Singletons/SRegisterItem.h"

#include "Common/Utils/Errors/Assert.h"

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/thread.hpp>

#include <algorithm>
#include <utility>

namespace Nerix::Common::Utils {

SRegisterItem::SRegisterItem(boost::shared_ptr<RegisterableSingleton> registerable, SingletonsID id,
                             std::list<SingletonsID> requirements)
    : m_registerable(std::move(registerable)), m_id(id), m_requirements(std::move(requirements)) {}

SRegisterItem::~SRegisterItem() {
    const boost::this_thread::disable_interruption noInterruption;
    assertUnused();
    // Not left to the member's destructor, because interruption is enabled again by then. Not under the
    // mutex, because the service may use the register.
    m_registerable.reset();
}

void SRegisterItem::assertUnused() const {
    const boost::lock_guard<boost::mutex> lock(m_mutex);
    NerixAssert(m_needed == 0);
    if (!m_users.empty()) {
        std::string message = "Singleton (" + idTwice() + ") is still used by:";
        for (const std::string& user : m_users) {
            message += " [" + user + "]";
        }
        NerixAssertMsg(false, message.c_str());
    }
}

void SRegisterItem::incrementNeeded() {
    const boost::lock_guard<boost::mutex> lock(m_mutex);
    ++m_needed;
}

void SRegisterItem::decrementNeeded() {
    const boost::lock_guard<boost::mutex> lock(m_mutex);
    --m_needed;
}

bool SRegisterItem::isUseless() const {
    const boost::lock_guard<boost::mutex> lock(m_mutex);
    return m_needed == 0;
}

void SRegisterItem::incrementUsage(const std::string& user) {
    const boost::lock_guard<boost::mutex> lock(m_mutex);
    m_users.push_back(user);
}

void SRegisterItem::decrementUsage(const std::string& user) {
    const boost::lock_guard<boost::mutex> lock(m_mutex);
    const auto entry = std::find(m_users.begin(), m_users.end(), user);
    if (entry == m_users.end()) {
        const std::string message =
            "User '" + user + "' is not registered as user of this singleton (" + idTwice() + ")";
        NerixAssertMsg(false, message.c_str());
    }
    m_users.erase(entry);
}

std::string SRegisterItem::idTwice() const {
    return singletonsIdToString(m_id) + "=" + singletonsIdToString(m_id);
}

} // namespace Nerix::Common::Utils
