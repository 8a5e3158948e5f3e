#pragma once

#include "presentation/LatestWork.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tavrin {

class EditorFile;

/// Lines that stand in a private file, which the desktop's text editor has open: tells what becomes of them
/// each time that it saves. Reading and comparing are done on another thread. Main thread.
class EditorLink final : public QObject {
    Q_OBJECT

  public:
    /// What a line stands for: the path of an item, in bytes.
    struct Line {
        std::string path;
        std::u16string text;
        bool isLocked = false; ///< changes of it do not count
    };
    struct Saved {
        struct Change {
            std::u16string text;
            bool isNew = true; ///< it was another when the editor last saved
        };
        /// By path: lines that the editor has changed since they were written, and those that it has put
        /// back.
        std::unordered_map<std::string, Change> lines;
        std::size_t lockedLines = 0; ///< that were changed and are not among `lines`
        std::size_t cutLines = 0;    ///< from which characters were left away
    };

    EditorLink();
    ~EditorLink() override;

    /// Writes the lines and has the editor open them; anew where they are open already.
    void open(std::vector<Line> lines);
    /// The file goes, whether an editor still shows it or not.
    void close();
    [[nodiscard]] bool isOpen() const { return file != nullptr; }

  signals:
    void opened();
    void saved(const std::shared_ptr<const tavrin::EditorLink::Saved>& saved);
    /// What went wrong, as two sentences, the second of which may be empty. Nothing has been taken over.
    void failed(const QString& what, const QString& detail);

  private:
    struct Written;
    /// Changed lines by number, as last saved.
    using Changes = std::vector<std::pair<std::size_t, std::u16string>>;
    struct News {
        std::shared_ptr<const Saved> saved; ///< null where nothing has changed
        Changes changes;
        QString failure = {}; ///< empty for none
        QString detail = {};
        std::string bytes = {}; ///< of the file
    };

    void watch();
    void look();
    void take(News news);
    /// On another thread.
    [[nodiscard]] static News read(const EditorFile& file, const Written& written, const Changes& last,
                                   const std::string& lastBytes);
    [[nodiscard]] static std::shared_ptr<const Saved> compare(const Changes& changes, const Written& written,
                                                              const Changes& last, std::size_t cutLines);

    std::shared_ptr<EditorFile> file; ///< null while nothing is open
    std::shared_ptr<const Written> written;
    std::shared_ptr<const Changes> last;
    std::shared_ptr<const std::string> lastBytes;
    QFileSystemWatcher watcher;
    QTimer rest; ///< since the file has changed: an editor may still be writing it
    LatestWork work;
};

} // namespace tavrin
