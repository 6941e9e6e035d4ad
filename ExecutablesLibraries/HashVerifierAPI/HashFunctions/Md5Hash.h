#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/Md5Lanes.h"
#include "ExecutablesLibraries/HashVerifierAPI/HashFunctions/OpenSSLHash.h"

namespace Nerix::HashFunctions {

/// "md5": single steps are digests of the crypto library. Chains are computed in lanes, several at a time, by
/// code of our own (Md5Lanes.h), with the same values.
class Md5Hash final : public OpenSSLHash {
public:
    /// lanes: what computes chains; implementation() for the best that the processor has.
    explicit Md5Hash(Md5Lanes::Implementation implementation)
        : OpenSSLHash("md5"), m_implementation(implementation) {}

    std::size_t lanes() const override { return m_implementation.count == 0 ? 1 : m_implementation.count; }
    void applyChains(ChainSource& source) const override;

private:
    const Md5Lanes::Implementation m_implementation;
};

} // namespace Nerix::HashFunctions
