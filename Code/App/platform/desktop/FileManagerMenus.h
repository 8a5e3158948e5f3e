#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// File managers whose menus take an entry.
enum class FileManagerKind { dolphin, nautilus, nemo, thunar };

enum class MenuState {
    absent,
    outdated, ///< ours, but it starts another program or is of another form
    present,
    systemWide, ///< from an installed package, for all users
    foreign     ///< a file of this name that is not ours, or one that can't be used; it is left alone
};

/// Whether an operation worked; `message` says why not, for the user.
struct MenuOutcome {
    std::string message;
    explicit operator bool() const { return message.empty(); }
};

/// The user's entry "Rename with Tavrin…" in the menus of file managers. Files that are not ours are never
/// replaced, and of Thunar's list of actions, the user's own file, nothing but our action changes. Main
/// thread.
class FileManagerMenus {
  public:
    /// `program` is the window's program that the entries start: an absolute path in bytes.
    explicit FileManagerMenus(std::string program);
    ~FileManagerMenus();
    FileManagerMenus(const FileManagerMenus&) = delete;
    FileManagerMenus& operator=(const FileManagerMenus&) = delete;
    /// The program of this process; empty where that can't be told.
    static std::string runningProgram();
    /// What the application registered, else null.
    static FileManagerMenus* sharedInstance();
    /// Not owned; null unregisters, and so does its end.
    static void setSharedInstance(FileManagerMenus* menus);

    static constexpr std::array all{FileManagerKind::dolphin, FileManagerKind::nautilus,
                                    FileManagerKind::nemo, FileManagerKind::thunar};
    static std::string_view nameOf(FileManagerKind kind);
    /// Whether the file manager itself is among the programs of PATH.
    [[nodiscard]] static bool isInstalled(FileManagerKind kind);

    [[nodiscard]] MenuState state(FileManagerKind kind) const;
    /// Writes the entry, or renews it. Nothing to do where there is one for all users.
    [[nodiscard]] MenuOutcome add(FileManagerKind kind) const;
    /// Nothing to do where there is none of the user's.
    [[nodiscard]] MenuOutcome remove(FileManagerKind kind) const;
    /// Renews the entries that are out of date; none is added. What fails is logged.
    void renew() const;

  private:
    [[nodiscard]] MenuState fileState(FileManagerKind kind) const;
    [[nodiscard]] MenuState actionState() const;
    [[nodiscard]] MenuOutcome addFile(FileManagerKind kind) const;
    [[nodiscard]] MenuOutcome addAction() const;
    [[nodiscard]] MenuOutcome removeAction() const;
    [[nodiscard]] std::optional<std::string> entry(FileManagerKind kind) const;

    std::string program;
};

} // namespace tavrin
