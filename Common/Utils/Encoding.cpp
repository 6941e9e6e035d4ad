#include "Common/Utils/Encoding.h"

namespace Nerix::Common::Utils::Encoding {

std::string binToHex(const unsigned char* data, unsigned int length) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(std::size_t{2} * length);
    for (unsigned int i = 0; i < length; ++i) {
        text.push_back(digits[data[i] >> 4U]);
        text.push_back(digits[data[i] & 0x0FU]);
    }
    return text;
}

} // namespace Nerix::Common::Utils::Encoding
