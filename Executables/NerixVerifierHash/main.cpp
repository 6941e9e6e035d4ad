// The command line of NerixVerifierHash. A run passes through these files, in this order:
//
//   main.cpp                    options, exit status
//   ProgramSession.cpp          sets up the log, OpenSSL, the product and the test parameters
//   HashVerifierAPI.cpp         makes the path canonical and starts the worker
//   Worker/HashWorker.cpp       publishes status, progress and result; scans on its own thread
//   ScanLog/ScanLogFile.cpp     opens the scan log on a USB drive
//   FileScanners/FileScanners.cpp   selects the scanner of an entry by its kind
//   FileScanners/Walk/Walk.cpp  connects examiners and reporter, on several threads
//   Walk/Examiner.cpp, EntryTexts.cpp   reads path, status, attributes, and content or target of entries
//   HashFunctions/Md5Hash.cpp   hashes these texts, several entries at a time
//   Walk/Reporter.cpp           passes the entries to the worker, in order
//   HashFunctions/OpenSSLHash.cpp, Common/IO/HashSink.cpp   a single step, computed by OpenSSL

#include "Common/Logging/Log.h"
#include "Common/Logging/PackageVersion.h"
#include "Common/Utils/ProcessLimits.h"
#include "Common/Utils/StandardStreams.h"
#include "Common/Utils/TerminationSignals.h"
#include "Executables/ProgramSession/ProgramSession.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctions.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashVerifierAPI.h"

#include <boost/exception/diagnostic_information.hpp>
#include <boost/program_options/options_description.hpp>
#include <boost/program_options/parsers.hpp>
#include <boost/program_options/value_semantic.hpp>
#include <boost/program_options/variables_map.hpp>

#include <cstdlib>
#include <sstream>
#include <string>

namespace options = boost::program_options;

namespace {

constexpr const char* programName = "NerixVerifierHash";
const unsigned int minimumDescriptionLength = options::options_description::m_default_line_length / 2;

void addMainOptions(options::options_description& outer) {
    options::options_description group("Main options", 80, minimumDescriptionLength);
    auto add = group.add_options();
    add("help,h", "Print this help message");
    add("path,P", options::value<std::string>()->value_name("PATH"), "Path to scan");
    add("hash,H", options::value<std::string>()->value_name("HASH"), "Hash method");
    outer.add(group);
}

std::string helpText(const options::options_description& outer) {
    std::ostringstream text;
    text << programName << ' ' << Nerix::Common::packageVersion << '\n'
         << "Prints a 64-bit hash of the tree at PATH (default: .). HASH (default: md5) is one of:";
    for (const std::string& hashMethod : Nerix::HashFunctions::methods()) {
        text << ' ' << hashMethod;
    }
    text << ". See also NerixHost.\n" << outer << '\n';
    return text.str();
}

std::string valueOr(const options::variables_map& map, const char* name, const char* defaultValue) {
    return map.count(name) != 0 ? map[name].as<std::string>() : defaultValue;
}

void execute(const Nerix::ProgramSession& session, int argc, char* argv[],
             const options::options_description& outer) {
    session.loadProductAndParameters();
    options::variables_map map;
    options::store(options::parse_command_line(argc, argv, outer), map);
    options::notify(map);
    if (map.count("help") != 0 || map.empty()) {
        Nerix::Common::Utils::writeToStandardOutput(helpText(outer));
        return;
    }
    const std::string result =
        Nerix::HashVerifierAPI::nerixVerifyPath(valueOr(map, "path", "."), valueOr(map, "hash", "md5"));
    Nerix::Common::Utils::writeToStandardOutput(result + '\n');
}

void reportCurrentException() {
    const std::string diagnostic = boost::current_exception_diagnostic_information(true);
    NERIX_LOG(FTL, "Exception caught in NerixVerifierHash: %s", diagnostic.c_str());
    Nerix::Common::Utils::writeReport("Exception caught in NerixVerifierHash: " + diagnostic +
                                      "\n  -- see dlog for details\n");
}

int verify(int argc, char* argv[]) {
    const Nerix::ProgramSession session(programName);
    options::options_description outer(options::options_description::m_default_line_length,
                                       minimumDescriptionLength);
    addMainOptions(outer);
    try {
        execute(session, argc, argv, outer);
        return EXIT_SUCCESS;
    } catch (...) {
        reportCurrentException();
        return EXIT_FAILURE;
    }
}

} // namespace

int main(int argc, char* argv[]) {
    if (!Nerix::Common::Utils::secureStandardStreams()) {
        return EXIT_FAILURE;
    }
    Nerix::Common::Utils::adaptToProcessLimits();
    Nerix::Common::Utils::catchTerminationSignals();
    return verify(argc, argv);
}
