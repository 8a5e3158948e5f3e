#include "platform/desktop/FileManagerMenus.h"

#include "platform/desktop/MenuEntries.h"
#include "platform/desktop/ThunarActions.h"
#include "platform/desktop/UserFolders.h"
#include "platform/files/FileSystem.h"
#include "support/application/DebugLog.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace tavrin {

namespace {

constexpr std::size_t entryLimit = 65536; // bytes; ours are far smaller
constexpr mode_t executable = 0755;

FileManagerMenus* registered = nullptr;

using Bytes = std::string;

/// The folders of a variable like PATH.
std::vector<Bytes> foldersOf(const char* variable, const Bytes& otherwise) {
    const char* value = std::getenv(variable);
    const Bytes list = value && *value ? value : otherwise;
    std::vector<Bytes> folders;
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(':', begin), list.size());
        if (list[begin] == '/')
            folders.push_back(list.substr(begin, end - begin));
        begin = end + 1;
    }
    return folders;
}

/// Below the user's data folder or a shared one.
Bytes placeIn(FileManagerKind kind) {
    switch (kind) {
    case FileManagerKind::dolphin:
        return "/kio/servicemenus/net.calderwick.tavrin.desktop";
    case FileManagerKind::nautilus:
        return "/nautilus/scripts/Rename with Tavrin…";
    case FileManagerKind::nemo:
        return "/nemo/actions/net.calderwick.tavrin.nemo_action";
    case FileManagerKind::thunar:
        return "/Thunar/uca.xml";
    }
    return {};
}

Bytes pathOf(FileManagerKind kind) {
    const bool isSetting = kind == FileManagerKind::thunar;
    return (isSetting ? UserFolders::configuration() : UserFolders::data()) + placeIn(kind);
}

bool isSystemWide(FileManagerKind kind) {
    if (kind != FileManagerKind::dolphin && kind != FileManagerKind::nemo)
        return false;
    return std::ranges::any_of(
        foldersOf("XDG_DATA_DIRS", "/usr/local/share:/usr/share"),
        [kind](const Bytes& folder) { return FileSystem::sharedInstance().exists(folder + placeIn(kind)); });
}

MenuOutcome failed(const Bytes& path, int error) {
    return {fmt::format("\"{}\" can't be written: {}", path, std::strerror(error))};
}

MenuOutcome foreign(const Bytes& path, std::string_view reason) {
    return {fmt::format("\"{}\" is left alone: {}.", path, reason)};
}

MenuOutcome write(const Bytes& path, std::string_view content, mode_t mode) {
    FileSystem& files = FileSystem::sharedInstance();
    int error = files.makeFolders(std::string(PathParts(path).folder));
    if (error == 0)
        error = files.writeFileAtomically(path, content);
    if (error == 0 && ::chmod(path.c_str(), mode) != 0)
        error = errno;
    return error == 0 ? MenuOutcome() : failed(path, error);
}

/// A list of actions as it lies on disk: of the user, else that for all users, which one of the user's own
/// would hide.
struct StoredActions {
    Bytes path = pathOf(FileManagerKind::thunar);
    MenuOutcome outcome;
    bool isUsers = false;
    mode_t mode = 0600;
    Bytes text;
    Bytes sharedText{ThunarActions::emptyList};
    ThunarActions actions;

    StoredActions() {
        for (const Bytes& folder : foldersOf("XDG_CONFIG_DIRS", "/etc/xdg")) {
            if (FileSystem::sharedInstance().readFile(folder + placeIn(FileManagerKind::thunar), sharedText,
                                                      ThunarActions::sizeLimit) == 0)
                break;
            sharedText = ThunarActions::emptyList;
        }
        readUsers();
        if (outcome)
            parse();
    }

  private:
    void readUsers() {
        struct stat status {};
        if (::lstat(path.c_str(), &status) != 0) {
            text = sharedText;
            if (errno != ENOENT && errno != ENOTDIR)
                outcome = failed(path, errno);
            return;
        }
        isUsers = true;
        mode = status.st_mode & 0777U;
        if (!S_ISREG(status.st_mode)) {
            outcome = foreign(path, "it is a link or no file");
            return;
        }
        const int error = FileSystem::sharedInstance().readFile(path, text, ThunarActions::sizeLimit);
        if (error == EFBIG)
            outcome = foreign(path, "it is larger than 4 MiB");
        else if (error != 0)
            outcome = failed(path, error);
        else if (text.empty())
            text = ThunarActions::emptyList;
    }

    void parse() {
        auto result = ThunarActions::read(text);
        if (const auto* error = std::get_if<ThunarActions::Error>(&result))
            outcome = foreign(path, "it is no list of actions (" + error->message + ")");
        else
            actions = std::get<ThunarActions>(std::move(result));
    }
};

} // namespace

FileManagerMenus::FileManagerMenus(std::string programPath) : program(std::move(programPath)) {}

FileManagerMenus::~FileManagerMenus() {
    if (registered == this)
        registered = nullptr;
}

std::string FileManagerMenus::runningProgram() {
    constexpr std::string_view replaced = " (deleted)"; // by an upgrade in the meantime
    std::error_code error;
    std::string path = std::filesystem::read_symlink("/proc/self/exe", error).string();
    if (path.ends_with(replaced))
        path.resize(path.size() - replaced.size());
    return path;
}

