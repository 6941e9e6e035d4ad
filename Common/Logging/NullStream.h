#pragma once

#include <ostream>
#include <streambuf>

namespace Nerix::Common::Utils {

namespace detail {

/// Discards everything and reports success, so that its stream never fails.
class null_out_buf : public std::streambuf {
protected:
    std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
    int_type overflow(int_type) override { return 1; } // anything but eof is success
};

/// Base-from-member idiom: the buffer must be constructed before the std::ostream that uses it.
class null_out_stream {
protected:
    null_out_buf m_buffer;
};

} // namespace detail

/// An output stream that discards what is written to it.
class nullostream : private detail::null_out_stream, public std::ostream {
public:
    nullostream() : std::ostream(&m_buffer) {}
};

} // namespace Nerix::Common::Utils
