#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctions.h"

#include "Common/Utils/Errors/Errors.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/NoHashFunction.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/OpenSSLHash.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/TrivialHashFunction.h"

namespace Nerix::HashFunctions {

namespace {

const NoHashFunction HASH_NONE;
const TrivialHashFunction HASH_BASIC;
const OpenSSLHash HASH_SHA1("sha1");
const OpenSSLHash HASH_MD5("md5");

const struct {
    const char* name;
    const IHashFunction& function;
} methods[] = {{"none", HASH_NONE}, {"trivial", HASH_BASIC}, {"sha1", HASH_SHA1}, {"md5", HASH_MD5}};

} // namespace

const IHashFunction& getInstance(const std::string& name) {
    for (const auto& method : methods) {
        if (name == method.name) {
            return method.function;
        }
    }
    BOOST_THROW_EXCEPTION(Common::Utils::GenericException()
                          << Common::Utils::errinfo_stream("unknown hash function: ", name));
}

std::vector<std::string> names() {
    std::vector<std::string> all;
    for (const auto& method : methods) {
        all.emplace_back(method.name);
    }
    return all;
}

} // namespace Nerix::HashFunctions
