#pragma once

#include "presentation/WindowServices.h"

#include <QObject>
#include <memory>
#include <string>
#include <vector>

namespace tavrin {

class MessageBars;
class ParameterBinding;

/// Says of folders that were added while subfolders are off that they are renamed themselves, and offers what
/// is in them instead. What they hold is counted on a worker. Bar "folderOffer". Main thread.
class FolderOffer final : public QObject {
    Q_OBJECT

  public:
    /// The bars must outlive it.
    FolderOffer(const WindowServices& services, MessageBars& shownIn, QObject* parent);
    ~FolderOffer() override;

    /// Paths in bytes that the user has added. Only so many of them are looked at as can be dropped by hand.
    void pathsAdded(const std::vector<std::string>& paths);
    /// The list is empty again.
    void withdraw();

  private:
    /// What was found among the paths.
    struct Found {
        std::size_t folders = 0;
        std::string name; ///< of the first folder, in bytes
        std::size_t files = 0;
        std::size_t subfolders = 0;
        [[nodiscard]] bool isFull() const;
    };

    [[nodiscard]] static Found look(const std::vector<std::string>& paths);
    static void count(const std::string& folder, Found& found);
    [[nodiscard]] bool isCalledFor() const;
    void present(const Found& found);

    const WindowServices services;
    MessageBars& bars;
    std::vector<std::unique_ptr<ParameterBinding>> bindings;
};

} // namespace tavrin
