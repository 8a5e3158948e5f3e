#include "presentation/names/NamesAsTextPage.h"

#include "platform/propertylists/UserDefaults.h"
#include "presentation/Buttons.h"
#include "presentation/GlyphIcon.h"
#include "presentation/MessageBars.h"
#include "presentation/QtText.h"
#include "presentation/Spoken.h"
#include "presentation/names/LinesEdit.h"
#include "presentation/names/ReplaceBar.h"
#include "presentation/preview/NameDelegate.h"
#include "presentation/preview/PreviewTableModel.h"
#include "shell/MainController.h"
#include "shell/names/NameLines.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTextBlock>
#include <QThreadPool>
#include <QToolButton>
#include <algorithm>

namespace tavrin {

namespace {

constexpr int linesAtOnce = 500;
constexpr std::chrono::milliseconds restAfterTyping(300);
constexpr std::chrono::milliseconds untilNextLook(300);
constexpr const char* widthKey = "textPageGutter";
constexpr qsizetype mostPastedAtOnce = 100000;

QString textOf(const PreviewList::Row& row) { return toQString(nameLines::lineOf(row.finalName).text); }

bool isTooLong(const QString& text) { return text.size() > static_cast<qsizetype>(nameLines::longestLine); }

QString wordsFor(nameLines::Lock lock) {
    using enum nameLines::Lock;
    switch (lock) {
    case none:
        return {};
    //: These stand behind a name and say why it is not edited there.
    case lineBreak:
        return NamesAsTextPage::tr("holds a line break, change it by a step");
    case controlCharacter:
        return NamesAsTextPage::tr("holds a control character, change it by a step");
    case reorderingMark:
        return NamesAsTextPage::tr("holds a mark that reorders letters, change it by a step");
    case notUtf8:
        return NamesAsTextPage::tr("is not UTF-8, change it by a step");
    }
    return {};
}

} // namespace

// --- Building ---

NamesAsTextPage::NamesAsTextPage(const WindowServices& shared, PreviewTableModel& shownModel,
                                 MessageBars& messageBars)
    : services(shared), controller(shared.controller), model(shownModel), bars(messageBars),
      lines(new LinesEdit([this](int line) { return describe(line); })), replaceBar(new ReplaceBar(*lines)),
      counts(new QLabel), work(shared.controller.runLoop()) {
    setObjectName("namesAsTextPage");
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Ignored); // it takes the room of the list
    lines->setObjectName("namesAsText");
    lines->setAccessibleName(tr("New names, one a line"));
    lines->setIsLocked([this](int line) { return isLocked(line); });
    const int width = static_cast<int>(services.defaults.integerForKey(widthKey));
    if (width > 0)
        lines->setItemWidth(width);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(makeHead());
    column->addWidget(replaceBar);
    column->addWidget(lines, 1);
    rest.setSingleShot(true);
    rest.setInterval(restAfterTyping);
    connect(&rest, &QTimer::timeout, this, &NamesAsTextPage::flush);
    connect(lines, &LinesEdit::edited, this, &NamesAsTextPage::linesEdited);
    connect(lines, &LinesEdit::linesPasted, this, &NamesAsTextPage::pasteLines);
    connect(lines, &LinesEdit::pastedInPart, this, [this] { bars.tellLeftAway(1); });
    connect(lines, &LinesEdit::blockPasted, this, &NamesAsTextPage::pasteIntoBlock);
    connect(lines, &LinesEdit::changeWanted, this, &NamesAsTextPage::changeLines);
    connect(lines, &LinesEdit::itemWidthChanged, this,
            [this](int pixels) { services.defaults.setObject(widthKey, pixels); });
    connect(lines, &LinesEdit::undoWanted, this, [this] { afterEdits([this] { emit undoWanted(); }); });
    connect(lines, &LinesEdit::redoWanted, this, [this] { afterEdits([this] { emit redoWanted(); }); });
    connect(lines, &QPlainTextEdit::cursorPositionChanged, this, &NamesAsTextPage::tellLine);
    connect(replaceBar, &ReplaceBar::lineReplaced, this, [this](int line, const QString& text) {
        changeLines(line, line, [text](int, const QString&) { return text; });
    });
    connect(replaceBar, &ReplaceBar::allReplaced, this, [this](const auto& replace) {
        changeLines(0, lines->lineCount() - 1, [replace](int, const QString& line) { return replace(line); });
    });
    connect(&editor, &EditorLink::saved, this, &NamesAsTextPage::editorHasSaved);
    connect(&editor, &EditorLink::opened, this, [this] {
        if (isOpened)
            bars.tellEditorOpened();
    });
    connect(&editor, &EditorLink::failed, this, [this](const QString& what, const QString& detail) {
        if (isOpened)
            bars.tellEditorFailed(what, detail);
    });
}

