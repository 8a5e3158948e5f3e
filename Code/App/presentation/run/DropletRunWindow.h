#pragma once

#include "presentation/WindowServices.h"
#include "presentation/cards/QuestionCard.h"
#include "shell/asking/FrontEnd.h"

#include <QTimer>
#include <QWidget>
#include <functional>

class QPushButton;

namespace tavrin {

class MessageBars;
class RunStrip;

/// The small window of a run without the main window, as droplets have it: the strip of the run, its
/// questions as cards, and in the end how it went. Object name "progressWindow".
class DropletRunWindow final : public QWidget {
    Q_OBJECT

  public:
    DropletRunWindow(WindowServices services, QWidget* parent);

    /// Shows itself soon, unless the run is over by then.
    void begin();
    void end();
    void refresh();
    void setWaiting(bool waits);
    /// Shows itself at once, with room for a question.
    [[nodiscard]] QuestionCard::Place questionPlace();
    void showReport(const RunReport& report, std::function<void(ReportAnswer)> answer);

  signals:
    /// The user closes it.
    void closeWanted();

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    QWidget* room; ///< above the strip, for cards
    MessageBars* bars;
    RunStrip* strip;
    QPushButton* okButton;
    QTimer delay;
    std::function<void(ReportAnswer)> whenRead;
};

} // namespace tavrin
