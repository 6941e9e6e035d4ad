#include "ExecutablesLibraries/HashVerifierAPI/Mounts/MountPoints.h"

#include "Platform/Product/IProductInfo.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/OwnProcess.h"
#include "Tests/Fakes/PlatformKeys.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Nerix::Tests {

TEST(MountPointsDeathTest, FindUsbReturnsTheLastMatchingMount) {
    for (const bool hasVariable : {true, false}) {
        inOwnProcess([hasVariable] {
            if (hasVariable) { FakePlatform::instance().pathVariables[USB_DRIVES] = "/opt/usb"; }
            Platform::IProductInfo::initializeProduct(Platform::TV_PRODUCT);
            const struct {
                std::string table;
                std::string driveOfVariable; ///< with /opt/usb as the path variable of drives
                std::string driveOfMedia;    ///< without that variable
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
            for (const auto& [table, driveOfVariable, driveOfMedia] : cases) {
                SCOPED_TRACE(table);
                const MountPoints mounts{std::istringstream(table)};
                const std::string drive = hasVariable ? driveOfVariable : driveOfMedia;
                EXPECT_EQ(mounts.findUSB(), drive);
                EXPECT_EQ(mounts.isMountPoint(drive), !drive.empty());
                EXPECT_FALSE(mounts.isMountPoint("/"));
                EXPECT_FALSE(mounts.isMountPoint("/media/none"));
            }
        });
    }
}

} // namespace Nerix::Tests
