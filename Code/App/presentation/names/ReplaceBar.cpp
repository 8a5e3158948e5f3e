#include "presentation/names/ReplaceBar.h"

#include "presentation/Buttons.h"
#include "presentation/GlyphIcon.h"
#include "presentation/PaletteWatch.h"
#include "presentation/QtText.h"
#include "presentation/Spoken.h"
#include "presentation/WindowColours.h"
#include "presentation/names/LinesEdit.h"
#include "support/text/RegularExpression.h"
#include "support/text/TextSearch.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QToolButton>

namespace tavrin {

namespace {

constexpr qint64 sliceMilliseconds = 15;

std::u16string_view viewOf(const QString& text) {
    return {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<std::size_t>(text.size())};
}

} // namespace

// --- Searching ---

struct LineSearch::Impl {
    TextSearch text;
    RegularExpression pattern;
    bool isPattern = false;
    QString refusal = {};
};

LineSearch::LineSearch(const QString& wanted, bool isPattern, bool ignoresCase)
    : impl(std::make_unique<Impl>()) {
    const CaseSensitivity sensitivity =
        ignoresCase ? CaseSensitivity::insensitive : CaseSensitivity::sensitive;
    impl->isPattern = isPattern;
    if (isPattern)
        impl->pattern = RegularExpression(viewOf(wanted), sensitivity);
    if (isPattern)
        impl->refusal = toQString(impl->pattern.failure());
    else
        impl->text = TextSearch(viewOf(wanted), sensitivity);
}

LineSearch::~LineSearch() = default;

std::vector<LineSearch::Match> LineSearch::matches(const QString& line) const {
    const std::u16string_view subject = viewOf(line);
    std::vector<TextRange> found;
    if (impl->isPattern)
        found = impl->pattern.matches(subject);
    else
        for (auto next = impl->text.first(subject); next && next->length > 0;
             next = impl->text.first(subject, {next->end(), subject.size() - next->end()}))
            found.push_back(*next);
    std::vector<Match> result;
    for (const TextRange& each : found)
        result.push_back({static_cast<int>(each.location), static_cast<int>(each.length)});
    return result;
}

std::optional<QString> LineSearch::replaced(const QString& line, const QString& replacement,
                                            std::optional<std::size_t> only) const {
    const std::vector<Match> found = matches(line);
    if (found.empty() || (only && *only >= found.size()))
        return std::nullopt;
    if (impl->isPattern) {
        std::u16string result;
        const bool worked = only
                                ? impl->pattern.replaceMatch(viewOf(line), viewOf(replacement),
                                                             static_cast<std::int64_t>(*only), result)
                                : impl->pattern.replaceOccurrences(viewOf(line), viewOf(replacement), result);
        return worked ? std::optional(toQString(result)) : std::nullopt;
    }
    QString result = line;
    for (std::size_t i = found.size(); i-- > 0;)
        if (!only || *only == i)
            result.replace(found[i].start, found[i].length, replacement);
    return result;
}

QString LineSearch::failure() const { return impl->refusal; }

// --- The bar ---

ReplaceBar::ReplaceBar(LinesEdit& text)
    : lines(text), findField(new QLineEdit), replaceField(new QLineEdit), caseButton(new QToolButton),
      patternButton(new QToolButton), result(new QLabel), replacePart(new QWidget) {
    setObjectName("replaceBar");
    whenPaletteChanges(this, [this] { applyColours(); });
    findField->setObjectName("textFindField");
    replaceField->setObjectName("textReplaceField");
    result->setObjectName("textFindResult");
    result->setTextFormat(Qt::PlainText);
    const auto makeSwitch = [](QToolButton* button, const char* name, const QString& sign,
                               const QString& tip) {
        button->setObjectName(name);
        button->setText(sign);
        button->setToolTip(tip);
        button->setAccessibleName(tip);
        button->setCheckable(true);
    };
    makeSwitch(caseButton, "matchCase", "Aa", tr("Match case"));
    makeSwitch(patternButton, "useExpression", ".*", tr("Regular expression"));
    const auto label = [](const QString& words, QWidget* buddy) {
        auto* made = new QLabel(words);
        made->setBuddy(buddy);
        return made;
    };
    const auto button = [this](const char* name, Glyph glyph, const QString& tip, auto effect) {
        QToolButton* made = makeToolButton(name, glyph, tip);
        connect(made, &QToolButton::clicked, this, effect);
        return made;
    };
    auto* one = new QPushButton(tr("Re&place"));
    one->setObjectName("replaceOne");
    auto* all = new QPushButton(tr("&All"));
    all->setObjectName("replaceAll");
    for (QPushButton* each : {one, all})
        each->setAutoDefault(false);
    connect(one, &QPushButton::clicked, this, &ReplaceBar::replaceThis);
    connect(all, &QPushButton::clicked, this, &ReplaceBar::replaceAll);
    const auto fillRow = [](QHBoxLayout& row, std::initializer_list<QWidget*> widgets) {
        row.setContentsMargins(0, 0, 0, 0);
        for (QWidget* widget : widgets)
            row.addWidget(widget, qobject_cast<QLineEdit*>(widget) ? 1 : 0);
    };
    QLabel* findLabel = label(tr("&Find:"), findField);
    QLabel* replaceLabel = label(tr("Replace &with:"), replaceField);
    const int labelWidth = std::max(findLabel->sizeHint().width(), replaceLabel->sizeHint().width());
    for (QLabel* each : {findLabel, replaceLabel})
        each->setMinimumWidth(labelWidth);
    auto* findRow = new QHBoxLayout;
    fillRow(*findRow,
            {findLabel, findField, caseButton, patternButton, result,
             button("textPreviousMatch", Glyph::up, tr("Previous match"), [this] { goToMatch(false); }),
             button("textNextMatch", Glyph::down, tr("Next match"), [this] { goToMatch(true); }),
             button("closeReplaceBar", Glyph::close, tr("Close"), [this] { close(); })});
    fillRow(*new QHBoxLayout(replacePart), {replaceLabel, replaceField, one, all});
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(12, 0, 12, 8);
    column->addLayout(findRow);
    column->addWidget(replacePart);
    connect(findField, &QLineEdit::textChanged, this, &ReplaceBar::searchChanged);
    connect(caseButton, &QToolButton::toggled, this, &ReplaceBar::searchChanged);
    connect(patternButton, &QToolButton::toggled, this, &ReplaceBar::searchChanged);
    counting.setInterval(0);
    seeking.setInterval(0);
    connect(&counting, &QTimer::timeout, this, &ReplaceBar::countOn);
    connect(&seeking, &QTimer::timeout, this, &ReplaceBar::seekOn);
    const auto recountIfShown = [this] {
        if (isVisible())
            recount();
    };
    connect(&lines, &QPlainTextEdit::cursorPositionChanged, this, recountIfShown);
    connect(&lines, &QPlainTextEdit::textChanged, this, recountIfShown);
    hide();
}

ReplaceBar::~ReplaceBar() = default;

void ReplaceBar::open(bool withReplacement) {
    replacePart->setVisible(withReplacement);
    show();
    findField->setFocus(Qt::ShortcutFocusReason);
    findField->selectAll();
    recount();
}

void ReplaceBar::close() {
    counting.stop();
    seeking.stop();
    hide();
    lines.setFocus();
}

void ReplaceBar::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape)
        close();
    else if (isReturn && event->modifiers().testFlag(Qt::AltModifier))
        replaceAll();
    else if (isReturn && replaceField->hasFocus())
        replaceThis();
    else if (isReturn && !event->modifiers().testFlag(Qt::ControlModifier))
        goToMatch(!event->modifiers().testFlag(Qt::ShiftModifier));
    else
        QWidget::keyPressEvent(event);
}

