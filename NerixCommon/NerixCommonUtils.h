#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Nerix::NerixCommon {

/// Where an upgrade comes from.
enum class UpgradeType : std::int32_t {
    OTA = 1, ///< over the air
    OTN = 2, ///< over the network
    USB = 3  ///< from a USB drive
};

/// Version texts, upgrade types and transaction ids. For the other programs of the package; here only
/// parseVersion is used. No state; any thread may call.
class NerixCommonUtils {
public:
    /// "OTA", "OTN" or "USB"; asserts that it is one of them.
    static std::string upgradeTypeToString(UpgradeType type);

    /// The CRC-32 of bytes in eight hexadecimal digits, least significant byte first.
    static std::string getTransactionIdForUpgrade(const std::vector<unsigned char>& bytes);

    /// Splits "1234.5" into 1234 and 5, at the first dot; without a dot minor is 0. Each part is an optional
    /// sign and digits that fit an int, nothing else. Throws boost::bad_lexical_cast with a line of context;
    /// major may already have been assigned.
    static void parseVersion(const std::string& text, int& major, int& minor);

    /// The major number of a version text, written as the process's locale writes numbers; text itself, with
    /// a line in the log, when it is no version.
    static std::string versionStringForUI(const std::string& text);
};

} // namespace Nerix::NerixCommon
