#pragma once

#include "Debug/DebugAndTestParameters/InstallationPerformanceParameters.h"

#include <boost/filesystem/path.hpp>
#include <boost/optional/optional.hpp>

#include <cstdint>
#include <map>
#include <string>

namespace Nerix {
class ParametersArchive;
}

namespace Nerix::Common {

/// Holds switches with which testers change the update package's behaviour on a device. There is one set per
/// process, read from "DebugAndTestParameters.xml" in the product's data directory; see ParametersArchive.h
/// for the format.
///
/// A missing or malformed file never stops the program: a warning is logged, and the fields that were not
/// read keep their values. Not thread-safe: load and change it on the main thread, before other threads
/// exist.
class DebugAndTestParameters {
public:
    /// Reads the file on the first call; later calls only log a warning. callerName is not used. Throws
    /// ProductUninitializedException before IProductInfo::initializeProduct.
    static void loadDebugAndTestParameters(const std::string& callerName);

    /// Returns true if loadDebugAndTestParameters has returned, whether or not the file could be read.
    static bool loaded();

    /// Returns the parameters of the process. Throws GenericException before loadDebugAndTestParameters.
    static DebugAndTestParameters& getDebugAndTestParameters();

    /// Reads the file again. Returns false if it could not be read completely. Throws GenericException before
    /// the first load.
    bool reload();

    /// Writes the file. Throws ProductUninitializedException like loadDebugAndTestParameters; any other
    /// failure is logged.
    void save() const;

    /// Returns the path of the file. Throws ProductUninitializedException like loadDebugAndTestParameters.
    static std::string getConfigFilePath();

    bool isNoRebootFlag() const { return m_noRebootFlag; }
    bool isSkipCompatibilityChecker() const { return m_skipCompatibilityChecker; }
    bool isSkipVersionChecker() const { return m_skipVersionChecker; }
    bool isSkipIntegrityChecker() const { return m_skipIntegrityChecker; }
    bool isDontSwitchPartitions() const { return m_dontSwitchPartitions; }
    bool isEmulateWasSuccessfulUpgrade() const { return m_emulateWasSuccessfulUpgrade; }
    bool isTestTransformationFailure() const { return m_testTransformationFailure; }
    bool isUseOTNTestServer() const { return m_useOTNTestServer; }
    void setUseOTNTestServer(bool value) { m_useOTNTestServer = value; }
    const std::string& getOTNTestServerAddress() const { return m_otnTestServerAddress; }
    void setOTNTestServerAddress(const std::string& value) { m_otnTestServerAddress = value; }
    std::uint32_t getNumberOfFailures() const { return m_numberOfFailures; }
    void setNumberOfFailures(std::uint32_t value) { m_numberOfFailures = value; }
    const InstallationPerformanceParameters& getInstallationPerformanceParameters() const {
        return m_installationPerformanceParameters;
    }
    InstallationPerformanceParameters& getInstallationPerformanceParameters() {
        return m_installationPerformanceParameters;
    }
    bool isDurationReduced() const { return m_durationReduced; }
    const std::string& getPanelServiceName() const { return m_panelServiceName; }
    void setPanelServiceName(const std::string& value) { m_panelServiceName = value; }
    const std::string& getServiceTransactionStubScenarioPath() const {
        return m_serviceTransactionStubScenarioPath;
    }
    void setServiceTransactionStubScenarioPath(const std::string& value) {
        m_serviceTransactionStubScenarioPath = value;
    }
    const std::string& getCoreTransactionStubScenarioPath() const {
        return m_coreTransactionStubScenarioPath;
    }
    void setCoreTransactionStubScenarioPath(const std::string& value) {
        m_coreTransactionStubScenarioPath = value;
    }
    const std::string& getOtnOUItemDownloadDirectory() const { return m_otnOUItemDownloadDirectory; }
    void setOtnOUItemDownloadDirectory(const std::string& value) { m_otnOUItemDownloadDirectory = value; }
    const std::string& getResumeDataBackupDirectory() const { return m_resumeDataBackupDirectory; }
    void setResumeDataBackupDirectory(const std::string& value) { m_resumeDataBackupDirectory = value; }

