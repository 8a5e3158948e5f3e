#pragma once

#include "presentation/WindowServices.h"
#include "presentation/WorkerThread.h"
#include "presentation/preview/PreviewTableModel.h"

#include <QObject>
#include <QTimer>
#include <atomic>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace tavrin {

/// Foresees which of the new names will fail: names that no file can have, names that two items of a folder
/// would share, names that a file has which is not in the list. It reads the rows in slices between other
/// events, and compares them with each other and with the folders on a thread of its own, which gets copies
/// of names alone. Nothing here ever waits for that thread but the destructor. Main thread.
class ProblemScan final : public QObject {
    Q_OBJECT

  public:
    struct Findings {
        PreviewTableModel::Problems problems;
        std::size_t madeDistinct = 0; ///< names that were changed so that no other item has them
    };

    ProblemScan(const WindowServices& services, QObject* parent);
    ~ProblemScan() override;

    /// Begins anew with the list as it is now.
    void start();
    /// What has been found out; once.
    [[nodiscard]] Findings takeFindings();

    /// A new name of a row, in the bytes of the file system.
    struct Wish {
        RowId row;
        std::string name;
    };
    using Folders = std::unordered_map<std::string, std::vector<Wish>>;
    /// A row whose new name exists already, by its path.
    struct Taken {
        RowId row;
        std::string path;
    };
    struct Comparison {
        std::vector<RowId> equal; ///< rows that want the same name as another
        std::vector<Taken> taken;
    };
    /// Compares the wishes with each other and with what is in their folders. Any thread.
    [[nodiscard]] static Comparison compare(const Folders& folders, const std::atomic<bool>& isStopped);

  signals:
    /// The findings are there to be taken.
    void found();

  private:
    using Slice = void (ProblemScan::*)();

    void proceedWith(Slice slice);
    void readSlice();
    void takeRow(const PreviewList::Row& row);
    void compareOnThread();
    void compared(Comparison result);
    void judgeSlice();

    const WindowServices services;
    QTimer slices;
    Slice current = nullptr;
    std::size_t next = 0;
    std::vector<RowId> rows;
    Folders wishes;
    std::vector<Taken> taken;
    Findings findings;
    std::shared_ptr<std::atomic<bool>> isStopped;              ///< of the scan under way
    std::shared_ptr<char> lifetime = std::make_shared<char>(); ///< for results that come late
    WorkerThread thread;
};

} // namespace tavrin
