#include "presentation/preview/FolderOffer.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/metadata/FileManager.h"
#include "presentation/MessageBars.h"
#include "presentation/QtText.h"
#include "presentation/settings/ParameterBinding.h"
#include "shell/MainController.h"
#include "support/text/Text.h"

#include <QApplication>
#include <QPointer>
#include <QThreadPool>
#include <algorithm>
#include <filesystem>
#include <ranges>
#include <system_error>

namespace tavrin {

namespace {

constexpr const char* barName = "folderOffer";
constexpr std::size_t mostCounted = 10000;

QString whatIsRenamed(std::size_t folders, const QString& name) {
    if (folders == 1)
        //: %1 is the name of a folder
        return FolderOffer::tr("“%1” itself will be renamed.").arg(name);
    return FolderOffer::tr("%L1 folders themselves will be renamed.").arg(folders);
}

QString whatItHolds(std::size_t folders, std::size_t count, bool areFiles) {
    const bool isOne = folders == 1;
    if (count > mostCounted)
        return (isOne ? FolderOffer::tr("It holds more than %L1 items.")
                      : FolderOffer::tr("They hold more than %L1 items."))
            .arg(mostCounted);
    if (areFiles)
        return isOne ? FolderOffer::tr("It holds 1 file.||It holds %Ln files.", nullptr,
                                       static_cast<int>(count))
                     : FolderOffer::tr("They hold 1 file.||They hold %Ln files.", nullptr,
                                       static_cast<int>(count));
    return isOne ? FolderOffer::tr("It holds 1 folder.||It holds %Ln folders.", nullptr,
                                   static_cast<int>(count))
                 : FolderOffer::tr("They hold 1 folder.||They hold %Ln folders.", nullptr,
                                   static_cast<int>(count));
}

} // namespace

FolderOffer::FolderOffer(const WindowServices& shared, MessageBars& shownIn, QObject* parent)
    : QObject(parent), services(shared), bars(shownIn) {
    for (const char* key : {settingKey::processFolders, settingKey::processSubfolders})
        bindings.push_back(std::make_unique<ParameterBinding>(services.controller.globalSettings(), key,
                                                              [this](const auto&) {
                                                                  if (!isCalledFor())
                                                                      withdraw();
                                                              }));
}

FolderOffer::~FolderOffer() = default;

void FolderOffer::withdraw() { bars.dismiss(barName); }

bool FolderOffer::isCalledFor() const {
    const Settings settings = services.controller.globalSettings().values();
    return settings.shouldProcessFolders != 0 && settings.shouldProcessSubfolders == 0;
}

void FolderOffer::pathsAdded(const std::vector<std::string>& paths) {
    if (!isCalledFor())
        return;
    const auto some = paths | std::views::take(mostCounted);
    QThreadPool::globalInstance()->start(
        [self = QPointer<FolderOffer>(this), some = std::vector<std::string>(some.begin(), some.end())] {
            const Found found = look(some);
            if (found.files + found.subfolders == 0)
                return;
            QMetaObject::invokeMethod(
                qApp,
                [self, found] {
                    if (self && self->isCalledFor())
                        self->present(found);
                },
                Qt::QueuedConnection);
        });
}

// --- On the worker ---

bool FolderOffer::Found::isFull() const { return std::max(files, subfolders) > mostCounted; }

FolderOffer::Found FolderOffer::look(const std::vector<std::string>& paths) {
    Found found;
    for (const std::string& path : paths) {
        if (!FileManager::instance().isFolder(path))
            continue;
        if (++found.folders == 1)
            found.name = std::filesystem::path(path + "/").parent_path().filename();
        if (!found.isFull())
            count(path, found);
    }
    return found;
}

void FolderOffer::count(const std::string& folder, Found& found) {
    const HiddenNames hidden(folder);
    std::error_code failure;
    std::filesystem::directory_iterator entries(folder, failure);
    while (!failure && entries != std::filesystem::directory_iterator() && !found.isFull()) {
        if (const std::string name = entries->path().filename(); name[0] != '.' && !hidden.contains(name)) {
            std::error_code unknown;
            ++(entries->is_directory(unknown) ? found.subfolders : found.files);
        }
        entries.increment(failure);
    }
}

// --- On the main thread ---

void FolderOffer::present(const Found& found) {
    const auto processing = [this](bool folders) {
        return [this, folders] {
            TVRNGlobalPreferencesPseudoAction& settings = services.controller.globalSettings();
            settings.setShouldProcessSubfolders(1);
            if (!folders)
                settings.setShouldProcessFolders(0);
        };
    };
    const bool areFiles = found.files > 0;
    bars.present({.objectName = barName,
                  .bold = whatIsRenamed(found.folders, toQString(text::fromBytes(found.name))),
                  .plain = whatItHolds(found.folders, areFiles ? found.files : found.subfolders, areFiles),
                  .buttons = {{"renameWithin", tr("Rename What Is in It"), processing(false)},
                              {"renameBoth", tr("Rename Both"), processing(true)}}});
}

} // namespace tavrin
