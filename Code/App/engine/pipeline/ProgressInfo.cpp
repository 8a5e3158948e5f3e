#include "engine/pipeline/ProgressInfo.h"

#include "platform/processes/RunLoop.h"
#include "support/application/DebugLog.h"

#include <chrono>
#include <mutex>
#include <optional>
#include <utility>

namespace tavrin {

namespace {

constexpr std::chrono::milliseconds tick(100);
constexpr double longAfter = 3.0; // seconds
constexpr double quickSwitch = -2.8;

} // namespace

struct ProgressInfo::State {
    mutable std::mutex mutex; ///< guards what follows, up to the observer
    std::optional<std::string> stageTextNew;
    std::optional<std::string> actionDescriptionNew;
    std::int32_t numberOfItems = 0;
    bool isIndeterminate = false;
    bool isDone = false;
    double lastStartTime = 0;

    // Main thread only.
    ProgressObserver* observer = nullptr;
    std::string stageTextOld;
    std::string actionDescriptionOld;
    std::int32_t currentItemNumber = 0;

    void tell(std::string_view key) const {
        if (observer)
            observer->progressChanged(key);
    }
};

ProgressInfo::ProgressInfo(RunLoop& mainLoop) : loop(mainLoop), state(std::make_shared<State>()) {
    state->lastStartTime = loop.now();
    updateTimer = loop.startTimer(tick, true, [this] { fireBindings(); });
}

ProgressInfo::~ProgressInfo() { state->observer = nullptr; }

void ProgressInfo::updateStageText(std::string text) {
    debugLog("{}", text);
    const std::lock_guard lock(state->mutex);
    state->stageTextNew = std::move(text);
}

void ProgressInfo::updateCurrentActionDescription(std::string text) {
    debugLog("{}", text);
    const std::lock_guard lock(state->mutex);
    state->actionDescriptionNew = std::move(text);
}

void ProgressInfo::setNumberOfItems(std::int32_t number) {
    {
        const std::lock_guard lock(state->mutex);
        state->numberOfItems = number;
    }
    announce("numberOfItems");
}

void ProgressInfo::updateIsIndeterminate(bool isIndeterminate) {
    {
        const std::lock_guard lock(state->mutex);
        state->isIndeterminate = isIndeterminate;
    }
    announce("isIndeterminate");
    announce("itemText");
}

void ProgressInfo::updateIsDone(bool isDone) {
    {
        const std::lock_guard lock(state->mutex);
        state->isDone = isDone;
        if (!isDone)
            state->lastStartTime = loop.now();
    }
    announce("isDone");
}

void ProgressInfo::signalQuickSwitchToLongProcessingMode() {
    const std::lock_guard lock(state->mutex);
    state->lastStartTime += quickSwitch;
}

bool ProgressInfo::wantsItemDescription() const {
    return itemDescriptionWanted.load(std::memory_order_relaxed) &&
           itemDescriptionWanted.exchange(false, std::memory_order_relaxed);
}

/// The keys are literals, so a view of one may travel.
void ProgressInfo::announce(std::string_view key) {
    if (loop.isCurrent())
        state->tell(key);
    else
        loop.post([state = state, key] { state->tell(key); });
}

void ProgressInfo::fireBindings() {
    itemDescriptionWanted.store(true, std::memory_order_relaxed);
    std::optional<std::string> stageTextNew;
    std::optional<std::string> actionDescriptionNew;
    {
        const std::lock_guard lock(state->mutex);
        stageTextNew.swap(state->stageTextNew);
        actionDescriptionNew.swap(state->actionDescriptionNew);
    }
    if (stageTextNew) {
        state->stageTextOld = std::move(*stageTextNew);
        state->tell("stageText");
    }
    if (actionDescriptionNew) {
        state->actionDescriptionOld = std::move(*actionDescriptionNew);
        state->tell("currentActionDescription");
    }
    const std::int32_t number = currentItemNumberNew.load(std::memory_order_relaxed);
    if (std::exchange(state->currentItemNumber, number) != number) {
        state->tell("currentItemNumber");
        state->tell("itemText");
    }
}

bool ProgressInfo::isLong() const {
    const std::lock_guard lock(state->mutex);
    return !state->isDone && loop.now() - state->lastStartTime > longAfter;
}

bool ProgressInfo::isDone() const {
    const std::lock_guard lock(state->mutex);
    return state->isDone;
}

bool ProgressInfo::isIndeterminate() const {
    const std::lock_guard lock(state->mutex);
    return state->isIndeterminate;
}

std::string ProgressInfo::stageText() const { return state->stageTextOld; }

std::string ProgressInfo::currentActionDescription() const { return state->actionDescriptionOld; }

std::int32_t ProgressInfo::currentItemNumber() const { return state->currentItemNumber; }

std::int32_t ProgressInfo::numberOfItems() const {
    const std::lock_guard lock(state->mutex);
    return state->numberOfItems;
}

std::string ProgressInfo::itemText() const {
    const std::lock_guard lock(state->mutex);
    if (state->isIndeterminate)
        return {};
    return fmt::format("{} out of {} items", state->currentItemNumber, state->numberOfItems);
}

void ProgressInfo::setObserver(ProgressObserver* newObserver) { state->observer = newObserver; }

} // namespace tavrin
