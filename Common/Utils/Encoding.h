#pragma once

#include <string>

namespace Nerix::Common::Utils::Encoding {

/// Two lower-case hexadecimal digits per byte, in input order, without separators. Empty for length 0, when
/// data may be null.
std::string binToHex(const unsigned char* data, unsigned int length);

} // namespace Nerix::Common::Utils::Encoding
