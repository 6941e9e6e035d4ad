#include "Platform/Product/EmulatedInfo.h"

#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/Errors.h"
#include "Common/Utils/Filesystem.h"
#include "Platform/Product/IProductInfo.h"

#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>

#include <string>

namespace Nerix::Platform {

using boost::filesystem::path;
using Common::Utils::errinfo_description;
using Common::Utils::errinfo_path;
using Common::Utils::errinfo_string;
using Common::Utils::GenericException;

namespace {

/// Returns true if the file does not exist. Other errors surface when it is opened.
bool isMissing(const path& file) {
    boost::system::error_code error;
    return boost::filesystem::status(file, error).type() == boost::filesystem::file_not_found;
}

struct Entry {
    std::string key;
    std::string value;
};

/// Returns the next entry, or boost::none at the end of the file. filePath is for messages.
boost::optional<Entry> readEntry(std::istream& file, const path& filePath) {
    std::string line;
    if (!std::getline(file, line)) {
        return boost::none;
    }
    Entry entry;
    const std::size_t colon = line.find(':');
    entry.key = line.substr(0, colon);
    if (entry.key.empty()) {
        BOOST_THROW_EXCEPTION(GenericException() << errinfo_description("Failed getting emulatedInfoKey.")
                                                 << errinfo_path(filePath));
    }
    if (colon != std::string::npos) {
        entry.value = line.substr(colon + 1, line.find(':', colon + 1) - colon - 1);
    }
    if (entry.value.empty()) {
        BOOST_THROW_EXCEPTION(GenericException() << errinfo_description("Failed getting emulatedInfoValue.")
                                                 << errinfo_path(filePath));
    }
    return entry;
}

void writeEntry(std::ostream& file, const Entry& entry) {
    file << entry.key << ':' << entry.value << '\n';
}

[[noreturn]] void throwBadText(const char* description, const std::string& text) {
    BOOST_THROW_EXCEPTION(GenericException() << errinfo_description(description) << errinfo_string(text));
}

/// Throws if the key or value could not be read back.
void throwIfNotStorable(const Entry& entry) {
    for (const std::string& text : {entry.key, entry.value}) {
        if (text.empty() || text.find('\n') != std::string::npos) {
            throwBadText("Can't store an empty text, or one with a line break, in EmulatedInfo.txt.", text);
        }
    }
    if (entry.key.find(':') != std::string::npos) {
        throwBadText("Can't store a key with a colon in EmulatedInfo.txt.", entry.key);
    }
    if (entry.value.front() == ':') {
        throwBadText("Can't store a value that begins with a colon in EmulatedInfo.txt.", entry.value);
    }
}

/// Copies the entries of `from` to `to`, except those with the key of `added`, then appends `added`.
void rewrite(const path& from, const path& to, const Entry& added) {
    std::ifstream old = Common::Utils::filesystem::openRegularFile(from);
    std::ofstream rewritten = Common::Utils::filesystem::openRegularFileToWrite(to);
    if (!old.is_open() || !rewritten.is_open()) {
        BOOST_THROW_EXCEPTION(GenericException()
                              << errinfo_description("Couldn't open file.") << errinfo_path(from));
    }
    while (const boost::optional<Entry> entry = readEntry(old, from)) {
        if (entry->key != added.key) {
            writeEntry(rewritten, *entry);
        }
    }
    writeEntry(rewritten, added);
    rewritten.close();
    if (!rewritten || old.bad()) { // do not lose the old entries on a full disk
        BOOST_THROW_EXCEPTION(GenericException()
                              << errinfo_description("Couldn't write file.") << errinfo_path(to));
    }
}

} // namespace

void breakIfProductionAndNotDebug() {
    NERIX_LOG_STREAM(WRN)
        << "Function which uses breakIfProductionAndNotDebug() should be used only in Debug mode";
}

boost::optional<std::string> getEmulatedInfoValue(const std::string& key) {
    breakIfProductionAndNotDebug();
    const path file = IProductInfo::getEmulatedInfoPath();
    if (isMissing(file)) {
        NERIX_LOG_STREAM(INF) << "emulated info file " << file.native() << " does not exist";
        return boost::none;
    }
    std::ifstream stream = Common::Utils::filesystem::openRegularFile(file);
    if (!stream.is_open()) {
        BOOST_THROW_EXCEPTION(GenericException() << errinfo_description("Opening EmulatedInfo.txt failed.")
                                                 << errinfo_path(file));
    }
    while (const boost::optional<Entry> entry = readEntry(stream, file)) {
        if (entry->key == key) {
            return entry->value;
        }
    }
    if (stream.bad()) {
        BOOST_THROW_EXCEPTION(GenericException() << errinfo_description("Reading EmulatedInfo.txt failed.")
                                                 << errinfo_path(file));
    }
    BOOST_THROW_EXCEPTION(GenericException()
                          << errinfo_string("Requested key doesn't exist in EmulatedInfo.txt. Key: " + key)
                          << errinfo_path(file));
}

void setEmulatedInfoValue(const std::string& key, const std::string& value) {
    breakIfProductionAndNotDebug();
    const Entry entry{key, value};
    throwIfNotStorable(entry);
    ensureEmulatedInfoFileExists();
    const path file = IProductInfo::getEmulatedInfoPath();
    if (isMissing(file)) {
        BOOST_THROW_EXCEPTION(GenericException()
                              << errinfo_description("File doesn't exist.") << errinfo_path(file));
    }
    const path helper = file.parent_path() / "helper.txt";
    rewrite(file, helper, entry);
    boost::system::error_code error;
    bool isReplaced = boost::filesystem::remove(file, error);
    if (isReplaced) {
        boost::filesystem::rename(helper, file, error);
        isReplaced = !error;
    }
    if (!isReplaced) {
        BOOST_THROW_EXCEPTION(GenericException()
                              << errinfo_description(
                                     "Error during removing/changing file containing emulated "
                                     "information. Is this file read only?")
                              << errinfo_path(file));
    }
}

void ensureEmulatedInfoFileExists() {
    breakIfProductionAndNotDebug();
    const path file = IProductInfo::getEmulatedInfoPath();
    if (isMissing(file)) {
        boost::system::error_code ignored; // it shows when the file is opened
        boost::filesystem::create_directory(file.parent_path(), ignored);
        const boost::filesystem::ofstream created(file);
    }
}

} // namespace Nerix::Platform
