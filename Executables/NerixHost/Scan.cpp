#include "Executables/NerixHost/Scan.h"

#include "Common/Utils/TerminationSignals.h"
#include "Executables/NerixHost/DescriptorBuffer.h"
#include "Executables/NerixHost/ErrorMessage.h"
#include "Executables/NerixHost/FailureSentence.h"
#include "Executables/NerixHost/LogFile.h"
#include "Executables/NerixHost/LogPlace.h"
#include "Executables/NerixHost/ProgressLine.h"
#include "Executables/NerixHost/QuotedName.h"
#include "Executables/ProgramSession/ProgramSession.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashVerifierAPI.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogStream.h"
#include "HostPlatform/HostState.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <iostream>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <system_error>

#include <unistd.h>

namespace Nerix {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// The exit status if a file could not be read to its end. There is a value, but it is wrong.
constexpr int incompleteReadStatus = 2;

std::string duration(Clock::duration elapsed) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(elapsed).count();
    const std::string rest = std::to_string(seconds % 60);
    return std::to_string(seconds / 60) + (rest.size() == 1 ? ":0" : ":") + rest;
}

/// Draws unless drawing has failed before. The scan continues even if the reader of a pipe is gone.
template <class Draw>
void drawIfPossible(bool& isPossible, Draw draw) {
    try {
        if (isPossible) {
            draw();
        }
    } catch (const std::runtime_error&) {
        isPossible = false;
    }
}

/// Runs the verification on another thread, shows its progress, and returns the value or "ERROR".
std::string verifyWithProgress(const ScanRequest& request, const ScanLogStream& log) {
    ProgressLine line(STDERR_FILENO, std::chrono::seconds(5));
    const Clock::time_point begin = Clock::now();
    std::future<std::string> result = std::async(std::launch::async, [&] {
        return HashVerifierAPI::nerixVerifyPath(request.path, request.hashMethod, log);
    });
    bool canDraw = !request.isQuiet;
    while (result.wait_for(std::chrono::milliseconds(100)) != std::future_status::ready) {
        drawIfPossible(canDraw, [&] {
            line.show({"", HashVerifierAPI::getProgress(),
                       std::to_string(HashVerifierAPI::getEntries()) + " entries " +
                           duration(Clock::now() - begin)});
        });
    }
    drawIfPossible(canDraw, [&] { line.clear(); });
    return result.get();
}

int printFailure(const std::string& reason) {
    printError(reason);
    return EXIT_FAILURE;
}

} // namespace

int scan(const ScanRequest& request) {
    std::string value;
    try {
        Platform::Host::HostState::keepInMemory();
        Common::Utils::catchTerminationSignals();
        const ProgramSession session("NerixHost");
        session.loadProductAndParameters();
        const bool isLogOnStandardOutput = request.logFile == "-";
        std::optional<LogFile> file;
        if (!request.logFile.empty() && !isLogOnStandardOutput) {
            file.emplace(logPathOutside(fs::canonical(request.path), request.logFile).string());
        }
        DescriptorBuffer output(STDOUT_FILENO);
        // Without a buffer, the stream discards the records.
        std::ostream logOutput(isLogOnStandardOutput ? &output : nullptr);
        value = verifyWithProgress(request, {file ? &file->stream() : &logOutput, request.hasDetails});
        if (isLogOnStandardOutput && !logOutput.flush()) {
            throw std::ios_base::failure("standard output",
                                         std::error_code(output.error(), std::generic_category()));
        }
        if (value == "ERROR") {
            return printFailure(failureSentence(HashVerifierAPI::getFailure()));
        }
        if (const std::exception_ptr failure = HashVerifierAPI::getReadFailure()) {
            printError(failureSentence(failure));
            return incompleteReadStatus;
        }
        if (file) {
            file->commit();
        }
    } catch (const std::ios_base::failure&) {
        throw; // writing to standard output failed
    } catch (const fs::filesystem_error& failure) {
        return printFailure("cannot read " + quotedName(failure.path1().string()) + ": " +
                            failure.code().message());
    } catch (...) {
        return printFailure(failureSentence(std::current_exception()));
    }
    (request.logFile == "-" ? std::cerr : std::cout) << value << std::endl;
    if (request.expected && *request.expected != value) {
        return printFailure("the value is " + value + ", not " + *request.expected);
    }
    return EXIT_SUCCESS;
}

} // namespace Nerix
