#pragma once

#include <boost/exception/exception.hpp>

#include <exception>
#include <string>

namespace Nerix::Common::Utils::Encoding {

/// Base of the exceptions for failures of the crypto library. Only the name has to do with AES.
class AESException : public virtual std::exception, public virtual boost::exception {};

/// Reports that a call of the crypto library failed; contains the library's error text. The thrower adds the
/// operation (errinfo_description) and the object (errinfo_subject).
class OpenSSLException : public AESException {
public:
    /// Moves the errors from the calling thread's error queue into the exception. Asserts that there is an
    /// OpenSSLInit. Throws std::runtime_error "Creating BIO failed." if memory is exhausted.
    OpenSSLException();

    /// Returns one line per error, in the library's format; empty if it reported none.
    const std::string& getErrors() const { return m_errors; }

    /// Returns getErrors(), or a fixed message if that is empty.
    const char* what() const noexcept override;

    /// Returns the errors in the calling thread's error queue, one per line, and empties the queue.
    static std::string loadOpenSSLErrors();

private:
    std::string m_errors;
};

} // namespace Nerix::Common::Utils::Encoding
