#pragma once

#include <openssl/evp.h>

#include <string>

namespace Nerix::Common::IO {

/// The crypto library's implementation of a digest, "md5", "sha1" or any other that it knows. Returns null
/// for an unknown name; passing that null to EVP_DigestInit_ex puts the reason into the error queue. Fetched
/// once per name and process: on OpenSSL 3 a fetch costs more than hashing a short text. The process owns the
/// result. Any thread may call.
const EVP_MD* lookUpDigest(const std::string& digestName);

} // namespace Nerix::Common::IO
