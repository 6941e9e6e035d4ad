// The files are archives of Boost.Serialization, but Boost does not check element names strictly and may
// write the new form of an optional value. So XmlReader checks the names, and StoredOptional stores an
// optional value with its version numbers. Object is an element with fields: ParametersArchive::visit names
// the fields in order, and FieldReader or FieldWriter handles each of them.

#include "Debug/DebugAndTestParameters/ParametersArchive.h"

#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "Debug/DebugAndTestParameters/InstallationPerformanceParameters.h"

#include <boost/archive/impl/archive_serializer_map.ipp>
#include <boost/archive/impl/basic_xml_grammar.hpp>
#include <boost/archive/impl/basic_xml_iarchive.ipp>
#include <boost/archive/impl/xml_iarchive_impl.ipp>
#include <boost/archive/xml_archive_exception.hpp>
#include <boost/archive/xml_iarchive.hpp>
#include <boost/archive/xml_oarchive.hpp>
#include <boost/serialization/map.hpp>
#include <boost/serialization/nvp.hpp>
#include <boost/serialization/string.hpp>

#include <cmath>
#include <cstdint>
#include <istream>
#include <limits>
#include <locale>
#include <ostream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace Nerix {

/// Boost's XML reader with our own check of element names. Boost's check reads past the end of the expected
/// name if the name in the file is longer.
class XmlReader : public boost::archive::xml_iarchive_impl<XmlReader> {
public:
    explicit XmlReader(std::istream& stream)
        : boost::archive::xml_iarchive_impl<XmlReader>(stream, boost::archive::no_header) {
        // no_header keeps the destructor from reading the closing tag, see finish; init still reads the
        // header.
        init();
    }

    /// Reads the end of the root element. The library does so in the destructor, which cannot throw.
    void finish() { load_end("boost_serialization"); }

private:
    friend class boost::archive::detail::interface_iarchive<XmlReader>;
    friend class boost::archive::basic_xml_iarchive<XmlReader>;
    friend class boost::archive::load_access;

    // Called by the library before and after each value; unnamed values have no element.
    void load_start(const char* name) {
        if (name != nullptr) {
            require(gimpl->parse_start_tag(get_is()), name);
        }
    }
    void load_end(const char* name) {
        if (name != nullptr) {
            require(gimpl->parse_end_tag(get_is()), name);
        }
    }

    void require(bool isTag, const char* name) const {
        using boost::archive::xml_archive_exception;
        if (!isTag || gimpl->rv.object_name != name) {
            boost::serialization::throw_exception(
                xml_archive_exception(xml_archive_exception::xml_archive_tag_mismatch, name));
        }
    }
};

} // namespace Nerix

namespace boost::archive {

template class detail::archive_serializer_map<Nerix::XmlReader>;
template class basic_xml_iarchive<Nerix::XmlReader>;
template class xml_iarchive_impl<Nerix::XmlReader>;

} // namespace boost::archive

namespace Nerix {

using boost::serialization::make_nvp;

/// Reads the element into value. The library would read "-1" into an unsigned number as its largest value, so
/// unsigned numbers are read as wider signed ones.
template <class Archive, class Value>
void readValue(Archive& archive, const char* name, Value& value) {
    if constexpr (std::is_same_v<Value, std::uint32_t>) {
        std::int64_t number = 0;
        archive >> make_nvp(name, number);
        if (number < 0 || number > std::numeric_limits<Value>::max()) {
            boost::serialization::throw_exception(std::range_error(std::string(name) + " is out of range"));
        }
        value = static_cast<Value>(number);
    } else {
        archive >> make_nvp(name, value);
    }
}

/// Writes the element. Throws std::range_error for infinity and NaN, which the library would write as words
/// and could not read back.
template <class Archive, class Value>
void writeValue(Archive& archive, const char* name, const Value& value) {
    if constexpr (std::is_floating_point_v<Value>) {
        if (!std::isfinite(value)) {
            boost::serialization::throw_exception(
                std::range_error(std::string(name) + " is not a finite number"));
        }
    }
    archive << make_nvp(name, value);
}

[[noreturn]] void throwUnsupportedClassVersion(const char* what) {
    using boost::archive::archive_exception;
    boost::serialization::throw_exception(
        archive_exception(archive_exception::unsupported_class_version, what));
}

/// An optional value in its stored form. Class version 0, which is written, has an item version; version 1
/// has none.
template <class Value>
struct StoredOptional {
    boost::optional<Value> value;

