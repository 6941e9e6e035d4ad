#include "Common/Base/Files.h"
#include "Common/Utils/ProcessLimits.h"
#include "Common/Utils/StandardStreams.h"
#include "Executables/NerixHost/CommandLine.h"
#include "Executables/NerixHost/Compare.h"
#include "Executables/NerixHost/EndBySignal.h"
#include "Executables/NerixHost/ErrorMessage.h"
#include "Executables/NerixHost/Scan.h"
#include "Executables/NerixHost/Settings.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <system_error>
#include <variant>
#include <vector>

namespace {

/// Performs the request and returns the exit status.
struct RequestHandler {
    int operator()(const Nerix::TextRequest& request) const {
        std::cout << request.text << std::flush;
        return EXIT_SUCCESS;
    }
    int operator()(const Nerix::ScanRequest& request) const { return Nerix::scan(request); }
    int operator()(const Nerix::CompareRequest& request) const { return Nerix::compare(request); }
    int operator()(const Nerix::SettingsRequest& request) const { return Nerix::settings(request); }
};

} // namespace

int main(int argc, char* argv[]) {
    if (!Nerix::Common::Utils::secureStandardStreams()) {
        return Nerix::errorStatus;
    }
    Nerix::Common::Utils::adaptToProcessLimits();
    std::cout.exceptions(std::ios_base::badbit | std::ios_base::failbit); // so that lost output is reported
    try {
        return std::visit(RequestHandler(), Nerix::parseCommandLine({argv + 1, argv + argc}));
    } catch (const Nerix::UsageError& failure) {
        Nerix::printError(failure.what());
        std::cerr << failure.help();
    } catch (const std::ios_base::failure& failure) {
        // The standard streams leave the reason in errno.
        const int error = failure.code() == std::io_errc::stream ? errno : failure.code().value();
        // The flush at exit must not throw, because nothing would catch the exception.
        std::cout.exceptions(std::ios_base::goodbit);
        if (error == EPIPE) {
            Nerix::endBySignal(SIGPIPE);
        }
        const std::string reason = error == 0 ? "" : ": " + Nerix::Common::messageOf(error);
        Nerix::printError("cannot write to standard output" + reason);
    } catch (const std::system_error& failure) {
        if (failure.code() == std::errc::broken_pipe) {
            Nerix::endBySignal(SIGPIPE);
        }
        Nerix::printError(failure.what());
    } catch (const std::exception& failure) {
        Nerix::printError(failure.what());
    }
    return Nerix::errorStatus;
}