// --- Counting ---

void ReplaceBar::searchChanged() {
    const QString wanted = findField->text();
    search = wanted.isEmpty()
                 ? nullptr
                 : std::make_shared<LineSearch>(wanted, patternButton->isChecked(), !caseButton->isChecked());
    recount();
}

void ReplaceBar::recount() {
    linesCounted = 0;
    matches = matchesBefore = 0;
    seeking.stop();
    if (search && search->failure().isEmpty())
        counting.start();
    else
        counting.stop();
    showCount();
}

void ReplaceBar::countOn() {
    QElapsedTimer clock;
    clock.start();
    const QTextCursor caret = lines.textCursor();
    const int caretLine = caret.blockNumber();
    const int caretPlace = caret.selectionStart() - caret.block().position();
    QTextBlock block = lines.document()->findBlockByNumber(linesCounted);
    for (; block.isValid() && clock.elapsed() < sliceMilliseconds; block = block.next(), ++linesCounted) {
        const std::vector<LineSearch::Match> found = search->matches(block.text());
        matches += found.size();
        if (linesCounted < caretLine)
            matchesBefore += found.size();
        else if (linesCounted == caretLine)
            matchesBefore += static_cast<std::size_t>(std::ranges::count_if(
                found, [&](const LineSearch::Match& each) { return each.start <= caretPlace; }));
    }
    if (!block.isValid())
        counting.stop();
    showCount();
}

