#pragma once

#include <QObject>
#include <memory>

class QSocketNotifier;

namespace tavrin {

/// Tells when the session, the system or the user's terminal wants the program to end. One at a time, on the
/// main thread, after the QApplication.
class SessionEnd final : public QObject {
    Q_OBJECT

  public:
    SessionEnd();
    ~SessionEnd() override;

  signals:
    /// The session is about to end but may yet go on.
    void mayEnd();
    /// The program must end, whatever is open (also by SIGTERM, SIGINT, SIGHUP).
    void ends();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void signalArrived();

    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace tavrin
