#pragma once

#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Singletons/SingletonServiceGuard.h"

namespace Nerix {

/// Sets up the package's framework for a program that runs verifications. Create one on the main thread, before any
/// verification, and keep it until the last one has ended; there may be one at a time.
class ProgramSession {
public:
    /// Names the process for the log, registers the calling thread as the main thread, and puts the crypto library
    /// into the singletons register, where it stays until the session is destroyed. programName: a literal.
    explicit ProgramSession(const char* programName);

    /// Identifies the product and reads the testers' parameters. Call it once. Throws what
    /// IProductInfo::initializeProduct and DebugAndTestParameters::loadDebugAndTestParameters throw.
    void loadProductAndParameters() const;

private:
    const char* m_programName;
    const Common::Utils::SingletonServiceGuard<Common::IO::OpenSSLInit> m_openSSL;
};

} // namespace Nerix
