#include "presentation/preview/StatusRow.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "engine/pipeline/ProgressInfo.h"
#include "presentation/Buttons.h"
#include "presentation/GlyphIcon.h"
#include "presentation/QtText.h"
#include "presentation/preview/Chip.h"
#include "presentation/settings/ParameterBinding.h"
#include "shell/MainController.h"
#include "shell/asking/FrontEnd.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QStyle>
#include <algorithm>
#include <iterator>

namespace tavrin {

namespace {

constexpr int chipGap = 5;

/// Says what fits of its text, and that there is more.
class ElidedLabel final : public QLabel {
  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment()), palette(), isEnabled(),
                              fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width()),
                              foregroundRole());
    }
};

QLabel* plainLabel(const char* name) {
    auto* label = new ElidedLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

StatusRow::StatusRow(MainController& owner)
    : controller(owner), pages(new QStackedWidget), progressBar(new QProgressBar),
      progressText(plainLabel("previewProgressText")), statusText(plainLabel("statusText")),
      more(new Chip("moreChips", Glyph::down)) {
    setObjectName("statusRow");
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(12, 6, 12, 6);
    pages->setObjectName("previewAndProgressBarTabView");
    pages->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    pages->addWidget(makeProgressPage());
    auto* page = new QWidget;
    statusPage = new QHBoxLayout(page);
    statusPage->setContentsMargins(0, 0, 0, 0);
    statusPage->setSpacing(chipGap);
    statusPage->addWidget(statusText);
    statusPage->addWidget(more);
    statusPage->addStretch(1);
    page->installEventFilter(this);
    more->setText(tr("More about the list"));
    more->setForm(Chip::Form::wordless);
    more->setMenu(new QMenu);
    pages->addWidget(page);
    runPage = makeRunPage();
    pages->addWidget(runPage);
    // A reason can be longer than the window is wide.
    statusText->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    statusText->setMinimumWidth(1);
    // At the beginning of the row, whichever way its own words run.
    statusText->setAlignment((QGuiApplication::isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft) |
                             Qt::AlignVCenter);
    row->addWidget(pages, 1);
    orderBox = makeOrderBox();
    row->addWidget(orderBox);
    selectPreviewTab(PreviewTab::status);
}

StatusRow::~StatusRow() = default;

QWidget* StatusRow::makeProgressPage() {
    auto* page = new QWidget;
    auto* row = new QHBoxLayout(page);
    row->setContentsMargins(0, 0, 0, 0);
    progressBar->setObjectName("previewProgressBar");
    progressBar->setAccessibleName(tr("Progress of the preview"));
    progressBar->setTextVisible(false);
    progressBar->setMaximumWidth(200);
    progressText->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    row->addWidget(progressBar);
    row->addWidget(progressText, 1);
    return page;
}

QWidget* StatusRow::makeOrderBox() {
    auto* box = new QWidget;
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(new QLabel(tr("Order:")));
    TVRNGlobalPreferencesPseudoAction& settings = controller.globalSettings();
    const auto add = [&](const char* name, const QString& label, Glyph glyph, const QString& tip,
                         bool isAutomatic) {
        auto* button = new ToggleButton(label, glyph);
        button->setObjectName(name);
        button->setToolTip(tip);
        button->setAutoExclusive(true);
        row->addWidget(button);
        connect(button, &QToolButton::clicked, this, [&settings, isAutomatic] {
            if (settings.values().automaticSorting != isAutomatic)
                settings.setAutomaticSorting(isAutomatic);
        });
        return button;
    };
    auto* automatic =
        add("autoButton", tr("Auto"), Glyph::automatic, tr("The order that the action asks for"), true);
    auto* manual =
        add("manualButton", tr("Manual"), Glyph::byHand, tr("The order made by hand: drag the rows"), false);
    binding = std::make_unique<ParameterBinding>(settings, "automaticSorting", [=](const auto& value) {
        const bool isAutomatic = value && boolValue(*value);
        automatic->setChecked(isAutomatic);
        manual->setChecked(!isAutomatic);
    });
    return box;
}

void StatusRow::addChip(Chip* chip) {
    statusPage->insertWidget(statusPage->indexOf(more), chip);
    chips.push_back(chip);
    connect(chip, &Chip::wantedChanged, this, &StatusRow::arrangeChips);
}

bool StatusRow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest)
        arrangeChips();
    return QWidget::eventFilter(watched, event);
}

