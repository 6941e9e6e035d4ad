#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/RecordDetails.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanLogReader.h"

#include <string>

#include <sys/mman.h>
#include <unistd.h>

/// Any input must either be rejected or be readable to the end, where the last record is the root.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const int file = ::memfd_create("log", 0);
    static const std::string name = "/proc/self/fd/" + std::to_string(file);
    if (::ftruncate(file, 0) != 0 || ::pwrite(file, data, size, 0) != static_cast<ssize_t>(size)) { __builtin_trap(); }
    try {
        Nerix::ScanLogReader log(name);
        Nerix::ScanLogRecord record;
        std::uint64_t count = 0;
        for (; log.next(record); ++count) {
            if (log.header() && !Nerix::parseRecordDetails(record.details, true)) { __builtin_trap(); }
        }
        if (record.path != log.root() || count != log.count()) { __builtin_trap(); }
    } catch (const Nerix::ScanLogError&) { // NOLINT(bugprone-empty-catch): most are
    }
    return 0;
}
