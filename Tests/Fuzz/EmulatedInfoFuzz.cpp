#include "Platform/Product/EmulatedInfo.h"
#include "Platform/Product/IProductInfo.h"

#include "Common/Utils/Errors.h"
#include "Tests/Fakes/FakePlatform.h"
#include "Tests/Fakes/PrivateMounts.h"

#include <boost/filesystem/operations.hpp>
#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

using Info = Nerix::Platform::IProductInfo;

template <class Operation>
bool succeeds(Operation operation) {
    try {
        operation();
        return true;
    } catch (const Nerix::Common::Utils::GenericException&) {
        return false;
    } catch (const boost::bad_lexical_cast&) {
        return false;
    }
}

bool prepare() {
    std::string reason;
    if (!Nerix::Tests::mountPrivately("/mnt", reason)) {
        std::fprintf(stderr, "no private mounts on this machine: %s\n", reason.c_str());
        std::exit(0);
    }
    Info::initializeProduct(Nerix::Platform::TV_PRODUCT);
    boost::filesystem::create_directories(Info::getNerixPartitionPath());
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const bool isReady = prepare();
    static_cast<void>(isReady);
    Nerix::Tests::FakePlatform::instance().reset();
    std::ofstream(Info::getEmulatedInfoPath(), std::ios_base::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    succeeds([] { Info::getEmulatedVersionString(); });
    succeeds([] { Info::getEmulatedMainSoftwareVersionMajor(); });
    succeeds([] { Info::getEmulatedOTNZone(); });
    // What could be set can be read.
    if (succeeds([] { Info::setEmulatedModelString("model"); }) &&
        Info::getEmulatedModelString() != std::string("model")) {
        __builtin_trap();
    }
    return 0;
}
