#include "HostPlatform/HostState.h"

#include "Common/Base/NoDestructor.h"
#include "HostPlatform/DirectoryBackend.h"
#include "HostPlatform/HostConfiguration.h"
#include "HostPlatform/HostDirectories.h"
#include "HostPlatform/MemoryBackend.h"
#include "HostPlatform/SettingsStore.h"
#include "HostPlatform/SystemLog.h"
#include "PlatformInterfaces/dlog.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace Nerix::Platform::Host {

namespace {

std::unique_ptr<SettingsStore> makeSettings(bool isInMemory) {
    if (isInMemory) {
        return std::make_unique<SettingsStore>(std::make_unique<MemoryBackend>(),
                                               std::make_unique<MemoryBackend>());
    }
    return std::make_unique<SettingsStore>(
        std::make_unique<DirectoryBackend>("settings", &durableDirectory, true),
        std::make_unique<DirectoryBackend>("settings-volatile", &volatileDirectory, false));
}

/// Returns the path of platform.ini, which need not exist, or an empty path if it must not be read.
std::filesystem::path configurationFile(bool isInMemory) {
    try {
        return isInMemory ? std::filesystem::path() : durableDirectory() / "platform.ini";
    } catch (const std::system_error& failure) {
        __dlog_print(DLOG_BUFFER_SYSTEM, DLOG_PRIORITY_ERROR, "nerix.host", "platform.ini is not read: %s",
                     failure.what());
        return {};
    }
}

} // namespace

HostState::HostState(bool isInMemory) : m_isInMemory(isInMemory) {}

HostState::~HostState() = default;

HostState& HostState::make(bool isInMemory) {
    static Common::NoDestructor<HostState> state(isInMemory); // isInMemory counts only in the first call
    return *state;
}

HostState& HostState::instance() {
    return make(false);
}

void HostState::keepInMemory() {
    make(true);
}

SettingsStore& HostState::settings() {
    std::call_once(m_settingsMade, [this] { m_settings = makeSettings(m_isInMemory); });
    return *m_settings;
}

SystemLog& HostState::log() {
    std::call_once(m_logMade, [this] {
        m_log = std::make_unique<SystemLog>(m_isInMemory);
        std::atexit([] { instance().log().end(); });
    });
    return *m_log;
}

const HostConfiguration& HostState::configuration() {
    std::call_once(m_configurationMade, [this] {
        m_configuration = std::make_unique<const HostConfiguration>(configurationFile(m_isInMemory));
    });
    return *m_configuration;
}

} // namespace Nerix::Platform::Host
