#pragma once

#include "presentation/LatestWork.h"
#include "presentation/WindowServices.h"
#include "presentation/names/EditorLink.h"
#include "presentation/names/LinesEdit.h"
#include "presentation/names/TextPageBars.h"
#include "shell/commands/HandEdits.h"
#include "shell/names/NameLines.h"
#include "shell/preview/SlicedWork.h"
#include "store/rows/NodeRow.h"

#include <QTimer>
#include <QWidget>
#include <functional>
#include <optional>
#include <unordered_set>
#include <vector>

class QLabel;

namespace tavrin {

class PreviewTableModel;
class ReplaceBar;

/// The new names of the rows on show as a text, one a line, in the place of the list. What is edited there is
/// a name by hand as soon as typing rests; all other lines follow the steps. Object name "namesAsTextPage".
class NamesAsTextPage final : public QWidget {
    Q_OBJECT

  public:
    /// The most lines that are edited as a text.
    static constexpr int mostLines = static_cast<int>(nameLines::mostLines);

    /// What is said where there are more.
    [[nodiscard]] static QString tooManyRows();

    NamesAsTextPage(const WindowServices& services, PreviewTableModel& model, MessageBars& bars);
    ~NamesAsTextPage() override;

    /// Fills the page, with the caret in the line of this row of the list.
    void open(int row);
    /// What has been typed counts, and the list comes back.
    void close();
    [[nodiscard]] bool isOpen() const { return isOpened; }
    /// The rows on show, or their names, may have changed. Closes the page where the list is empty, or too
    /// long.
    void rowsChanged();
    /// What has been typed counts at once, however much it is.
    void finish();
    void goToRow(int row);
    [[nodiscard]] int currentLine() const;
    void openFind(bool withReplacement);
    void goToMatch(bool forward);

  signals:
    /// With the line of the caret.
    void closed(int line);
    void lineChanged();
    /// Names by hand are about to change.
    void changing();
    void undoWanted();
    void redoWanted();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    /// What is to become of a line; absent for one that stays.
    using LineChange = LinesEdit::Change;
    struct Return;
    using Lines = std::shared_ptr<const nameLines::Pasted>;

    [[nodiscard]] QLayout* makeHead();
    void fill(RowId current, int otherwise = 0);
    [[nodiscard]] RowId currentRow() const;
    void flush();
    [[nodiscard]] SlicedWork::Step settling();
    void updateLines();
    void linesEdited(int first, int last);
    void noteEdited(int first, int last);
    void settle(int line, const PreviewList::Row& row, std::vector<NameByHand>& names);
    void pasteLines(int first, const QString& text);
    void pasteIntoBlock(const LineBlock& block, const QString& text);
    /// Calls with the text in lines, at once or when another thread is done with a long one.
    void withPasted(const QString& text, int wanted, std::function<void(Lines)> then);
    void tellOfPaste(const nameLines::Pasted& pasted);
    /// Changes lines as an edit of the user's, in slices.
    void changeLines(int first, int last, LineChange change);
    void openInEditor();
    void editorHasSaved(const std::shared_ptr<const EditorLink::Saved>& saved);
    void takeLater(const std::shared_ptr<const EditorLink::Saved>& saved);
    void takeLine(Return& all, const PreviewList::Row& row);
    void endReturn(Return& all);
    /// When all that has been typed counts.
    void afterEdits(const std::function<void()>& action);
    [[nodiscard]] bool canStay() const;
    void showCounts();
    void tellLine();
    void goToChanged(bool forward);
    [[nodiscard]] LinesEdit::Line describe(int line) const;
    [[nodiscard]] bool isLocked(int line) const;
    [[nodiscard]] int lineCount() const;
    [[nodiscard]] std::vector<PreviewList::Row> rowsOf(int first, int count) const;
    [[nodiscard]] QStringList textsOf(int first, int count) const;
    /// What stands in the line of a row that is not in hand: a name by hand even before a preview knows of
    /// it.
    [[nodiscard]] QString textFor(const PreviewList::Row& row) const;

    const WindowServices services;
    MainController& controller;
    PreviewTableModel& model;
    TextPageBars bars;
    LinesEdit* lines;
    ReplaceBar* replaceBar;
    QLabel* counts;
    SlicedWork work;
    EditorLink editor;
    LatestWork pasting;
    std::shared_ptr<const EditorLink::Saved> lastSaved; ///< until it has been taken over
    QTimer rest;                                        ///< since the last edit
    bool isOpened = false;
    bool isChanging = false;                        ///< an edit of many lines is under way
    std::vector<RowId> shownIds;                    ///< by line
    std::vector<bool> isEdited;                     ///< by line: not a name by hand yet
    std::optional<std::pair<int, int>> editedLines; ///< which all lie between these
    std::unordered_set<RowId> emptied;              ///< their lines stay empty, and the steps name them
    NamePins before;                                ///< as it was when the page was opened
    int toldLine = -1;
    int changesUnderWay = 0; ///< of many lines each
    bool isHurried = false;  ///< lines need not follow their rows just now
    bool isBehind = false;   ///< so they have not
};

} // namespace tavrin
