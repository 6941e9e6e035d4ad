#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/OpenSSLHash.h"

#include "Common/IO/HashSink.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/StepObserver.h"

#include <array>

namespace Nerix::HashFunctions {

namespace {

using hash_t = IHashFunction::hash_t;

std::array<std::uint8_t, sizeof(hash_t)> littleEndian(hash_t value) {
    std::array<std::uint8_t, sizeof(hash_t)> bytes{};
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(value);
        value >>= 8U;
    }
    return bytes;
}

/// Returns the last 8 bytes as a big-endian number; earlier ones are shifted out.
hash_t fold(const std::vector<std::uint8_t>& digest) {
    hash_t value = 0;
    for (const std::uint8_t byte : digest) {
        value = value << 8U | byte;
    }
    return value;
}

} // namespace

OpenSSLHash::OpenSSLHash(const std::string& digestName) : m_digestName(digestName) {}

hash_t OpenSSLHash::apply(hash_t value, unsigned int length, const char* data) const {
    Common::IO::HashSink sink(m_digestName);
    const auto oldValue = littleEndian(value);
    sink.writeChunk(oldValue.data(), oldValue.size());
    sink.writeChunk(reinterpret_cast<const std::uint8_t*>(data), length);
    const hash_t result = fold(sink.getHash());
    StepObserver::report(length);
    return result;
}

} // namespace Nerix::HashFunctions
