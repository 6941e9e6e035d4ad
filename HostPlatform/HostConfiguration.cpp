#include "HostPlatform/HostConfiguration.h"

#include "HostPlatform/HostDirectories.h"
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
    const char* text;
} builtIn[] = {
    {"system_info", 8, "2026-01-01"},           // date of the main software
    {"system_info", 128, "T-HOSTH-1000.0"},     // software of a television, model-major.minor
    {"system_info", 133, "1.0"},                // version of the sub-microcomputer
    {"system_info", 203, "1080"},               // lines of the screen
    {"system_info", 301, "/etc/partition.txt"}, // where the partitions are listed
    {"system_info", 358, "true"},               // a genuine television
    {"system_info", 359, "false"},              // a genuine Zeb box
    {"system_info", 378, "Z-HOSTH-1000.0"},     // software of a Zeb box
    {"path", 6, "/usr/bin"},                    // system binaries
    {"path", 20, "/usr/apps"},                  // system apps, read-only
    {"path", 25, "/usr/share"},                 // system shared data, read-only
    {"path", 31, "/opt/usr/apps"},              // system apps, read-write
    {"path", 43, "/media"},                     // where desktop systems mount drives
};

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

const HostConfiguration& HostConfiguration::instance() {
    static const HostConfiguration configuration([] {
        try {
            return durableDirectory() / "platform.ini";
        } catch (const std::system_error& noHome) {
            logFailure(std::string("no platform.ini is read: ") + noHome.what());
            return std::filesystem::path();
        }
    }());
    return configuration;
}

HostConfiguration::HostConfiguration(std::filesystem::path file) : m_file(std::move(file)) {
    for (const auto& answer : builtIn) {
        m_answers[{answer.section, std::to_string(answer.key)}] = {answer.text, true};
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
    // Checked before it is opened: a FIFO of that name would wait for a writer.
    std::stringstream content;
    if (!std::filesystem::is_regular_file(m_file, error)) {
        m_fault = m_file.string() + ": " + (error ? error.message() : "is not a regular file");
        return;
    }
    constexpr std::uintmax_t mostBytes = 1U << 20U; // the parser takes forty times the size of the file
    if (std::filesystem::file_size(m_file, error) > mostBytes) {
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
                m_answers[{section, key}] = {value.data(), false};
            }
        }
    } catch (const boost::property_tree::ini_parser_error& fault) {
        m_fault = m_file.string() + ":" + std::to_string(fault.line()) + ": " + fault.message();
    }
}

std::optional<HostConfiguration::Answer> HostConfiguration::find(const std::string& section, int key) const {
    const auto known = m_answers.find({section, std::to_string(key)});
    if (m_fault.empty() && known != m_answers.end()) {
        return known->second;
    }
    logFailure("no answer for [" + section + "] " + std::to_string(key) + ": " +
               (m_fault.empty() ? "neither built in nor in " + m_file.string() : m_fault));
    return std::nullopt;
}

void HostConfiguration::refuse(const std::string& section, int key, const Answer& answer,
                               const char* wanted) const {
    logFailure((answer.isBuiltIn ? "built-in answer" : m_file.string()) + ": [" + section + "] " +
               std::to_string(key) + " is '" + answer.text + "', not " + wanted);
}

std::optional<std::string> HostConfiguration::text(const std::string& section, int key) const {
    const std::optional<Answer> answer = find(section, key);
    if (answer && answer->text.empty()) {
        refuse(section, key, *answer, "a text");
        return std::nullopt;
    }
    return answer ? std::optional<std::string>(answer->text) : std::nullopt;
}

std::optional<int> HostConfiguration::integer(const std::string& section, int key) const {
    const std::optional<Answer> answer = find(section, key);
    if (!answer) {
        return std::nullopt;
    }
    const std::string& digits = answer->text;
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size()) {
        refuse(section, key, *answer, "an integer");
        return std::nullopt;
    }
    return number;
}

std::optional<bool> HostConfiguration::boolean(const std::string& section, int key) const {
    const std::optional<Answer> answer = find(section, key);
    if (answer && answer->text != "true" && answer->text != "false") {
        refuse(section, key, *answer, "true or false");
        return std::nullopt;
    }
    return answer ? std::optional<bool>(answer->text == "true") : std::nullopt;
}

} // namespace Nerix::Platform::Host
