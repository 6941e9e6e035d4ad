#include "Platform/SystemAPI/VconfSystemAPI/IVConf.h"

#include "Common/Logging/Log.h"
#include "Common/Utils/Errors/Errors.h"
#include "PlatformInterfaces/vconf.h"

#include <cstdlib>
#include <memory>

namespace Nerix::Platform {

using Common::Utils::errinfo_errorcode;
using Common::Utils::errinfo_stream;

namespace {

/// Logs the failure and returns the exception to throw. Logs first, so that the failure is on record even if
/// the exception is not caught.
IVConf::VConfException loggedFailure(const char* call, const std::string& key) {
    const std::string text = std::string(call) + " failed while trying to access key: " + key;
    NERIX_LOG(WRN, "%s", text.c_str());
    IVConf::VConfException failure;
    failure << errinfo_stream(text);
    return failure;
}

struct FreeDeleter {
    void operator()(char* text) const { std::free(text); } // the store allocated it with malloc
};

} // namespace

// Each operation has its own BOOST_THROW_EXCEPTION, so that the exception records the right function and
// line.

int IVConf::getInt(const std::string& key) {
    int value = 0;
    if (const int code = vconf_get_int(key.c_str(), &value)) {
        BOOST_THROW_EXCEPTION(loggedFailure("vconf_get_int", key) << errinfo_errorcode(code));
    }
    return value;
}

void IVConf::setInt(const std::string& key, int value) {
    if (const int code = vconf_set_int(key.c_str(), value)) {
        BOOST_THROW_EXCEPTION(loggedFailure("vconf_set_int", key) << errinfo_errorcode(code));
    }
}

double IVConf::getDouble(const std::string& key) {
    double value = 0.0;
    if (const int code = vconf_get_dbl(key.c_str(), &value)) {
        BOOST_THROW_EXCEPTION(loggedFailure("vconf_get_dbl", key) << errinfo_errorcode(code));
    }
    return value;
}

void IVConf::setDouble(const std::string& key, double value) {
    if (const int code = vconf_set_dbl(key.c_str(), value)) {
        BOOST_THROW_EXCEPTION(loggedFailure("vconf_set_dbl", key) << errinfo_errorcode(code));
    }
}

std::string IVConf::getString(const std::string& key) {
    const std::unique_ptr<char, FreeDeleter> text(vconf_get_str(key.c_str()));
    if (!text) {
        BOOST_THROW_EXCEPTION(loggedFailure("vconf_get_str", key));
    }
    return text.get();
}

void IVConf::setString(const std::string& key, const std::string& value) {
    if (const int code = vconf_set_str(key.c_str(), value.c_str())) {
        BOOST_THROW_EXCEPTION(loggedFailure("vconf_set_str", key) << errinfo_errorcode(code));
    }
}

bool IVConf::getBool(const std::string& key) {
    int value = 0;
    if (const int code = vconf_get_bool(key.c_str(), &value)) {
        BOOST_THROW_EXCEPTION(loggedFailure("vconf_get_bool", key) << errinfo_errorcode(code));
    }
    return value != 0;
}

void IVConf::setBool(const std::string& key, bool value) {
    if (const int code = vconf_set_bool(key.c_str(), value ? 1 : 0)) {
        BOOST_THROW_EXCEPTION(loggedFailure("vconf_set_bool", key) << errinfo_errorcode(code));
    }
}

} // namespace Nerix::Platform
