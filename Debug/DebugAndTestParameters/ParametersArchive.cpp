#include "Debug/DebugAndTestParameters/ParametersArchive.h"

#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "Debug/DebugAndTestParameters/InstallationPerformanceParameters.h"

#include <boost/archive/xml_archive_exception.hpp>
#include <boost/archive/xml_iarchive.hpp>
#include <boost/archive/xml_oarchive.hpp>
#include <boost/serialization/map.hpp>
#include <boost/serialization/nvp.hpp>
#include <boost/serialization/string.hpp>
#include <boost/serialization/version.hpp>

#include <cstdint>
#include <istream>
#include <map>
#include <ostream>
#include <string>
#include <utility>

namespace Nerix {

namespace {

using boost::archive::xml_iarchive;
using boost::archive::xml_oarchive;
using boost::serialization::make_nvp;

constexpr const char* debugAndTestElement = "DebugAndTestParameters";
constexpr const char* installationElement = "InstallationPerformanceParameters";

/// The stream below an archive that is being read: the archive itself cannot tell which element comes next.
struct StreamBelow {
    std::istream* stream = nullptr;
};

[[noreturn]] void throwMismatch(const std::string& name) {
    boost::serialization::throw_exception(boost::archive::xml_archive_exception(
        boost::archive::xml_archive_exception::xml_archive_tag_mismatch, name.c_str()));
}

/// The next characters, at most count; leaves the stream where it was.
std::string peek(std::istream& stream, std::size_t count) {
    const std::istream::pos_type here = stream.tellg();
    std::string text(count, '\0');
    stream >> std::ws;
    stream.read(text.data(), static_cast<std::streamsize>(count));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    stream.clear();
    stream.seekg(here);
    return text;
}

/// Whether the next element has this name.
bool isNext(std::istream& stream, const std::string& name) {
    const std::string start = peek(stream, name.size() + 2);
    return start == "<" + name + ">" || start == "<" + name + " ";
}

/// Reads one element, and only if it has this name. The library's own check is switched off: for a name
/// longer than the one expected it reads past the end of the latter, by as much as the file likes.
template <class Archive, class Value>
void readElement(Archive& archive, const char* name, Value& value) {
    std::istream& stream = *archive.template get_helper<StreamBelow>().stream;
    if (!isNext(stream, name)) {
        throwMismatch(name);
    }
    archive >> make_nvp(name, value);
    const std::string end = "</" + std::string(name) + ">";
    stream.seekg(-static_cast<std::streamoff>(end.size()), std::ios_base::cur);
    std::string found(end.size(), '\0');
    if (!stream.read(found.data(), static_cast<std::streamsize>(found.size())) || found != end) {
        throwMismatch(name);
    }
}

} // namespace

// The library finds a type's functions and version by the type: reading and writing an optional value need
// two, as they count class versions differently.

template <class Value>
struct OptionalRead {
    boost::optional<Value> value;

    template <class Archive>
    void serialize(Archive& archive, unsigned int) {
        bool initialized = false;
        readElement(archive, "initialized", initialized);
        if (!initialized) {
            return;
        }
        if (isNext(*archive.template get_helper<StreamBelow>().stream, "item_version")) {
            unsigned int itemVersion = 0;
            readElement(archive, "item_version", itemVersion);
        }
        Value read{};
        readElement(archive, "value", read);
        value = read;
    }
};

/// An entry of the custom parameters, and all of them, in the library's layout of a map.
struct ItemRead {
    std::string first;
    std::int32_t second = 0;

    template <class Archive>
    void serialize(Archive& archive, unsigned int) {
        readElement(archive, "first", first);
        readElement(archive, "second", second);
    }
};

struct MapRead {
    std::map<std::string, std::int32_t> value;

    template <class Archive>
    void serialize(Archive& archive, unsigned int) {
        std::size_t count = 0;
        unsigned int itemVersion = 0;
        readElement(archive, "count", count);
        readElement(archive, "item_version", itemVersion);
        for (; count > 0; --count) {
            ItemRead item;
            readElement(archive, "item", item);
            value[item.first] = item.second;
        }
    }
};

template <class Value>
struct OptionalWritten {
    const boost::optional<Value>& value;

