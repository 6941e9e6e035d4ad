#pragma once

#include <string>
#include <vector>

namespace Nerix {

class IHashFunction;

namespace HashFunctions {

class Md5Hash;
class NoHashFunction;
class OpenSSLHash;
class TrivialHashFunction;

/// The four hash functions, which live until the process ends.
extern const NoHashFunction HASH_NONE;
extern const TrivialHashFunction HASH_BASIC;
extern const OpenSSLHash HASH_SHA1;
extern const Md5Hash HASH_MD5;

/// Returns the hash function named hashMethod (exact match, one of methods()). Throws GenericException
/// "unknown hash function: " + hashMethod for any other name.
const IHashFunction& getInstance(const std::string& hashMethod);

/// Returns the names that getInstance accepts, in the order in which a help text lists them.
std::vector<std::string> methods();

} // namespace HashFunctions

} // namespace Nerix
