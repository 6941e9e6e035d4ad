#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

/// Parses the command line.
namespace Nerix {

/// The command line is invalid; what() gives the reason.
class UsageError : public std::runtime_error {
public:
    explicit UsageError(const std::string& reason,
                        std::string help = "Try 'NerixHost --help' for more information.\n")
        : std::runtime_error(reason), m_help(std::move(help)) {}

    /// Whole lines to print after the reason: where to find help.
    const std::string& help() const { return m_help; }

private:
    std::string m_help;
};

/// Print this text: the help or the version.
struct TextRequest {
    std::string text;
};

struct ScanRequest {
    std::string path;
    std::string hashMethod;
    std::string logFile;                 ///< empty for none, "-" for standard output
    std::optional<std::string> expected; ///< if set, any other value is a failure, in lower case
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
    std::string key; ///< for Get
    bool isJson;
};

using Request = std::variant<TextRequest, ScanRequest, CompareRequest, SettingsRequest>;

/// words are those after the program's name. Throws UsageError.
Request parseCommandLine(const std::vector<std::string>& words);

} // namespace Nerix
