#include "Executables/NerixHost/QuotedName.h"

#include "Common/Base/EscapedText.h"

namespace Nerix {

std::string quotedName(const std::string& path) {
    std::string quoted = "\"";
    for (const char character : Common::escaped(path)) {
        if (character == '"') {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted + '"';
}

} // namespace Nerix
