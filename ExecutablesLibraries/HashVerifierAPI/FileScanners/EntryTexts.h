#pragma once

#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Content.h"
#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/IFileScanner.h"

#include <boost/core/noncopyable.hpp>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Nerix::FileScanners {

/// The texts over which the steps of one entry are taken, in order: path, status, attributes, then the
/// content of a file or the target of a link. They are those of IFileScanner::examine, one at a time, so that
/// the steps of several entries can be interleaved. Each text is read when `next` is called for it.
class EntryTexts : private boost::noncopyable {
public:
    /// Receives the content of a file. Aligned to a cache line, because copying to other addresses is slower.
    class Buffer {
    public:
        /// capacity: in bytes, a multiple of 4096.
        explicit Buffer(std::size_t capacity)
            : m_lines(std::make_unique<Line[]>(capacity / sizeof(Line))), m_capacity(capacity) {}

        char* data() { return m_lines[0].bytes; }
        std::size_t capacity() const { return m_capacity; }

    private:
        struct alignas(64) Line {
            // Leaves the bytes uninitialized; with "= default", make_unique would fill them with zeros.
            Line() {} // NOLINT(modernize-use-equals-default)
            char bytes[64];
        };

        std::unique_ptr<Line[]> m_lines;
        std::size_t m_capacity;
    };

    /// Selects what happens if another process holds a lease on the file.
    enum class Lease {
        wait, ///< until the file can be opened
        fail  ///< throw LeasedFile
    };

    /// entry and buffer must outlive the object.
    EntryTexts(const FileInput& entry, IFileScanner::Remainder remainder, Buffer& buffer, Lease lease);

    /// Replaces text with the next one, which stays valid until the next call. Returns false after the last.
    /// Throws what IFileScanner::examine throws, and LeasedFile.
    bool next(std::string_view& text);

    enum class Kind { path, status, attributeName, separator, attributeValue, content, target };

    /// Returns the kind of the text that next returned last.
    Kind kind() const { return m_kind; }

    /// Returns the errno of the read error that ended the content early, or 0 if there was none.
    int readError() const { return m_content ? m_content->readError() : 0; }

    /// Thrown if another process holds a lease on the file and the object does not wait for it.
    struct LeasedFile {};

private:
    enum class Phase { path, status, attributes, remainder };

    bool nextAttributeText(std::string_view& text);
    bool nextRemainder(std::string_view& text);
    bool nextChunk(std::string_view& text);
    void openContent();
    void fillBuffer();

    const FileInput& m_entry;
    const IFileScanner::Remainder m_remainder;
    const Lease m_lease;
    Kind m_kind = Kind::path;
    Phase m_phase = Phase::path;
    std::string m_hashedPath; ///< storage for the path, if it has to be composed
    std::string m_status;

    enum class AttributePart { name, separator, value };
    AttributePart m_nextPart = AttributePart::name;
    std::vector<std::string> m_attributes; ///< their names
    std::size_t m_attribute = 0;           ///< index of the attribute whose texts are next
    std::vector<char> m_attributeValue;

    std::vector<char> m_target;
    bool m_isTargetTaken = false;

    Buffer& m_buffer;
    std::optional<Content> m_content;
    std::size_t m_chunkBegin = 0; ///< where the next chunk begins in the buffer
    std::size_t m_bufferEnd = 0;  ///< where the data in the buffer ends
    bool m_isAtEnd = false;       ///< of the content
};

} // namespace Nerix::FileScanners
