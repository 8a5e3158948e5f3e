#pragma once

#include <QFrame>
#include <functional>
#include <vector>

class QLabel;
class QToolButton;

namespace tavrin {

/// What a bar says and offers.
struct BarMessage {
    enum class Kind { done, hint, warning, failure };
    struct Button {
        QString objectName;
        QString label;
        std::function<void()> effect; ///< the bar stays; it goes by `MessageBars::dismiss`
        QString tip = {};             ///< for a button that bears only a sign
    };

    QString objectName; ///< of the bar, and what it is called by
    Kind kind = Kind::hint;
    QString bold;       ///< one sentence
    QString plain = {}; ///< one sentence, or none
    std::vector<Button> buttons = {};
    /// What closing it by hand leads to besides; a bar with `isLasting` can't be closed.
    std::function<void()> closed = {};
    bool isLasting = false;
};

/// One message: a sign, its words, buttons that go to a line of their own where they do not fit beside them,
/// and a cross.
class MessageBar final : public QFrame {
    Q_OBJECT

  public:
    MessageBar();

    void present(const BarMessage& message);
    /// Puts other words in the place of these, and leaves the buttons alone.
    void setTexts(const QString& bold, const QString& plain);
    /// All that is said, for those who hear it.
    [[nodiscard]] QString words() const;

  signals:
    void closed();

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void makeButtons(const std::vector<BarMessage::Button>& buttons);
    void arrange();
    void applyColours();

    BarMessage::Kind kind = BarMessage::Kind::hint;
    QLabel* symbol;
    QLabel* text;
    QWidget* buttonRow;
    QToolButton* cross;
    bool isInOneLine = true;
};

/// The one place for messages, between the list and the status line: at most two bars, that of what has
/// happened above that of the problems in the list. They take no focus and do not move. Object name
/// "messageBars".
class MessageBars final : public QWidget {
    Q_OBJECT

  public:
    MessageBars();

    /// Shows a message in the place of the one that stands, which comes again when this one goes; one of the
    /// same name is replaced for good.
    void present(BarMessage message);
    /// The message of this name goes, if there is one.
    void dismiss(const QString& objectName);
    [[nodiscard]] bool isShowing(const QString& objectName) const;

    /// The second bar, about the list as it is shown.
    void showProblems(const BarMessage& message);
    void setProblemTexts(const QString& bold, const QString& plain) { problems->setTexts(bold, plain); }
    void hideProblems() { problems->hide(); }

  signals:
    /// A message has come up or gone.
    void changed();

  private:
    void showNewest();

    std::vector<BarMessage> messages; ///< the newest last, which is the one on show
    MessageBar* bar;
    MessageBar* problems;
};

} // namespace tavrin
