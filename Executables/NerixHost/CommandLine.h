#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

/// What the words of the command line ask for.
namespace Nerix {

/// The words ask for nothing that there is; what() says why.
class UsageError : public std::runtime_error {
public:
    explicit UsageError(const std::string& reason,
                        std::string help = "Try 'NerixHost --help' for what there is.\n")
        : std::runtime_error(reason), m_help(std::move(help)) {}

    /// What helps to ask for something that there is, in whole lines.
    const std::string& help() const { return m_help; }

private:
    std::string m_help;
};

/// Text that was asked for: help or the version.
struct TextRequest {
    std::string text;
};

struct ScanRequest {
    std::string path;
    std::string hashMethod;
    std::string logFile;                 ///< empty for none, "-" for standard output
    std::optional<std::string> expected; ///< the value that alone counts as success, in lower case
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
