#include "presentation/TextCommands.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QLineEdit>
#include <QMetaMethod>

namespace tavrin {

bool TextCommands::perform(const char* command) {
    QWidget* field = QApplication::focusWidget();
    if (qobject_cast<QAbstractSpinBox*>(field))
        field = field->findChild<QLineEdit*>();
    if (!field || field->metaObject()->indexOfSlot(QByteArray(command) + "()") < 0)
        return false;
    return QMetaObject::invokeMethod(field, command);
}

} // namespace tavrin
