#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace Nerix::Platform::Host {

/// The answers of an ordinary machine to the device's questions, and the file that overrides them:
///
///     ; platform.ini in the durable directory
///     [system_info]
///     128 = T-MYMODELH-1234.5
///     358 = true
///     [path]
///     43 = /run/media
///
/// A key whose answer cannot be used is a failure, never a silent default; every key is when the file cannot
/// be read, is malformed or is larger than 1 MiB. Each failure is one line in the system log, naming file,
/// section and key. Immutable; any thread may ask.
class HostConfiguration {
public:
    /// The configuration of this process, read when first asked for.
    static const HostConfiguration& instance();

    /// A file that does not exist overrides nothing.
    explicit HostConfiguration(std::filesystem::path file);

    /// section is "system_info" or "path". Nothing for a key without an answer, an answer that is empty or of
    /// another type, and any key when the file cannot be used.
    std::optional<std::string> text(const std::string& section, int key) const;
    std::optional<int> integer(const std::string& section, int key) const;
    std::optional<bool> boolean(const std::string& section, int key) const;

private:
    struct Answer {
        std::string text;
        bool isBuiltIn;
    };
    using Name = std::pair<std::string, std::string>; ///< section and key

    void read();
    std::optional<Answer> find(const std::string& section, int key) const;
    void refuse(const std::string& section, int key, const Answer& answer, const char* wanted) const;

    std::filesystem::path m_file;
    std::string m_fault; ///< why the file cannot be used; empty when it can
    std::map<Name, Answer> m_answers;
};

} // namespace Nerix::Platform::Host
