#pragma once

#include <iosfwd>

namespace Nerix {

class InstallationPerformanceParameters;

namespace Common {
class DebugAndTestParameters;
}

/// Reads and writes the XML form of the parameters: an archive of Boost.Serialization with its default flags,
/// one object element containing one element per field. Fields must appear in the right order. Objects have
/// class version 0; reading any other throws. Numbers are in the classic locale; read and write set it on the
/// stream.
///
/// A Boolean is 0 or 1, an enumerator its number, and the custom parameters a map in the library's format. An
/// optional value consists of "initialized" and, if that is 1, "item_version" (0) and "value". Newer Boost
/// versions omit "item_version" and write class version 1. Both forms are read; the old one is written.
///
/// Reading throws if an element is missing, out of place or malformed; fields before it keep what was read.
/// An unsigned number out of range, when reading, and a number that is not finite, when writing, throw
/// std::range_error; everything else throws boost::archive::archive_exception, a std::exception. An output
/// stream must not fail, because that would terminate the process; write to a string first, like
/// ParametersFile::save.
class ParametersArchive {
public:
    static void read(std::istream& stream, Common::DebugAndTestParameters& parameters);
    static void read(std::istream& stream, InstallationPerformanceParameters& parameters);
    static void write(std::ostream& stream, const Common::DebugAndTestParameters& parameters);
    static void write(std::ostream& stream, const InstallationPerformanceParameters& parameters);

    /// Passes each field of parameters, with the name of its element, to the visitor.
    template <class Parameters, class Visitor>
    static void visit(Parameters& parameters, Visitor& visitor) {
        Parameters::visit(parameters, visitor);
    }
};

} // namespace Nerix
