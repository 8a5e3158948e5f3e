#pragma once

#include <QObject>
#include <functional>
#include <memory>

class QSocketNotifier;

namespace tavrin {

/// Tells when the session, the system or the user's terminal wants the program to end. One at a time, on the
/// main thread, after the QApplication.
class SessionEnd final : public QObject {
  public:
    /// `save` is called when the session is about to end but may yet go on; `end` when the program must end,
    /// whatever is open (also by SIGTERM, SIGINT, SIGHUP).
    SessionEnd(std::function<void()> save, std::function<void()> end);
    ~SessionEnd() override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void signalArrived();

    std::function<void()> endHandler;
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace tavrin
