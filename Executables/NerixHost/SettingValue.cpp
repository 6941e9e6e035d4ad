#include "Executables/NerixHost/SettingValue.h"

#include "Common/Base/EscapedText.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>

namespace Nerix {

namespace {

using Platform::Host::Setting;
using Platform::Host::SettingType;

template <class Value>
Value numberIn(const std::string& bytes) {
    Value value{};
    std::memcpy(&value, bytes.data(), std::min(sizeof value, bytes.size()));
    return value;
}

std::string shortest(double value) {
    char text[32];
    return {text, std::to_chars(std::begin(text), std::end(text), value).ptr};
}

} // namespace

std::variant<std::string, int, double, bool> valueOf(const Setting& setting) {
    switch (setting.type) {
    case SettingType::Integer:
        return numberIn<int>(setting.bytes);
    case SettingType::Double:
        return numberIn<double>(setting.bytes);
    case SettingType::Boolean:
        return numberIn<int>(setting.bytes) != 0;
    case SettingType::Text:
        break;
    }
    return setting.bytes;
}

std::string valueText(const Setting& setting) {
    const auto value = valueOf(setting);
    if (const auto* const text = std::get_if<std::string>(&value)) {
        return Common::escaped(*text);
    }
    if (const auto* const flag = std::get_if<bool>(&value)) {
        return *flag ? "true" : "false";
    }
    const auto* const number = std::get_if<double>(&value);
    return number != nullptr ? shortest(*number) : std::to_string(std::get<int>(value));
}

} // namespace Nerix