FileManagerMenus* FileManagerMenus::sharedInstance() { return registered; }

void FileManagerMenus::setSharedInstance(FileManagerMenus* menus) { registered = menus; }

std::string_view FileManagerMenus::nameOf(FileManagerKind kind) {
    switch (kind) {
    case FileManagerKind::dolphin:
        return "Dolphin";
    case FileManagerKind::nautilus:
        return "Nautilus";
    case FileManagerKind::nemo:
        return "Nemo";
    case FileManagerKind::thunar:
        return "Thunar";
    }
    return {};
}

bool FileManagerMenus::isInstalled(FileManagerKind kind) {
    std::string name(nameOf(kind));
    text::lowercaseBytes(nameOf(kind), name);
    return std::ranges::any_of(foldersOf("PATH", "/usr/bin:/bin"), [&name](const Bytes& folder) {
        return ::access((folder + "/" + name).c_str(), X_OK) == 0;
    });
}

MenuState FileManagerMenus::state(FileManagerKind kind) const {
    const MenuState own = kind == FileManagerKind::thunar ? actionState() : fileState(kind);
    return own == MenuState::absent && isSystemWide(kind) ? MenuState::systemWide : own;
}

MenuOutcome FileManagerMenus::add(FileManagerKind kind) const {
    if (!entry(kind))
        return {fmt::format("No menu can start \"{}\".", program)};
    if (state(kind) == MenuState::systemWide)
        return {};
    return kind == FileManagerKind::thunar ? addAction() : addFile(kind);
}

MenuOutcome FileManagerMenus::remove(FileManagerKind kind) const {
    if (kind == FileManagerKind::thunar)
        return removeAction();
    const MenuState own = fileState(kind);
    if (own != MenuState::present && own != MenuState::outdated)
        return {};
    const int error = FileSystem::sharedInstance().removeFile(pathOf(kind));
    return error == 0 ? MenuOutcome() : failed(pathOf(kind), error);
}

void FileManagerMenus::renew() const {
    for (const FileManagerKind kind : all) {
        if (state(kind) != MenuState::outdated)
            continue;
        if (const MenuOutcome outcome = add(kind); !outcome)
            debugLog("the entry of {} is not renewed: {}", nameOf(kind), outcome.message);
    }
}

std::optional<std::string> FileManagerMenus::entry(FileManagerKind kind) const {
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; };
    if (!program.starts_with('/') || !text::isUtf8(program) || std::ranges::any_of(program, isControl))
        return std::nullopt;
    switch (kind) {
    case FileManagerKind::dolphin:
        return MenuEntries::dolphin(program);
    case FileManagerKind::nautilus:
        return MenuEntries::nautilus(program);
    case FileManagerKind::nemo:
        return MenuEntries::nemo(program);
    case FileManagerKind::thunar:
        return MenuEntries::thunarCommand(program);
    }
    return std::nullopt;
}

// --- Entries that are files ---

MenuState FileManagerMenus::fileState(FileManagerKind kind) const {
    const std::string path = pathOf(kind);
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0)
        return MenuState::absent;
    std::string content;
    if (!S_ISREG(status.st_mode) || FileSystem::sharedInstance().readFile(path, content, entryLimit) != 0 ||
        content.find(MenuEntries::mark) == std::string::npos)
        return MenuState::foreign;
    const bool isFresh = content == entry(kind) && (status.st_mode & 0777U) == executable;
    return isFresh ? MenuState::present : MenuState::outdated;
}

MenuOutcome FileManagerMenus::addFile(FileManagerKind kind) const {
    switch (fileState(kind)) {
    case MenuState::foreign:
        return foreign(pathOf(kind), "Tavrin has not written it");
    case MenuState::present:
        return {};
    case MenuState::absent:
    case MenuState::outdated:
    case MenuState::systemWide:
        break;
    }
    return write(pathOf(kind), *entry(kind), executable);
}

// --- Thunar's list ---

MenuState FileManagerMenus::actionState() const {
    const StoredActions stored;
    if (!stored.outcome)
        return MenuState::foreign;
    if (!stored.isUsers || stored.actions.command().empty())
        return MenuState::absent;
    return stored.actions.command() == entry(FileManagerKind::thunar) ? MenuState::present
                                                                      : MenuState::outdated;
}

MenuOutcome FileManagerMenus::addAction() const {
    const StoredActions stored;
    if (!stored.outcome || (stored.isUsers && stored.actions.command() == entry(FileManagerKind::thunar)))
        return stored.outcome;
    return write(stored.path, stored.actions.with(*entry(FileManagerKind::thunar)), stored.mode);
}

/// A list that was only made to hold our action goes with it.
MenuOutcome FileManagerMenus::removeAction() const {
    const StoredActions stored;
    if (!stored.isUsers || stored.text.find(ThunarActions::id) == std::string::npos)
        return {};
    if (!stored.outcome || stored.actions.command().empty())
        return stored.outcome;
    if (stored.actions.without() != stored.sharedText)
        return write(stored.path, stored.actions.without(), stored.mode);
    const int error = FileSystem::sharedInstance().removeFile(stored.path);
    return error == 0 ? MenuOutcome() : failed(stored.path, error);
}

} // namespace tavrin
