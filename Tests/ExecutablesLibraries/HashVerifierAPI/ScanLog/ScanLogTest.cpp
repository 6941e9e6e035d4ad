#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/MountPoints.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanRecord.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Nerix::Tests {
namespace {

TEST(ScanRecord, ValueIsPaddedAndPathQuoted) {
    EXPECT_EQ(scanRecord(0xab, "/usr/bin/tool"), "00000000000000ab \"/usr/bin/tool\"");
    EXPECT_EQ(scanRecord(0xFEDCBA9876543210, "/a\"b&c\nd\xff"), "fedcba9876543210 \"/a&\"b&&c\nd\xff\"");
}

TEST(MountPoints, DirectoriesAreTheSecondWords) {
    std::istringstream table("/dev/root / ext4 rw 0 0\n"
                             "proc /proc proc rw 0 0\n"
                             "/dev/sdb1 /media/with\\040blank vfat rw 0 0\n"
                             "\n"
                             "cut");
    const MountPoints mounts(table);
    EXPECT_FALSE(mounts.isMountPoint("/"));
    EXPECT_TRUE(mounts.isMountPoint("/proc"));
    EXPECT_FALSE(mounts.isMountPoint("/proc/"));
    EXPECT_TRUE(mounts.isMountPoint("/media/with\\040blank"));
    EXPECT_FALSE(mounts.isMountPoint("/media/with blank"));
}

} // namespace
} // namespace Nerix::Tests
