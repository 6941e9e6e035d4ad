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

/// The platform in memory: it remembers what it is told and fails on demand. Functions may be called from any
/// thread; what a test sets up, it sets up before it starts one. Fatal log records also go to standard error,
/// where death tests look.
class FakePlatform {
public:
    using Value = std::variant<int, double, bool, std::string>;

    static FakePlatform& instance();

    /// Forgets everything.
    void reset();

    std::vector<LogRecord> log() const;

    /// The records whose text holds part.
    std::vector<LogRecord> logHolding(const std::string& part) const;

    /// The texts written under a key, oldest first.
    std::vector<std::string> written(const std::string& key) const;

    /// All writes of texts, oldest first.
    std::vector<std::pair<std::string, std::string>> allWritten() const;

    /// The calls to come for this key that fail, with code.
    void failSetting(const std::string& key, int times, int code = -7);

    /// Called with key and text in place of a write's return, without a lock held.
    std::function<void(const std::string&, const std::string&)> onWrite;

    /// Answers of the system-information service and of the path configuration; what is not there fails.
    std::map<int, Value> systemInfo;
    std::map<int, std::string> pathVariables;

    int get(const char* key, Value& value);
    int set(const char* key, const Value& value);
    void addLogRecord(LogRecord record);

private:
    bool takeFailure(const std::string& key, int& code);

    mutable std::mutex m_mutex;
    std::vector<LogRecord> m_log;
    std::map<std::string, Value> m_settings;
    std::vector<std::pair<std::string, std::string>> m_writes;
    std::map<std::string, std::pair<int, int>> m_failures; ///< key to times and code
};

} // namespace Nerix::Tests