    template <class Archive>
    void serialize(Archive& archive, unsigned int classVersion) {
        if (classVersion > 1) {
            throwUnsupportedClassVersion("an optional value");
        }
        bool initialized = value.is_initialized();
        archive& make_nvp("initialized", initialized);
        if (!initialized) {
            return;
        }
        if (classVersion == 0) {
            unsigned int itemVersion = 0;
            archive& make_nvp("item_version", itemVersion);
        }
        if constexpr (Archive::is_loading::value) {
            Value held{};
            readValue(archive, "value", held);
            value = held;
        } else {
            writeValue(archive, "value", *value);
        }
    }
};

/// An object element: its fields in order.
template <class Parameters>
struct Object {
    Parameters& parameters;

    template <class Archive>
    void serialize(Archive& archive, unsigned int classVersion);
};

namespace {

using boost::archive::xml_oarchive;

constexpr const char* debugAndTestElement = "DebugAndTestParameters";
constexpr const char* installationElement = "InstallationPerformanceParameters";

class FieldReader {
public:
    explicit FieldReader(XmlReader& archive) : m_archive(archive) {}

    // A field other than a nested object keeps its old value until its element has been read completely.
    template <class Field>
    void operator()(const char* name, Field& field) {
        Field read{};
        readValue(m_archive, name, read);
        field = std::move(read);
    }
    template <class Value>
    void operator()(const char* name, boost::optional<Value>& field) {
        StoredOptional<Value> read;
        m_archive >> make_nvp(name, read);
        field = read.value;
    }
    void operator()(const char* name, InstallationPerformanceParameters& field) {
        Object<InstallationPerformanceParameters> object{field};
        m_archive >> make_nvp(name, object);
    }

private:
    XmlReader& m_archive;
};

class FieldWriter {
public:
    explicit FieldWriter(xml_oarchive& archive) : m_archive(archive) {}

    template <class Field>
    void operator()(const char* name, const Field& field) {
        writeValue(m_archive, name, field);
    }
    template <class Value>
    void operator()(const char* name, const boost::optional<Value>& field) {
        const StoredOptional<Value> stored{field};
        m_archive << make_nvp(name, stored);
    }
    void operator()(const char* name, const InstallationPerformanceParameters& field) {
        const Object<const InstallationPerformanceParameters> object{field};
        m_archive << make_nvp(name, object);
    }

private:
    xml_oarchive& m_archive;
};

template <class Parameters>
void readObject(std::istream& stream, const char* name, Parameters& parameters) {
    stream.imbue(std::locale::classic());
    XmlReader archive(stream);
    Object<Parameters> object{parameters};
    archive >> make_nvp(name, object);
    archive.finish();
}

template <class Parameters>
void writeObject(std::ostream& stream, const char* name, const Parameters& parameters) {
    stream.imbue(std::locale::classic());
    xml_oarchive archive(stream);
    const Object<const Parameters> object{parameters};
    archive << make_nvp(name, object);
}

} // namespace

template <class Parameters>
template <class Archive>
void Object<Parameters>::serialize(Archive& archive, unsigned int classVersion) {
    if (classVersion > 0) {
        throwUnsupportedClassVersion("the parameters");
    }
    if constexpr (Archive::is_loading::value) {
        FieldReader reader(archive);
        ParametersArchive::visit(parameters, reader);
    } else {
        FieldWriter writer(archive);
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
