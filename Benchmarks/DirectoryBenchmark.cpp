// A directory of empty files: listing and sorting it, and the steps of each entry, records to the system
// log included.

#include "Benchmarks/Setup.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashVerifierAPI.h"

#include <benchmark/benchmark.h>
#include <boost/filesystem/operations.hpp>

#include <string>

#include <sys/stat.h>

namespace Nerix::Benchmarks {
namespace {

void directory(benchmark::State& state) {
    const boost::filesystem::path path = scratch() / ("directory of " + std::to_string(state.range(0)));
    boost::filesystem::create_directory(path);
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        ::mknod((path / ("entry " + std::to_string(i))).c_str(), S_IFREG | 0644, 0);
    }
    for (auto run : state) {
        static_cast<void>(run);
        benchmark::DoNotOptimize(HashVerifierAPI::nerixVerifyPath(path.native(), "md5"));
    }
    state.SetComplexityN(state.range(0));
    boost::filesystem::remove_all(path);
}

BENCHMARK(directory)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace Nerix::Benchmarks
