#pragma once

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
    std::string path;
    std::string hashMethod;
    std::string logFile;                 ///< empty: no log; "-": standard output
    std::optional<std::string> expected; ///< in lower case; if set, any other value is a failure
    bool isQuiet;
    bool hasDetails;
};

struct CompareRequest {
    std::string before;
    std::string after;
    bool isJson;
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
