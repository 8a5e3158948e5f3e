#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QLabel;
class QLineEdit;
class QToolButton;

namespace tavrin {

class LinesEdit;

/// What is looked for in lines: a text, or a regular expression of the kind that actions use.
class LineSearch {
  public:
    LineSearch(const QString& wanted, bool isPattern, bool ignoresCase);
    ~LineSearch();

    struct Match {
        int start = 0;
        int length = 0; ///< in UTF-16 code units
    };
    /// From left to right.
    [[nodiscard]] std::vector<Match> matches(const QString& line) const;
    /// The line with its matches replaced: all of them, or the one of this index. Absent where there is none,
    /// and where the replacement makes no text.
    [[nodiscard]] std::optional<QString> replaced(const QString& line, const QString& replacement,
                                                  std::optional<std::size_t> only = {}) const;
    /// Why nothing can be found; empty where it can.
    [[nodiscard]] QString failure() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

/// Finds and replaces in the lines of a text. Counts in slices, so that no event is held up. Object name
/// "replaceBar".
class ReplaceBar final : public QWidget {
    Q_OBJECT

  public:
    /// What becomes of a line; absent where nothing does.
    using Replacement = std::function<std::optional<QString>(const QString& line)>;

    explicit ReplaceBar(LinesEdit& text);
    ~ReplaceBar() override;

    void open(bool withReplacement);
    void close();
    void goToMatch(bool forward);

  signals:
    /// A line is to become another, or all lines are that a search matches: one change to take back.
    void lineReplaced(int line, const QString& text);
    void allReplaced(const tavrin::ReplaceBar::Replacement& replace);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void searchChanged();
    void recount();
    void countOn();
    void showCount();
    void applyColours();
    void replaceThis();
    void replaceAll();
    void seekOn();
    /// Its index within the line.
    [[nodiscard]] std::optional<std::size_t> selectedMatch() const;

    LinesEdit& lines;
    QLineEdit* findField;
    QLineEdit* replaceField;
    QToolButton* caseButton;
    QToolButton* patternButton;
    QLabel* result;
    bool isProblem = false; ///< what it tells
    QWidget* replacePart;
    std::shared_ptr<LineSearch> search; ///< null without anything to look for
    QTimer counting;
    int linesCounted = 0;
    std::size_t matches = 0;
    std::size_t matchesBefore = 0; ///< up to the caret
    QTimer seeking;
    bool isForward = true;
    int linesSought = 0; ///< from that of the caret on
};

} // namespace tavrin
