#include "presentation/run/Veil.h"

#include <QEvent>
#include <QPainter>

namespace tavrin {

Veil::Veil(QWidget& over) : QWidget(&over) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setGeometry(over.rect());
    over.installEventFilter(this);
    show();
    raise();
}

void Veil::lay(QWidget& over, bool isLaid) {
    over.setEnabled(!isLaid);
    auto* veil = over.findChild<Veil*>(QString(), Qt::FindDirectChildrenOnly);
    if (isLaid && !veil)
        new Veil(over);
    else if (!isLaid)
        delete veil;
}

bool Veil::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    else if (event->type() == QEvent::ChildAdded)
        raise();
    return QWidget::eventFilter(watched, event);
}

void Veil::paintEvent(QPaintEvent*) {
    constexpr float share = 0.25F;
    QColor ground = palette().color(QPalette::Window);
    ground.setAlphaF(share);
    QPainter(this).fillRect(rect(), ground);
}

} // namespace tavrin
