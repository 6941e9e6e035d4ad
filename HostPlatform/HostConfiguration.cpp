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

std::string trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r");
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

/// The line of each key, which the parser does not tell.
std::map<std::pair<std::string, std::string>, std::size_t> linesOfKeys(const std::string& content) {
    std::map<std::pair<std::string, std::string>, std::size_t> lines;
    std::istringstream stream(content);
    std::string section;
    std::size_t number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        const std::string text = trimmed(line);
        if (text.size() > 1 && text.front() == '[') {
            section = trimmed(text.substr(1, text.find(']') - 1));
        } else if (const std::size_t equals = text.find('='); equals != std::string::npos) {
            lines.emplace(std::make_pair(section, trimmed(text.substr(0, equals))), number);
        }
    }
    return lines;
}

/// The first line that begins with text, or with text in brackets.
std::size_t lineOf(const std::string& content, const std::string& text) {
    std::istringstream stream(content);
    std::size_t number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        const std::string trimmedLine = trimmed(line);
        if (trimmedLine.rfind(text, 0) == 0 || trimmedLine.rfind("[" + text, 0) == 0) {
            break;
        }
    }
    return number;
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
        m_answers[{answer.section, std::to_string(answer.key)}] = {answer.text, 0};
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
    // Looked at before it is opened: a pipe of that name would wait for its writer for ever.
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
        const auto lines = linesOfKeys(content.str());
        boost::property_tree::read_ini(content, tree);
        for (const auto& [section, keys] : tree) {
            if (section != "system_info" && section != "path") {
                m_fault = m_file.string() + ":" + std::to_string(lineOf(content.str(), section)) + ": '" +
                          section + "' is neither [system_info] nor [path]";
                return;
            }
            for (const auto& [key, value] : keys) {
                const auto line = lines.find({section, key});
                m_answers[{section, key}] = {value.data(), line == lines.end() ? 0 : line->second};
            }
        }
    } catch (const boost::property_tree::ini_parser_error& fault) {
        m_fault = m_file.string() + ":" + std::to_string(fault.line()) + ": " + fault.message();
    }
}

int HostConfiguration::find(const std::string& section, int key, const Answer*& answer) const {
    if (!m_fault.empty()) {
        logFailure("no answer for [" + section + "] " + std::to_string(key) + ": " + m_fault);
        return EINVAL;
    }
    const auto known = m_answers.find({section, std::to_string(key)});
    if (known == m_answers.end()) {
        logFailure("no answer for [" + section + "] " + std::to_string(key) + ": neither built in nor in " +
                   m_file.string());
        return ENOENT;
    }
    answer = &known->second;
    return 0;
}

int HostConfiguration::refuse(const std::string& section, int key, const Answer& answer,
                              const char* wanted) const {
    const std::string where =
        answer.line == 0 ? "built-in answer" : m_file.string() + ":" + std::to_string(answer.line);
    logFailure(where + ": [" + section + "] " + std::to_string(key) + " is '" + answer.text + "', not " +
               wanted);
    return EINVAL;
}

int HostConfiguration::text(const std::string& section, int key, std::string& value) const {
    const Answer* answer = nullptr;
    if (const int code = find(section, key, answer)) {
        return code;
    }
    if (answer->text.empty()) {
        return refuse(section, key, *answer, "a text");
    }
    value = answer->text;
    return 0;
}

int HostConfiguration::integer(const std::string& section, int key, int& value) const {
    const Answer* answer = nullptr;
    if (const int code = find(section, key, answer)) {
        return code;
    }
    const std::string& digits = answer->text;
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size()) {
        return refuse(section, key, *answer, "an integer");
    }
    value = number;
    return 0;
}

int HostConfiguration::boolean(const std::string& section, int key, bool& value) const {
    const Answer* answer = nullptr;
    if (const int code = find(section, key, answer)) {
        return code;
    }
    if (answer->text != "true" && answer->text != "false") {
        return refuse(section, key, *answer, "true or false");
    }
    value = answer->text == "true";
    return 0;
}

} // namespace Nerix::Platform::Host
