#pragma once

#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/Errors.h"
#include "Platform/Product/ProductExceptions.h"

#include <boost/optional/optional.hpp>

#include <string>

/// The facts that the package asks the platform's system-information service for. Each call asks; nothing is
/// cached. Empty when the service fails.
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

/// The answer. Where there is none, logs the failure at ERR and throws SystemInfoAPIInternalProblemException
/// with it as description.
template <class Answer>
Answer required(const boost::optional<Answer>& answer, const char* failure) {
    if (!answer) {
        NERIX_LOG(ERR, "%s", failure);
        BOOST_THROW_EXCEPTION(SystemInfoAPIInternalProblemException()
                              << Common::Utils::errinfo_description(failure));
    }
    return *answer;
}

} // namespace Nerix::Platform::SystemInformation
