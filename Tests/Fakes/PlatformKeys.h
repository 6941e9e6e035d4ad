#pragma once

/// The numbers that the platform gives to facts and directories. The product has its own table of them.
namespace Nerix::Tests {

namespace SystemInfoKey {
constexpr int softwareDate = 8;
constexpr int tvSoftware = 128;
constexpr int submicomVersion = 133;
constexpr int screenLines = 203;
constexpr int partitionList = 301;
constexpr int isTV = 358;
constexpr int isZebBox = 359;
constexpr int zebBoxSoftware = 378;
} // namespace SystemInfoKey

namespace PathVariable {
constexpr int systemBinaries = 6;
constexpr int readOnlyApps = 20;
constexpr int sharedData = 25;
constexpr int apps = 31;
constexpr int usbDrives = 43;
} // namespace PathVariable

} // namespace Nerix::Tests
