#pragma once

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/path.hpp>

namespace Nerix::Tests {

/// A fresh directory that goes with the object.
class TemporaryDirectory {
public:
    TemporaryDirectory()
        : m_path(boost::filesystem::temp_directory_path() / boost::filesystem::unique_path("nerix-%%%%%%%%")) {
        boost::filesystem::create_directory(m_path);
    }
    ~TemporaryDirectory() {
        boost::system::error_code ignored;
        boost::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const boost::filesystem::path& path() const { return m_path; }

private:
    boost::filesystem::path m_path;
};

} // namespace Nerix::Tests
