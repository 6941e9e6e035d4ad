#include "Executables/NerixHost/Json.h"

#include "Executables/NerixHost/EntryChange.h"
#include "Executables/NerixHost/RunState.h"
#include "Executables/NerixHost/SettingValue.h"

#include <nlohmann/json.hpp>

namespace Nerix {

namespace {

using Json = nlohmann::ordered_json;

Json textOrBytes(const std::string& text) {
    try {
        Json json = text;
        json.dump(); // throws if the text is not valid UTF-8
        return json;
    } catch (const Json::type_error&) {
        Json bytes = Json::array();
        for (const char character : text) {
            bytes.push_back(static_cast<unsigned char>(character));
        }
        return bytes;
    }
}

/// Returns the object as one line in ASCII, so that it cannot control a terminal.
std::string lineOf(const Json& json) {
    return json.dump(-1, ' ', true);
}

} // namespace

std::string jsonOf(const EntryChange& change) {
    Json json = {{"change", change.what}, {"path", textOrBytes(change.path)}};
    if (change.hasDetails) {
        json["facts"] = Json::object();
        for (const DetailChange& detail : change.details) {
            json["facts"][detail.name] = {{"before", textOrBytes(detail.before)},
                                          {"after", textOrBytes(detail.after)}};
        }
    }
    return lineOf(json);
}

std::string jsonOf(const Platform::Host::Setting& setting) {
    Json json = {{"key", textOrBytes(setting.key)}};
    std::visit(
        [&](const auto& value) {
            if constexpr (std::is_same_v<std::decay_t<decltype(value)>, std::string>) {
                json["value"] = textOrBytes(value);
            } else {
                json["value"] = value;
            }
        },
        valueOf(setting));
    if (isOfKilledRun(setting)) {
        json["killed"] = true;
    }
    return lineOf(json);
}

std::string jsonOf(const RunState& state) {
    return lineOf({{"status", textOrBytes(state.status)},
                   {"progress", textOrBytes(state.progress)},
                   {"result", textOrBytes(state.result)}});
}

} // namespace Nerix
