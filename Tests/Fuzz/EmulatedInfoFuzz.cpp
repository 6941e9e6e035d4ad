#include "Platform/Product/IProductInfo.h"

#include "Common/Utils/Errors/Errors.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/PrivateMounts.h"

#include <boost/filesystem/operations.hpp>
#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

using Info = Nerix::Platform::IProductInfo;

namespace {

constexpr int skipped = 78; // 77 is the fuzzer's own code for a crash

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    std::string reason;
    if (!Nerix::Tests::mountPrivately("/mnt", reason)) {
        std::printf("SKIPPED EmulatedInfo: no private mounts on this machine: %s\n", reason.c_str());
        std::exit(skipped);
    }
    Info::initializeProduct(Nerix::Platform::TV_PRODUCT);
    boost::filesystem::create_directories(Info::getNerixPartitionPath());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Nerix::Tests::FakePlatform::instance().reset();
    std::ofstream(Info::getEmulatedInfoPath(), std::ios_base::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    try {
        // What could be set can be read.
        Info::setEmulatedModelString("model");
        if (Info::getEmulatedModelString() != std::string("model")) {
            __builtin_trap();
        }
        Info::getEmulatedOTNZone();
        Info::getEmulatedVersionString();
    } catch (const Nerix::Common::Utils::GenericException&) { // NOLINT(bugprone-empty-catch): a bad line
    } catch (const boost::bad_lexical_cast&) { // NOLINT(bugprone-empty-catch): no number, no zone
    }
    return 0;
}
