#include "Common/Utils/Encoding.h"

#include "Common/Base/Hexadecimal.h"

namespace Nerix::Common::Utils::Encoding {

std::string binToHex(const unsigned char* data, unsigned int length) {
    std::string text;
    text.reserve(std::size_t{2} * length);
    for (unsigned int i = 0; i < length; ++i) {
        text += hexadecimal(data[i], 2);
    }
    return text;
}

} // namespace Nerix::Common::Utils::Encoding
