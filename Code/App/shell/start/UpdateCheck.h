#pragma once

#include "documents/SoftwareUpdater.h"
#include "shell/commands/ShellServices.h"
#include "support/application/Version.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tavrin {

class Timer;
struct FetchedAddress;

/// Asks the feed of updates, on demand and from time to time, and offers a newer release: its page in the
/// browser, nothing more. Without a feed nothing is ever asked. Main thread.
class UpdateCheck {
  public:
    struct Options {
        std::string version = programVersion;
        /// Whether a message may come up by itself at the moment.
        std::function<bool()> mayInterrupt;
        /// The time of day, in seconds since 2001-01-01 00:00:00 UTC.
        std::function<double()> now;
    };
    UpdateCheck(ShellServices& shared, Options newOptions);
    ~UpdateCheck();

    /// Whether there is a feed to ask.
    [[nodiscard]] bool isOn() const;
    /// Asks at once and tells the user what came of it, whatever it is.
    void checkForUpdatesNow();
    /// Begins to ask from time to time, as the stored interval says.
    void start();
    /// Seconds between the checks; an hour at least, 0 and below switch them off.
    void setUpdateCheckInterval(double seconds);
    /// The address of the feed is another one.
    void feedHasChanged() { schedule(); }

  private:
    enum class Asker { user, timer };

    void schedule();
    void timeHasCome();
    [[nodiscard]] double secondsToNextCheck() const;
    void check(Asker asker);
    void received(const FetchedAddress& answer, Asker asker);
    void readFeed(const std::string& bytes, Asker asker);
    void fail(const std::string& reason, Asker asker);
    void offer(const UpdateFeedItem& item);
    void tellThatThereIsNone();
    [[nodiscard]] bool isSkipped(const UpdateFeedItem& item) const;

    ShellServices& services;
    Options options;
    double interval = 0; ///< seconds; 0 when nothing is asked by itself
    bool isStarted = false;
    bool isUnderWay = false;
    bool isUserWaiting = false; ///< for the answer that is under way
    std::unique_ptr<Timer> timer;
    std::shared_ptr<char> lifetime = std::make_shared<char>(); ///< for answers that come late
};

} // namespace tavrin
