// One record of the scan log on its way through the host's system log.

#include "Common/Logging/Log.h"
#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanRecord.h"

#include <benchmark/benchmark.h>

namespace Nerix::Benchmarks {
namespace {

void hostLogRecord(benchmark::State& state) {
    for (auto record : state) {
        static_cast<void>(record);
        NERIX_LOG_STREAM(INF) << scanRecord(0x0123456789abcdef,
                                            "/usr/lib/x86_64-linux-gnu/libexample.so.1.2.3");
    }
}

void scanRecordText(benchmark::State& state) {
    for (auto record : state) {
        static_cast<void>(record);
        benchmark::DoNotOptimize(
            scanRecord(0x0123456789abcdef, "/usr/lib/x86_64-linux-gnu/libexample.so.1.2.3"));
    }
}

BENCHMARK(hostLogRecord);
BENCHMARK(scanRecordText);

} // namespace
} // namespace Nerix::Benchmarks
