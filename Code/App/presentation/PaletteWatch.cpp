#include "presentation/PaletteWatch.h"

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QPointer>

namespace tavrin {

namespace {

/// One for all who wait, since it sees every event of the application.
class PaletteWatch final : public QObject {
    Q_OBJECT

  public:
    PaletteWatch() : QObject(qApp) { qApp->installEventFilter(this); }

  signals:
    void changed();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ApplicationPaletteChange && watched == qApp)
            emit changed();
        return false;
    }
};

} // namespace

void whenPaletteChanges(QObject* owner, const std::function<void()>& call) {
    static QPointer<PaletteWatch> watch; // which goes with the application
    if (!watch)
        watch = new PaletteWatch;
    QObject::connect(watch, &PaletteWatch::changed, owner, call);
}

void recolourLinks(QLabel& label) {
    whenPaletteChanges(&label, [&label] {
        const QString text = label.text();
        label.setText({}); // the same text would be none to set
        label.setText(text);
    });
}

} // namespace tavrin

#include "PaletteWatch.moc"
