#pragma once

#include "presentation/cards/CardContent.h"
#include "presentation/cards/CardLayer.h"

#include <QFrame>
#include <QTimer>
#include <functional>

class QAbstractButton;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace tavrin {

/// A question or a message that lies over a part of a window while all else in it is off. Return means the
/// default button, Escape the one that stops; Tab stays inside. For a moment after it has opened or changed
/// it is deaf to keys and clicks, and a key that is held down never answers. Its object name is that of its
/// content.
class Card final : public QFrame {
    Q_OBJECT

  public:
    using Handler = std::function<void(std::size_t button)>;

    /// One over `over`, which is closed and gone with its answer. The handler is not called where the window
    /// goes before.
    static Card* open(QWidget& over, const CardContent& content, Handler handler);
    /// One without content. `lingers`: for a moment after an answer it stays, to be filled anew without a
    /// flicker.
    explicit Card(QWidget& over, bool lingers = false);

    /// What it asks from now on; `body` stands below the head, in place of a text, and becomes the card's.
    void fill(const CardContent& content, QWidget* body, Handler handler);
    void setPlaces(CardLayer::Places places);
    /// Answers like Escape, at once, and closes.
    void withdraw();
    /// Whether a question is open on it that has no answer yet.
    [[nodiscard]] bool isAsking() const { return handler != nullptr; }
    [[nodiscard]] bool isDeaf() const { return deafness.isActive(); }
    /// The cards of a window that are open.
    [[nodiscard]] static QList<Card*> in(const QWidget& window);

    /// The height that it takes at a width; where it would be more than `highest` its body scrolls.
    int fitTo(int width, int highest);
    [[nodiscard]] static QColor ground(const QPalette& palette);
    [[nodiscard]] static QColor outline(const QPalette& palette);

  signals:
    /// It is about to go.
    void closed();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void setButtons(const CardContent& content);
    void setHints(const CardContent& content);
    void listenTo(QWidget& widget);
    void answer(std::size_t button);
    void close();
    void applyColours();

    CardLayer* layer; ///< the parent, which goes with the card
    QPointer<QWidget> focusBefore;
    bool lingers;
    CardContent shown;
    Handler handler;
    QTimer deafness;
    QTimer lingering;
    QLabel* head;
    QScrollArea* bodyArea;
    QHBoxLayout* buttonRow;
    QLabel* escapeHint;
    QLabel* keysHint;
    std::vector<QPushButton*> buttons;
};

} // namespace tavrin
