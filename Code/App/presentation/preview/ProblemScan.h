#pragma once

#include "presentation/WindowServices.h"
#include "presentation/preview/PreviewTableModel.h"

#include <QObject>
#include <QTimer>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace tavrin {

/// Foresees which of the new names will fail: names that no file can have, names that two items of a folder
/// would share, names that a file has which is not in the list. It reads the rows in slices between other
/// events, and the folders on a thread of its own, with copies of names alone. Main thread.
class ProblemScan final : public QObject {
  public:
    using Found = std::function<void(PreviewTableModel::Problems)>;

    ProblemScan(WindowServices services, Found whenFound);
    ~ProblemScan() override;

    /// Begins anew with the list as it is now.
    void start();

    /// A new name of a row, in the bytes of the file system.
    struct Wish {
        RowId row;
        std::string name;
    };
    using Folders = std::map<std::string, std::vector<Wish>>;
    /// The wishes for names that exist in their folders already. Any thread.
    [[nodiscard]] static std::vector<std::pair<RowId, std::string>> takenNames(const Folders& folders,
                                                                               const std::stop_token& stop);

  private:
    void readSlice();
    void takeRow(const PreviewList::Row& row);
    void readFolders();
    void judge(const std::vector<std::pair<RowId, std::string>>& taken);

    const WindowServices services;
    Found found;
    QTimer slices;
    std::vector<RowId> rows;
    std::size_t next = 0;
    Folders wishes;
    std::map<std::string, std::map<std::string, RowId>> byName; ///< new names by folder, to find equal ones
    PreviewTableModel::Problems problems;
    std::uint64_t generation = 0;
    std::jthread reader;
};

} // namespace tavrin
