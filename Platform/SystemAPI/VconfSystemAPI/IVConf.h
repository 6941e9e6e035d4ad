#pragma once

#include <boost/exception/exception.hpp>

#include <exception>
#include <string>

namespace Nerix::Platform {

/// Provides typed access to the platform's settings store. Passes keys on unchanged. Each call makes one call
/// to the store; nothing is cached or retried. A failure is logged at WRN with the key, then thrown.
/// Thread-safe.
class IVConf {
public:
    /// Reports that a call to the store failed. Contains the text of the log line (errinfo_stream) and,
    /// except from getString, the store's return code (errinfo_errorcode).
    class VConfException : public virtual std::exception, public virtual boost::exception {};

    /// The getters also throw VConfException if the key is missing or its value has another type.
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
