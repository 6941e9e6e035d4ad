#include "Executables/NerixHost/Json.h"

#include "Common/Base/EscapedText.h"
#include "Common/Base/Hexadecimal.h"
#include "Common/Logging/PackageVersion.h"
#include "Executables/NerixHost/DifferenceText.h"
#include "Executables/NerixHost/RunState.h"
#include "Executables/NerixHost/SettingValue.h"
#include "Executables/NerixHost/TreeScan.h"

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

Json textOrNull(const std::optional<std::string>& text) {
    return text ? textOrBytes(*text) : Json(nullptr);
}

/// Returns a name that can be the key of an object: escaped, in ASCII, if it is not valid UTF-8.
std::string keyOf(const std::string& name) {
    if (textOrBytes(name).is_string()) {
        return name;
    }
    std::string key;
    for (const char character : Common::escaped(name)) {
        const auto byte = static_cast<unsigned char>(character);
        key += byte < 0x80 ? std::string(1, character) : "\\x" + Common::hexadecimal(byte, 2);
    }
    return key;
}

/// Returns the object as one line in ASCII, so that it cannot control a terminal.
std::string lineOf(const Json& json) {
    return json.dump(-1, ' ', true);
}

} // namespace

std::string jsonOf(const Difference& difference) {
    Json json = {{"change", wordOf(difference.kind)}, {"path", textOrBytes(plainPath(difference.path))}};
    if (difference.kind == Difference::Kind::moved) {
        json["newPath"] = textOrBytes(plainPath(difference.newPath));
    }
    for (const FactChange& change : difference.facts) {
        Json& fact = json["facts"][nameOf(change.fact)];
        Json& place = change.fact == Fact::attributes ? fact[keyOf(change.attribute)] : fact;
        place = {{"before", textOrNull(change.before)}, {"after", textOrNull(change.after)}};
    }
    if (difference.below != 0) {
        json["entriesBelow"] = difference.below;
    }
    return lineOf(json);
}

std::string jsonOf(const ComparisonResult& result, const ComparisonRules& rules) {
    Json facts = Json::object();
    for (const Difference& difference : result.differences) {
        std::set<Fact> changed;
        for (const FactChange& change : difference.facts) {
            changed.insert(change.fact);
        }
        for (const Fact fact : changed) {
            facts[nameOf(fact)] = facts.value(nameOf(fact), std::uint64_t{0}) + 1;
        }
    }
    Json json = {{"entries", result.entries}, {"differences", result.differences.size()}};
    using Kind = Difference::Kind;
    for (const Kind kind : {Kind::changed, Kind::moved, Kind::added, Kind::removed}) {
        json[wordOf(kind)] = countOf(result, kind);
    }
    json["facts"] = facts;
    json["bytesRemoved"] = bytesOf(result, Kind::removed);
    json["bytesAdded"] = bytesOf(result, Kind::added);
    json["ignored"] = Json::array();
    for (const Fact fact : rules.ignored) {
        json["ignored"].push_back(nameOf(fact));
    }
    json["excluded"] = Json::array();
    for (const PathPattern& pattern : rules.excluded) {
        json["excluded"].push_back(textOrBytes(pattern.text()));
    }
    return lineOf(json);
}

std::string jsonOf(const TreeScan& scan, const ScannedTree& tree) {
    Json json = {
        {"path", textOrBytes(scan.path)}, {"method", scan.hashMethod}, {"root", nullptr}, {"value", nullptr}};
    if (!tree.root.empty()) {
        json["root"] = textOrBytes(tree.root);
    }
    if (!tree.value.empty()) {
        json["value"] = tree.value;
    }
    json["complete"] = !tree.value.empty();
    json["unreadable"] = Json::array();
    for (const std::string& sentence : tree.unreadables) {
        json["unreadable"].push_back(textOrBytes(sentence));
    }
    json["entries"] = tree.entries;
    json["bytes"] = tree.bytes;
    json["seconds"] = tree.seconds;
    json["version"] = Common::packageVersion;
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
