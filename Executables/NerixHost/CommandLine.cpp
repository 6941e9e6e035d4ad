// parseCommandLine selects the command by the first word. scanCommand, compareCommand and settingsCommand
// declare the arguments and options of each command. makeRequest parses the remaining words against that
// declaration and passes the values to scanRequest, compareRequest or settingsRequest, which check them and
// build the request. The help of a command is generated from its declaration.

#include "Executables/NerixHost/CommandLine.h"

#include "Common/Logging/PackageVersion.h"
#include "Executables/NerixHost/QuotedName.h"
#include "Executables/NerixHost/Suggestion.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctions.h"

#include <boost/program_options/options_description.hpp>
#include <boost/program_options/parsers.hpp>
#include <boost/program_options/positional_options.hpp>
#include <boost/program_options/value_semantic.hpp>
#include <boost/program_options/variables_map.hpp>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>

namespace Nerix {

namespace {

namespace options = boost::program_options;

constexpr const char* overview =
    "usage: NerixHost COMMAND [ARGUMENT...]\n"
    "\n"
    "Compare file trees, scan a tree, and show the settings of this user.\n"
    "\n"
    "Commands:\n"
    "  compare BEFORE AFTER   list what differs between two trees or scan logs\n"
    "  scan PATH              print the value of a tree; --log records its entries\n"
    "  settings ACTION        show settings, or watch a running NerixVerifierHash\n"
    "\n"
    "Examples:\n"
    "  NerixHost compare /mnt/release /mnt/device\n"
    "  NerixHost scan / --log /media/release.log --details\n"
    "  NerixHost compare /media/release.log /\n"
    "  NerixHost settings watch\n"
    "\n"
    "Run 'NerixHost COMMAND --help' for the options of a command,\n"
    "'NerixHost --version' for the version.\n";

/// The type of an option without an argument. A vector, because the library rejects a repeated option of any
/// other type.
using Switch = std::vector<std::string>;

const options::value_semantic* switchValue() {
    return options::value<Switch>()->zero_tokens();
}

/// A positional argument.
struct Argument {
    const char* name;  ///< key among the parsed values
    const char* shown; ///< name in help and messages
    bool isRequired;
    bool isRepeated = false; ///< any number of them; only the last argument
};

/// The arguments and options of a command, and the help text before and after the options.
struct Command {
    const char* beforeOptions;
    const char* afterOptions;
    options::options_description options;
    std::vector<Argument> arguments;
};

std::string methodsText() {
    std::string text;
    for (const std::string& method : HashFunctions::methods()) {
        text += ' ' + method;
    }
    return text;
}

Command scanCommand() {
    Command command{"usage: NerixHost scan PATH... [OPTION...]\n"
                    "\n"
                    "Print the value of the tree at each PATH, as NerixVerifierHash does.\n"
                    "\n",
                    "\n"
                    "Example: NerixHost scan /usr/share --log share.log --details\n"
                    "\n"
                    "Exit status: 0 if the tree has a value and, with --expect, it is the expected\n"
                    "one; 1 if it is not; 2 for a usage error, if something cannot be read, or if the\n"
                    "log or standard output cannot be written.\n",
                    options::options_description("Options"),
                    {{"path", "PATH", true, true}}};
    const std::string methods = "Use hash method HASH, one of:" + methodsText();
    auto add = command.options.add_options();
    add("hash,H", options::value<std::string>()->value_name("HASH")->default_value("md5"), methods.c_str());
    add("log,l", options::value<std::string>()->value_name("FILE"),
        "Write a record for each entry to FILE, outside the tree. FILE appears when it is complete. With -, "
        "write the records to standard output and the value to standard error");
    add("details,d", switchValue(),
        "With --log, also record what compare needs: kind, owner, group, links, mode, size, content, "
        "attributes and target");
    add("as", options::value<std::string>()->value_name("PATH"),
        "Print the value that the tree would have at PATH, for example that of an image on its device");
    add("keep-going,k", switchValue(), "Continue after an entry that cannot be read, to report all of them");
    add("json", switchValue(), "Print a JSON object for each PATH");
    add("expect,e", options::value<std::string>()->value_name("VALUE"),
        "Exit with status 1 unless the value is VALUE");
    add("quiet,q", switchValue(), "Do not show progress");
    return command;
}

Command compareCommand() {
    Command command{"usage: NerixHost compare BEFORE AFTER [OPTION...]\n"
                    "\n"
                    "List what differs between two trees. BEFORE and AFTER are each a directory,\n"
                    "which is scanned, or a log written by scan --log FILE --details. Entries are\n"
                    "matched by their paths below the two roots. Logs without details, such as those\n"
                    "on a USB drive and a host's main.log, can be compared if they are of trees at\n"
                    "the same path.\n"
                    "\n",
                    "\n"
                    "Example: NerixHost compare /mnt/release /mnt/device --exclude '*.log'\n"
                    "\n"
                    "Exit status: 0 if nothing differs, 1 if something does; 2 for a usage error, if\n"
                    "a tree or log cannot be read completely, or if logs cannot be compared.\n",
                    options::options_description("Options"),
                    {{"before", "BEFORE", true}, {"after", "AFTER", true}}};
    std::string facts;
    for (const std::string& name : factNames()) {
        facts += ' ' + name;
    }
    const std::string ignore = "Do not compare these facts, separated by commas:" + facts;
    auto add = command.options.add_options();
    add("ignore,i", options::value<std::vector<std::string>>()->value_name("FACT[,...]"), ignore.c_str());
    add("exclude,x", options::value<std::vector<std::string>>()->value_name("PATTERN"),
        "Do not compare entries that match PATTERN, or what is below them. Without a slash, PATTERN matches "
        "a name, otherwise a path below the root; *, ?, [] and ** are special");
    add("all,a", switchValue(), "Also list the entries below directories that were added or removed");
    add("summary,s", switchValue(),
        "Print only the number of differing entries, by kind of difference and directory");
    add("json", switchValue(), "Print a JSON object for each difference, and one with the totals");
    add("color", options::value<std::string>()->value_name("WHEN")->default_value("auto"),
        "Colour the output: auto, always or never");
    add("hash,H", options::value<std::string>()->value_name("HASH")->default_value("md5"),
        "Scan with hash method HASH (see 'NerixHost scan --help'). If one side is a log, its method is used");
    add("quiet,q", switchValue(), "Do not show the progress of scans");
    return command;
}

Command settingsCommand() {
    Command command{"usage: NerixHost settings list|watch|get KEY [OPTION...]\n"
                    "\n"
                    "List the settings of this user, print one of them, or watch a running\n"
                    "NerixVerifierHash until it ends; if none is running, wait for the next.\n"
                    "\n",
                    "\n"
                    "Example: NerixHost settings watch\n"
                    "\n"
                    "Exit status: 0 on success; 1 if there is no such setting or the watched scan\n"
                    "failed; 2 on error.\n",
                    options::options_description("Options"),
                    {{"action", "ACTION", true}, {"key", "KEY", false}}};
    command.options.add_options()("json", switchValue(), "Print one JSON object per line");
    return command;
}

std::string helpOf(const Command& command) {
    std::ostringstream text;
    text << command.beforeOptions << command.options << command.afterOptions;
    return text.str();
}

/// Parses the options and arguments of a command. Throws UsageError and options::error.
options::variables_map parse(const Command& command, const std::vector<std::string>& words) {
    options::options_description all;
    all.add(command.options).add_options()("help,h", switchValue(), "");
    options::positional_options_description positional;
    for (const Argument& argument : command.arguments) {
        if (argument.isRepeated) {
            all.add_options()(argument.name, options::value<std::vector<std::string>>());
        } else {
            all.add_options()(argument.name, options::value<std::string>());
        }
        positional.add(argument.name, argument.isRepeated ? -1 : 1);
    }
    options::variables_map values;
    options::store(options::command_line_parser(words).options(all).positional(positional).run(), values);
    const bool isHelpWanted = values.count("help") != 0;
    for (const Argument& argument : command.arguments) {
        if (argument.isRequired && !isHelpWanted && values.count(argument.name) == 0) {
            throw UsageError(std::string("missing argument ") + argument.shown);
        }
    }
    return values;
}

[[noreturn]] void throwUnknownOption(const Command& command, const std::string& option) {
    std::vector<std::string> known{"--help"};
    for (const auto& each : command.options.options()) {
        known.push_back("--" + each->long_name());
    }
    throw UsageError("unknown option '" + option + "'" + didYouMean(option, known));
}

std::string textOf(const options::variables_map& values, const char* name) {
    return values.count(name) != 0 ? values[name].as<std::string>() : std::string();
}

std::vector<std::string> textsOf(const options::variables_map& values, const char* name) {
    return values.count(name) != 0 ? values[name].as<std::vector<std::string>>() : std::vector<std::string>();
}

/// Returns the path in normal form, without a slash at its end. Throws UsageError if it is not absolute.
std::string hashedRootIn(const std::string& text) {
    if (text.empty() || text.front() != '/') {
        throw UsageError("--as needs an absolute path, not " + quotedName(text));
    }
    std::string path = std::filesystem::path(text).lexically_normal().string();
    if (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

/// Returns text in lower case. Throws UsageError if it is not a value.
std::string valueIn(const std::string& text) {
    constexpr std::size_t digits = 16;
    std::string value;
    for (const char digit : text) {
        value += static_cast<char>(digit >= 'A' && digit <= 'F' ? digit - 'A' + 'a' : digit);
    }
    if (value.size() != digits || value.find_first_not_of("0123456789abcdef") != std::string::npos) {
        throw UsageError("'" + text + "' is not a value: expected 16 hexadecimal digits");
    }
    return value;
}

/// Returns the text. Throws UsageError if it is not a hash method.
std::string methodIn(const std::string& text) {
    const std::vector<std::string> methods = HashFunctions::methods();
    if (std::find(methods.begin(), methods.end(), text) == methods.end()) {
        const std::string suggestion = didYouMean(text, methods);
        throw UsageError("unknown hash method '" + text + "'" +
                         (suggestion.empty() ? "; known methods:" + methodsText() : suggestion));
    }
    return text;
}

ScanRequest scanRequest(const options::variables_map& values) {
    ScanRequest request{};
    request.paths = textsOf(values, "path");
    request.hashMethod = methodIn(textOf(values, "hash"));
    request.logFile = textOf(values, "log");
    if (values.count("as") != 0) {
        request.hashedRoot = hashedRootIn(textOf(values, "as"));
    }
    request.keepsGoing = values.count("keep-going") != 0;
    request.isJson = values.count("json") != 0;
    request.isQuiet = values.count("quiet") != 0;
    request.hasDetails = values.count("details") != 0;
    if (values.count("expect") != 0) {
        request.expected = valueIn(textOf(values, "expect"));
    }
    if (std::find(request.paths.begin(), request.paths.end(), "") != request.paths.end()) {
        throw UsageError("PATH is empty");
    }
    for (const char* const option : {"as", "expect", "log"}) {
        if (values.count(option) != 0 && request.paths.size() > 1) {
            throw UsageError(std::string("--") + option + " needs a single PATH");
        }
    }
    if (values.count("log") != 0 && request.logFile.empty()) {
        throw UsageError("--log needs a file name");
    }
    if (request.hasDetails && request.logFile.empty()) {
        throw UsageError("--details needs --log");
    }
    return request;
}

SettingsRequest settingsRequest(const options::variables_map& values) {
    const std::string action = textOf(values, "action");
    SettingsRequest request{SettingsRequest::Action::List, textOf(values, "key"), values.count("json") != 0};
    if (action == "get") {
        request.action = SettingsRequest::Action::Get;
        if (request.key.empty()) {
            throw UsageError("missing argument KEY");
        }
        return request;
    }
    if (action == "watch") {
        request.action = SettingsRequest::Action::Watch;
    } else if (action != "list") {
        throw UsageError("unknown action '" + action + "'" + didYouMean(action, {"list", "get", "watch"}));
    }
    if (values.count("key") != 0) {
        throw UsageError(action + " does not take a key");
    }
    return request;
}

/// Parses the arguments of --ignore. Throws UsageError.
FactSet factsIn(const std::vector<std::string>& lists) {
    FactSet facts;
    for (const std::string& list : lists) {
        std::istringstream names(list);
        for (std::string name; std::getline(names, name, ',');) {
            const std::optional<Fact> fact = factNamed(name);
            if (!fact) {
                throw UsageError("unknown fact '" + name + "'" + didYouMean(name, factNames()));
            }
            facts.insert(*fact);
        }
    }
    return facts;
}

std::vector<PathPattern> patternsIn(const std::vector<std::string>& texts) {
    std::vector<PathPattern> patterns;
    for (const std::string& text : texts) {
        try {
            patterns.emplace_back(text);
        } catch (const std::runtime_error& failure) {
            throw UsageError(failure.what());
        }
    }
    return patterns;
}

CompareRequest::Color colorIn(const std::string& text) {
    if (text == "auto") {
        return CompareRequest::Color::automatic;
    }
    if (text != "always" && text != "never") {
        throw UsageError("invalid argument '" + text + "' for --color" +
                         didYouMean(text, {"auto", "always", "never"}));
    }
    return text == "always" ? CompareRequest::Color::always : CompareRequest::Color::never;
}

CompareRequest compareRequest(const options::variables_map& values) {
    CompareRequest request{};
    request.before = textOf(values, "before");
    request.after = textOf(values, "after");
    request.hashMethod = methodIn(textOf(values, "hash"));
    request.rules.ignored = factsIn(textsOf(values, "ignore"));
    request.rules.excluded = patternsIn(textsOf(values, "exclude"));
    request.rules.listsAll = values.count("all") != 0;
    request.isJson = values.count("json") != 0;
    request.isSummary = values.count("summary") != 0;
    request.isQuiet = values.count("quiet") != 0;
    request.color = colorIn(textOf(values, "color"));
    return request;
}

/// Returns the help of the command if words contain --help, otherwise the request that make builds.
template <class Make>
Request makeRequest(const Command& command, const std::vector<std::string>& words, Make make) {
    try {
        const options::variables_map values = parse(command, words);
        return values.count("help") != 0 ? Request(TextRequest{helpOf(command)}) : Request(make(values));
    } catch (const options::unknown_option& failure) {
        throwUnknownOption(command, failure.get_option_name());
    }
}

Request requestOf(const std::string& name, const std::vector<std::string>& words) {
    if (name == "scan") {
        return makeRequest(scanCommand(), words, &scanRequest);
    }
    if (name == "compare") {
        return makeRequest(compareCommand(), words, &compareRequest);
    }
    if (name == "settings") {
        return makeRequest(settingsCommand(), words, &settingsRequest);
    }
    throw UsageError("unknown command '" + name + "'" + didYouMean(name, {"compare", "scan", "settings"}));
}

} // namespace

Request parseCommandLine(const std::vector<std::string>& words) {
    if (words.empty()) {
        throw UsageError("missing command", std::string("\n") + overview);
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