    /// Named values chosen by the tester. "hashVerifierThreads" sets the number of threads of a scan, from 1
    /// to 8; the programs here use no other. The getters return boost::none, or defaultValue, if the name is not
    /// set. Each lookup is logged at DBG. A bool is stored as the int 0 or 1; any nonzero int counts as true.
    boost::optional<int> getCustomIntParam(const std::string& name) const;
    int getCustomIntParam(const std::string& name, int defaultValue) const;
    boost::optional<bool> getCustomBoolParam(const std::string& name) const;
    bool getCustomBoolParam(const std::string& name, bool defaultValue) const;

    /// Sets the value, or removes the name if value is boost::none.
    void setCustomIntParam(const std::string& name, boost::optional<int> value);
    void setCustomBoolParam(const std::string& name, boost::optional<bool> value);

private:
    friend class Nerix::ParametersArchive;

    /// Visits all fields in file order.
    template <class Self, class Visitor>
    static void visit(Self& self, Visitor& visitor) {
        visitor("telemetryEnabled", self.m_telemetryEnabled);
        visitor("telemetryServerAddress", self.m_telemetryServerAddress);
        visitor("telemetryServerPort", self.m_telemetryServerPort);
        visitor("noRebootFlag", self.m_noRebootFlag);
        visitor("skipCompatibilityChecker", self.m_skipCompatibilityChecker);
        visitor("skipVersionChecker", self.m_skipVersionChecker);
        visitor("skipIntegrityChecker", self.m_skipIntegrityChecker);
        visitor("dontSwitchPartitions", self.m_dontSwitchPartitions);
        visitor("emulateWasSuccessfulUpgrade", self.m_emulateWasSuccessfulUpgrade);
        visitor("testTransformationFailure", self.m_testTransformationFailure);
        visitor("useOTNTestServer", self.m_useOTNTestServer);
        visitor("otnTestServerAddress", self.m_otnTestServerAddress);
        visitor("numberOfFailures", self.m_numberOfFailures);
        visitor("installationPerformanceParameters", self.m_installationPerformanceParameters);
        visitor("durationReduced", self.m_durationReduced);
        visitor("setOTASetServiceOption", self.m_setOTASetServiceOption);
        visitor("panelServiceName", self.m_panelServiceName);
        visitor("serviceTransactionStubScenarioPath", self.m_serviceTransactionStubScenarioPath);
        visitor("coreTransactionStubScenarioPath", self.m_coreTransactionStubScenarioPath);
        visitor("otnOUItemDownloadDirectory", self.m_otnOUItemDownloadDirectory);
        visitor("resumeDataBackupDirectory", self.m_resumeDataBackupDirectory);
        visitor("customIntParams", self.m_customIntParams);
    }

    bool load();

    static DebugAndTestParameters instance;
    static bool isLoaded;

    bool m_telemetryEnabled = false;
    std::string m_telemetryServerAddress;
    std::string m_telemetryServerPort = "7365";
    bool m_noRebootFlag = false;
    bool m_skipCompatibilityChecker = false;
    bool m_skipVersionChecker = false;
    bool m_skipIntegrityChecker = false;
    bool m_dontSwitchPartitions = false;
    bool m_emulateWasSuccessfulUpgrade = false;
    bool m_testTransformationFailure = false;
    bool m_useOTNTestServer = false;
    std::string m_otnTestServerAddress = "127.0.0.1:9090/";
    std::uint32_t m_numberOfFailures = 0;
    InstallationPerformanceParameters m_installationPerformanceParameters =
        InstallationPerformanceParameters::getDefaultParameters();
    bool m_durationReduced = false;
    std::int32_t m_setOTASetServiceOption = 0;
    std::string m_panelServiceName;
    std::string m_serviceTransactionStubScenarioPath;
    std::string m_coreTransactionStubScenarioPath;
    std::string m_otnOUItemDownloadDirectory;
    std::string m_resumeDataBackupDirectory;
    std::map<std::string, std::int32_t> m_customIntParams{{"testParam0", 0}, {"testParam1", 1}};
};

/// Calls DebugAndTestParameters::getDebugAndTestParameters.
DebugAndTestParameters& getDebugAndTestParameters();

/// Throws GenericException before the first load, otherwise only logs a warning. The path is not used.
void loadDebugAndTestParameters(const boost::filesystem::path& path);

} // namespace Nerix::Common
