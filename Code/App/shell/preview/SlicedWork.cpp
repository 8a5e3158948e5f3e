#include "shell/preview/SlicedWork.h"

#include "platform/processes/RunLoop.h"

#include <limits>
#include <utility>

namespace tavrin {

namespace {

constexpr double sliceSeconds = 0.012;

} // namespace

SlicedWork::SlicedWork(RunLoop& runLoop) : loop(runLoop) {}

SlicedWork::~SlicedWork() = default;

void SlicedWork::begin(Step step) {
    const bool wasIdle = steps.empty();
    steps.push_back(std::move(step));
    if (wasIdle)
        proceed(sliceSeconds);
}

void SlicedWork::finish() { proceed(std::numeric_limits<double>::infinity()); }

void SlicedWork::drop() {
    steps.clear();
    next.reset();
}

void SlicedWork::proceed(double seconds) {
    const double end = loop.now() + seconds;
    while (!steps.empty() && loop.now() <= end)
        if (!steps.front()())
            steps.pop_front();
    next = steps.empty()
               ? nullptr
               : loop.startTimer(std::chrono::milliseconds(0), false, [this] { proceed(sliceSeconds); });
}

} // namespace tavrin
