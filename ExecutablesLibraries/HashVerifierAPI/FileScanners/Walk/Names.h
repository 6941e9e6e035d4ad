#pragma once

#include <boost/filesystem/path.hpp>

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace Nerix::FileScanners {

/// The names of a directory's entries, sorted by their bytes. Stores names, not paths, which would have the
/// same order but cost time and memory. All names share one string; separate strings would take twice the
/// memory.
class Names {
public:
    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

    /// Throws boost::filesystem::filesystem_error if the directory cannot be listed, TooManyNames if there
    /// are more than maxCount names.
    explicit Names(const boost::filesystem::path& directory, std::size_t maxCount = unlimited);

    std::size_t size() const { return m_begins.size(); }
    const char* operator[](std::size_t index) const { return m_text.data() + m_begins[index]; }

private:
    std::string m_text; ///< each name followed by a zero byte
    std::vector<std::size_t> m_begins;
};

struct TooManyNames {};

} // namespace Nerix::FileScanners
