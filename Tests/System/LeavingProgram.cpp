// LeavingProgram PATH MICROSECONDS: starts a verification of PATH and returns from main after that time, while the worker
// still runs. The crypto guard is a static object, as in a program that keeps it for its whole life.

#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Singletons/SingletonServiceGuard.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashVerifierAPI.h"
#include "Platform/Product/IProductInfo.h"

#include <chrono>
#include <string>
#include <thread>

int main(int, char* argv[]) {
    static const Nerix::Common::Utils::SingletonServiceGuard<Nerix::Common::IO::OpenSSLInit> openSSL(
        Nerix::Common::Utils::SINGLETON_OPENSSL_INITIALIZER);
    Nerix::Platform::IProductInfo::initializeProduct(Nerix::Platform::DEFAULT_PRODUCT);
    Nerix::HashVerifierAPI::startVerifyPath(argv[1], "md5");
    std::this_thread::sleep_for(std::chrono::microseconds(std::stoi(argv[2])));
}
