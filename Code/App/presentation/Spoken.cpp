#include "presentation/Spoken.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QSet>
#include <chrono>

namespace tavrin {

namespace {

Spoken* present = nullptr;

QSet<QString>& notificationClasses() {
    static QSet<QString> classes;
    return classes;
}

QAccessibleInterface* makeNotification(const QString& className, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (!widget || !notificationClasses().contains(className))
        return nullptr;
    return new QAccessibleWidget(widget, QAccessible::Notification);
}

} // namespace

// The text is set later: a label that is made with one asks for its interface in its constructor, where it is
// no more than a label.
Spoken::Spoken(QWidget* parent) : QLabel(parent) {
    playNotification(staticMetaObject.className());
    setObjectName("spoken");
    setFixedSize(1, 1);
    setFocusPolicy(Qt::NoFocus);
    constexpr std::chrono::seconds restLength(1);
    rest.setSingleShot(true);
    rest.setInterval(restLength);
    connect(&rest, &QTimer::timeout, this, [this] { say(waiting); });
    present = this;
}

Spoken::~Spoken() {
    if (present == this)
        present = nullptr;
}

void Spoken::say(const QString& text) {
    if (!present || text.isEmpty())
        return;
    present->setAccessibleName(text);
    tellShown(*present);
}

void Spoken::sayAtRest(const QString& text) {
    if (!present)
        return;
    present->waiting = text;
    if (text.isEmpty())
        present->rest.stop();
    else
        present->rest.start();
}

void Spoken::note(const QString& text) {
    if (present)
        present->setAccessibleName(text);
}

QString Spoken::lastSaid() { return present ? present->accessibleName() : QString(); }

void Spoken::playNotification(const QString& className) {
    if (notificationClasses().isEmpty())
        QAccessible::installFactory(makeNotification);
    notificationClasses().insert(className);
}

void Spoken::tellShown(QWidget& widget) {
    QAccessibleEvent event(&widget, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&event);
}

} // namespace tavrin
