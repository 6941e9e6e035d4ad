#pragma once

#include <iosfwd>

namespace Nerix {

class InstallationPerformanceParameters;

namespace Common {
class DebugAndTestParameters;
}

/// The XML form of the parameters: an archive of Boost.Serialization with its default flags, one object
/// element containing one element per field. Fields must appear in the right order. Class versions are 0; an
/// object of another one is refused. Numbers are in the classic locale, which the streams are given.
///
/// Booleans are 0 or 1, enumerations their number, the custom parameters a map as the library writes it. An
/// optional value holds "initialized" and, when that is 1, "item_version" (0) and "value". Newer Boost
/// versions omit "item_version" and write class version 1. Both forms are read; the old one is written.
///
/// Reading throws when an element is missing, out of place or malformed, or holds a number that its field
/// cannot; fields before it keep what was read. Writing throws for a number that is not finite. Both throw
/// std::range_error for a number and boost::archive::archive_exception, a std::exception, for anything else.
/// An output stream must not fail, because that would terminate the process; write to a string first, like
/// ParametersFile::save.
class ParametersArchive {
public:
    static void read(std::istream& stream, Common::DebugAndTestParameters& parameters);
    static void read(std::istream& stream, InstallationPerformanceParameters& parameters);
    static void write(std::ostream& stream, const Common::DebugAndTestParameters& parameters);
    static void write(std::ostream& stream, const InstallationPerformanceParameters& parameters);

    /// For the archive library: hands each field of parameters, with the name of its element, to the visitor.
    template <class Parameters, class Visitor>
    static void visit(Parameters& parameters, Visitor& visitor) {
        Parameters::visit(parameters, visitor);
    }
};

} // namespace Nerix
