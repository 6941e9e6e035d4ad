#pragma once

#include <string>

namespace Nerix::Common::Utils::Encoding {

/// Returns two lower-case hexadecimal digits per byte, in order. data may be null if length is 0.
std::string binToHex(const unsigned char* data, unsigned int length);

} // namespace Nerix::Common::Utils::Encoding
