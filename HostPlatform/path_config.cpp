#include "PlatformInterfaces/path_config.h"

#include "HostPlatform/HostConfiguration.h"

#include <map>
#include <mutex>
#include <string>

const char* path_config_get(int variable) {
    // Kept for the life of the process, as callers hold on to the texts.
    static std::mutex mutex;
    static std::map<int, std::string> answers;
    try {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto text = Nerix::Platform::Host::HostConfiguration::instance().text("path", variable);
        return text ? answers.emplace(variable, *text).first->second.c_str() : nullptr;
    } catch (...) {
        return nullptr; // out of memory
    }
}
