#include "Common/IO/OpenSSLInit.h"

#include "Common/Utils/SingletonServiceGuard.h"

#include <gtest/gtest.h>

#include <memory>

namespace Nerix::Tests {
namespace {

namespace compat = Common::IO::OpenSSLCompat;
using Guard = Common::Utils::SingletonServiceGuard<Common::IO::OpenSSLInit>;

TEST(OpenSSLInitDeathTest, CallbacksLiveWithTheServiceAndHeldLocksAreReported) {
    auto guard = std::make_unique<Guard>(Common::Utils::SINGLETON_OPENSSL_INITIALIZER);
    ASSERT_EQ(compat::getLockingCallback(), &Common::IO::lockingCallback);
    ASSERT_EQ(compat::getThreadIdCallback(), &Common::IO::threadIdCallback);
    compat::getLockingCallback()(compat::lockBit, 0, "file", 1);
    EXPECT_DEATH(guard.reset(),
                 "lock->try_lock\\(\\), .*\nMESSAGE: Destroying object when mutex is still locked!");
    compat::getLockingCallback()(0, 0, "file", 1);
    guard.reset();
    EXPECT_EQ(compat::getLockingCallback(), nullptr);
    EXPECT_EQ(compat::getThreadIdCallback(), nullptr);
}

} // namespace
} // namespace Nerix::Tests
