#include "presentation/settings/ParameterPanel.h"

#include "actions/BaseRenameAction.h"
#include "presentation/PaletteWatch.h"
#include "presentation/QtText.h"
#include "presentation/settings/PanelRows.h"
#include "presentation/settings/ParameterEditors.h"
#include "shell/MainController.h"
#include "store/contexts/StoreContext.h"

#include <QAbstractButton>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <mutex>

namespace tavrin {

namespace {

/// Of the menus, the row at the bottom of the window, and the advanced options.
constexpr QStringView reserved = u"fesvphdlrocukqi";

} // namespace

QString AccessKeys::mark(const QString& label) {
    const auto isFree = [&](qsizetype place) {
        const QChar letter = label.at(place).toLower();
        return letter.unicode() < 0x80 && letter.isLetter() && !reserved.contains(letter) &&
               !taken.contains(letter);
    };
    qsizetype best = -1;
    for (qsizetype place = label.size() - 1; place >= 0; --place) {
        const bool beginsWord = place == 0 || label.at(place - 1) == ' ';
        const bool isBetter = best < 0 || beginsWord || label.at(best - 1) != ' ';
        if (isFree(place) && isBetter)
            best = place;
    }
    QString marked = label;
    if (best >= 0) {
        taken.insert(label.at(best).toLower());
        marked.insert(best, u'\1');
    }
    return marked.replace('&', "&&").replace(u'\1', '&');
}

/// Widgets that are shown, or on, only while a number has a certain value, or has not.
struct ParameterPanel::Condition {
    enum class Effect { shownWhile, offWhile };
    Effect effect;
    std::string key;
    std::int32_t value;
    std::vector<QWidget*> widgets;
};

namespace {

constexpr int gap = 8;

std::int32_t itemsTakingPart(MainController& controller) {
    StoreContext& context = controller.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    return context.engineControl().totalNumberOfFiles;
}

/// Controls that need the whole width.
bool isWide(const ParameterDescription& parameter) {
    return parameter.kind == ParameterKind::pattern || parameter.kind == ParameterKind::file;
}

bool labelsItself(const ParameterDescription& parameter) { return parameter.kind == ParameterKind::checkbox; }

} // namespace

ParameterPanel::ParameterPanel(BaseRenameAction& shownAction, const WindowServices& shared)
    : action(shownAction), services(shared), form(new QFormLayout(this)) {
    setObjectName("parameterPanel");
    form->setContentsMargins(0, 0, 0, 0);
    form->setVerticalSpacing(gap);
    form->setHorizontalSpacing(gap);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    const std::vector<PanelRow> rows = panelRowsOf(action);
    // Where there is one field, the ready-made texts go into it, and stand below.
    if (rows.size() > 1)
        addPatternMenu();
    for (const PanelRow& row : rows)
        addRow(row);
    if (rows.size() == 1)
        addPatternMenu();
    addExplanation();
    addHelpLink();
    observation = action.registerObserverForAllValues(*this);
    applyConditions();
    refreshNotes();
}

ParameterPanel::~ParameterPanel() = default;

void ParameterPanel::addRow(const PanelRow& row) {
    const ParameterDescription& first = row.first();
    if (!first.head.empty())
        form->addRow(makeSectionHead(toQString(first.head), form->rowCount() == 0));
    std::vector<QWidget*> editors;
    for (const ParameterDescription* parameter : row.parameters) {
        editors.push_back(makeParameterEditor(*parameter, action));
        markButtons(*editors.back(), row.parameters.size() == 1);
    }
    fields.insert(fields.end(), editors.begin(), editors.end());
    QWidget* field = makeField(row, editors);
    std::vector<QWidget*> rowWidgets{field};
    if (labelsItself(first)) {
        form->addRow(QString(), field);
    } else {
        auto* label = new QLabel(accessKeys.mark(toQString(first.label)) + ':');
        label->setBuddy(editors.front());
        rowWidgets.push_back(label);
        if (isWide(first)) {
            form->addRow(label);
            form->addRow(field);
        } else {
            form->addRow(label, field);
        }
    }
    addConditions(row, rowWidgets, editors);
}

/// An editor that is a button has a key where it gives the row its name; the buttons within one always do.
void ParameterPanel::markButtons(QWidget& editor, bool namesRow) {
    if (auto* button = qobject_cast<QAbstractButton*>(&editor); button && namesRow)
        button->setText(accessKeys.mark(button->text()));
    for (auto* button : editor.findChildren<QPushButton*>())
        button->setText(accessKeys.mark(button->text()));
}

/// The controls of a row side by side, or below each other where they are wide, and what is said about them.
QWidget* ParameterPanel::makeField(const PanelRow& row, const std::vector<QWidget*>& editors) {
    PanelNote::Maker noteMaker = PanelNote::forRow(row);
    if (editors.size() == 1 && !noteMaker)
        return editors.front();
    auto* field = new QWidget;
    auto* column = new QVBoxLayout(field);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    const bool isStacked = isWide(row.first());
    auto* line = new QBoxLayout(isStacked ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    line->setSpacing(isStacked ? 4 : gap);
    column->addLayout(line);
    for (std::size_t i = 0; i < editors.size(); ++i) {
        if (row.parameters[i]->kind == ParameterKind::character && i > 0)
            line->addWidget(new QLabel("→"));
        line->addWidget(editors[i]);
    }
    if (!noteMaker)
        return field;
    NoteLabel* note = makeNote(std::move(noteMaker));
    const bool isBeside = row.parameters.size() == 1 && row.first().kind == ParameterKind::number;
    if (isBeside)
        line->addWidget(note, 1);
    else
        column->addWidget(note);
    return field;
}

NoteLabel* ParameterPanel::makeNote(PanelNote::Maker maker) {
    auto* note = new NoteLabel;
    note->hide();
    notes.emplace_back(note, std::move(maker));
    return note;
}

void ParameterPanel::addConditions(const PanelRow& row, const std::vector<QWidget*>& rowWidgets,
                                   const std::vector<QWidget*>& editors) {
    const ParameterDescription& first = row.first();
    if (!first.shownWhenKey.empty())
        conditions.push_back({Condition::Effect::shownWhile, std::string(first.shownWhenKey),
                              first.shownWhenValue, rowWidgets});
    if (!first.offWhenKey.empty())
        conditions.push_back(
            {Condition::Effect::offWhile, std::string(first.offWhenKey), first.offWhenValue, editors});
}

void ParameterPanel::addPatternMenu() {
    if (action.patternMenu().empty())
        return;
    auto* button = new QPushButton(accessKeys.mark(toQString(action.patternMenuTitle())));
    button->setObjectName("selectPattern");
    button->setAutoDefault(false);
    auto* menu = new QMenu(button);
    std::int32_t index = 0;
    for (const std::string_view row : action.patternMenu()) {
        if (!row.empty())
            connect(menu->addAction(toQString(row)), &QAction::triggered, this,
                    [this, index] { action.selectPattern(index); });
        ++index;
    }
    button->setMenu(menu);
    auto* line = new QHBoxLayout;
    line->addWidget(button);
    line->addStretch(1);
    form->addRow(QString(), line);
}

void ParameterPanel::addExplanation() {
    NoteLabel* note = makeNote([hasNoRows = fields.empty()](const BaseRenameAction& shown, std::int32_t) {
        const QString text = toQString(shown.explanation());
        return PanelNote{text.isEmpty() && hasNoRows ? tr("This action has no settings.") : text};
    });
    note->setObjectName("panelRemark");
    form->addRow(note);
}

void ParameterPanel::addHelpLink() {
    const std::string anchor(action.helpAnchor());
    if (anchor.empty())
        return;
    auto* link = new QLabel(QString("<a href='help'>%1</a>").arg(tr("More about this action")));
    link->setObjectName("helpLink");
    recolourLinks(*link);
    link->setAccessibleName(tr("More about this action"));
    link->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    connect(link, &QLabel::linkActivated, this,
            [this, anchor] { services.controller.showHelpAnchor(anchor); });
    form->addRow(link);
}

// --- What changes ---

/// The notes wait for the action to finish what it is about.
void ParameterPanel::observeValueForKeyPath(const std::string&, BaseAction&,
                                            const std::optional<PropertyValue>&,
                                            const std::optional<PropertyValue>&) {
    applyConditions();
    if (std::exchange(areNotesDue, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            areNotesDue = false;
            // A panel that has been put away outlives its action.
            if (isVisible())
                refreshNotes();
        },
        Qt::QueuedConnection);
}

void ParameterPanel::applyConditions() {
    for (const Condition& condition : conditions) {
        const bool holds = action.getParamInt(condition.key, 0) == condition.value;
        for (QWidget* widget : condition.widgets) {
            switch (condition.effect) {
            case Condition::Effect::shownWhile:
                widget->setVisible(holds);
                break;
            case Condition::Effect::offWhile:
                widget->setEnabled(!holds);
                break;
            }
        }
    }
}

void ParameterPanel::refreshNotes() {
    action.prepare();
    const std::int32_t items = itemsTakingPart(services.controller);
    for (const auto& [label, maker] : notes)
        label->showNote(maker(action, items));
}

void ParameterPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    refreshNotes();
}

QWidget* ParameterPanel::firstField() const {
    const auto found = std::ranges::find_if(fields, [this](const QWidget* field) {
        const bool takesFocus = field->focusPolicy() != Qt::NoFocus || field->focusProxy();
        return takesFocus && field->isEnabled() && field->isVisibleTo(this);
    });
    return found == fields.end() ? nullptr : *found;
}

} // namespace tavrin
