#include "Debug/DebugAndTestParameters/ParametersArchive.h"

#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "Debug/DebugAndTestParameters/InstallationPerformanceParameters.h"

#include <boost/archive/xml_iarchive.hpp>
#include <boost/archive/xml_oarchive.hpp>
#include <boost/serialization/map.hpp>
#include <boost/serialization/nvp.hpp>
#include <boost/serialization/string.hpp>
#include <boost/serialization/version.hpp>

#include <istream>
#include <ostream>
#include <string>

namespace Nerix {

namespace {

using boost::archive::xml_iarchive;
using boost::archive::xml_oarchive;
using boost::serialization::make_nvp;

/// The stream below an archive being read, for looking at the next element: the archive itself cannot tell
/// which one it is before it has taken it.
struct StreamBelow {
    std::istream* stream = nullptr;
};

/// Whether the next element has this name; leaves the stream where it was.
bool isNext(std::istream& stream, const std::string& name) {
    const std::istream::pos_type here = stream.tellg();
    std::string start(name.size() + 1, '\0');
    stream >> std::ws;
    stream.read(start.data(), static_cast<std::streamsize>(start.size()));
    const bool found = stream.gcount() == static_cast<std::streamsize>(start.size()) && start == "<" + name;
    stream.clear();
    stream.seekg(here);
    return found;
}

} // namespace

// The library finds a type's functions and version by the type: reading and writing an optional value need
// two, as they count class versions differently.

template <class Value>
struct OptionalRead {
    boost::optional<Value>& value;

    template <class Archive>
    void serialize(Archive& archive, unsigned int) {
        bool initialized = false;
        archive >> make_nvp("initialized", initialized);
        if (!initialized) {
            value = boost::none;
            return;
        }
        if (isNext(*archive.template get_helper<StreamBelow>().stream, "item_version")) {
            unsigned int itemVersion = 0;
            archive >> make_nvp("item_version", itemVersion);
        }
        Value read{};
        archive >> make_nvp("value", read);
        value = read;
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

    template <class Field>
    void operator()(const char* name, Field& field) {
        m_archive >> make_nvp(name, field);
    }
    template <class Value>
    void operator()(const char* name, boost::optional<Value>& field) {
        OptionalRead<Value> optional{field};
        m_archive >> make_nvp(name, optional);
    }
    void operator()(const char* name, InstallationPerformanceParameters& field) {
        Object<InstallationPerformanceParameters> object{field};
        m_archive >> make_nvp(name, object);
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
    xml_iarchive archive(stream);
    archive.get_helper<StreamBelow>().stream = &stream;
    Object<Parameters> object{parameters};
    archive >> make_nvp(name, object);
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
    readObject(stream, "DebugAndTestParameters", parameters);
}

void ParametersArchive::read(std::istream& stream, InstallationPerformanceParameters& parameters) {
    readObject(stream, "InstallationPerformanceParameters", parameters);
}

void ParametersArchive::write(std::ostream& stream, const Common::DebugAndTestParameters& parameters) {
    writeObject(stream, "DebugAndTestParameters", parameters);
}

void ParametersArchive::write(std::ostream& stream, const InstallationPerformanceParameters& parameters) {
    writeObject(stream, "InstallationPerformanceParameters", parameters);
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
