#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntryTexts.h"

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/ContentOpening.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/EntrySteps.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/FileInput.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/SymbolicLink.h"
#include "ExecutablesLibraries/HashVerifierAPI/Worker/HashWorker.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace Nerix::FileScanners {

namespace {

constexpr std::size_t chunkSize = 4096;

} // namespace

EntryTexts::EntryTexts(const FileInput& entry, IFileScanner::Remainder remainder, Buffer& buffer, Lease lease)
    : m_entry(entry), m_remainder(remainder), m_lease(lease), m_buffer(buffer) {}

bool EntryTexts::next(std::string_view& text) {
    switch (m_phase) {
    case Phase::path:
        text = HashWorker::getInstance().hashedPath(m_entry, m_hashedPath);
        m_phase = Phase::status;
        return true;
    case Phase::status:
        m_status = statusText(m_entry);
        text = m_status;
        m_kind = Kind::status;
        m_phase = Phase::attributes;
        return true;
    case Phase::attributes:
        if (nextAttributeText(text)) {
            return true;
        }
        m_phase = Phase::remainder;
        break;
    case Phase::remainder:
        break;
    }
    return nextRemainder(text);
}

bool EntryTexts::nextAttributeText(std::string_view& text) {
    if (m_nextPart == AttributePart::separator) {
        text = attributeSeparator;
        m_kind = Kind::separator;
        m_nextPart = AttributePart::value;
        return true;
    }
    if (m_nextPart == AttributePart::value) {
        text = {m_attributeValue.data(), m_attributeValue.size()};
        m_kind = Kind::attributeValue;
        m_nextPart = AttributePart::name;
        ++m_attribute;
        return true;
    }
    if (m_attribute == 0) {
        listxattr(m_entry, m_attributes);
    }
    if (m_attribute == m_attributes.size()) {
        return false;
    }
    // Read before the name is returned, as in hashxtattr: a failure comes before the step over the name.
    m_attributeValue = readxattr(m_entry, m_attributes[m_attribute]);
    text = m_attributes[m_attribute];
    m_kind = Kind::attributeName;
    m_nextPart = AttributePart::separator;
    return true;
}

bool EntryTexts::nextRemainder(std::string_view& text) {
    switch (m_remainder) {
    case IFileScanner::Remainder::none:
        return false;
    case IFileScanner::Remainder::target:
        if (m_isTargetTaken) {
            return false;
        }
        m_target = targetOf(m_entry);
        text = {m_target.data(), m_target.size()};
        m_kind = Kind::target;
        m_isTargetTaken = true;
        return true;
    case IFileScanner::Remainder::content:
        break;
    }
    return nextChunk(text);
}

bool EntryTexts::nextChunk(std::string_view& text) {
    if (!m_content) {
        openContent();
    }
    if (m_bufferEnd - m_chunkBegin < chunkSize && !m_isAtEnd) {
        fillBuffer();
    }
    text = {m_buffer.data() + m_chunkBegin, std::min(chunkSize, m_bufferEnd - m_chunkBegin)};
    m_kind = Kind::content;
    m_chunkBegin += text.size();
    if (text.empty()) {
        m_content->throwIfReplaced();
    }
    return !text.empty();
}

void EntryTexts::openContent() {
    const int descriptor = m_lease == Lease::wait ? FileScanners::openContent(m_entry.path)
                                                  : openContentWithoutWaiting(m_entry.path);
    if (descriptor == -1 && errno == EWOULDBLOCK && m_lease == Lease::fail) {
        throw LeasedFile();
    }
    m_content.emplace(m_entry.path, static_cast<std::uint64_t>(m_entry.status.st_size), descriptor);
}

void EntryTexts::fillBuffer() {
    m_bufferEnd -= m_chunkBegin;
    std::memmove(m_buffer.data(), m_buffer.data() + m_chunkBegin, m_bufferEnd);
    m_chunkBegin = 0;
    while (m_bufferEnd < chunkSize && !m_isAtEnd) { // a read may return less than there is
        const std::size_t count =
            m_content->read(m_buffer.data() + m_bufferEnd, m_buffer.capacity() - m_bufferEnd);
        m_bufferEnd += count;
        m_isAtEnd = count == 0;
    }
}

} // namespace Nerix::FileScanners