void ReplaceBar::applyColours() {
    QPalette colours;
    if (isProblem)
        colours.setColor(QPalette::WindowText, WindowColours::of(QApplication::palette()).errorMark);
    result->setPalette(colours);
}

void ReplaceBar::showCount() {
    const QString failure = search ? search->failure() : QString();
    const bool isCounting = counting.isActive();
    const bool isInVain = search && !isCounting && matches == 0;
    isProblem = isInVain || !failure.isEmpty();
    applyColours();
    result->setToolTip(failure);
    if (!failure.isEmpty())
        result->setText(tr("Not a pattern"));
    else if (!search)
        result->clear();
    else if (isInVain)
        result->setText(tr("No match"));
    else if (selectedMatch())
        //: Which of the places found this is; "…" where they are still being counted.
        result->setText((isCounting ? tr("%L1 of %L2…") : tr("%L1 of %L2")).arg(matchesBefore).arg(matches));
    else
        result->setText(isCounting ? tr("1 match…||%Ln matches…", nullptr, static_cast<int>(matches))
                                   : tr("1 match||%Ln matches", nullptr, static_cast<int>(matches)));
}

// --- Going and replacing ---

std::optional<std::size_t> ReplaceBar::selectedMatch() const {
    const QTextCursor caret = lines.textCursor();
    if (!search || !caret.hasSelection())
        return std::nullopt;
    const int start = caret.selectionStart() - caret.block().position();
    const std::vector<LineSearch::Match> found = search->matches(lines.line(caret.blockNumber()));
    const auto match = std::ranges::find_if(found, [&](const LineSearch::Match& each) {
        return each.start == start && each.length == caret.selectionEnd() - caret.selectionStart();
    });
    return match == found.end() ? std::nullopt
                                : std::optional(static_cast<std::size_t>(match - found.begin()));
}

void ReplaceBar::goToMatch(bool forward) {
    isForward = forward;
    linesSought = 0;
    if (search && search->failure().isEmpty())
        seekOn();
}

/// Round the text once, and again through the line of the caret.
void ReplaceBar::seekOn() {
    QElapsedTimer clock;
    clock.start();
    const int count = lines.lineCount();
    const QTextCursor caret = lines.textCursor();
    for (; linesSought <= count && clock.elapsed() < sliceMilliseconds; ++linesSought) {
        const int line =
            ((caret.blockNumber() + (isForward ? linesSought : -linesSought)) % count + count) % count;
        std::vector<LineSearch::Match> found = search->matches(lines.line(line));
        if (linesSought == 0) {
            const int start = caret.selectionStart() - caret.block().position();
            const int end = caret.selectionEnd() - caret.block().position();
            const bool hasSelection = caret.hasSelection();
            std::erase_if(found, [&](const LineSearch::Match& each) {
                return isForward ? (hasSelection ? each.start < end : each.start < start)
                                 : each.start + each.length > start;
            });
        }
        if (found.empty())
            continue;
        seeking.stop();
        const LineSearch::Match& match = isForward ? found.front() : found.back();
        lines.goTo(line, match.start, match.length);
        return;
    }
    if (linesSought <= count)
        seeking.start();
    else
        seeking.stop();
}

void ReplaceBar::replaceThis() {
    const std::optional<std::size_t> match = selectedMatch();
    const int line = lines.currentLine();
    if (match)
        if (const auto text = search->replaced(lines.line(line), replaceField->text(), match)) {
            const int end = lines.textCursor().selectionEnd() - lines.textCursor().block().position();
            const int grown = static_cast<int>(text->size() - lines.line(line).size());
            emit lineReplaced(line, *text);
            lines.goTo(line, std::max(0, end + grown));
        }
    goToMatch(true);
}

void ReplaceBar::replaceAll() {
    if (search && search->failure().isEmpty())
        emit allReplaced([search = search, text = replaceField->text()](const QString& line) {
            return search->replaced(line, text);
        });
}

} // namespace tavrin
