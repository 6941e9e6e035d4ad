#include "ExecutablesLibraries/HashVerifierAPI/Mounts/MountPoints.h"

#include "Platform/Product/IProductInfo.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Nerix::Tests {
namespace {

TEST(MountPoints, LastDriveOfTheTableIsFoundByEitherRule) {
    for (const bool hasVariable : {true, false}) {
        inOwnProcess([hasVariable] {
            if (hasVariable) { FakePlatform::instance().pathVariables[43] = "/opt/usb"; }
            Platform::IProductInfo::initializeProduct(Platform::TV_PRODUCT);
            const struct {
                const char* table;
                const char* drive;
                const char* driveByMediaAlone;
            } cases[] = {
                {"", "", ""},
                {"/dev/sda / ext4\nproc /proc proc\n", "", ""},
                {"a /media/one\nb /media/two x\nc /mnt/three\n", "/media/two", "/media/two"},
                {"a /media/one\nb /opt/usb/sdb1\n", "/opt/usb/sdb1", "/media/one"},
                {"b /opt/usb/sdb1\na /media/one\n", "/media/one", "/media/one"},
                {"a /opt/usb\nb /opt/usb2\nc /mediaX\n", "/opt/usb", ""},
                {"a /media\n", "/media", "/media"},
                {"\t a \t /media/\r\v y z", "/media/\r\v", "/media/\r\v"},
                {"a /media/with\\040blank\nword\n", "/media/with\\040blank", "/media/with\\040blank"},
            };
            for (const auto& expected : cases) {
                const MountPoints mounts(std::istringstream(expected.table));
                const std::string drive = hasVariable ? expected.drive : expected.driveByMediaAlone;
                EXPECT_EQ(mounts.findUSB(), drive) << expected.table;
                EXPECT_EQ(mounts.isMountPoint(drive), !drive.empty() || std::string(expected.table).find("word") == 0);
                EXPECT_FALSE(mounts.isMountPoint("/") || mounts.isMountPoint("/media/none"));
            }
        });
    }
}

} // namespace
} // namespace Nerix::Tests