NamesAsTextPage::~NamesAsTextPage() = default;

QLayout* NamesAsTextPage::makeHead() {
    auto* row = new QHBoxLayout;
    row->setContentsMargins(12, 8, 12, 8);
    row->setSpacing(8);
    auto* back = new QPushButton(tr("‹ &Back to the List"));
    back->setObjectName("backToList");
    back->setFlat(true);
    connect(back, &QPushButton::clicked, this, &NamesAsTextPage::close);
    auto* title = new QLabel("<b>" + tr("Names as Text") + "</b>");
    counts->setObjectName("textCounts");
    counts->setForegroundRole(QPalette::PlaceholderText);
    auto* discard = new QPushButton(tr("&Discard Edits"));
    discard->setObjectName("discardEdits");
    discard->setIcon(GlyphIcon::of(Glyph::undo));
    discard->setFlat(true);
    discard->setToolTip(tr("Names by hand become as they were when this page was opened"));
    connect(discard, &QPushButton::clicked, this, [this] {
        afterEdits([this] {
            emit changing();
            emptied.clear();
            controller.handEdits().restore(before);
        });
    });
    auto* edit = new ToggleButton(tr("Open in Te&xt Editor"), Glyph::text);
    edit->setObjectName("openInTextEditor");
    edit->setCheckable(false);
    edit->setToolTip(tr("Edit the lines in the program that the desktop has for texts"));
    connect(edit, &QToolButton::clicked, this, &NamesAsTextPage::openInEditor);
    for (QPushButton* each : {back, discard})
        each->setAutoDefault(false);
    row->addWidget(back);
    row->addWidget(title);
    row->addWidget(counts);
    row->addStretch(1);
    row->addWidget(edit);
    row->addWidget(discard);
    return row;
}

// --- Filling ---

void NamesAsTextPage::open(int row) {
    before = controller.handEdits().snapshot();
    emptied.clear();
    isOpened = true;
    const std::vector<RowId>& rows = model.rowIds();
    fill(rows[static_cast<std::size_t>(row)]);
    lines->setFocus();
}

void NamesAsTextPage::close() {
    if (!isOpened)
        return;
    finish();
    isOpened = false;
    work.drop();
    editor.close();
    pasting.cancel();
    bars.dismissAll();
    emit closed(lines->currentLine());
}

/// Not within the work, which the action may drop.
void NamesAsTextPage::afterEdits(const std::function<void()>& action) {
    flush();
    work.begin([this, action] {
        QMetaObject::invokeMethod(this, action, Qt::QueuedConnection);
        return false;
    });
}

void NamesAsTextPage::finish() {
    if (!isOpened)
        return;
    flush();
    isHurried = true;
    work.finish();
    isHurried = false;
    controller.handEdits().finish();
    if (std::exchange(isBehind, false))
        updateLines();
}

/// In slices, each of which puts some lines behind those that are there.
void NamesAsTextPage::fill(RowId current, int otherwise) {
    work.drop();
    pasting.cancel();
    bars.endTooMany(); // whose button would put them into other lines
    changesUnderWay = 0;
    isChanging = false;
    shownIds = model.rowIds();
    isEdited.assign(shownIds.size(), false);
    editedLines.reset();
    lines->setReadOnly(true);
    lines->restart(textsOf(0, linesAtOnce));
    work.begin([this, current, otherwise, next = linesAtOnce]() mutable {
        lines->append(textsOf(next, linesAtOnce));
        next += linesAtOnce;
        if (next < lineCount())
            return true;
        lines->setReadOnly(false);
        const auto place = std::ranges::find(shownIds, current);
        lines->goTo(place == shownIds.end() ? otherwise : static_cast<int>(place - shownIds.begin()));
        showCounts();
        return false;
    });
}

