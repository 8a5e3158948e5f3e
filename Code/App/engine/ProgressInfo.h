#pragma once

#include "store/NodeRow.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class RunLoop;
class Timer;

/// Told on the main thread of changes that the display should follow, by observable key ("stageText",
/// "currentActionDescription", "currentItemNumber", "itemText", "numberOfItems", "isIndeterminate",
/// "isDone"). "numberOfItems" may be announced on a worker thread.
class ProgressObserver {
  public:
    virtual ~ProgressObserver() = default;
    virtual void progressChanged(std::string_view key) = 0;
};

/// The one record between a worker that reports at full speed and a display that changes at most ten times a
/// second. Reports are safe from any thread and never wait for the main thread; texts go through a mailbox
/// that the repeating tick empties.
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
    void updateIsDone(bool isDone);
    void signalQuickSwitchToLongProcessingMode();
    /// Cheap per-item gate: true at most once per tick, or always when the debug log would take the text.
    /// Only then need a per-item text be formatted and handed to updateCurrentActionDescription.
    [[nodiscard]] bool wantsItemDescription() const;

    // Main thread.
    void fireBindings();
    void forceUpdate() { fireBindings(); }
    [[nodiscard]] bool isLong() const;
    [[nodiscard]] bool isDone() const;
    [[nodiscard]] bool isIndeterminate() const;
    [[nodiscard]] std::string stageText() const;
    [[nodiscard]] std::string currentActionDescription() const;
    [[nodiscard]] std::int32_t currentItemNumber() const;
    [[nodiscard]] std::int32_t numberOfItems() const;
    /// "%d out of %d items", empty while indeterminate.
    [[nodiscard]] std::string itemText() const;
    void setObserver(ProgressObserver* newObserver);

  private:
    RunLoop& loop;
    ProgressObserver* observer = nullptr;
    std::unique_ptr<Timer> updateTimer;
    std::atomic<std::int32_t> currentItemNumberNew{0};
    mutable std::atomic<bool> itemDescriptionWanted{true};
    struct Texts;
    std::unique_ptr<Texts> texts;
};

} // namespace tavrin
