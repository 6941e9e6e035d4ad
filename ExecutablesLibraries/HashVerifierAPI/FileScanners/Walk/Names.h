#pragma once

#include <boost/filesystem/path.hpp>

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace Nerix::FileScanners {

/// The names of a directory's entries, sorted by their bytes. Names, not paths: the directory's path in front
/// of each would not change the order, only cost time and memory. In one text, as a string each takes twice
/// as much.
class Names {
public:
    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

    /// Throws boost::filesystem::filesystem_error when the directory cannot be listed, TooManyNames when it
    /// has more than most.
    explicit Names(const boost::filesystem::path& directory, std::size_t most = unlimited);

    std::size_t size() const { return m_begins.size(); }
    const char* operator[](std::size_t index) const { return m_text.data() + m_begins[index]; }

private:
    std::string m_text; ///< each name with a zero byte behind it
    std::vector<std::size_t> m_begins;
};

struct TooManyNames {};

} // namespace Nerix::FileScanners
