#include "presentation/run/DropletRunWindow.h"

#include "presentation/Buttons.h"
#include "presentation/MessageBars.h"
#include "presentation/run/RunReportText.h"
#include "presentation/run/RunStrip.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QPushButton>
#include <chrono>
#include <utility>

namespace tavrin {

namespace {

constexpr int runWidth = 520;
constexpr int widestWindow = 640;
constexpr int questionHeight = 380;
constexpr std::chrono::milliseconds patienceWithoutProgress(700);

} // namespace

DropletRunWindow::DropletRunWindow(WindowServices services, QWidget* parent)
    // No button to close it: the run has one to stop it.
    : QWidget(parent,
              Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint),
      room(new QWidget), bars(new MessageBars), strip(new RunStrip(services)),
      okButton(new ProminentButton(tr("OK"))) {
    setObjectName("progressWindow");
    setAttribute(Qt::WA_ShowWithoutActivating);
    okButton->setObjectName("readReport");
    okButton->hide();
    auto* end = new QHBoxLayout;
    end->setContentsMargins(12, 0, 12, 0);
    end->addStretch(1);
    end->addWidget(okButton);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 8);
    column->addWidget(room, 1);
    column->addWidget(bars);
    column->addWidget(strip);
    column->addLayout(end);
    delay.setSingleShot(true);
    delay.setInterval(patienceWithoutProgress);
    connect(&delay, &QTimer::timeout, this, &QWidget::show);
    connect(okButton, &QPushButton::clicked, this, [this] {
        hide();
        if (const auto give = std::exchange(whenRead, nullptr))
            give(ReportAnswer::close);
    });
}

void DropletRunWindow::begin() {
    strip->show();
    strip->begin();
    okButton->hide();
    bars->dismiss(RunReportText::barName);
    resize(runWidth, sizeHint().height());
    delay.start();
}

void DropletRunWindow::end() {
    delay.stop();
    hide();
}

void DropletRunWindow::refresh() {
    strip->refresh();
    const auto percent = strip->percent();
    //: Title of the window during a run
    setWindowTitle(percent ? tr("%L1 % – Tavrin").arg(*percent) : "Tavrin");
}

void DropletRunWindow::setWaiting(bool waits) { strip->setWaiting(waits); }

QuestionCard::Place DropletRunWindow::questionPlace() {
    delay.stop();
    resize(widestWindow, questionHeight);
    show();
    return {*room};
}

void DropletRunWindow::showReport(const RunReport& report, std::function<void(ReportAnswer)> answer) {
    whenRead = std::move(answer);
    strip->hide();
    okButton->show();
    BarMessage bar = RunReportText::barOf(report, {});
    // What ends with this window can't undo anything any more.
    std::erase_if(bar.buttons, [](const auto& button) { return button.objectName != "copyReasons"; });
    bar.isLasting = true;
    bars->present(bar);
    setWindowTitle("Tavrin");
    show();
    resize(widestWindow, sizeHint().height());
    okButton->setFocus();
}

void DropletRunWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    emit closeWanted();
}

} // namespace tavrin
