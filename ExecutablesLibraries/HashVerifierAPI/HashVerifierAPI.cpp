#include "ExecutablesLibraries/HashVerifierAPI/HashVerifierAPI.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"

#include <boost/filesystem/operations.hpp>

namespace Nerix::HashVerifierAPI {

void startVerifyPath(const std::string& path, const std::string& hashMethod) {
    const boost::filesystem::path currentDirectory = boost::filesystem::current_path();
    const FileInput root(boost::filesystem::canonical(path, currentDirectory));
    HashWorker::getInstance().start(root, hashMethod);
}

void startVerifyFileSystem() {
    startVerifyPath("/", "md5");
}

std::string nerixVerifyPath(const std::string& path, const std::string& hashMethod) {
    startVerifyPath(path, hashMethod);
    return HashWorker::getInstance().wait().getResult();
}

std::string nerixVerifyFileSystem() {
    return nerixVerifyPath("/", "md5");
}

std::string getProgress() {
    return HashWorker::getInstance().getProgress();
}

std::string getResult() {
    return HashWorker::getInstance().getResult();
}

} // namespace Nerix::HashVerifierAPI
