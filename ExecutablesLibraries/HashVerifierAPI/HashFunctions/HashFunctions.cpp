#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctions.h"

#include "Common/Utils/Errors/Errors.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/Md5Hash.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/NoHashFunction.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/OpenSSLHash.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/TrivialHashFunction.h"

namespace Nerix::HashFunctions {

const NoHashFunction HASH_NONE;
const TrivialHashFunction HASH_BASIC;
const OpenSSLHash HASH_SHA1("sha1");
const Md5Hash HASH_MD5(Md5Lanes::implementation());

namespace {

const struct {
    const char* method;
    const IHashFunction& function;
} table[] = {{"none", HASH_NONE}, {"trivial", HASH_BASIC}, {"sha1", HASH_SHA1}, {"md5", HASH_MD5}};

} // namespace

const IHashFunction& getInstance(const std::string& hashMethod) {
    for (const auto& row : table) {
        if (hashMethod == row.method) {
            return row.function;
        }
    }
    BOOST_THROW_EXCEPTION(Common::Utils::GenericException()
                          << Common::Utils::errinfo_stream("unknown hash function: ", hashMethod));
}

std::vector<std::string> methods() {
    std::vector<std::string> names;
    for (const auto& row : table) {
        names.emplace_back(row.method);
    }
    return names;
}

} // namespace Nerix::HashFunctions
