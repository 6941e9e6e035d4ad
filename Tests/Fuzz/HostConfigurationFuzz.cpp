#include "HostPlatform/HostConfiguration.h"

#include "Tests/Fakes/FakePlatform.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const std::string file = "/dev/shm/nerix-fuzz-" + std::to_string(::getpid()) + ".ini";
    static const bool isReady = std::atexit([] { ::unlink(file.c_str()); }) == 0;
    static_cast<void>(isReady);
    Nerix::Tests::FakePlatform::instance().reset();
    std::ofstream(file, std::ios_base::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    const Nerix::Platform::Host::HostConfiguration host(file);
    std::string text = "unchanged";
    int number = 0;
    bool flag = false;
    const int failures = (host.text("path", 43, text) != 0 ? 1 : 0) +
                         (host.integer("system_info", 203, number) != 0) +
                         (host.boolean("system_info", 358, flag) != 0);
    // Each failure leaves a line in the log, and no text is ever empty.
    if (text.empty() ||
        Nerix::Tests::FakePlatform::instance().log().size() < static_cast<std::size_t>(failures)) {
        __builtin_trap();
    }
    return 0;
}
