#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/EntryFacts.h"

#include <optional>
#include <string>
#include <string_view>

struct stat;

namespace Nerix {

/// The details of a record, as texts in the form that the log has.
///
///     KIND OWNER GROUP LINKS MODE SIZE [CONTENT | "TARGET"] ["NAME" VALUE]...
///
/// KIND is file, directory or link. MODE has four octal digits, SIZE is in bytes. A log with facts also has
/// CONTENT of a file, TARGET of a link, and name and value of each attribute. Values have 16 hexadecimal
/// digits. In quoted texts '&' precedes each double quote and '&', and a line feed is written as "&n". A
/// directory that was left out of the scan has no facts.
struct RecordDetails {
    std::string kind;
    std::string owner;
    std::string group;
    std::string links;
    std::string mode;
    std::string size;
    EntryFacts facts; ///< empty in a log without facts
};

/// Returns the details with the space that separates them from the path. facts: null if there are none.
std::string recordDetails(const struct stat& status, const EntryFacts* facts);

/// Parses what recordDetails returns. hasFacts: the log has facts. Returns nullopt if the text has a
/// different form.
std::optional<RecordDetails> parseRecordDetails(std::string_view text, bool hasFacts);

/// Returns text in double quotes, on one line; see RecordDetails.
std::string quotedFact(std::string_view text);

/// Removes a text in the form of quotedFact from the front of text. Returns nullopt if there is none.
std::optional<std::string> takeQuotedFact(std::string_view& text);

} // namespace Nerix
