#include "documents/FirstLaunchManager.h"

#include "platform/metadata/FileManager.h"
#include "platform/propertylists/UserDefaults.h"
#include "support/text/Text.h"

namespace tavrin {

namespace {
constexpr int version = 80001;
}

FirstLaunchManager::FirstLaunchManager(UserDefaults& userDefaults, std::string programLocation)
    : defaults(userDefaults), location(std::move(programLocation)) {}

void FirstLaunchManager::doIt() {
    registerDefaults();
    firstLaunch = callOnlyOnceIsFirstLaunch();
    if (firstLaunch)
        setOtherSettingsAside();
    rememberLocation();
    if (!firstLaunch)
        return;
    FileManager::instance().updateServicesMenu();
    defaults.removePersistentDomain();
    (void)defaults.synchronize();
    registerDefaults();
    defaults.setObject("firstLaunchVersion", version);
    (void)defaults.synchronize();
}

bool FirstLaunchManager::callOnlyOnceIsFirstLaunch() const {
    return defaults.integerForKey("firstLaunchVersion") != version;
}

void FirstLaunchManager::setOtherSettingsAside() {
    const int storedVersion = defaults.integerForKey("firstLaunchVersion");
    UserDefaults::Copy copy = defaults.copyFileAside(std::to_string(storedVersion));
    if (copy.error)
        defaults.leaveFileAlone();
    if (copy.error || !copy.path.empty())
        other = {std::move(copy.path), std::move(copy.error), storedVersion > version};
}

void FirstLaunchManager::registerDefaults() { defaults.registerDefaults({}); }

void FirstLaunchManager::rememberLocation() {
    defaults.setObject("location", text::fromBytes(location));
    (void)defaults.synchronize();
}

} // namespace tavrin
