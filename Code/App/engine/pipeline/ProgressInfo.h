#pragma once

#include <fmt/core.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace tavrin {

class RunLoop;
class Timer;

/// Told on the main thread of changes that the display should follow, by observable key ("stageText",
/// "currentActionDescription", "currentItemNumber", "itemText", "numberOfItems", "isIndeterminate",
/// "isDone").
class ProgressObserver {
  public:
    virtual ~ProgressObserver() = default;
    virtual void progressChanged(std::string_view key) = 0;
};

/// The one record between a worker that reports at full speed and a display that changes at most ten times a
/// second. Reports are safe from any thread and never wait for the main thread; texts go through a mailbox
/// that the repeating tick empties. Made and destroyed on the main thread.
class ProgressInfo {
  public:
    explicit ProgressInfo(RunLoop& loop);
    ~ProgressInfo();
    ProgressInfo(const ProgressInfo&) = delete;
    ProgressInfo& operator=(const ProgressInfo&) = delete;

    // Any thread.
    void updateStageText(std::string text);
    void updateCurrentActionDescription(std::string text);
    /// One relaxed store: cheap enough per item.
    void updateCurrentItemNumber(std::int32_t number) {
        currentItemNumberNew.store(number, std::memory_order_relaxed);
    }
    void setNumberOfItems(std::int32_t number);
    void updateIsIndeterminate(bool isIndeterminate);
    /// False starts the clock of a run.
    void updateIsDone(bool isDone);
    /// Lets the run count as long 0.2 seconds from its start on.
    void signalQuickSwitchToLongProcessingMode();
    /// Cheap per-item gate: true at most once per tick. Only then need a per-item text be formatted and
    /// handed to updateCurrentActionDescription, which logs it.
    [[nodiscard]] bool wantsItemDescription() const;

    // Main thread. The texts and the item number are those on display.
    void fireBindings();
    void forceUpdate() { fireBindings(); }
    /// Whether a run has been going for more than 3 seconds.
    [[nodiscard]] bool isLong() const;
    [[nodiscard]] bool isDone() const;
    [[nodiscard]] bool isIndeterminate() const;
    [[nodiscard]] std::string stageText() const;
    [[nodiscard]] std::string currentActionDescription() const;
    [[nodiscard]] std::int32_t currentItemNumber() const;
    [[nodiscard]] std::int32_t numberOfItems() const;
    /// "%d out of %d items", empty while indeterminate.
    [[nodiscard]] std::string itemText() const;
    /// Not owned; null ends the reports.
    void setObserver(ProgressObserver* newObserver);

  private:
    struct State;

    void announce(std::string_view key);

    RunLoop& loop;
    std::atomic<std::int32_t> currentItemNumberNew{0};
    mutable std::atomic<bool> itemDescriptionWanted{true};
    std::shared_ptr<State> state; ///< shared with announcements that are on their way
    std::unique_ptr<Timer> updateTimer;
};

/// Reports to a progress record that may be absent.
class StageProgress {
  public:
    explicit StageProgress(ProgressInfo* record) : info(record) {}

    void describe(std::string_view text) const {
        if (info)
            info->updateCurrentActionDescription(std::string(text));
    }
    template <typename... Arguments>
    void describe(fmt::format_string<Arguments...> format, Arguments&&... arguments) const {
        if (info)
            info->updateCurrentActionDescription(fmt::format(format, std::forward<Arguments>(arguments)...));
    }
    /// For texts per item: `text` is asked for only when somebody will see it.
    template <typename Text> void describeItem(Text text) const {
        if (info && info->wantsItemDescription())
            info->updateCurrentActionDescription(text());
    }
    void stage(std::string text) const {
        if (info)
            info->updateStageText(std::move(text));
    }
    void item(std::int32_t number) const {
        if (info)
            info->updateCurrentItemNumber(number);
    }
    void numberOfItems(std::int32_t number) const {
        if (info)
            info->setNumberOfItems(number);
    }
    void indeterminate(bool isIndeterminate) const {
        if (info)
            info->updateIsIndeterminate(isIndeterminate);
    }
    void done(bool isDone) const {
        if (info)
            info->updateIsDone(isDone);
    }

  private:
    ProgressInfo* info;
};

} // namespace tavrin
