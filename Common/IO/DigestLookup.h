#pragma once

#include <openssl/evp.h>

#include <string>

namespace Nerix::Common::IO {

/// The library's implementation of the digest called name ("md5", "sha1" or any other that it knows), or
/// null: starting a digest with that leaves the library's reason in its error queue. Fetched once per name
/// and process: on OpenSSL 3 a fetch costs more than hashing a short text. The result belongs to the process.
/// Any thread may call.
const EVP_MD* lookUpDigest(const std::string& name);

} // namespace Nerix::Common::IO
