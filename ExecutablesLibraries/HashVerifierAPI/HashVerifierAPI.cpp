#include "ExecutablesLibraries/HashVerifierAPI/HashVerifierAPI.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"

#include <boost/filesystem/operations.hpp>

namespace Nerix::HashVerifierAPI {

namespace {

FileInput rootAt(const std::string& path) {
    const boost::filesystem::path currentDirectory = boost::filesystem::current_path();
    return FileInput(boost::filesystem::canonical(path, currentDirectory));
}

} // namespace

void startVerifyPath(const std::string& path, const std::string& hashMethod) {
    const FileInput root = rootAt(path); // fails before the worker exists
    HashWorker::getInstance().start(root, hashMethod);
}

void startVerifyFileSystem() {
    startVerifyPath("/", "md5");
}

std::string nerixVerifyPath(const std::string& path, const std::string& hashMethod) {
    startVerifyPath(path, hashMethod);
    return HashWorker::getInstance().wait().getResult();
}

std::string nerixVerifyPath(const std::string& path, const std::string& hashMethod,
                            const RunOptions& options) {
    const FileInput root = rootAt(path);
    return HashWorker::getInstance().start(root, hashMethod, options).wait().getResult();
}

std::string nerixVerifyFileSystem() {
    return nerixVerifyPath("/", "md5");
}

std::string getProgress() {
    return HashWorker::getInstance().getProgress();
}

std::uint64_t getEntries() {
    return HashWorker::getInstance().getEntries();
}

std::uint64_t getFileBytes() {
    return HashWorker::getInstance().getFileBytes();
}

std::exception_ptr getFailure() {
    return HashWorker::getInstance().getFailure();
}

std::exception_ptr getReadFailure() {
    return HashWorker::getInstance().getReadFailure();
}

std::string getResult() {
    return HashWorker::getInstance().getResult();
}

} // namespace Nerix::HashVerifierAPI
