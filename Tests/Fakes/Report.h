#pragma once

#include <boost/exception/diagnostic_information.hpp>

#include <functional>
#include <regex>
#include <string>

namespace Nerix::Tests {

/// Returns the diagnostic text of the exception that operation throws; empty if it throws none.
inline std::string diagnosticsOf(const std::function<void()>& operation) {
    try {
        operation();
        return "";
    } catch (...) { return boost::current_exception_diagnostic_information(true); }
}

/// Returns true if text contains part.
inline bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

/// Returns true if the whole text matches the regular expression.
inline bool matches(const std::string& text, const std::string& form) { return std::regex_match(text, std::regex(form)); }

} // namespace Nerix::Tests