std::vector<PreviewList::Row> NamesAsTextPage::rowsOf(int first, int count) const {
    const auto start = std::min(shownIds.size(), static_cast<std::size_t>(first));
    return controller.nodeController().rowsWithIds(std::span(shownIds).subspan(
        start, std::min(shownIds.size() - start, static_cast<std::size_t>(count))));
}

QStringList NamesAsTextPage::textsOf(int first, int count) const {
    QStringList texts;
    for (const PreviewList::Row& row : rowsOf(first, count))
        texts.append(textFor(row));
    return texts;
}

QString NamesAsTextPage::textFor(const PreviewList::Row& row) const {
    if (emptied.contains(row.id))
        return {};
    const HandEdits& edits = controller.handEdits();
    const std::u16string name =
        edits.namesCount() && !row.isLeftOut ? edits.pinnedName(row.fullPath) : std::u16string();
    return name.empty() ? textOf(row) : toQString(nameLines::lineOf(name).text);
}

QString NamesAsTextPage::tooManyRows() {
    return tr("Too long to be edited as text; use Save List and New names from a list.");
}

bool NamesAsTextPage::canStay() const {
    StoreContext& context = controller.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    return context.sourceItemCount() > 0 && model.rowCount() <= mostLines;
}

void NamesAsTextPage::rowsChanged() {
    if (!isOpened)
        return;
    if (!canStay()) {
        close();
        if (model.rowCount() > mostLines)
            bars.tellTooManyRows(tooManyRows());
    } else if (model.rowIds() == shownIds) {
        updateLines();
    } else {
        const RowId current = currentRow();
        flush();
        if (isChanging)
            work.finish();
        fill(current, std::min(lines->currentLine(), model.rowCount() - 1));
    }
    lines->refresh();
    showCounts();
}

/// Lines follow their rows, but for those in hand.
void NamesAsTextPage::updateLines() {
    work.begin([this, next = 0]() mutable {
        if (isHurried && changesUnderWay == 0) {
            isBehind = true;
            return false;
        }
        const int start = next;
        QStringList texts;
        for (const PreviewList::Row& row : rowsOf(start, linesAtOnce)) {
            if (row.id != noRow && emptied.contains(row.id) &&
                !controller.handEdits().pinnedName(row.fullPath).empty())
                emptied.erase(row.id); // it was undone
            texts.append(isEdited[static_cast<std::size_t>(next)] ? lines->line(next) : textFor(row));
            ++next;
        }
        const auto differs = [&](int line) { return texts[line - start] != lines->line(line); };
        for (int first = start; first < next;) {
            int end = first;
            while (end < next && differs(end))
                ++end;
            lines->putLines(first, texts.mid(first - start, end - first));
            first = end + 1;
        }
        return next < lineCount();
    });
}

// --- What the user edits ---

void NamesAsTextPage::linesEdited(int first, int last) {
    if (!isOpened || lines->isReadOnly())
        return;
    noteEdited(first, last);
    rest.start();
}

void NamesAsTextPage::noteEdited(int first, int last) {
    last = std::min(last, lineCount() - 1);
    for (int line = first; line <= last; ++line)
        isEdited[static_cast<std::size_t>(line)] = true;
    editedLines = editedLines
                      ? std::pair(std::min(editedLines->first, first), std::max(editedLines->second, last))
                      : std::pair(first, last);
}

/// What a change of many lines has done it settles itself.
void NamesAsTextPage::flush() {
    rest.stop();
    if (!editedLines || changesUnderWay > 0)
        return;
    isChanging = true;
    work.begin(settling());
}

