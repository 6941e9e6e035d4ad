#pragma once

#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/Errors.h"
#include "Platform/Product/ProductExceptions.h"

#include <boost/assert/source_location.hpp>
#include <boost/optional/optional.hpp>

#include <string>

/// Reads facts from the platform's system-information service. The package does not cache them. The read
/// functions return boost::none if the service fails.
namespace Nerix::Platform::SystemInformation {

enum Key {
    SOFTWARE_DATE = 8,
    TV_SOFTWARE_VERSION = 128,
    SUBMICOM_VERSION = 133,
    SCREEN_LINES = 203,
    PARTITION_FILE_PATH = 301,
    GENUINE_TV = 358,
    GENUINE_ZEB = 359,
    ZEB_SOFTWARE_VERSION = 378
};

boost::optional<std::string> readString(Key key);
boost::optional<int> readInt(Key key);
boost::optional<bool> readBool(Key key);

/// Returns *answer. If it is empty, logs `failure` at ERR and throws SystemInfoAPIInternalProblemException
/// with that description; `where`, the caller's BOOST_CURRENT_LOCATION, is the throw location.
template <class Answer>
Answer valueOrThrow(const boost::optional<Answer>& answer, const char* failure,
                    const boost::source_location& where) {
    if (!answer) {
        NERIX_LOG(ERR, "%s", failure);
        boost::throw_exception(
            SystemInfoAPIInternalProblemException() << Common::Utils::errinfo_description(failure), where);
    }
    return *answer;
}

} // namespace Nerix::Platform::SystemInformation
