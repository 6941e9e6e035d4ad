#include "Common/Debug/ThreadDebug.h"

#include "Tests/Fakes/FakePlatform.h"

#include <boost/thread/thread.hpp>
#include <gtest/gtest.h>

#include <cstdlib>
#include <future>

namespace Nerix::Tests {

using Common::Debug::ThreadDebug;

TEST(ThreadDebugDeathTest, AllThreadsExceptMainCanBeRenamed) {
    FakePlatform& platform = FakePlatform::instance();
    const std::string twenty = "abcdefghijklmnopqrst";
    EXPECT_EQ(ThreadDebug::sanitizeThreadName("hash worker-1_Z\xc3\xa4"), "hash_worker_1_Z__");
    const std::string mainName = ThreadDebug::GetThreadName();
    const auto nameAsMain = [&] {
        boost::thread thread([] {});
        ThreadDebug::registerMainThreadId(thread.get_id());
        ThreadDebug::SetThreadName(thread, "main");
        std::exit(static_cast<int>(platform.countLogged(">Main thread name: main.")));
    };
    EXPECT_EXIT(nameAsMain(), testing::ExitedWithCode(1), "");
    const auto registerThis = [] { ThreadDebug::registerMainThreadId(boost::this_thread::get_id()); };
    registerThis();
    EXPECT_DEATH(registerThis(), "ASSERTION FAILED: m_mainThreadId == boost::thread::id\\(\\), ");
    EXPECT_EQ(platform.countLogged(">Registering main thread id "), 1U);
    EXPECT_EQ(platform.countLogged(" named " + mainName + "."), 1U);
    ThreadDebug::SetThreadName("other");
    EXPECT_EQ(ThreadDebug::GetThreadName(), mainName);
    EXPECT_EQ(platform.countLogged("[WRN] ThreadDebug.cpp:"), 1U);
    EXPECT_EQ(platform.countLogged(">Main thread name: other."), 1U);

    std::promise<void> named;
    boost::thread thread([&] {
        named.get_future().wait();
        EXPECT_EQ(ThreadDebug::GetThreadName(), "by_main");
        ThreadDebug::SetThreadName(twenty.c_str());
        EXPECT_EQ(ThreadDebug::GetThreadName(), twenty.substr(0, 15));
    });
    ThreadDebug::SetThreadName(thread, "by main");
    ThreadDebug::SetThreadName(thread, twenty.c_str());
    named.set_value();
    thread.join();
    ThreadDebug::SetThreadName(thread, "gone");
    EXPECT_EQ(platform.countLogged(" to by_main."), 1U);
    EXPECT_EQ(platform.countLogged(" to " + twenty + "."), 1U);
    for (const std::string& refused : {twenty, std::string("gone")}) {
        EXPECT_EQ(platform.countLogged(">pthread_setname_np Failed to give the name to thread: " + refused), 1U);
    }
    EXPECT_EQ(platform.countLogged("[ERR] ThreadDebug.cpp:"), 2U);
}

} // namespace Nerix::Tests
