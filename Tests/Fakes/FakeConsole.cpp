// No unit test may write on the machine's console, nor lose its standard output to it: in a program that
// links the fakes /dev/console cannot be opened. Linked with --wrap for freopen by both its names: which one
// is called hangs on the width of file offsets.

#include <cstdio>
#include <cstring>

extern "C" {
std::FILE* __real_freopen64(const char* path, const char* mode, std::FILE* stream);
std::FILE* __wrap_freopen64(const char* path, const char* mode, std::FILE* stream);
std::FILE* __wrap_freopen(const char* path, const char* mode, std::FILE* stream);

std::FILE* __wrap_freopen64(const char* path, const char* mode, std::FILE* stream) {
    return std::strcmp(path, "/dev/console") == 0 ? nullptr : __real_freopen64(path, mode, stream);
}

std::FILE* __wrap_freopen(const char* path, const char* mode, std::FILE* stream) {
    return __wrap_freopen64(path, mode, stream);
}
}
