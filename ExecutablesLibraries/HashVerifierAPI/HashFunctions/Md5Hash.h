#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/Md5Lanes.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/OpenSSLHash.h"

namespace Nerix::HashFunctions {

/// "md5": the crypto library computes single steps. Md5Lanes.h computes chains, several at a time in lanes,
/// with the same values.
class Md5Hash final : public OpenSSLHash {
public:
    /// implementation: computes the chains; Md5Lanes::implementation() returns the best one for the
    /// processor.
    explicit Md5Hash(Md5Lanes::Implementation implementation)
        : OpenSSLHash("md5"), m_implementation(implementation) {}

    std::size_t lanes() const override { return m_implementation.count == 0 ? 1 : m_implementation.count; }
    void applyChains(ChainSource& source) const override;

private:
    const Md5Lanes::Implementation m_implementation;
};

} // namespace Nerix::HashFunctions
