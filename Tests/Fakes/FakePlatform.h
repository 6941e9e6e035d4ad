#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace Nerix::Tests {

struct LogRecord {
    int buffer;
    int priority;
    std::string tag;
    std::string text;

    /// Returns the text after "[process][thread][number]".
    std::string withoutHeader() const;
};

/// An in-memory platform that records calls and fails on demand. Thread-safe, but tests must configure it before starting
/// threads. Fatal log records are also printed to standard error, for death tests.
class FakePlatform {
public:
    using Value = std::variant<int, double, bool, std::string>;

    /// The status that a failing call returns: ENOMEM, after which a walk may try again, unless a report failed.
    static constexpr int failure = 12;

    static FakePlatform& instance();

    /// Returns to the initial state.
    void reset();

    std::vector<LogRecord> log() const;

    /// Returns the number of log records that contain `part`.
    std::size_t countLogged(const std::string& part) const;

    /// Returns all settings written, oldest first.
    std::vector<std::pair<std::string, Value>> written() const;

    /// Makes the next `times` writes of this key fail.
    void failSetting(const std::string& key, int times);

    /// Makes the next log record throw std::bad_alloc.
    void failNextRecord();

    /// Called after each successful write of a setting, without a lock held.
    std::function<void(const std::string& key, const Value& value)> onWrite;

    /// Values of the system-information service and the path configuration. A lookup of a missing key, or of a value of
    /// another type, fails. Reading a setting always fails.
    std::map<int, Value> systemInfo;
    std::map<int, std::string> pathVariables;

    int set(const char* key, const Value& value);
    void addLogRecord(LogRecord record);

private:
    mutable std::mutex m_mutex;
    std::vector<LogRecord> m_log;
    std::vector<std::pair<std::string, Value>> m_writes;
    bool m_isOutOfMemory = false;
    std::map<std::string, int> m_failures; ///< by key: how many of the next writes fail
};

} // namespace Nerix::Tests
