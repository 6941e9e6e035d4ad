#include "Tests/Fakes/FakePlatform.h"

#include "PlatformInterfaces/dlog.h"
#include "PlatformInterfaces/path_config.h"
#include "PlatformInterfaces/system_info.h"
#include "PlatformInterfaces/vconf.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace Nerix::Tests {

using Lock = std::lock_guard<std::mutex>;

std::string LogRecord::withoutHeader() const {
    std::size_t end = 0;
    for (int field = 0; field < 3; ++field) { end = text.find(']', end) + 1; }
    return text.substr(end);
}

FakePlatform& FakePlatform::instance() {
    static FakePlatform platform;
    return platform;
}

void FakePlatform::reset() {
    const Lock lock(m_mutex);
    m_log.clear();
    m_writes.clear();
    m_failures.clear();
    onWrite = nullptr;
    systemInfo.clear();
    settings.clear();
    pathVariables.clear();
}

std::vector<LogRecord> FakePlatform::log() const {
    const Lock lock(m_mutex);
    return m_log;
}

std::size_t FakePlatform::logged(const std::string& part) const {
    const std::vector<LogRecord> records = log();
    const auto count = std::count_if(records.begin(), records.end(),
                                     [&](const LogRecord& record) { return record.text.find(part) != std::string::npos; });
    return static_cast<std::size_t>(count);
}

std::vector<std::pair<std::string, FakePlatform::Value>> FakePlatform::written() const {
    const Lock lock(m_mutex);
    return m_writes;
}

void FakePlatform::failSetting(const std::string& key, int times) {
    const Lock lock(m_mutex);
    m_failures[key] = times;
}

int FakePlatform::set(const char* key, const Value& value) {
    {
        const Lock lock(m_mutex);
        if (m_failures[key] > 0) {
            --m_failures[key];
            return failure;
        }
        m_writes.emplace_back(key, value);
    }
    if (onWrite) { onWrite(key, value); }
    return 0;
}

void FakePlatform::addLogRecord(LogRecord record) {
    if (record.priority == DLOG_PRIORITY_FATAL) { std::fprintf(stderr, "dlog fatal: %s\n", record.text.c_str()); }
    const Lock lock(m_mutex);
    m_log.push_back(std::move(record));
}

namespace {

template <class Value, class Key, class Out>
int answer(const std::map<Key, FakePlatform::Value>& answers, const Key& key, Out* out) {
    const auto known = answers.find(key);
    if (known == answers.end() || !std::holds_alternative<Value>(known->second)) { return FakePlatform::failure; }
    *out = std::get<Value>(known->second);
    return 0;
}

template <class Value, class Out>
int systemInfo(int key, Out* out) {
    return answer<Value>(FakePlatform::instance().systemInfo, key, out);
}

template <class Value, class Out>
int setting(const char* key, Out* out) {
    return answer<Value>(FakePlatform::instance().settings, std::string(key), out);
}

} // namespace
} // namespace Nerix::Tests

using namespace Nerix::Tests; // NOLINT(google-build-using-namespace): its names fill this test

int vconf_get_int(const char* key, int* value) { return setting<int>(key, value); }
int vconf_get_dbl(const char* key, double* value) { return setting<double>(key, value); }
int vconf_get_bool(const char* key, int* value) { return setting<bool>(key, value); }
char* vconf_get_str(const char* key) {
    std::string text;
    return setting<std::string>(key, &text) == 0 ? ::strdup(text.c_str()) : nullptr;
}
int vconf_set_int(const char* key, int value) { return FakePlatform::instance().set(key, value); }
int vconf_set_dbl(const char* key, double value) { return FakePlatform::instance().set(key, value); }
int vconf_set_bool(const char* key, int value) { return FakePlatform::instance().set(key, value != 0); }
int vconf_set_str(const char* key, const char* value) { return FakePlatform::instance().set(key, std::string(value)); }

int system_info_get_value_string(int key, char** value) {
    std::string text;
    const int code = systemInfo<std::string>(key, &text);
    *value = code == 0 ? ::strdup(text.c_str()) : nullptr;
    return code;
}
int system_info_get_value_int(int key, int* value) { return systemInfo<int>(key, value); }
int system_info_get_value_bool(int key, bool* value) { return systemInfo<bool>(key, value); }

const char* path_config_get(int variable) {
    const auto& directories = FakePlatform::instance().pathVariables;
    const auto directory = directories.find(variable);
    return directory == directories.end() ? nullptr : directory->second.c_str();
}

int __dlog_print(int buffer, int priority, const char* tag, const char* format, ...) {
    char text[32768];
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    FakePlatform::instance().addLogRecord({buffer, priority, tag, text});
    return length;
}
