#include "Tests/Fakes/FakePlatform.h"

#include "PlatformInterfaces/dlog.h"
#include "PlatformInterfaces/path_config.h"
#include "PlatformInterfaces/system_info.h"
#include "PlatformInterfaces/vconf.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

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
    m_isOutOfMemory = false;
    onWrite = nullptr;
    systemInfo.clear();
    pathVariables.clear();
}

std::vector<LogRecord> FakePlatform::log() const {
    const Lock lock(m_mutex);
    return m_log;
}

std::size_t FakePlatform::countLogged(const std::string& part) const {
    std::size_t count = 0;
    for (const LogRecord& record : log()) { count += record.text.find(part) != std::string::npos ? 1 : 0; }
    return count;
}

std::vector<std::pair<std::string, FakePlatform::Value>> FakePlatform::written() const {
    const Lock lock(m_mutex);
    return m_writes;
}

void FakePlatform::failSetting(const std::string& key, int times) {
    const Lock lock(m_mutex);
    m_failures[key] = times;
}

void FakePlatform::failNextRecord() {
    const Lock lock(m_mutex);
    m_isOutOfMemory = true;
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
    if (std::exchange(m_isOutOfMemory, false)) { throw std::bad_alloc(); }
    m_log.push_back(std::move(record));
}

namespace {

template <class Value, class Out>
int systemInfo(int key, Out* out) {
    const auto& answers = FakePlatform::instance().systemInfo;
    const auto known = answers.find(key);
    if (known == answers.end() || !std::holds_alternative<Value>(known->second)) { return FakePlatform::failure; }
    if constexpr (std::is_same_v<Out, char*>) {
        *out = ::strdup(std::get<Value>(known->second).c_str());
    } else {
        *out = std::get<Value>(known->second);
    }
    return 0;
}

FakePlatform& fake() { return FakePlatform::instance(); }

} // namespace
} // namespace Nerix::Tests

using namespace Nerix::Tests;
using std::string;

int vconf_get_int(const char*, int*) { return FakePlatform::failure; }
int vconf_get_dbl(const char*, double*) { return FakePlatform::failure; }
int vconf_get_bool(const char*, int*) { return FakePlatform::failure; }
char* vconf_get_str(const char*) { return nullptr; }
int vconf_set_int(const char* key, int value) { return fake().set(key, value); }
int vconf_set_dbl(const char* key, double value) { return fake().set(key, value); }
int vconf_set_bool(const char* key, int value) { return fake().set(key, value != 0); }
int vconf_set_str(const char* key, const char* value) { return fake().set(key, string(value)); }

int system_info_get_value_string(int key, char** value) { return systemInfo<string>(key, value); }
int system_info_get_value_int(int key, int* value) { return systemInfo<int>(key, value); }
int system_info_get_value_bool(int key, bool* value) { return systemInfo<bool>(key, value); }

const char* path_config_get(int variable) {
    const auto directory = fake().pathVariables.find(variable);
    return directory == fake().pathVariables.end() ? nullptr : directory->second.c_str();
}

int __dlog_print(int buffer, int priority, const char* tag, const char* format, ...) {
    char text[32768];
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    fake().addLogRecord({buffer, priority, tag, text});
    return length;
}
