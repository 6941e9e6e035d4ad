#include "Executables/NerixHost/TreeScan.h"

#include "Common/Base/Files.h"
#include "Common/Utils/TerminationSignals.h"
#include "Executables/NerixHost/DescriptorBuffer.h"
#include "Executables/NerixHost/FailureSentence.h"
#include "Executables/NerixHost/ProgressLine.h"
#include "Executables/NerixHost/QuotedName.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashVerifierAPI.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogFrame.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/RunOptions.h"
#include "HostPlatform/HostState.h"

#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <future>
#include <iterator>
#include <ostream>
#include <stdexcept>

#include <sys/stat.h>
#include <unistd.h>

namespace Nerix {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

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

/// Returns the number of bytes with a unit, for example "1.5 GB".
std::string readable(double bytes) {
    constexpr const char* units[] = {"B", "kB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    for (; bytes >= 1000 && unit + 1 != std::size(units); ++unit) {
        bytes /= 1000;
    }
    char text[32];
    std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", bytes, units[unit]);
    return text;
}

std::string progressText(Clock::duration elapsed) {
    const double seconds = std::chrono::duration<double>(elapsed).count();
    const auto bytes = static_cast<double>(HashVerifierAPI::getFileBytes());
    return std::to_string(HashVerifierAPI::getEntries()) + " entries, " + readable(bytes) + ", " +
           readable(seconds > 0 ? bytes / seconds : 0) + "/s, " + duration(elapsed);
}

/// Returns true if the tree is a whole file system, whose size is known before the scan.
bool isFileSystem(const std::string& path) {
    struct stat status {};
    struct stat parent {};
    return ::stat(path.c_str(), &status) == 0 && ::stat((path + "/..").c_str(), &parent) == 0 &&
           (status.st_dev != parent.st_dev || status.st_ino == parent.st_ino);
}

/// Waits for the result and shows progress meanwhile.
std::string waitWithProgress(std::future<std::string>& result, const TreeScan& scan) {
    ProgressLine line(STDERR_FILENO, std::chrono::seconds(5));
    const Clock::time_point begin = Clock::now();
    const bool hasPercentage = isFileSystem(scan.path);
    bool canDraw = !scan.isQuiet;
    while (result.wait_for(std::chrono::milliseconds(100)) != std::future_status::ready) {
        drawIfPossible(canDraw, [&] {
            line.show({"", hasPercentage ? HashVerifierAPI::getProgress() : "",
                       progressText(Clock::now() - begin)});
        });
    }
    drawIfPossible(canDraw, [&] { line.clear(); });
    return result.get();
}

} // namespace

ScanSession::ScanSession() {
    Platform::Host::HostState::keepInMemory(); // before the session logs anything
    Common::Utils::catchTerminationSignals();
    m_session = std::make_unique<ProgramSession>("NerixHost");
    m_session->loadProductAndParameters();
}

ScannedTree scanTree(const TreeScan& scan, const ScanLogStream& log) {
    ScannedTree tree;
    const Clock::time_point begin = Clock::now();
    RunOptions options{log, scan.hashedRoot, {}};
    if (scan.keepsGoing) {
        options.onUnreadable = [&tree](const std::exception_ptr& failure) {
            tree.unreadables.push_back(failureSentence(failure));
        };
    }
    try {
        tree.root = hashedRootOf(scan);
        std::future<std::string> result = std::async(std::launch::async, [&] {
            return HashVerifierAPI::nerixVerifyPath(scan.path, scan.hashMethod, options);
        });
        tree.value = waitWithProgress(result, scan);
        const std::exception_ptr failure =
            tree.value == "ERROR" ? HashVerifierAPI::getFailure() : HashVerifierAPI::getReadFailure();
        if (failure && (tree.unreadables.empty() || Common::Utils::terminationSignal() != 0)) {
            tree.unreadables.push_back(failureSentence(failure));
        }
        tree.entries = HashVerifierAPI::getEntries();
        tree.bytes = HashVerifierAPI::getFileBytes();
    } catch (...) {
        tree.unreadables.push_back(failureSentence(std::current_exception()));
    }
    if (!tree.unreadables.empty()) {
        tree.value.clear();
    }
    tree.seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    return tree;
}

fs::path canonicalPath(const std::string& path) {
    try {
        return fs::canonical(path);
    } catch (const fs::filesystem_error& failure) {
        throw std::runtime_error("cannot read " + quotedName(path) + ": " + failure.code().message());
    }
}

std::string hashedRootOf(const TreeScan& scan) {
    if (!scan.hashedRoot.empty()) {
        return scan.hashedRoot;
    }
    return canonicalPath(scan.path).string();
}

ScanLogReader scanToLog(const TreeScan& scan) {
    Common::File file(std::tmpfile());
    if (!file) {
        throw std::runtime_error("cannot make a temporary file: " + Common::messageOf(errno));
    }
    DescriptorBuffer buffer(::fileno(file.get()));
    std::ostream log(&buffer);
    log << ScanLogHeader{scan.hashMethod, ::geteuid(), hashedRootOf(scan)}.text() << '\n';
    const ScannedTree tree = scanTree(scan, {&log, true});
    if (!tree.unreadables.empty()) {
        throw std::runtime_error(tree.unreadables.front());
    }
    log << scanLogEnd(tree.entries) << '\n' << std::flush;
    if (!log) {
        throw std::runtime_error("cannot write the log of " + quotedName(scan.path) + ": " +
                                 Common::messageOf(buffer.error()));
    }
    return {"the log of " + quotedName(scan.path), std::move(file)};
}

} // namespace Nerix
