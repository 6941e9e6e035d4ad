// MD5's compression function over 4096 bytes in each of several lanes. The argument is the number of lanes in
// use: compare the time per lane with that of openSslBaseline/md5/4096 (HashStepBenchmark.cpp).

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/Md5Lanes.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>
#include <vector>

namespace Nerix::Benchmarks {
namespace {

using namespace HashFunctions;

void compressLanes(benchmark::State& state, Md5Lanes::Implementation lanes) {
    constexpr std::size_t length = 4096;
    const auto used = static_cast<std::size_t>(state.range(0));
    if (used > lanes.count) {
        state.SkipWithError("the processor has fewer lanes");
        return;
    }
    const std::vector<std::string> texts(lanes.count, std::string(length, 'x'));
    std::vector<const std::uint8_t*> begins(lanes.count);
    std::transform(texts.begin(), texts.end(), begins.begin(), [](const std::string& text) {
        return reinterpret_cast<const std::uint8_t*>(text.data());
    });
    Md5Lanes::States states{};
    for (auto step : state) {
        static_cast<void>(step);
        lanes.compress(states, begins.data(), length / Md5Lanes::blockSize, used);
    }
    benchmark::DoNotOptimize(states);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * used * length));
}

BENCHMARK_CAPTURE(compressLanes, widest, Md5Lanes::implementation())->Arg(2)->Arg(8)->Arg(16);
BENCHMARK_CAPTURE(compressLanes, of128bits, Md5Lanes::Implementation{8, &Md5Lanes::compress128})
    ->Arg(2)
    ->Arg(4)
    ->Arg(8);

} // namespace
} // namespace Nerix::Benchmarks
