#pragma once

#include <QString>
#include <QWidget>
#include <atomic>
#include <memory>
#include <optional>
#include <vector>

class QLabel;
class QLineEdit;
class QTableView;

namespace tavrin {

class PreviewTableModel;
class RenameEngine;

/// Jumps from one name that holds a text to the next; it hides nothing. The matches are looked for on another
/// thread; while that goes on their number has an ellipsis. Object name "findBar".
class FindBar final : public QWidget {
    Q_OBJECT

  public:
    FindBar(QTableView& view, PreviewTableModel& model, RenameEngine& engine);
    ~FindBar() override;

    void open();
    void close();
    /// Goes to the next match, or the one before; without a text to look for the bar opens.
    void goOn(bool forward);
    /// Whether it shows and has a text to look for.
    [[nodiscard]] bool isLooking() const;

  signals:
    /// The rows that are known to hold the text, in ascending order; none while nothing is looked for.
    void matchesChanged(const std::vector<int>& rows);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    /// A search under way, which its worker reads.
    struct Search {
        std::atomic<bool> isGivenUp = false;
    };
    /// Where to go as soon as a match is there.
    struct Aim {
        bool isForward;
        bool mayStay; ///< the current row will do
    };

    void look(std::optional<Aim> next);
    void found(std::vector<int> rows, bool isAll);
    void follow();
    void tell();
    [[nodiscard]] bool isInVain() const;
    void applyColours();
    void stop();

    QTableView& view;
    PreviewTableModel& model;
    RenameEngine& engine;
    QLineEdit* field;
    QLabel* result;
    std::shared_ptr<Search> search;
    std::vector<int> matches; ///< rows of the table, in ascending order
    bool areAll = true;
    std::optional<Aim> aim;
};

} // namespace tavrin
