#pragma once

#include "Executables/NerixHost/TreeComparison.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

/// The requests that a command line can contain, and their parser.
namespace Nerix {

/// Reports that the command line is invalid; what() gives the reason.
class UsageError : public std::runtime_error {
public:
    explicit UsageError(const std::string& reason,
                        std::string help = "Try 'NerixHost --help' for more information.\n")
        : std::runtime_error(reason), m_help(std::move(help)) {}

    /// Returns the lines to print after the reason. They say where to find help.
    const std::string& help() const { return m_help; }

private:
    std::string m_help;
};

/// A request to print a text: the help or the version.
struct TextRequest {
    std::string text;
};

struct ScanRequest {
    std::vector<std::string> paths; ///< only one with logFile, expected or hashedRoot
    std::string hashMethod;
    std::string hashedRoot;              ///< empty for the path of the tree
    std::string logFile;                 ///< empty: no log; "-": standard output
    std::optional<std::string> expected; ///< in lower case; if set, any other value is a failure
    bool keepsGoing;
    bool isJson;
    bool isQuiet;
    bool hasDetails;
};

struct CompareRequest {
    enum class Color { automatic, always, never };

    std::string before; ///< a scan log or a directory
    std::string after;
    std::string hashMethod; ///< for scanning two directories
    ComparisonRules rules;
    bool isJson;
    bool isSummary;
    bool isQuiet;
    Color color;
};

struct SettingsRequest {
    enum class Action { List, Get, Watch };
    Action action;
    std::string key; ///< only for Get
    bool isJson;
};

using Request = std::variant<TextRequest, ScanRequest, CompareRequest, SettingsRequest>;

/// Parses the words after the program's name. Throws UsageError.
Request parseCommandLine(const std::vector<std::string>& words);

} // namespace Nerix
