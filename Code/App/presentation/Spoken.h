#pragma once

#include <QLabel>
#include <QTimer>

namespace tavrin {

/// What a screen reader is to say although nothing that has the focus has changed. An almost invisible label
/// that plays the part of a notification coming up, which is what readers tell with this version of Qt. The
/// window has one. Main thread.
class Spoken final : public QLabel {
    Q_OBJECT

  public:
    explicit Spoken(QWidget* parent);
    ~Spoken() override;

    /// Says a text, which takes the place of one that is still being read; nothing where no window stands.
    static void say(const QString& text);
    /// Says it when nothing else is to be said for a second: not while somebody types. An empty text calls
    /// that off.
    static void sayAtRest(const QString& text);
    /// Takes down what a notification of another class has said.
    static void note(const QString& text);
    /// What was said last.
    [[nodiscard]] static QString lastSaid();
    /// Has widgets of this class come up as notifications with their accessible names, without the focus.
    /// To be called before the first of them is asked for its interface.
    static void playNotification(const QString& className);
    /// Tells that a widget of such a class has come up.
    static void tellShown(QWidget& widget);

  private:
    QTimer rest;
    QString waiting;
};

} // namespace tavrin
