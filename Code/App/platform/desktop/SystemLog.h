#pragma once

#include "platform/files/Descriptor.h"
#include "support/application/DebugLog.h"

#include <chrono>
#include <mutex>
#include <string>
#include <vector>

namespace tavrin {

/// The system's log: the log daemon's socket where there is one, else standard error when TAVRIN_LOG is set,
/// else nothing. Lines are gathered and sent together; when the daemon does not keep up they are dropped, so
/// that nothing ever waits for it. Any thread.
class SystemLog : public LogSink {
  public:
    SystemLog();
    /// Sends to this socket alone.
    explicit SystemLog(std::string socketPath);
    ~SystemLog() override;

    /// The log that the application registered (not owned), or one that takes nothing.
    static SystemLog& sharedInstance();
    static void setSharedInstance(SystemLog* instance);

    /// Whether a line would go anywhere: the test before it is formatted.
    [[nodiscard]] bool isActive() const { return target != Target::none; }
    /// Gathers the line. All are sent when enough have gathered, or when one comes a while after the first.
    void write(std::string_view line) override;
    /// Sends what has been gathered.
    void flush();

  private:
    enum class Target { none, socket, standardError };
    struct Nothing {};

    explicit SystemLog(Nothing) {}
    bool connect();
    void sendGathered();
    std::size_t sendFrom(std::size_t start);
    void writeToStandardError();

    Target target = Target::none; ///< set by the constructor alone
    std::string socketPath;

    std::mutex mutex; ///< guards what follows
    Descriptor socket;
    std::vector<std::string> lines;
    std::chrono::steady_clock::time_point firstLineAt;
};

} // namespace tavrin
