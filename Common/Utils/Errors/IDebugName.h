#pragma once

#include <string>

namespace Nerix::Common::Utils {

/// An object that provides a name for error reports; see errinfo_subject.
class IDebugName {
public:
    virtual ~IDebugName() = default;

    /// Returns a short, readable name, for example "HashSink(sha1)".
    virtual std::string debugName() const = 0;
};

} // namespace Nerix::Common::Utils
