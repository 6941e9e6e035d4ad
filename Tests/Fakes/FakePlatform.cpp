#include "Tests/Fakes/FakePlatform.h"

#include "Platform/Interfaces/dlog.h"
#include "Platform/Interfaces/path_config.h"
#include "Platform/Interfaces/system_info.h"
#include "Platform/Interfaces/vconf.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace Nerix::Tests {

using Lock = std::lock_guard<std::mutex>;

std::string LogRecord::withoutHeader() const {
    std::size_t end = 0;
    for (int field = 0; field < 3; ++field) {
        end = text.find(']', end) + 1;
    }
    return text.substr(end);
}

FakePlatform& FakePlatform::instance() {
    static FakePlatform platform;
    return platform;
}

void FakePlatform::reset() {
    const Lock lock(m_mutex);
    m_log.clear();
    m_settings.clear();
    m_writes.clear();
    m_failures.clear();
    onWrite = nullptr;
    systemInfo.clear();
    pathVariables.clear();
}

std::vector<LogRecord> FakePlatform::log() const {
    const Lock lock(m_mutex);
    return m_log;
}

std::vector<LogRecord> FakePlatform::logHolding(const std::string& part) const {
    std::vector<LogRecord> found;
    for (const LogRecord& record : log()) {
        if (record.text.find(part) != std::string::npos) {
            found.push_back(record);
        }
    }
    return found;
}

std::vector<std::string> FakePlatform::written(const std::string& key) const {
    std::vector<std::string> texts;
    for (const auto& [writtenKey, text] : allWritten()) {
        if (writtenKey == key) {
            texts.push_back(text);
        }
    }
    return texts;
}

std::vector<std::pair<std::string, std::string>> FakePlatform::allWritten() const {
    const Lock lock(m_mutex);
    return m_writes;
}

void FakePlatform::failSetting(const std::string& key, int times, int code) {
    const Lock lock(m_mutex);
    m_failures[key] = {times, code};
}

bool FakePlatform::takeFailure(const std::string& key, int& code) {
    const auto failure = m_failures.find(key);
    if (failure == m_failures.end() || failure->second.first == 0) {
        return false;
    }
    --failure->second.first;
    code = failure->second.second;
    return true;
}

int FakePlatform::get(const char* key, Value& value) {
    const Lock lock(m_mutex);
    int code = 0;
    if (takeFailure(key, code)) {
        return code;
    }
    const auto setting = m_settings.find(key);
    if (setting == m_settings.end() || setting->second.index() != value.index()) {
        return -1;
    }
    value = setting->second;
    return 0;
}

int FakePlatform::set(const char* key, const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    {
        const Lock lock(m_mutex);
        int code = 0;
        if (takeFailure(key, code)) {
            return code;
        }
        m_settings[key] = value;
        if (text != nullptr) {
            m_writes.emplace_back(key, *text);
        }
    }
    if (text != nullptr && onWrite) {
        onWrite(key, *text);
    }
    return 0;
}

void FakePlatform::addLogRecord(LogRecord record) {
    if (record.priority == DLOG_PRIORITY_FATAL) {
        std::fprintf(stderr, "dlog fatal: %s\n", record.text.c_str());
    }
    const Lock lock(m_mutex);
    m_log.push_back(std::move(record));
}

namespace {

template <class Value, class Out>
int getAs(const char* key, Out* out) {
    FakePlatform::Value value = Value();
    const int code = FakePlatform::instance().get(key, value);
    if (code == 0) {
        *out = std::get<Value>(value);
    }
    return code;
}

template <class Value, class Out>
int answerAs(int key, Out* out) {
    const auto& answers = FakePlatform::instance().systemInfo;
    const auto answer = answers.find(key);
    if (answer == answers.end() || !std::holds_alternative<Value>(answer->second)) {
        return -1;
    }
    *out = std::get<Value>(answer->second);
    return 0;
}

} // namespace

} // namespace Nerix::Tests

using Nerix::Tests::FakePlatform;

int vconf_get_int(const char* key, int* value) {
    return Nerix::Tests::getAs<int>(key, value);
}
int vconf_get_dbl(const char* key, double* value) {
    return Nerix::Tests::getAs<double>(key, value);
}
int vconf_get_bool(const char* key, int* value) {
    return Nerix::Tests::getAs<bool>(key, value);
}
int vconf_set_int(const char* key, int value) {
    return FakePlatform::instance().set(key, value);
}
int vconf_set_dbl(const char* key, double value) {
    return FakePlatform::instance().set(key, value);
}
int vconf_set_bool(const char* key, int value) {
    return FakePlatform::instance().set(key, value != 0);
}
int vconf_set_str(const char* key, const char* value) {
    return FakePlatform::instance().set(key, std::string(value));
}
char* vconf_get_str(const char* key) {
    std::string text;
    return Nerix::Tests::getAs<std::string>(key, &text) == 0 ? ::strdup(text.c_str()) : nullptr;
}

int system_info_get_value_string(int key, char** value) {
    std::string text;
    const int code = Nerix::Tests::answerAs<std::string>(key, &text);
    *value = code == 0 ? ::strdup(text.c_str()) : nullptr;
    return code;
}
int system_info_get_value_int(int key, int* value) {
    return Nerix::Tests::answerAs<int>(key, value);
}
int system_info_get_value_bool(int key, bool* value) {
    return Nerix::Tests::answerAs<bool>(key, value);
}

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
