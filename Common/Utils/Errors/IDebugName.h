#pragma once

#include <string>

namespace Nerix::Common::Utils {

/// An object that can name itself in error reports, see errinfo_subject.
class IDebugName {
public:
    virtual ~IDebugName() = default;

    /// A short name for people, for example "HashSink(sha1)".
    virtual std::string debugName() const = 0;
};

} // namespace Nerix::Common::Utils
