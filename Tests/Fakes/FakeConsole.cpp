#include "Tests/Fakes/FakeConsole.h"

#include <cstdio>
#include <cstring>

namespace Nerix::Tests {

std::string& fakeConsolePath() {
    static std::string path;
    return path;
}

} // namespace Nerix::Tests

extern "C" {
std::FILE* __real_freopen(const char* path, const char* mode, std::FILE* stream);
std::FILE* __wrap_freopen(const char* path, const char* mode, std::FILE* stream);

std::FILE* __wrap_freopen(const char* path, const char* mode, std::FILE* stream) {
    if (std::strcmp(path, "/dev/console") != 0) {
        return __real_freopen(path, mode, stream);
    }
    const std::string& console = Nerix::Tests::fakeConsolePath();
    return console.empty() ? nullptr : __real_freopen(console.c_str(), mode, stream);
}
}
