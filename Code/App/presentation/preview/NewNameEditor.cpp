#include "presentation/preview/NewNameEditor.h"

#include "engine/pipeline/RenameEngine.h"
#include "presentation/PaletteWatch.h"
#include "presentation/QtText.h"
#include "presentation/WindowColours.h"
#include "presentation/preview/PreviewTableModel.h"
#include "presentation/preview/PreviewTableView.h"
#include "shell/commands/HandEdits.h"
#include "store/paging/StoreError.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QScrollBar>
#include <QValidator>
#include <algorithm>
#include <chrono>
#include <memory>
#include <sys/stat.h>

namespace tavrin {

namespace {

constexpr std::chrono::milliseconds restBeforeLooking(200);
constexpr int leastHintHeight = 24;

/// Takes no more control characters than the name had.
class NoControls final : public QValidator {
  public:
    NoControls(QString name, QObject* parent) : QValidator(parent), allowed(countIn(name)) {}

    State validate(QString& text, int&) const override {
        return countIn(text) > allowed ? Invalid : Acceptable;
    }

  private:
    static qsizetype countIn(const QString& text) {
        return std::ranges::count_if(text, [](QChar unit) {
            return unit.category() == QChar::Other_Control || unit == QChar::LineSeparator ||
                   unit == QChar::ParagraphSeparator;
        });
    }

    qsizetype allowed;
};

/// The bytes that a name shown has on the disk; nothing where it can't be there.
std::optional<std::string> bytesOf(const QString& shown) {
    std::u16string name = fromQString(shown);
    text::replaceUnit(name, u'/', u':');
    return text::toBytes(name);
}

/// Where the extension begins, with its dot; the length where there is none.
qsizetype extensionOf(const QString& name) {
    const qsizetype dot = name.lastIndexOf('.');
    return dot > 0 ? dot : name.size();
}

} // namespace

NewNameEditor::NewNameEditor(const Parts& all)
    : QLineEdit(all.view.viewport()), parts(all), hint(new QLabel(all.view.viewport())) {
    setObjectName("newNameEditor");
    whenPaletteChanges(this, [this] { applyColours(); });
    setAccessibleName(tr("New name"));
    hint->setObjectName("newNameHint");
    hint->setAutoFillBackground(true);
    hint->setBackgroundRole(QPalette::Window); // not those of the list that it lies in
    hint->setForegroundRole(QPalette::WindowText);
    hint->setTextFormat(Qt::PlainText);
    hint->setMargin(4);
    rest.setSingleShot(true);
    rest.setInterval(restBeforeLooking);
    connect(&rest, &QTimer::timeout, this, &NewNameEditor::lookForTaken);
    connect(this, &QLineEdit::textChanged, this, &NewNameEditor::judge);
    connect(this, &QLineEdit::inputRejected, this, [] { QApplication::beep(); });
    connect(&all.model, &QAbstractItemModel::modelReset, this, &NewNameEditor::follow, Qt::QueuedConnection);
    for (const QScrollBar* bar : {all.view.verticalScrollBar(), all.view.horizontalScrollBar()})
        connect(bar, &QScrollBar::valueChanged, this, &NewNameEditor::follow, Qt::QueuedConnection);
    connect(&all.view, &PreviewTableView::widthChanged, this, &NewNameEditor::follow, Qt::QueuedConnection);
    hide();
    hint->hide();
}

void NewNameEditor::edit(int row) {
    if (isEditing())
        keep();
    if (row < 0 || row >= parts.model.rowCount())
        return;
    edited = parts.model.rowAt(row);
    const QModelIndex index = parts.model.index(row, PreviewTableModel::newName);
    parts.view.setCurrentIndex(index);
    parts.view.scrollTo(index);
    before = toQString(edited.finalName);
    delete validator();
    setValidator(nullptr);
    setText(before);
    setValidator(new NoControls(before, this));
    follow();
    show();
    hint->show();
    raise();
    hint->raise();
    setFocus(Qt::OtherFocusReason);
    part = -1;
    selectNextPart();
    lookForLimit();
    judge();
}

void NewNameEditor::selectNextPart() {
    const qsizetype extension = extensionOf(text());
    part = (part + 1) % 3;
    if (part == 0)
        setSelection(0, static_cast<int>(extension));
    else if (part == 1 || extension + 1 >= text().size())
        selectAll();
    else
        setSelection(static_cast<int>(extension) + 1, static_cast<int>(text().size() - extension) - 1);
}

void NewNameEditor::follow() {
    if (!isEditing())
        return;
    const std::optional<int> row = parts.model.rowOf(edited.id);
    if (!row) {
        close();
        return;
    }
    const QRect cell = parts.view.visualRect(parts.model.index(*row, PreviewTableModel::newName));
    setGeometry(cell.adjusted(0, -1, 0, 1));
    const int height = std::max(leastHintHeight, hint->sizeHint().height());
    const int width = std::max(cell.width(), std::min(hint->sizeHint().width(), parentWidget()->width()));
    const bool isBelow = cell.bottom() + height < parentWidget()->height();
    const int left = std::clamp(cell.left(), 0, std::max(0, parentWidget()->width() - width));
    hint->setGeometry(left, isBelow ? cell.bottom() + 2 : cell.top() - height - 1, width, height);
}

// --- Keys ---

bool NewNameEditor::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        // The list has commands on these keys.
        const int key = static_cast<QKeyEvent*>(event)->key();
        for (const int own : {Qt::Key_F2, Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space})
            if (key == own)
                event->accept();
    } else if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Tab || key == Qt::Key_Backtab) {
            goBy(key == Qt::Key_Tab ? 1 : -1);
            return true;
        }
    }
    return QLineEdit::event(event);
}

