#pragma once

#include <boost/core/noncopyable.hpp>
#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>

#include <iterator>
#include <string>

namespace Nerix::Tests {

/// A temporary directory, removed by the destructor.
class TemporaryDirectory : private boost::noncopyable {
public:
    TemporaryDirectory() { boost::filesystem::create_directory(m_path); }
    ~TemporaryDirectory() {
        boost::system::error_code ignored;
        boost::filesystem::remove_all(m_path, ignored);
    }
    const boost::filesystem::path& path() const { return m_path; }

private:
    const boost::filesystem::path m_path =
        boost::filesystem::temp_directory_path() / boost::filesystem::unique_path("nerix-%%%%%%%%");
};

inline std::string contentOf(const boost::filesystem::path& path) {
    boost::filesystem::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace Nerix::Tests