/// Each line that was edited becomes a name by hand, or none where it is empty; long stretches in slices.
SlicedWork::Step NamesAsTextPage::settling() {
    const auto [first, last] = std::exchange(editedLines, std::nullopt).value_or(std::pair(0, -1));
    return [this, next = first, last = last, names = std::vector<NameByHand>()]() mutable {
        for (const PreviewList::Row& row : rowsOf(next, std::clamp(last + 1 - next, 0, linesAtOnce)))
            settle(next++, row, names);
        if (next <= last)
            return true;
        isChanging = changesUnderWay > 0;
        if (!names.empty()) {
            emit changing();
            (void)controller.handEdits().pin(std::move(names));
        }
        showCounts();
        return false;
    };
}

void NamesAsTextPage::settle(int line, const PreviewList::Row& row, std::vector<NameByHand>& names) {
    const auto place = static_cast<std::size_t>(line);
    if (!isEdited[place] || row.id == noRow)
        return;
    isEdited[place] = false;
    const QString text = lines->line(line);
    if (text.isEmpty())
        emptied.insert(row.id);
    else
        emptied.erase(row.id);
    const std::u16string pinned = controller.handEdits().pinnedName(row.fullPath);
    const bool isSettled = pinned.empty() ? !row.isPinned && text == textOf(row) : text == toQString(pinned);
    if (!isSettled)
        names.push_back({row.fullPath, fromQString(text)});
}

void NamesAsTextPage::changeLines(int first, int last, LineChange change) {
    flush();
    ++changesUnderWay;
    isChanging = true;
    lines->setReadOnly(true);
    work.begin([this, next = first, last, change = std::move(change), tooLong = std::size_t{0},
                settle = SlicedWork::Step()]() mutable {
        if (settle) {
            if (settle())
                return true;
            isChanging = --changesUnderWay > 0;
            lines->setReadOnly(isChanging);
            return false;
        }
        QStringList texts;
        const int start = next;
        const int end = std::min(last + 1, next + linesAtOnce);
        for (; next < end; ++next) {
            const QString text = lines->line(next);
            std::optional<QString> changed = isLocked(next) ? std::nullopt : change(next, text);
            if (changed && isTooLong(*changed) && changed->size() > text.size()) {
                changed.reset();
                ++tooLong;
            }
            if (changed && *changed != text)
                noteEdited(next, next);
            texts.append(changed ? *changed : text);
        }
        lines->putLines(start, texts);
        if (next <= last)
            return true;
        bars.tellTooLong(tooLong);
        settle = settling();
        return true;
    });
}

void NamesAsTextPage::withPasted(const QString& text, int wanted, std::function<void(Lines)> then) {
    const auto cut = [text, wanted] {
        return std::make_shared<const nameLines::Pasted>(nameLines::pasted(
            {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<std::size_t>(text.size())},
            static_cast<std::size_t>(wanted)));
    };
    if (text.size() <= mostPastedAtOnce)
        then(cut());
    else
        pasting.start([cut](const LatestWork::Unwanted&) { return cut(); }, std::move(then));
}

void NamesAsTextPage::pasteLines(int first, const QString& text) {
    const int room = lineCount() - first;
    withPasted(text, room, [this, first, room](const Lines& pasted) {
        const auto put = [this, first, pasted] {
            bars.endTooMany();
            const int count = static_cast<int>(pasted->lines.size());
            changeLines(first, first + count - 1, [first, pasted](int line, const QString&) {
                return std::optional(toQString(pasted->lines[static_cast<std::size_t>(line - first)]));
            });
            tellOfPaste(*pasted);
        };
        if (pasted->count <= static_cast<std::size_t>(room)) {
            put();
            return;
        }
        bars.askAboutTooMany(pasted->count, room, put);
    });
}

