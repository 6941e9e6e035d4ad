#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/HashFunctionBase.h"

#include <string>

namespace Nerix::HashFunctions {

/// Each step computes a separate digest: the new value is the last 8 bytes, big-endian, of the digest of the
/// old value (8 bytes, little-endian) followed by the data. Each step reports its data bytes to the thread's
/// StepObserver.
class OpenSSLHash : public HashFunctionBase {
public:
    /// digestName: its name in the crypto library; looked up when a step is taken.
    explicit OpenSSLHash(const std::string& digestName);

    using HashFunctionBase::apply;

    /// Asserts that an OpenSSLInit is in the singleton registry. Throws what HashSink and the observer throw.
    hash_t apply(hash_t value, unsigned int length, const char* data) const override;

    bool reportsSteps() const override { return true; }

private:
    std::string m_digestName;
};

} // namespace Nerix::HashFunctions
