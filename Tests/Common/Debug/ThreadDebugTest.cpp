#include "Common/Debug/ThreadDebug.h"

#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"

#include <boost/thread/thread.hpp>
#include <gtest/gtest.h>

#include <future>

namespace Nerix::Tests {

using Common::Debug::ThreadDebug;

std::size_t countLogged(const std::string& part) { return FakePlatform::instance().countLogged(part); }

const std::string tooLong = "abcdefghijklmnopqrst";

TEST(ThreadDebugDeathTest, MainThreadIsRegisteredOnce) {
    const auto registerThis = [] { ThreadDebug::registerMainThreadId(boost::this_thread::get_id()); };
    EXPECT_DEATH(registerThis(); registerThis(), "ASSERTION FAILED: m_mainThreadId == boost::thread::id\\(\\), ");
    inOwnProcess([&] {
        registerThis();
        EXPECT_EQ(countLogged(">Registering main thread id "), 1U);
        EXPECT_EQ(countLogged(" named " + ThreadDebug::GetThreadName() + "."), 1U);
    });
}

TEST(ThreadDebugDeathTest, MainThreadIsNotRenamed) {
    inOwnProcess([] {
        const std::string name = ThreadDebug::GetThreadName();
        ThreadDebug::registerMainThreadId(boost::this_thread::get_id());
        ThreadDebug::SetThreadName("other");
        EXPECT_EQ(ThreadDebug::GetThreadName(), name);
        EXPECT_EQ(countLogged("[WRN] ThreadDebug.cpp:"), 1U);
        EXPECT_EQ(countLogged(">Main thread name: other."), 1U);
    });
    inOwnProcess([] { // nor by another thread
        boost::thread thread([] {});
        ThreadDebug::registerMainThreadId(thread.get_id());
        ThreadDebug::SetThreadName(thread, "main");
        EXPECT_EQ(countLogged(">Main thread name: main."), 1U);
    });
}

TEST(ThreadDebug, OtherThreadsAreRenamed) {
    FakePlatform::instance().reset();
    std::promise<void> named;
    boost::thread thread([&] {
        named.get_future().wait();
        EXPECT_EQ(ThreadDebug::GetThreadName(), "by_main_1_Z__");
        ThreadDebug::SetThreadName(tooLong.c_str());
        EXPECT_EQ(ThreadDebug::GetThreadName(), tooLong.substr(0, 15)) << "a thread cuts its own name";
    });
    ThreadDebug::SetThreadName(thread, "by main-1_Z\xc3\xa4");
    named.set_value();
    thread.join();
    EXPECT_EQ(countLogged(" to by_main_1_Z__."), 1U);
    EXPECT_EQ(countLogged(" to " + tooLong + "."), 1U);
}

TEST(ThreadDebug, RenamingThatFailsIsLogged) {
    FakePlatform::instance().reset();
    std::promise<void> end;
    boost::thread thread([&] { end.get_future().wait(); });
    ThreadDebug::SetThreadName(thread, tooLong.c_str());
    end.set_value();
    thread.join();
    ThreadDebug::SetThreadName(thread, "gone");
    for (const std::string& name : {tooLong, std::string("gone")}) {
        EXPECT_EQ(countLogged(">pthread_setname_np Failed to give the name to thread: " + name), 1U);
    }
    EXPECT_EQ(countLogged("[ERR] ThreadDebug.cpp:"), 2U);
}

} // namespace Nerix::Tests
