#include "HostPlatform/HostConfiguration.h"

#include "Tests/Fakes/FakePlatform.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
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
    const std::optional<std::string> text = host.text("path", 43);
    const int failures = (text ? 0 : 1) + (host.integer("system_info", 203) ? 0 : 1) +
                         (host.boolean("system_info", 358) ? 0 : 1);
    // Each failure leaves a line in the log, and no text is ever empty.
    if ((text && text->empty()) ||
        Nerix::Tests::FakePlatform::instance().log().size() < static_cast<std::size_t>(failures)) {
        __builtin_trap();
    }
    return 0;
}
