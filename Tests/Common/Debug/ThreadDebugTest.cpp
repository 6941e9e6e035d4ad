#include "Common/Debug/ThreadDebug.h"
#include "Tests/Fakes/FakePlatform.h"

#include <boost/thread/thread.hpp>
#include <gtest/gtest.h>

#include <mutex>

namespace Nerix::Tests {
namespace {

using Common::Debug::ThreadDebug;

TEST(ThreadDebug, ThreadsAreNamedWithinTheKernelsLimit) {
    EXPECT_EQ(ThreadDebug::sanitizeThreadName("hash worker-1"), "hash_worker_1");
    EXPECT_EQ(ThreadDebug::sanitizeThreadName("\xc3\xa4 \n"), "____");
    FakePlatform::instance().reset();
    std::mutex mutex;
    mutex.lock();
    std::string own;
    boost::thread thread([&] {
        const std::lock_guard<std::mutex> lock(mutex);
        own = ThreadDebug::GetThreadName();
        ThreadDebug::SetThreadName("a name of more than fifteen");
        own += "|" + ThreadDebug::GetThreadName();
    });
    ThreadDebug::SetThreadName(thread, "too long for the kernel");
    ThreadDebug::SetThreadName(thread, "short");
    mutex.unlock();
    thread.join();
    EXPECT_EQ(own, "short|a_name_of_more_");
    for (const char* const record :
         {"[ERR] ThreadDebug.cpp:", " to short.",
          ">pthread_setname_np Failed to give the name to thread: too_long_for_the_kernel"}) {
        EXPECT_EQ(FakePlatform::instance().logged(record), 1U) << record;
    }
}

TEST(ThreadDebugDeathTest, MainThreadKeepsItsNameAndIsRegisteredOnce) {
    FakePlatform::instance().reset();
    const std::string before = ThreadDebug::GetThreadName();
    ThreadDebug::registerMainThreadId(boost::this_thread::get_id());
    ThreadDebug::SetThreadName("other name");
    EXPECT_EQ(ThreadDebug::GetThreadName(), before);
    EXPECT_EQ(FakePlatform::instance().logged(">Main thread name: other name."), 1U);
    EXPECT_DEATH(ThreadDebug::registerMainThreadId(boost::this_thread::get_id()),
                 "ASSERTION FAILED: m_mainThreadId == boost::thread::id\\(\\), ");
}

} // namespace
} // namespace Nerix::Tests