    template <class Archive>
    void serialize(Archive& archive, unsigned int) {
        const bool initialized = value.is_initialized();
        archive << make_nvp("initialized", initialized);
        if (initialized) {
            const unsigned int itemVersion = 0;
            archive << make_nvp("item_version", itemVersion) << make_nvp("value", *value);
        }
    }
};

/// An object element: its fields in order.
template <class Parameters>
struct Object {
    Parameters& parameters;

    template <class Archive>
    void serialize(Archive& archive, unsigned int);
};

namespace {

template <class Archive>
class FieldReader {
public:
    explicit FieldReader(Archive& archive) : m_archive(archive) {}

    // A field gets its value when its element was read whole; until then it keeps the one it had.
    template <class Field>
    void operator()(const char* name, Field& field) {
        Field read{};
        readElement(m_archive, name, read);
        field = std::move(read);
    }
    template <class Value>
    void operator()(const char* name, boost::optional<Value>& field) {
        OptionalRead<Value> read;
        readElement(m_archive, name, read);
        field = read.value;
    }
    void operator()(const char* name, std::map<std::string, std::int32_t>& field) {
        MapRead read;
        readElement(m_archive, name, read);
        field = std::move(read.value);
    }
    void operator()(const char* name, InstallationPerformanceParameters& field) {
        Object<InstallationPerformanceParameters> object{field};
        readElement(m_archive, name, object);
    }

private:
    Archive& m_archive;
};

template <class Archive>
class FieldWriter {
public:
    explicit FieldWriter(Archive& archive) : m_archive(archive) {}

    template <class Field>
    void operator()(const char* name, const Field& field) {
        m_archive << make_nvp(name, field);
    }
    template <class Value>
    void operator()(const char* name, const boost::optional<Value>& field) {
        const OptionalWritten<Value> optional{field};
        m_archive << make_nvp(name, optional);
    }
    void operator()(const char* name, const InstallationPerformanceParameters& field) {
        const Object<const InstallationPerformanceParameters> object{field};
        m_archive << make_nvp(name, object);
    }

private:
    Archive& m_archive;
};

template <class Parameters>
void readObject(std::istream& stream, const char* name, Parameters& parameters) {
    xml_iarchive archive(stream, boost::archive::no_xml_tag_checking); // see readElement
    archive.get_helper<StreamBelow>().stream = &stream;
    Object<Parameters> object{parameters};
    readElement(archive, name, object);
    if (!isNext(stream, "/boost_serialization")) {
        // Found out here: the archive's destructor would, and cannot throw.
        throwMismatch("/boost_serialization");
    }
}

template <class Parameters>
void writeObject(std::ostream& stream, const char* name, const Parameters& parameters) {
    xml_oarchive archive(stream);
    const Object<const Parameters> object{parameters};
    archive << make_nvp(name, object);
}

} // namespace

template <class Parameters>
template <class Archive>
void Object<Parameters>::serialize(Archive& archive, unsigned int) {
    if constexpr (Archive::is_loading::value) {
        FieldReader<Archive> reader(archive);
        ParametersArchive::visit(parameters, reader);
    } else {
        FieldWriter<Archive> writer(archive);
        ParametersArchive::visit(parameters, writer);
    }
}

void ParametersArchive::read(std::istream& stream, Common::DebugAndTestParameters& parameters) {
    readObject(stream, debugAndTestElement, parameters);
}

void ParametersArchive::read(std::istream& stream, InstallationPerformanceParameters& parameters) {
    readObject(stream, installationElement, parameters);
}

void ParametersArchive::write(std::ostream& stream, const Common::DebugAndTestParameters& parameters) {
    writeObject(stream, debugAndTestElement, parameters);
}

void ParametersArchive::write(std::ostream& stream, const InstallationPerformanceParameters& parameters) {
    writeObject(stream, installationElement, parameters);
}

} // namespace Nerix

namespace boost::serialization {

/// The class version that today's library gives to optional values.
template <class Value>
struct version<Nerix::OptionalRead<Value>> {
    using type = mpl::int_<1>;
    using tag = mpl::integral_c_tag;
    static constexpr int value = 1;
};

} // namespace boost::serialization