/// A single line goes into each line of the block.
void NamesAsTextPage::pasteIntoBlock(const LineBlock& block, const QString& text) {
    withPasted(text, block.lineCount(), [this, block](const Lines& pasted) {
        if (pasted->count != 1 && pasted->count != static_cast<std::size_t>(block.lineCount())) {
            bars.tellOtherThanBlock(pasted->count, block.lineCount());
            return;
        }
        bars.endTooMany();
        lines->endBlock();
        changeLines(block.firstLine, block.lastLine, [block, pasted](int line, const QString& former) {
            const auto place = static_cast<std::size_t>(line - block.firstLine);
            return block.replaced(former, toQString(pasted->lines[pasted->count == 1 ? 0 : place]));
        });
        tellOfPaste(*pasted);
    });
}

void NamesAsTextPage::tellOfPaste(const nameLines::Pasted& pasted) {
    Spoken::say(tr("1 line||%Ln lines", nullptr, static_cast<int>(pasted.lines.size())));
    bars.tellLeftAway(pasted.changed);
}

// --- Another editor ---

/// What an editor has saved, on its way to names by hand.
struct NamesAsTextPage::Return {
    std::shared_ptr<const EditorLink::Saved> saved;
    std::size_t locked = 0;
    std::size_t found = 0;
    std::size_t tooLong = 0;
    std::vector<NameByHand> names = {};
};

void NamesAsTextPage::openInEditor() {
    finish();
    work.begin([this, next = 0, all = std::vector<EditorLink::Line>()]() mutable {
        for (const PreviewList::Row& row : rowsOf(next, linesAtOnce)) {
            const bool isHere = row.id != noRow;
            all.push_back({row.fullPath, isHere ? fromQString(lines->line(next)) : std::u16string(),
                           !isHere || isLocked(next)});
            ++next;
        }
        if (next < lineCount())
            return true;
        editor.open(std::move(all));
        return false;
    });
}

/// What was typed here is a change of its own, so that nothing that the editor replaces is lost. Rows are
/// found by their paths: since the editor was opened they may have been read anew.
void NamesAsTextPage::editorHasSaved(const std::shared_ptr<const EditorLink::Saved>& saved) {
    lastSaved = saved;
    flush();
    work.begin([this, all = Return{saved, saved->lockedLines},
                ids = controller.nodeController().arrangedObjects(), next = std::size_t{0}]() mutable {
        const std::size_t count = std::min<std::size_t>(linesAtOnce, ids.size() - next);
        if (all.found < all.saved->lines.size())
            for (const PreviewList::Row& row :
                 controller.nodeController().rowsWithIds(std::span(ids).subspan(next, count)))
                takeLine(all, row);
        next += count;
        if (next < ids.size() && all.found < all.saved->lines.size())
            return true;
        if (all.found < all.saved->lines.size() && controller.renameEngine().isBusy())
            takeLater(all.saved); // its items may be on their way
        else
            endReturn(all);
        return false;
    });
}

void NamesAsTextPage::takeLater(const std::shared_ptr<const EditorLink::Saved>& saved) {
    QTimer::singleShot(untilNextLook, this, [this, saved] {
        if (editor.isOpen() && saved == lastSaved)
            editorHasSaved(saved);
    });
}

void NamesAsTextPage::takeLine(Return& all, const PreviewList::Row& row) {
    const auto line = row.id == noRow ? all.saved->lines.end() : all.saved->lines.find(row.fullPath);
    if (line == all.saved->lines.end())
        return;
    ++all.found;
    const QString text = toQString(line->second.text);
    if (!line->second.isNew && text == textFor(row))
        return;
    if (nameLines::lineOf(row.finalName).lock != nameLines::Lock::none) {
        ++all.locked;
    } else if (isTooLong(text)) {
        ++all.tooLong;
    } else {
        if (text.isEmpty())
            emptied.insert(row.id);
        else
            emptied.erase(row.id);
        all.names.push_back({row.fullPath, line->second.text});
    }
}

void NamesAsTextPage::endReturn(Return& all) {
    const TextPageBars::Taken outcome{.lines = all.names.size(),
                                      .locked = all.locked,
                                      .tooLong = all.tooLong,
                                      .lost = all.saved->lines.size() - all.found,
                                      .cut = all.saved->cutLines};
    if (!all.names.empty()) {
        emit changing();
        controller.handEdits().pin(std::move(all.names));
    }
    updateLines();
    if (isOpened)
        bars.tellTaken(outcome);
    lastSaved.reset();
    QThreadPool::globalInstance()->start([saved = std::move(all.saved)] {}); // which frees it there
}

