#include "ExecutablesLibraries/HashVerifierAPI/FileScanners/Walk/Names.h"

#include <boost/filesystem/directory.hpp>

#include <algorithm>
#include <functional>
#include <string_view>

namespace Nerix::FileScanners {

Names::Names(const boost::filesystem::path& directory, std::size_t maxCount) {
    for (const boost::filesystem::directory_entry& entry : boost::filesystem::directory_iterator(directory)) {
        if (m_begins.size() == maxCount) {
            throw TooManyNames();
        }
        const std::string& path = entry.path().native();
        m_begins.push_back(m_text.size());
        m_text.append(path, path.rfind('/') + 1) += '\0';
    }
    std::sort(m_begins.begin(), m_begins.end(), [text = m_text.data()](std::size_t a, std::size_t b) {
        return std::less<>()(std::string_view(text + a), text + b);
    });
}

} // namespace Nerix::FileScanners
