// The steps common to all entries: status text and extended attributes.

#include "Benchmarks/Setup.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntrySteps.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctions.h"

#include <benchmark/benchmark.h>
#include <boost/filesystem/fstream.hpp>

#include <sys/xattr.h>

namespace Nerix::Benchmarks {
namespace {

FileInput makeFile(std::int64_t attributes) {
    const boost::filesystem::path path = scratch() / ("file with attributes " + std::to_string(attributes));
    const boost::filesystem::ofstream created(path);
    for (std::int64_t i = 0; i < attributes; ++i) {
        ::setxattr(path.c_str(), ("trusted.attribute" + std::to_string(i)).c_str(), "value", 5, 0);
    }
    return FileInput(path);
}

void statusText(benchmark::State& state) {
    const FileInput entry = makeFile(0);
    for (auto step : state) {
        static_cast<void>(step);
        benchmark::DoNotOptimize(FileScanners::statusText(entry));
    }
}

/// Setting trusted.* needs privilege; without it the file has no attributes, whatever the argument.
void attributeStep(benchmark::State& state) {
    const FileInput entry = makeFile(state.range(0));
    const IHashFunction& function = HashFunctions::getInstance("md5");
    for (auto step : state) {
        static_cast<void>(step);
        benchmark::DoNotOptimize(FileScanners::hashxtattr(entry, 0, function));
    }
}

BENCHMARK(statusText);
BENCHMARK(attributeStep)->Arg(0)->Arg(1)->Arg(5);

} // namespace
} // namespace Nerix::Benchmarks
