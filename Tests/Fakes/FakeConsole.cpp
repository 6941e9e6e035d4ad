// No unit test may write on the machine's console, nor lose its standard output to it: in a program that links the fakes
// /dev/console is the file that NERIX_TEST_CONSOLE names; without it, it cannot be opened. Linked with --wrap for freopen,
// whose name is this where file offsets have 64 bits.

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
