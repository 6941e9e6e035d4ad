#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/ScanRecordParser.h"

#include "ExecutablesLibraries/HashVerifierAPI/ScanLog/RecordDetails.h"

#include <charconv>

namespace Nerix {

namespace {

constexpr std::size_t valueLength = 16;
constexpr std::size_t pathBegin = valueLength + 2; ///< after the value, a space and the quote
constexpr std::size_t maxPathSize = 4096;

} // namespace

bool ScanRecordParser::beginsRecord(std::string_view text) {
    std::uint64_t value = 0;
    return text.size() >= pathBegin && text.compare(valueLength, 2, " \"") == 0 &&
           std::from_chars(text.data(), text.data() + valueLength, value, 16).ptr ==
               text.data() + valueLength;
}

ScanRecordParser::State ScanRecordParser::begin(std::string_view text) {
    m_record.path.clear();
    m_record.details.clear();
    m_isAfterMark = false;
    std::from_chars(text.data(), text.data() + valueLength, m_record.value, 16);
    return append(text.substr(pathBegin));
}

ScanRecordParser::State ScanRecordParser::append(std::string_view text) {
    while (!text.empty()) {
        if (m_isAfterMark) {
            const char marked = text.front();
            if (marked != '"' && marked != '&' && marked != 'n') {
                return State::damaged;
            }
            m_record.path += marked == 'n' ? '\n' : marked;
            m_isAfterMark = false;
            text.remove_prefix(1);
            continue;
        }
        const std::size_t special = text.find_first_of("\"&");
        m_record.path.append(text, 0, special);
        if (m_record.path.size() > maxPathSize) {
            return State::damaged;
        }
        if (special == std::string_view::npos) {
            break;
        }
        if (text[special] == '"') {
            return end(text.substr(special + 1));
        }
        m_isAfterMark = true;
        text.remove_prefix(special + 1);
    }
    return State::open;
}

ScanRecordParser::State ScanRecordParser::end(std::string_view details) {
    if (details.empty()) {
        return State::complete;
    }
    if (!m_areDetailsTrusted && !parseRecordDetails(details, m_hasFacts)) {
        return State::damaged;
    }
    m_record.details = details;
    return State::complete;
}

} // namespace Nerix
