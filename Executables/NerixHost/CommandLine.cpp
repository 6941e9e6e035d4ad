#include "Executables/NerixHost/CommandLine.h"

#include "Common/Logging/PackageVersion.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctions.h"

#include <boost/program_options/options_description.hpp>
#include <boost/program_options/parsers.hpp>
#include <boost/program_options/positional_options.hpp>
#include <boost/program_options/value_semantic.hpp>
#include <boost/program_options/variables_map.hpp>

#include <algorithm>
#include <iterator>
#include <sstream>

namespace Nerix {

namespace {

namespace options = boost::program_options;

constexpr const char* overview =
    "NerixHost scans a file tree, compares scans and shows the settings that a scan publishes.\n"
    "\n"
    "  NerixHost scan /usr/share --log after.log      the value of a tree, and a line for each entry\n"
    "  NerixHost compare before.log after.log         which entries changed, were added or removed\n"
    "  NerixHost settings watch                       a running NerixVerifierHash, as it proceeds\n"
    "\n"
    "NerixHost VERB --help tells the options of a verb, NerixHost --version the version.\n";

/// A switch may be given more than once, as with other tools.
using Switch = std::vector<std::string>;

const options::value_semantic* switchValue() {
    return options::value<Switch>()->zero_tokens();
}

/// A word that stands by itself on the command line, and what a message calls it.
struct Word {
    const char* name;
    const char* shown;
    bool isRequired;
};

/// What a verb takes, and how its help begins and ends.
struct Verb {
    const char* usage;
    const char* ending;
    options::options_description named;
    std::vector<Word> words;
};

Verb scanVerb() {
    Verb verb{"usage: NerixHost scan PATH [OPTION...]\n\n"
              "Prints the value of the tree at PATH, as NerixVerifierHash would.\n\n",
              "\nExample: NerixHost scan /usr/share --log share.log --details\n\n"
              "Status: 0 for a value, 1 when there is none or it is not the one expected, 2 for trouble.\n",
              options::options_description("Options"),
              {{"path", "PATH", true}}};
    auto add = verb.named.add_options();
    std::string methods = "how values are folded:";
    for (const std::string& method : HashFunctions::methods()) {
        methods += ' ' + method;
    }
    add("hash,H", options::value<std::string>()->value_name("HASH")->default_value("md5"), methods.c_str());
    add("log,l", options::value<std::string>()->value_name("FILE"),
        "write a record for each entry; the file appears when it is complete; - for standard output");
    add("details,d", switchValue(), "let records also tell kind, owner, group, links, mode and size");
    add("expect,e", options::value<std::string>()->value_name("VALUE"), "succeed for this value alone");
    add("quiet,q", switchValue(), "show no progress");
    return verb;
}

Verb compareVerb() {
    Verb verb{
        "usage: NerixHost compare BEFORE AFTER [OPTION...]\n\n"
        "Says which entries of a tree differ between two scan logs: those of scan --log, of a drive, or\n"
        "main.log of a host's system log, of which the last run counts. A directory is named only when\n"
        "nothing below it explains the difference.\n\n",
        "\nExample: NerixHost compare before.log after.log\n\n"
        "Status: 0 for no difference, 1 for some, 2 for trouble.\n",
        options::options_description("Options"),
        {{"before", "BEFORE", true}, {"after", "AFTER", true}}};
    verb.named.add_options()("json", switchValue(), "a JSON object for each difference");
    return verb;
}

Verb settingsVerb() {
    Verb verb{
        "usage: NerixHost settings list|watch|get KEY [OPTION...]\n\n"
        "Shows the settings store of this user: list all settings, get one, or watch a verification\n"
        "until it ends.\n\n",
        "\nExample: NerixHost settings get db/menu/support/softwareupdate/hashverifier_result\n\n"
        "Status: 0, or 1 when there is no such setting or the watched run gave no value, 2 for trouble.\n",
        options::options_description("Options"),
        {{"action", "list, get or watch", true}, {"key", "KEY", false}}};
    verb.named.add_options()("json", switchValue(), "a JSON object for each line");
    return verb;
}

std::string helpOf(const Verb& verb) {
    std::ostringstream text;
    text << verb.usage << verb.named << verb.ending;
    return text.str();
}

/// The values of a verb's words and options. Throws UsageError and options::error.
options::variables_map parse(const Verb& verb, const std::vector<std::string>& words) {
    options::options_description all;
    all.add(verb.named).add_options()("help,h", switchValue(), "");
    options::positional_options_description places;
    for (const Word& word : verb.words) {
        all.add_options()(word.name, options::value<std::string>());
        places.add(word.name, 1);
    }
    options::variables_map values;
    options::store(options::command_line_parser(words).options(all).positional(places).run(), values);
    for (const Word& word : verb.words) {
        if (word.isRequired && values.count("help") + values.count(word.name) == 0) {
            throw UsageError(std::string(word.shown) + " is missing");
        }
    }
    return values;
}

std::string textOf(const options::variables_map& values, const char* name) {
    return values.count(name) != 0 ? values[name].as<std::string>() : std::string();
}

/// The value in lower case. Throws UsageError for a text that is none.
std::string valueIn(const std::string& text) {
    constexpr std::size_t digits = 16;
    std::string value;
    for (const char digit : text) {
        value += static_cast<char>(digit >= 'A' && digit <= 'F' ? digit - 'A' + 'a' : digit);
    }
    if (value.size() != digits || value.find_first_not_of("0123456789abcdef") != std::string::npos) {
        throw UsageError("'" + text + "' is no value: it takes 16 hexadecimal digits");
    }
    return value;
}

ScanRequest scanRequest(const options::variables_map& values) {
    ScanRequest request{};
    request.path = textOf(values, "path");
    request.hashMethod = textOf(values, "hash");
    request.logFile = textOf(values, "log");
    request.isQuiet = values.count("quiet") != 0;
    request.hasDetails = values.count("details") != 0;
    if (values.count("expect") != 0) {
        request.expected = valueIn(textOf(values, "expect"));
    }
    if (request.hasDetails && request.logFile.empty()) {
        throw UsageError("--details needs --log");
    }
    const std::vector<std::string> methods = HashFunctions::methods();
    if (std::find(methods.begin(), methods.end(), request.hashMethod) == methods.end()) {
        std::string text = "there is no hash method '" + request.hashMethod + "', but:";
        for (const std::string& method : methods) {
            text += ' ' + method;
        }
        throw UsageError(text);
    }
    return request;
}

SettingsRequest settingsRequest(const options::variables_map& values) {
    const std::string action = textOf(values, "action");
    SettingsRequest request{SettingsRequest::Action::List, textOf(values, "key"), values.count("json") != 0};
    if (action == "get") {
        request.action = SettingsRequest::Action::Get;
        if (request.key.empty()) {
            throw UsageError("KEY is missing");
        }
        return request;
    }
    if (action == "watch") {
        request.action = SettingsRequest::Action::Watch;
    } else if (action != "list") {
        throw UsageError("'" + action + "' is neither list nor get nor watch");
    }
    if (values.count("key") != 0) {
        throw UsageError(action + " takes no key");
    }
    return request;
}

CompareRequest compareRequest(const options::variables_map& values) {
    return {textOf(values, "before"), textOf(values, "after"), values.count("json") != 0};
}

/// The verb's help when that was asked for, else what make makes of the words.
template <class Make>
Request answer(const Verb& verb, const std::vector<std::string>& words, Make make) {
    const options::variables_map values = parse(verb, words);
    return values.count("help") != 0 ? Request(TextRequest{helpOf(verb)}) : Request(make(values));
}

Request requestOf(const std::string& name, const std::vector<std::string>& words) {
    if (name == "scan") {
        return answer(scanVerb(), words, &scanRequest);
    }
    if (name == "compare") {
        return answer(compareVerb(), words, &compareRequest);
    }
    if (name == "settings") {
        return answer(settingsVerb(), words, &settingsRequest);
    }
    throw UsageError("there is no '" + name + "', but: scan compare settings");
}

} // namespace

Request parseCommandLine(const std::vector<std::string>& words) {
    if (words.empty()) {
        throw UsageError("nothing to do", std::string("\n") + overview);
    }
    if (words[0] == "--help" || words[0] == "-h") {
        return TextRequest{overview};
    }
    if (words[0] == "--version") {
        return TextRequest{std::string("NerixHost ") + Common::packageVersion + '\n'};
    }
    try {
        return requestOf(words[0], {std::next(words.begin()), words.end()});
    } catch (const options::error& failure) {
        throw UsageError(failure.what());
    }
}

} // namespace Nerix
