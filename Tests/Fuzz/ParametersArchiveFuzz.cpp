#include "Debug/DebugAndTestParameters/DebugAndTestParameters.h"
#include "Debug/DebugAndTestParameters/ParametersArchive.h"

#include <exception>
#include <sstream>
#include <string>

namespace {

template <class Parameters>
std::string written(const Parameters& parameters) {
    std::ostringstream stream;
    Nerix::ParametersArchive::write(stream, parameters);
    return stream.str();
}

/// What can be read can be written and reads back equal.
template <class Parameters>
void roundTrip(const std::string& text) {
    Parameters parameters;
    try {
        std::istringstream stream(text);
        Nerix::ParametersArchive::read(stream, parameters);
    } catch (const std::exception&) { return; }
    const std::string once = written(parameters);
    Parameters again;
    std::istringstream stream(once);
    Nerix::ParametersArchive::read(stream, again);
    if (written(again) != once) { __builtin_trap(); }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    roundTrip<Nerix::Common::DebugAndTestParameters>(text);
    roundTrip<Nerix::InstallationPerformanceParameters>(text);
    return 0;
}
