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

/// Everything that the host platform keeps for this process: settings, system log and configuration. Each
/// part is made at its first use, and none is ever destroyed, because threads and static objects may use them
/// while the process ends. Any thread may call.
class HostState {
public:
    /// Returns the state of the process, on disk unless keepInMemory() was called before.
    static HostState& instance();

    /// Gives the process a state that leaves no trace on the machine: settings end with it, log records are
    /// dropped, and no platform.ini is read. For a process that examines the tree in which the state is kept.
    /// Has no effect once the state was used.
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
