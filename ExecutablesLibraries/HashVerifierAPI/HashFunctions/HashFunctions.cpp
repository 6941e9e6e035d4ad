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

} // namespace

const IHashFunction& getInstance(const std::string& name) {
    if (name == "none") {
        return HASH_NONE;
    }
    if (name == "trivial") {
        return HASH_BASIC;
    }
    if (name == "sha1") {
        return HASH_SHA1;
    }
    if (name == "md5") {
        return HASH_MD5;
    }
    BOOST_THROW_EXCEPTION(Common::Utils::GenericException()
                          << Common::Utils::errinfo_stream("unknown hash function: ", name));
}

} // namespace Nerix::HashFunctions
