#pragma once

#include <boost/exception/exception.hpp>

#include <exception>
#include <string>

namespace Nerix::Platform {

/// Typed access to the platform's settings store. Keys are passed on as they are; each call asks the store
/// once, nothing is cached or retried. A failure is logged at WRN with the key, then thrown. Any thread
/// may call.
class IVConf {
public:
    /// The store refused. Carries the text of the log line and, except from getString, the store's return
    /// code (errinfo_errorcode).
    class VConfException : public virtual std::exception, public virtual boost::exception {};

    /// The getters throw VConfException also when the key is missing or holds a value of another type.
    static int getInt(const std::string& key);
    static double getDouble(const std::string& key);
    static std::string getString(const std::string& key);
    static bool getBool(const std::string& key);

    static void setInt(const std::string& key, int value);
    static void setDouble(const std::string& key, double value);
    static void setString(const std::string& key, const std::string& value);
    static void setBool(const std::string& key, bool value);
};

} // namespace Nerix::Platform
