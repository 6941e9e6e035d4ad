#pragma once

#include <boost/exception/diagnostic_information.hpp>

#include <functional>
#include <string>

namespace Nerix::Tests {

/// The diagnostic text of what operation throws; empty when it throws nothing.
inline std::string diagnosticsOf(const std::function<void()>& operation) {
    try {
        operation();
        return "";
    } catch (...) { return boost::current_exception_diagnostic_information(true); }
}

/// Whether the text holds the part.
inline bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

} // namespace Nerix::Tests
