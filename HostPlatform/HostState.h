#pragma once

#include <memory>
#include <mutex>

namespace Nerix::Common {
template <class T>
class NoDestructor;
}

namespace Nerix::Platform::Host {

class HostConfiguration;
class SettingsStore;
class SystemLog;

/// Holds the state of the host platform in this process: settings, system log and configuration. Each part is
/// created on first use and never destroyed, because threads and static objects may use it while the process
/// ends. Thread-safe.
class HostState {
public:
    /// Returns the state of the process, on disk unless keepInMemory() was called before.
    static HostState& instance();

    /// Makes the state leave no trace on the machine: keeps settings in memory, drops log records, and does
    /// not read platform.ini. For a process that scans the tree that contains the state on disk. Has no
    /// effect after the state has been used.
    static void keepInMemory();

    SettingsStore& settings();
    SystemLog& log();
    const HostConfiguration& configuration();

private:
    friend class Common::NoDestructor<HostState>;

    explicit HostState(bool isInMemory);
    ~HostState();

    static HostState& make(bool isInMemory);

    const bool m_isInMemory;
    std::once_flag m_settingsMade;
    std::once_flag m_logMade;
    std::once_flag m_configurationMade;
    std::unique_ptr<SettingsStore> m_settings;
    std::unique_ptr<SystemLog> m_log;
    std::unique_ptr<const HostConfiguration> m_configuration;
};

} // namespace Nerix::Platform::Host
