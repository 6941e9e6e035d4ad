#include "Common/IO/OpenSSLInit.h"

#include "Common/Utils/SingletonServiceGuard.h"

#include <gtest/gtest.h>

#include <pthread.h>

namespace Nerix::Tests {
namespace {

namespace compat = Common::IO::OpenSSLCompat;
using Common::IO::OpenSSLInit;
using Guard = Common::Utils::SingletonServiceGuard<OpenSSLInit>;

TEST(OpenSSLInit, InstallsAndRemovesTheCallbacks) {
    {
        const Guard guard(Common::Utils::SINGLETON_OPENSSL_INITIALIZER);
        ASSERT_EQ(compat::getLockingCallback(), &Common::IO::lockingCallback);
        ASSERT_EQ(compat::getThreadIdCallback(), &Common::IO::threadIdCallback);
        for (int n = 0; n < compat::numLocks(); ++n) {
            compat::getLockingCallback()(compat::lockBit, n, "file", 1);
            compat::getLockingCallback()(0, n, "file", 1);
        }
        compat::ThreadId id;
        compat::getThreadIdCallback()(&id);
        EXPECT_EQ(id.value, ::pthread_self());
    }
    EXPECT_EQ(compat::getLockingCallback(), nullptr);
    EXPECT_EQ(compat::getThreadIdCallback(), nullptr);
}

TEST(OpenSSLInitDeathTest, HeldLockIsReportedAtTheEnd) {
    EXPECT_DEATH(
        {
            const Guard guard(Common::Utils::SINGLETON_OPENSSL_INITIALIZER);
            Common::IO::lockingCallback(compat::lockBit, 0, "file", 1);
        },
        "lock->try_lock\\(\\), .*\nMESSAGE: Destroying object when mutex is still locked!");
}

} // namespace
} // namespace Nerix::Tests
