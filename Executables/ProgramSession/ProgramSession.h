#pragma once

#include "Common/IO/OpenSSLInit.h"
#include "Common/Utils/Singletons/SingletonServiceGuard.h"

namespace Nerix {

/// Sets up what every verification needs: the log, OpenSSL, the product and the test parameters. Create only
/// one per process (asserted), on the main thread, before the first verification, and keep it until the last
/// one has ended.
class ProgramSession {
public:
    /// Sets the process name in the log, registers the calling thread as the main thread, and keeps an
    /// OpenSSLInit in the singleton registry. programName must outlive the session.
    explicit ProgramSession(const char* programName);

    /// Identifies the product and reads the test parameters. Call it once. Throws the exceptions of
    /// IProductInfo::initializeProduct; if the parameters cannot be read, only logs a warning.
    void loadProductAndParameters() const;

private:
    const char* m_programName;
    const Common::Utils::SingletonServiceGuard<Common::IO::OpenSSLInit> m_openSSL;
};

} // namespace Nerix
