#include "presentation/run/RunStrip.h"

#include "engine/pipeline/ProgressInfo.h"
#include "engine/pipeline/RenameEngine.h"
#include "presentation/QtText.h"
#include "presentation/WindowColours.h"
#include "shell/MainController.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <algorithm>
#include <bitset>
#include <chrono>

namespace tavrin {

namespace {

constexpr int barHeight = 8;
constexpr std::chrono::milliseconds deafTime(500);

QLabel* plainLabel(const char* name) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

/// A thin round bar, with a tick in the colour of failures wherever something has failed.
class RunBar final : public QProgressBar {
  public:
    RunBar() {
        setObjectName("progressBar");
        setAccessibleName(RunStrip::tr("Progress of the run"));
        setTextVisible(false);
        setFixedHeight(barHeight);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }
    void clearTicks() { ticks.reset(); }
    void addTick() {
        if (maximum() > 0)
            ticks.set(static_cast<std::size_t>(std::clamp<std::int64_t>(
                static_cast<std::int64_t>(value()) * (parts - 1) / maximum(), 0, parts - 1)));
        update();
    }

  protected:
    void paintEvent(QPaintEvent*) override;

  private:
    static constexpr int parts = 1000;
    std::bitset<parts> ticks;
};

void RunBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF whole = rect();
    const double radius = whole.height() / 2;
    painter.setBrush(palette().color(QPalette::Mid));
    painter.drawRoundedRect(whole, radius, radius);
    if (maximum() <= 0 || value() <= 0)
        return;
    const double width = std::clamp(whole.width() * value() / maximum(),
                                    std::min(whole.height(), whole.width()), whole.width());
    const bool isMirrored = isRightToLeft();
    painter.setBrush(palette().color(QPalette::Highlight));
    painter.drawRoundedRect(QRectF(isMirrored ? whole.right() - width : 0, 0, width, whole.height()), radius,
                            radius);
    painter.setBrush(WindowColours::of(palette()).errorMark);
    for (std::size_t i = 0; ticks.any() && i < parts; ++i)
        if (ticks[i]) {
            const double place = (whole.width() - 3) * static_cast<double>(i) / parts;
            painter.drawRect(QRectF(isMirrored ? whole.width() - 3 - place : place, 0, 2, whole.height()));
        }
}

RunStrip::RunStrip(WindowServices shared, QWidget* parent)
    : QWidget(parent), services(shared), stage(plainLabel("stageText")), items(plainLabel("itemText")),
      rate(plainLabel("rateText")), bar(new RunBar), stopButton(new QPushButton) {
    setObjectName("runStrip");
    QFont strong = stage->font();
    strong.setWeight(QFont::DemiBold);
    stage->setFont(strong);
    rate->setForegroundRole(QPalette::PlaceholderText);
    items->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    items->setMinimumWidth(0);
    stopButton->setObjectName("stopButton");
    stopButton->setAutoDefault(false);
    auto* texts = new QHBoxLayout;
    texts->setSpacing(14);
    texts->addWidget(stage);
    texts->addWidget(items, 1);
    texts->addWidget(rate);
    auto* column = new QVBoxLayout;
    column->setSpacing(4);
    column->addLayout(texts);
    column->addWidget(bar);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(12, 6, 12, 6);
    row->setSpacing(16);
    row->addLayout(column, 1);
    row->addWidget(stopButton);
    connect(stopButton, &QPushButton::clicked, this, &RunStrip::stop);
}

void RunStrip::setStopWidth(int width) {
    stopButton->setMinimumWidth(std::max(width, stopButton->sizeHint().width()));
}

void RunStrip::begin() {
    clock.start(RunClock::Time::clock::now());
    sinceBegin.start();
    isWaiting = false;
    failed = 0;
    bar->clearTicks();
    refresh();
}

void RunStrip::refresh() {
    const ProgressInfo& progress = services.controller.progressInfo();
    const bool isStopping = services.controller.renameEngine().isStopRequested();
    stage->setText(toQString(progress.stageText()));
    items->setText(toQString(progress.itemText()));
    bar->setRange(0, progress.isIndeterminate() ? 0 : std::max(1, progress.numberOfItems()));
    bar->setValue(progress.currentItemNumber());
    const QString action = toQString(progress.currentActionDescription());
    setToolTip(action.toHtmlEscaped());
    bar->setAccessibleDescription(action);
    const std::size_t failedNow = services.controller.renameEngine().runOutcomes().failedRows();
    if (failedNow > failed)
        bar->addTick();
    failed = failedNow;
    if (!progress.isIndeterminate())
        clock.tell(RunClock::Time::clock::now(), progress.currentItemNumber(), progress.numberOfItems());
    stopButton->setText(isStopping ? tr("Stopping…") : tr("S&top"));
    stopButton->setEnabled(!isStopping && !isWaiting);
    showRate();
}

void RunStrip::showRate() {
    if (services.controller.renameEngine().isStopRequested())
        rate->setText(tr("Stopping after the item in hand…"));
    else
        rate->setText(isWaiting ? tr("waiting for your answer") : clock.text());
}

void RunStrip::setWaiting(bool waits) {
    isWaiting = waits;
    if (waits)
        clock.pause(RunClock::Time::clock::now());
    else
        clock.goOn(RunClock::Time::clock::now());
    refresh();
}

void RunStrip::stop() {
    if (std::chrono::milliseconds(sinceBegin.elapsed()) < deafTime || isWaiting)
        return;
    services.controller.renameEngine().requestStop();
    refresh();
}

std::optional<int> RunStrip::percent() const {
    if (bar->maximum() <= 0)
        return std::nullopt;
    return static_cast<int>(static_cast<std::int64_t>(bar->value()) * 100 / bar->maximum());
}

} // namespace tavrin
