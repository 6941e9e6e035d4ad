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
///     tv_software = T-MYMODELH-1234.5
///     is_tv = true
///     [path]
///     usb_drives = /run/media
///
/// A key is a name of the table in HostConfiguration.cpp, or the number that the device uses for the
/// question. A key whose answer cannot be used is a failure, never a silent default; every key is when the
/// file cannot be read, is malformed or is larger than 1 MiB. Each failure is one line in the system log,
/// naming file, section and key. Immutable; any thread may ask.
class HostConfiguration {
public:
    /// The configuration of this process, read at the first call and never destroyed.
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
        bool isOverridden;
    };
    using Question = std::pair<std::string, int>; ///< section and key

    void read();
    void override(const std::string& section, const std::string& key, const std::string& text);
    std::optional<Answer> find(const std::string& section, int key) const;
    void refuse(const std::string& section, int key, const Answer& answer, const char* wanted) const;

    std::filesystem::path m_file;
    std::string m_fault; ///< why the file cannot be used; empty when it can
    std::map<Question, Answer> m_answers;
};

} // namespace Nerix::Platform::Host
