#include "platform/desktop/DebugManager.h"

#include "platform/files/FileSystem.h"
#include "support/application/DebugLog.h"

#include <atomic>

namespace tavrin {

namespace {

std::atomic<DebugManager*> shared = nullptr;

} // namespace

DebugManager::DebugManager(UserDefaults& defaults) : userDefaults(defaults) {
    observation = userDefaults.observe("loggerIsOn", [this] { copyDefault(); });
    copyDefault();
}

DebugManager::~DebugManager() {
    DebugManager* self = this;
    shared.compare_exchange_strong(self, nullptr);
    observation.reset();
    setDebugLogIsOn(false);
}

DebugManager* DebugManager::sharedDebugManager() { return shared; }

void DebugManager::awakeFromNib() { shared = this; }

void DebugManager::setLoggerIsOn(bool isOn) { setDebugLogIsOn(isOn); }

void DebugManager::copyDefault() { setLoggerIsOn(userDefaults.boolForKey("loggerIsOn")); }

void DebugUtilities::identifyIncorrectPathComponent(const std::string& path) {
    for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string part = path.substr(0, end);
        FileStatus status;
        if (FileSystem::sharedInstance().followedStatus(part, status) != 0) {
            debugLog("*****************************************************");
            debugLog("Checking path: {}", path);
            debugLog("ERROR on last path component: {}", part);
            break;
        }
        if (end == std::string::npos)
            break;
    }
    debugLog(" ");
}

} // namespace tavrin
