#pragma once

#include <boost/exception/exception.hpp>

#include <exception>
#include <string>

namespace Nerix::Common::Utils::Encoding {

/// Base of the failures of encoding and encryption.
class AESException : public virtual std::exception, public virtual boost::exception {};

/// A call of the crypto library failed. Carries the library's own error text, taken when the exception is
/// made; throwers add what was tried (errinfo_description) and on what (errinfo_subject).
class OpenSSLException : public AESException {
public:
    /// Empties the calling thread's error queue into the exception. Needs the set-up of OpenSSLInit in the
    /// register. Throws std::runtime_error "Creating BIO failed." when the library has no memory left.
    OpenSSLException();

    /// One line per error in the library's own format; empty when it reported none.
    const std::string& getErrors() const { return m_errors; }

    /// getErrors(), or a fixed message if there are none.
    const char* what() const noexcept override;

    /// Returns the errors in the calling thread's error queue, one per line, and empties the queue.
    static std::string loadOpenSSLErrors();

private:
    std::string m_errors;
};

} // namespace Nerix::Common::Utils::Encoding