// --- What is told ---

LinesEdit::Line NamesAsTextPage::describe(int line) const {
    if (line >= model.rowCount() || line >= lineCount())
        return {};
    const PreviewList::Row& row = model.rowAt(line);
    const NameDelegate::Sign sign =
        NameDelegate::signOf(model.index(line, PreviewTableModel::state), palette());
    LinesEdit::Line told{model.shownName(row.name), sign.glyph, sign.colour, {}};
    if (emptied.contains(row.id) && lines->line(line).isEmpty())
        told.note = tr("empty: the computed name “%1” is used").arg(model.shownName(row.finalName));
    else if (const nameLines::Lock lock = nameLines::lineOf(row.finalName).lock;
             lock != nameLines::Lock::none)
        told.note = wordsFor(lock);
    else
        told.note =
            model.index(line, PreviewTableModel::newName).data(PreviewTableModel::reasonRole).toString();
    told.isBad = row.problem != NameProblem::none;
    return told;
}

void NamesAsTextPage::showCounts() {
    const int byHand = static_cast<int>(controller.handEdits().pinned());
    const QString all = tr("1 line||%Ln lines", nullptr, lineCount());
    //: Two counts side by side: of lines, and of names by hand.
    counts->setText(byHand == 0 ? all
                                : tr("%1 · %2").arg(all, tr("1 by hand||%Ln by hand", nullptr, byHand)));
}

void NamesAsTextPage::tellLine() {
    const int line = lines->currentLine();
    if (line == std::exchange(toldLine, line) || !isOpened)
        return;
    emit lineChanged();
    const LinesEdit::Line told = describe(line);
    const QString words = told.note.isEmpty()
                              ? tr("Line %L1, %2").arg(line + 1).arg(told.item)
                              : tr("Line %L1, %2: %3").arg(line + 1).arg(told.item, told.note);
    lines->setAccessibleDescription(words);
    if (told.isBad)
        Spoken::say(words);
}

// --- Going about ---

void NamesAsTextPage::goToRow(int row) {
    lines->goTo(row);
    lines->setFocus();
}

int NamesAsTextPage::currentLine() const { return lines->currentLine(); }

RowId NamesAsTextPage::currentRow() const {
    const auto line = static_cast<std::size_t>(lines->currentLine());
    return line < shownIds.size() ? shownIds[line] : noRow;
}

void NamesAsTextPage::openFind(bool withReplacement) { replaceBar->open(withReplacement); }

void NamesAsTextPage::goToMatch(bool forward) { replaceBar->goToMatch(forward); }

void NamesAsTextPage::goToChanged(bool forward) {
    const std::vector<RowId> changing = controller.nodeController().changingIds();
    const int count = lineCount();
    for (int step = 1; step < count; ++step) {
        const int line = ((lines->currentLine() + (forward ? step : -step)) % count + count) % count;
        if (std::ranges::binary_search(changing, shownIds[static_cast<std::size_t>(line)])) {
            lines->goTo(line);
            return;
        }
    }
}

void NamesAsTextPage::keyPressEvent(QKeyEvent* event) {
    const bool hasControl = event->modifiers() == Qt::ControlModifier;
    if (event->key() == Qt::Key_Escape)
        close();
    else if (hasControl && (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down))
        goToChanged(event->key() == Qt::Key_Down);
    else if (hasControl && event->key() == Qt::Key_H)
        openFind(true);
    else
        QWidget::keyPressEvent(event);
}

// --- Lines and names ---

bool NamesAsTextPage::isLocked(int line) const {
    return line >= model.rowCount() ||
           nameLines::lineOf(model.rowAt(line).finalName).lock != nameLines::Lock::none;
}

int NamesAsTextPage::lineCount() const { return static_cast<int>(shownIds.size()); }

} // namespace tavrin
