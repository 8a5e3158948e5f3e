#include "shell/commands/DropletCommands.h"

#include "actions/CompositeRenameAction.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/desktop/UserFolders.h"
#include "shell/asking/FrontEnd.h"
#include "shell/asking/NoticeDialogs.h"
#include "shell/commands/ActionListCommands.h"
#include "support/application/DebugLog.h"

namespace tavrin {

namespace {

const Alert isSilentAlert{
    .kind = AlertKind::dropletIsSilent,
    .style = AlertStyle::informational,
    .title = "You have created a silent mode droplet.",
    .text = "Please note that you have just created a droplet that will operate in the special \"silent\" "
            "mode.\n\nThis droplet will not bring up any dialogs while it executes. If an error condition "
            "arises during its execution, it will simply proceed to the next file name without showing any "
            "error information.\n\nThe silent mode overrides the \"Show confirmation dialog before "
            "renaming\" and \"Show summary after renaming is complete\" settings.\n\nThe silent mode is "
            "designed for situations where you wish to use the droplet within a larger automated workflow, "
            "but its use can lead to difficulties in identifying problems. The droplet will simply appear to "
            "fail without reason.\n\nIf you want to switch this mode off, edit the droplet and untick the "
            "\"Execute as silent droplet\"  checkbox in the Advanced Options section.",
    .buttons = {"OK"}};

const Alert notCreatedAlert{.kind = AlertKind::dropletNotCreated,
                            .style = AlertStyle::critical,
                            .title = "Cannot create droplet.",
                            .text = "An error ocurred while attempting to create the droplet. You may not "
                                    "have sufficient access privileges for the containing folder.",
                            .buttons = {"OK"}};

const Alert willBeUpgradedAlert{
    .kind = AlertKind::dropletUpgrade,
    .style = AlertStyle::informational,
    .title = "Your droplet will be upgraded to the new Mountain Lion compatible version.",
    .text = "Your droplet is not currently compatible with Mac OS X 10.8 Mountain Lion.\n\nTavrin 9 will "
            "attempt to upgrade the droplet and then quit.",
    .buttons = {"OK"}};

const Alert isUpgradedAlert{.kind = AlertKind::dropletUpgrade,
                            .style = AlertStyle::informational,
                            .title = "Your droplet has been successfully upgraded.",
                            .text = "Your droplet should now work correctly on Mac OS X Mountain Lion.",
                            .buttons = {"Quit"}};

const Alert notUpgradedAlert{
    .kind = AlertKind::dropletUpgrade,
    .style = AlertStyle::critical,
    .title = "Your droplet could not be upgraded.",
    .text = "An error occurred while trying to upgrade your droplet.\n\nThis might be due to your user "
            "account not having sufficient privileges to write to the folder containing your droplet.\n\nTry "
            "moving the droplet to a folder, such as the Desktop folder, that you have full write access to.",
    .buttons = {"Quit"}};

} // namespace

DropletCommands::DropletCommands(ShellServices& shared, Units otherUnits, const std::string& location)
    : services(shared), units(otherUnits), writer(location) {}

PropertyDictionary DropletCommands::createDropletPropertyList() const {
    return {{dropletKey::launcher,
             PropertyDictionary{{dropletKey::defaultLocation, u"/Applications/Tavrin 9.app"},
                                {dropletKey::locationKey, u"net.calderwick.tvrn9"},
                                {dropletKey::temporaryKey, u"droplet settings"}}},
            {dropletKey::host,
             PropertyDictionary{{dropletKey::chain, services.composite.getFlatParameterList()},
                                {dropletKey::globalSettings, services.settings.parameterList()}}}};
}

void DropletCommands::createDroplet() {
    if (!units.commands.validateActionList())
        return;
    units.notices.showDropletInformation([this](int choice) {
        if (choice != NoticeAnswer::cancel && choice != NoticeAnswer::help)
            askForPlace();
    });
}

void DropletCommands::askForPlace() {
    services.frontEnd.askForDropletPath("Save Droplet", UserFolders::home(),
                                        [this](const std::optional<std::string>& path) {
                                            if (path)
                                                createDropletAt(*path);
                                        });
}

void DropletCommands::createDropletAt(const std::string& chosenPath) {
    const auto error = writer.writeDropletWithDictionary(createDropletPropertyList(),
                                                         DropletBundle::forChosenPath(chosenPath).path());
    if (error) {
        debugLog("no droplet: {}", *error);
        services.frontEnd.showAlert(notCreatedAlert, [](AlertAnswer) {});
    } else if (services.settings.values().shouldCreateSilentDroplets != 0) {
        services.frontEnd.showAlert(isSilentAlert, [](AlertAnswer) {});
    }
}

std::optional<std::string> DropletCommands::saveDropletSettings(const std::string& toPath) const {
    return DropletBundleWriter::saveDropletSettings(createDropletPropertyList(), toPath);
}

void DropletCommands::upgrade(const std::string& settingsPath, std::function<void()> finished) {
    services.frontEnd.showAlert(willBeUpgradedAlert,
                                [this, settingsPath, finished = std::move(finished)](AlertAnswer) {
                                    upgradeNow(settingsPath, finished);
                                });
}

void DropletCommands::upgradeNow(const std::string& settingsPath, std::function<void()> finished) {
    const std::optional<DropletBundle> droplet = DropletBundle::ofSettings(settingsPath);
    std::optional<std::string> error = "there is no droplet of these settings";
    if (droplet)
        error = writer.upgrade(createDropletPropertyList(), *droplet);
    if (error)
        debugLog("no upgrade: {}", *error);
    services.frontEnd.showAlert(error ? notUpgradedAlert : isUpgradedAlert,
                                [finished = std::move(finished)](AlertAnswer) { finished(); });
}

} // namespace tavrin
