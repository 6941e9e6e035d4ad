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

    /// The text after "[process][thread][number]".
    std::string withoutHeader() const;
};

/// An in-memory platform that records calls and fails on demand. Thread-safe, but tests must configure it before starting
/// threads. Fatal log records are also printed to standard error, for death tests.
class FakePlatform {
public:
    using Value = std::variant<int, double, bool, std::string>;

    /// What a failing call returns.
    static constexpr int failure = -13;

    static FakePlatform& instance();

    /// Forgets everything.
    void reset();

    std::vector<LogRecord> log() const;

    /// Number of log records that contain `part`.
    std::size_t countLogged(const std::string& part) const;

    /// All settings written, oldest first.
    std::vector<std::pair<std::string, Value>> written() const;

    /// The next writes of this key fail.
    void failSetting(const std::string& key, int times);

    /// The next log record finds no memory.
    void failNextRecord();

    /// Called after a setting was written, without a lock held.
    std::function<void(const std::string& key, const Value& value)> onWrite;

    /// Answers of the system-information service and the path configuration; what is not there, or of another type,
    /// fails. So does every reading of a setting.
    std::map<int, Value> systemInfo;
    std::map<int, std::string> pathVariables;

    int set(const char* key, const Value& value);
    void addLogRecord(LogRecord record);

private:
    mutable std::mutex m_mutex;
    std::vector<LogRecord> m_log;
    std::vector<std::pair<std::string, Value>> m_writes;
    bool m_isOutOfMemory = false;
    std::map<std::string, int> m_failures; ///< how often the writes of a key still fail
};

} // namespace Nerix::Tests
