#include "Benchmarks/Setup.h"

#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Singletons/SingletonServiceGuard.h"
#include "Platform/Product/IProductInfo.h"

#include <benchmark/benchmark.h>
#include <boost/filesystem/operations.hpp>

#include <cstdlib>

namespace Nerix::Benchmarks {

namespace {

/// Created on first use, in main, before any benchmark touches the platform; removed at exit.
class Scratch {
public:
    Scratch()
        : path(boost::filesystem::path("/dev/shm") / boost::filesystem::unique_path("nerix-bench-%%%%%%%%")) {
        boost::filesystem::create_directory(path);
        ::setenv("NERIX_PLATFORM_HOME", (path / "home").c_str(), 1);
    }
    ~Scratch() {
        boost::system::error_code ignored;
        boost::filesystem::remove_all(path, ignored);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    const boost::filesystem::path path;
};

const Scratch& instance() {
    static const Scratch directory;
    return directory;
}

} // namespace

const boost::filesystem::path& scratch() {
    return instance().path;
}

} // namespace Nerix::Benchmarks

int main(int argc, char** argv) {
    Nerix::Benchmarks::scratch();
    const Nerix::Common::Utils::SingletonServiceGuard<Nerix::Common::IO::OpenSSLInit> openSSL(
        Nerix::Common::Utils::SINGLETON_OPENSSL_INITIALIZER);
    Nerix::Platform::IProductInfo::initializeProduct(Nerix::Platform::DEFAULT_PRODUCT);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return EXIT_FAILURE;
    }
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
