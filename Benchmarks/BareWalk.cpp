// NerixBareWalk PATH: a baseline for a run without lanes and helpers, over a tree of directories and regular
// files. It makes the unavoidable system calls for each entry, by path, and computes the digest steps with
// OpenSSL directly; it writes no records, publishes nothing, ignores errors and prints no value.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <openssl/evp.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

const std::unique_ptr<EVP_MD, void (*)(EVP_MD*)> digest(EVP_MD_fetch(nullptr, "md5", nullptr), &EVP_MD_free);
const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
unsigned char value[EVP_MAX_MD_SIZE];

void step(const void* data, std::size_t size) {
    EVP_DigestInit_ex(context.get(), digest.get(), nullptr);
    EVP_DigestUpdate(context.get(), value, 8);
    EVP_DigestUpdate(context.get(), data, size);
    EVP_DigestFinal_ex(context.get(), value, nullptr);
}

void hashContent(const std::string& path) {
    static char buffer[131072];
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    for (ssize_t count = 0; (count = ::read(file, buffer, sizeof buffer)) > 0;) {
        for (ssize_t done = 0; done < count; done += 4096) {
            step(buffer + done, static_cast<std::size_t>(std::min<ssize_t>(count - done, 4096)));
        }
    }
    ::close(file);
}

std::vector<std::string> sortedNames(const std::string& path) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(::opendir(path.c_str()), &::closedir);
    while (const dirent* const entry = directory ? ::readdir(directory.get()) : nullptr) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            names.emplace_back(entry->d_name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

void walk(const std::string& path) {
    static const char status[] = "0\n0\n1\nURUWuxGRgwgxORowox\nsusgsb\n";
    struct stat entry {};
    ::lstat(path.c_str(), &entry);
    ::lstat(path.c_str(), &entry);
    step(path.data(), path.size());
    step(status, sizeof status - 1);
    ::llistxattr(path.c_str(), nullptr, 0);
    if (S_ISREG(entry.st_mode)) {
        hashContent(path);
    } else if (S_ISDIR(entry.st_mode)) {
        for (const std::string& name : sortedNames(path)) {
            walk(std::string(path).append("/").append(name));
        }
    }
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc != 2) {
        std::fputs("usage: NerixBareWalk PATH\n", stderr);
        return 1;
    }
    walk(argv[1]);
    return 0;
}
