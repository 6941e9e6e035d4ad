#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Regular.h"

#include "Common/Utils/Errors.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntrySteps.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"

#include <cstdio>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

namespace Nerix::FileScanners {

namespace {

using hash_t = IHashFunction::hash_t;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// An open descriptor; -1 for none.
class Descriptor {
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() {
        if (m_number != -1) {
            ::close(m_number);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return m_number; }

private:
    const int m_number;
};

ssize_t readDescriptor(void* descriptor, char* buffer, std::size_t size) {
    return ::read(static_cast<const Descriptor*>(descriptor)->number(), buffer, size);
}

hash_t hashContent(const FileInput& entry, hash_t value, const IHashFunction& function) {
    // Before the file, which uses it until it is closed. The steps take 4096 bytes each; a system call for each of them
    // would cost a sixth of a fast digest.
    char streamBuffer[131072];
    // Not fopen: a pipe that has taken the file's place since it was looked at would keep the run waiting for a writer.
    // Not fdopen, which makes one more system call.
    Descriptor descriptor(::open(entry.path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    const File file(descriptor.number() == -1
                        ? nullptr
                        : ::fopencookie(&descriptor, "r", {&readDescriptor, nullptr, nullptr, nullptr}));
    if (!file) {
        BOOST_THROW_EXCEPTION(Common::Utils::GenericException() << Common::Utils::errinfo_stream(
                                  "access error: can't read content of file: ", entry.path));
    }
    std::setvbuf(file.get(), streamBuffer, _IOFBF, sizeof streamBuffer);
    return function.apply(value, file.get());
}

hash_t hashEntry(const FileInput& entry, hash_t value, const IHashFunction& function) {
    value = function.apply(value, entry.path.native());
    value = hashstat(entry, value, function);
    value = hashxtattr(entry, value, function);
    return hashContent(entry, value, function);
}

} // namespace

hash_t Regular::process(const FileInput& entry, hash_t value, const IHashFunction& function) const {
    value = hashEntry(entry, value, function);
    HashWorker::getInstance().log(entry, value);
    return value;
}

} // namespace Nerix::FileScanners
