#include "HostPlatform/HostConfiguration.h"

#include "PlatformInterfaces/dlog.h"

#include <boost/property_tree/ini_parser.hpp>
#include <boost/property_tree/ptree.hpp>

#include <cerrno>
#include <charconv>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <system_error>
#include <utility>

namespace Nerix::Platform::Host {

namespace {

const struct {
    const char* section;
    int key;
    const char* name; ///< in platform.ini and messages
    const char* value;
} builtIn[] = {
    {"system_info", 8, "software_date", "2026-01-01"},
    {"system_info", 128, "tv_software", "T-HOSTH-1000.0"}, // model-major.minor
    {"system_info", 133, "submicom_version", "1.0"},
    {"system_info", 203, "screen_lines", "1080"},
    {"system_info", 301, "partition_list", "/etc/partition.txt"},
    {"system_info", 358, "is_tv", "true"},
    {"system_info", 359, "is_zeb_box", "false"},
    {"system_info", 378, "zeb_box_software", "Z-HOSTH-1000.0"},
    {"path", 6, "system_binaries", "/usr/bin"},
    {"path", 20, "readonly_apps", "/usr/apps"},
    {"path", 25, "shared_data", "/usr/share"},
    {"path", 31, "apps", "/opt/usr/apps"},
    {"path", 43, "usb_drives", "/media"}, // where desktop systems mount drives
};

/// Returns "[path] usb_drives (43)", or "[path] 43" if the key does not have a name.
std::string shown(const std::string& section, int key) {
    for (const auto& entry : builtIn) {
        if (entry.section == section && entry.key == key) {
            return "[" + section + "] " + entry.name + " (" + std::to_string(key) + ")";
        }
    }
    return "[" + section + "] " + std::to_string(key);
}

std::optional<int> numberIn(const std::string& text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional<int>(number)
                                                                    : std::nullopt;
}

/// Returns the number of a key that is given by number or by name.
std::optional<int> numberOf(const std::string& section, const std::string& key) {
    for (const auto& entry : builtIn) {
        if (entry.section == section && entry.name == key) {
            return entry.key;
        }
    }
    return numberIn(key);
}

std::string namesIn(const std::string& section) {
    std::string names;
    for (const auto& entry : builtIn) {
        if (entry.section == section) {
            names += std::string(" ") + entry.name;
        }
    }
    return names;
}

void logFailure(const std::string& text) {
    __dlog_print(DLOG_BUFFER_SYSTEM, DLOG_PRIORITY_ERROR, "nerix.host", "%s", text.c_str());
}

bool readInto(std::stringstream& content, const std::filesystem::path& file) {
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
        content << line << '\n';
    }
    return stream.eof();
}

} // namespace

HostConfiguration::HostConfiguration(std::filesystem::path file) : m_file(std::move(file)) {
    for (const auto& entry : builtIn) {
        m_values[{entry.section, entry.key}] = {entry.value, false};
    }
    read();
    if (!m_fault.empty()) {
        logFailure(m_fault);
    }
}

void HostConfiguration::read() {
    std::error_code error;
    if (m_file.empty() ||
        std::filesystem::symlink_status(m_file, error).type() == std::filesystem::file_type::not_found) {
        return;
    }
    // Check before opening, because opening a FIFO would block.
    std::stringstream content;
    if (!std::filesystem::is_regular_file(m_file, error)) {
        m_fault = m_file.string() + ": " + (error ? error.message() : "is not a regular file");
        return;
    }
    constexpr std::uintmax_t maxBytes = 1U << 20U; // the parser needs forty times as much memory
    if (std::filesystem::file_size(m_file, error) > maxBytes) {
        m_fault = m_file.string() + ": " + (error ? error.message() : "is larger than 1 MiB");
        return;
    }
    if (!readInto(content, m_file)) {
        m_fault = m_file.string() + ": cannot be read: " + std::generic_category().message(errno);
        return;
    }
    try {
        boost::property_tree::ptree tree;
        boost::property_tree::read_ini(content, tree);
        for (const auto& [section, keys] : tree) {
            if (section != "system_info" && section != "path") {
                m_fault = m_file.string() + ": '" + section + "' is neither [system_info] nor [path]";
                return;
            }
            for (const auto& [key, value] : keys) {
                override(section, key, value.data());
            }
        }
    } catch (const boost::property_tree::ini_parser_error& fault) {
        m_fault = m_file.string() + ":" + std::to_string(fault.line()) + ": " + fault.message();
    }
}

void HostConfiguration::override(const std::string& section, const std::string& key,
                                 const std::string& text) {
    const std::optional<int> number = numberOf(section, key);
    if (!number) {
        m_fault = m_file.string() + ": [" + section + "] '" + key + "' is neither a number nor one of" +
                  namesIn(section);
        return;
    }
    Value& current = m_values[{section, *number}];
    if (current.isOverridden) {
        m_fault = m_file.string() + ": " + shown(section, *number) + " appears twice";
    }
    current = {text, true};
}

std::optional<HostConfiguration::Value> HostConfiguration::find(const std::string& section, int key) const {
    const auto known = m_values.find({section, key});
    if (m_fault.empty() && known != m_values.end()) {
        return known->second;
    }
    logFailure("no value for " + shown(section, key) + ": " +
               (m_fault.empty() ? "not built in and not in " + m_file.string() : m_fault));
    return std::nullopt;
}

void HostConfiguration::logBadValue(const std::string& section, int key, const Value& value,
                                    const char* wanted) const {
    logFailure((value.isOverridden ? m_file.string() : "built-in value") + ": " + shown(section, key) +
               " is '" + value.text + "', not " + wanted);
}

std::optional<std::string> HostConfiguration::text(const std::string& section, int key) const {
    const std::optional<Value> value = find(section, key);
    if (value && value->text.empty()) {
        logBadValue(section, key, *value, "a non-empty text");
        return std::nullopt;
    }
    return value ? std::optional<std::string>(value->text) : std::nullopt;
}

std::optional<int> HostConfiguration::integer(const std::string& section, int key) const {
    const std::optional<Value> value = find(section, key);
    if (!value) {
        return std::nullopt;
    }
    const std::optional<int> number = numberIn(value->text);
    if (!number) {
        logBadValue(section, key, *value, "an integer");
    }
    return number;
}

std::optional<bool> HostConfiguration::boolean(const std::string& section, int key) const {
    const std::optional<Value> value = find(section, key);
    if (value && value->text != "true" && value->text != "false") {
        logBadValue(section, key, *value, "true or false");
        return std::nullopt;
    }
    return value ? std::optional<bool>(value->text == "true") : std::nullopt;
}

} // namespace Nerix::Platform::Host
