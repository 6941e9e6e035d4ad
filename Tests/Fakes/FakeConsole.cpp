// Keeps unit tests away from the real console: opening /dev/console opens the file named by NERIX_TEST_CONSOLE instead, or
// fails if that is unset. Uses the linker's --wrap; freopen is called freopen64 with 64-bit file offsets.

#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" {
std::FILE* __real_freopen64(const char* path, const char* mode, std::FILE* stream);
std::FILE* __wrap_freopen64(const char* path, const char* mode, std::FILE* stream);

std::FILE* __wrap_freopen64(const char* path, const char* mode, std::FILE* stream) {
    if (std::strcmp(path, "/dev/console") == 0) { path = std::getenv("NERIX_TEST_CONSOLE"); }
    return path == nullptr ? nullptr : __real_freopen64(path, mode, stream);
}
}