/// The status text keeps a third of the row, if it needs as much.
void StatusRow::arrangeChips() {
    using Form = Chip::Form;
    std::vector<Chip*> told;
    std::ranges::copy_if(chips, std::back_inserter(told), &Chip::isWanted);
    std::vector<Form> forms(told.size(), Form::whole);
    const int room = pages->width() - std::min(statusText->sizeHint().width(), width() / 3);
    const auto needed = [&] {
        int sum =
            std::ranges::find(forms, Form::folded) != forms.end() ? chipGap + more->sizeHint().width() : 0;
        for (std::size_t i = 0; i < told.size(); ++i)
            if (forms[i] != Form::folded)
                sum += chipGap + told[i]->sizeIn(forms[i]).width();
        return sum;
    };
    for (const Form next : {Form::wordless, Form::folded})
        for (std::size_t i = told.size(); i > 0 && needed() > room; --i)
            forms[i - 1] = next;
    more->menu()->clear();
    for (std::size_t i = 0; i < told.size(); ++i) {
        told[i]->setForm(forms[i]);
        if (forms[i] != Form::folded)
            continue;
        QAction* entry = more->menu()->addAction(told[i]->text(), told[i], &Chip::click);
        entry->setMenu(told[i]->menu());
    }
    more->setWanted(!more->menu()->isEmpty());
}

/// Counts and stage of a run that is over are nothing that goes on; the stage of the next is told a little
/// later than that it has begun.
void StatusRow::refreshProgress() {
    const ProgressInfo& progress = controller.progressInfo();
    const QString stage = toQString(progress.stageText());
    if (progress.isDone())
        stageAtEnd = stage;
    const bool isUnderWay = !progress.isDone() && stage != stageAtEnd;
    const int items = std::max(1, progress.numberOfItems());
    progressBar->setRange(0, isUnderWay && progress.isIndeterminate() ? 0 : items);
    progressBar->setValue(isUnderWay ? progress.currentItemNumber() : 0);
    progressText->setText(isUnderWay ? stage + ' ' + toQString(progress.itemText()) : QString());
    statusText->setText(stage);
    statusText->setToolTip(stage.toHtmlEscaped());
}

void StatusRow::selectPreviewTab(PreviewTab wanted) {
    tab = wanted;
    if (pages->currentWidget() != runPage)
        pages->setCurrentIndex(static_cast<int>(tab));
}

QWidget* StatusRow::makeRunPage() {
    auto* page = new QWidget;
    runText = plainLabel("runStatusText");
    showFailed = new QPushButton;
    showFailed->setObjectName("showFailedItem");
    showFailed->setIcon(GlyphIcon::of(Glyph::problem));
    showFailed->setAutoDefault(false);
    connect(showFailed, &QPushButton::clicked, this, &StatusRow::failedItemWanted);
    auto* row = new QHBoxLayout(page);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(runText);
    row->addWidget(showFailed);
    row->addStretch(1);
    return page;
}

void StatusRow::showRun(const std::optional<std::size_t>& failed, bool isWaiting) {
    if (!failed) {
        pages->setCurrentIndex(static_cast<int>(tab));
        return;
    }
    if (isWaiting)
        runText->setText(tr("Waiting for your answer."));
    else
        runText->setText(*failed == 0
                             ? tr("Nothing has failed so far.")
                             : tr("1 item was not renamed so far.||%Ln items were not renamed so far.",
                                  nullptr, static_cast<int>(*failed)));
    //: Of an item that was not renamed
    showFailed->setText(*failed == 1 ? tr("Sho&w It") : tr("Sho&w the Next"));
    showFailed->setVisible(*failed > 0);
    pages->setCurrentWidget(runPage);
}

} // namespace tavrin
