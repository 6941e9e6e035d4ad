#include "Common/Debug/ThreadDebug.h"

#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/Assert.h"

#include <boost/thread/thread.hpp>
#include <boost/xpressive/xpressive_static.hpp>

#include <pthread.h>
#include <sys/prctl.h>

namespace Nerix::Common::Debug {

namespace {

/// Returns true if thread is the registered main thread. Returns false as long as none is registered.
bool isMainThread(boost::thread::id thread, boost::thread::id mainThread) {
    return thread == mainThread && thread != boost::thread::id();
}

void logMainThreadNotRenamed(const char* newName) {
    NERIX_LOG(WRN, "Main thread name: %s.", newName);
}

void logChange(boost::thread::id thread, const std::string& name) {
    NERIX_LOG_STREAM(INF) << "Changed name of thread " << thread << " to " << name << ".";
}

} // namespace

boost::thread::id ThreadDebug::m_mainThreadId;

void ThreadDebug::registerMainThreadId(boost::thread::id id) {
    NerixAssert(m_mainThreadId == boost::thread::id());
    NERIX_LOG_STREAM(INF) << "Registering main thread id " << id << " named " << GetThreadName() << ".";
    m_mainThreadId = id;
}

std::string ThreadDebug::GetThreadName() {
    char name[16] = "";
    if (::prctl(PR_GET_NAME, name) != 0) {
        NERIX_LOG_STREAM(ERR) << "prctl Failed to get the name of current thread";
        return "";
    }
    return name;
}

std::string ThreadDebug::sanitizeThreadName(const char* name) {
    namespace xpressive = boost::xpressive;
    const xpressive::sregex other = ~xpressive::set[xpressive::alpha | xpressive::digit | '_'];
    return xpressive::regex_replace(std::string(name), other, std::string("_"));
}

void ThreadDebug::SetThreadName(boost::thread& thread, const char* name) {
    if (isMainThread(thread.get_id(), m_mainThreadId)) {
        logMainThreadNotRenamed(name);
        return;
    }
    const std::string sanitized = sanitizeThreadName(name);
    const bool isThread = thread.get_id() != boost::thread::id(); // false after join or detach
    if (!isThread || ::pthread_setname_np(thread.native_handle(), sanitized.c_str()) != 0) {
        NERIX_LOG(ERR, "pthread_setname_np Failed to give the name to thread: %s", sanitized.c_str());
        return;
    }
    logChange(thread.get_id(), sanitized);
}

void ThreadDebug::SetThreadName(const char* name) {
    const boost::thread::id thread = boost::this_thread::get_id();
    if (isMainThread(thread, m_mainThreadId)) {
        logMainThreadNotRenamed(name);
        return;
    }
    const std::string sanitized = sanitizeThreadName(name);
    if (::prctl(PR_SET_NAME, sanitized.c_str()) != 0) {
        NERIX_LOG(ERR, "prctl Failed to give the name to thread: %s", sanitized.c_str());
        return;
    }
    logChange(thread, sanitized);
}

} // namespace Nerix::Common::Debug
