#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Nerix::NerixCommon {

/// The source of an upgrade.
enum class UpgradeType : std::int32_t {
    OTA = 1, ///< over the air
    OTN = 2, ///< over the network
    USB = 3  ///< from a USB drive
};

/// Handles version texts, upgrade types and transaction ids. Only parseVersion is used here, the rest by
/// other programs of the package. Thread-safe.
class NerixCommonUtils {
public:
    /// Returns "OTA", "OTN" or "USB". Asserts that type is one of these.
    static std::string upgradeTypeToString(UpgradeType type);

    /// Returns the CRC-32 of bytes in eight hexadecimal digits, least significant byte first.
    static std::string getTransactionIdForUpgrade(const std::vector<unsigned char>& bytes);

    /// Splits "1234.5" into 1234 and 5, at the first dot; without a dot minor is 0. Each part is an optional
    /// sign and digits that fit an int. Throws boost::bad_lexical_cast with a line of context; major may
    /// already have been assigned.
    static void parseVersion(const std::string& text, int& major, int& minor);

    /// Returns the major number of a version text, formatted in the global locale. If text is not a version,
    /// logs that and returns text unchanged.
    static std::string versionStringForUI(const std::string& text);
};

} // namespace Nerix::NerixCommon