void NewNameEditor::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_F2:
        if (event->modifiers() == Qt::NoModifier)
            selectNextPart();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        finish();
        parts.view.setFocus();
        return;
    case Qt::Key_Escape:
        close();
        parts.view.setFocus();
        return;
    case Qt::Key_Down:
        goBy(1);
        return;
    case Qt::Key_Up:
        goBy(-1);
        return;
    default:
        QLineEdit::keyPressEvent(event);
    }
}

void NewNameEditor::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason)
        finish();
}

void NewNameEditor::goBy(int rows) {
    const std::optional<int> row = parts.model.rowOf(edited.id);
    const int next = row.value_or(-1) + rows;
    if (row && next >= 0 && next < parts.model.rowCount()) {
        edit(next);
        return;
    }
    finish();
    parts.view.setFocus();
}

void NewNameEditor::finish() {
    keep();
    close();
}

void NewNameEditor::keep() {
    if (!isEditing() || text() == before)
        return;
    emit changing();
    if (!parts.edits.pin(edited, fromQString(text())))
        QApplication::beep();
    before = text();
}

void NewNameEditor::close() {
    edited = {};
    rest.stop();
    hide();
    hint->hide();
}

// --- What is said of it ---

QString NewNameEditor::fault() const {
    const std::optional<std::string> bytes = bytesOf(text());
    if (!bytes)
        return tr("cuts a character in two");
    if (text() == "." || text() == "..")
        return tr("“.” and “..” cannot be names");
    const std::size_t limit = volume.nameLimit;
    const auto units = static_cast<std::size_t>(text().size());
    if (limit == 0 || bytes->size() <= limit || (volume.countsUnits && units <= limit))
        return {};
    return volume.countsUnits ? tr("%L1 characters, %L2 fit").arg(units).arg(limit)
                              : tr("%L1 bytes, %L2 fit").arg(bytes->size()).arg(limit);
}

/// How long a name may be in the row's folder. On another thread, as the next.
void NewNameEditor::lookForLimit() {
    const std::string folder(PathParts(edited.fullPath).folder);
    if (folder == folderOfVolume)
        return;
    folderOfVolume = folder;
    volume = {};
    parts.engine.readRows([folder, editor = QPointer(this)](StoreContext&) -> std::function<void()> {
        std::unique_ptr<OpenFolder> place;
        VolumeFacts facts;
        if (FileSystem::sharedInstance().openFolder(folder, place) != 0 || place->volume(facts) != 0)
            return nullptr;
        return [editor, folder, facts] {
            if (!editor || editor->folderOfVolume != folder)
                return;
            editor->volume = facts;
            if (editor->isEditing())
                editor->judge();
        };
    });
}

void NewNameEditor::judge() {
    if (!isEditing())
        return;
    const QString wrong = fault();
    //: Below a field in which a name is typed; as short as possible
    tell(wrong.isEmpty() ? tr("Return keeps · Tab next row · Esc gives up · empty unpins") : wrong,
         !wrong.isEmpty());
    rest.stop();
    if (wrong.isEmpty() && !text().isEmpty() && text() != before)
        rest.start();
}

/// On another thread, since a disk may be slow to answer.
void NewNameEditor::lookForTaken() {
    const std::optional<std::string> name = bytesOf(text());
    if (!name || !isEditing())
        return;
    const std::string path = joinedPath(PathParts(edited.fullPath).folder, *name);
    parts.engine.readRows([path, present = edited.fullPath, typed = text(), id = edited.id,
                           editor = QPointer(this)](StoreContext& context) -> std::function<void()> {
        struct stat there {};
        struct stat own {};
        const bool isThere = ::lstat(path.c_str(), &there) == 0;
        // Under another spelling it may be the item itself.
        const bool isOwn = isThere && ::lstat(present.c_str(), &own) == 0 && own.st_dev == there.st_dev &&
                           own.st_ino == there.st_ino;
        try {
            if (!isThere || isOwn || context.fileWithPath(path) != noRow)
                return nullptr;
        } catch (const StoreError&) {
            return nullptr;
        }
        return [editor, typed, id] {
            if (editor && editor->edited.id == id && editor->text() == typed)
                editor->tell(tr("taken by a file not in the list"), true);
        };
    });
}

void NewNameEditor::tell(const QString& words, bool isBad) {
    hint->setText(words);
    setAccessibleDescription(words);
    isHintBad = isBad;
    applyColours();
    follow();
}

void NewNameEditor::applyColours() {
    const WindowColours& colours = WindowColours::of(QApplication::palette());
    QPalette tinted;
    tinted.setColor(QPalette::Window, isHintBad ? colours.errorTint : colours.infoTint);
    tinted.setColor(QPalette::WindowText, isHintBad ? colours.errorText : colours.infoText);
    hint->setPalette(tinted);
}

} // namespace tavrin
