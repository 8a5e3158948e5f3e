#include "support/application/DebugLog.h"

#include <atomic>

namespace tavrin {
namespace {

std::atomic<LogSink*> currentSink = nullptr;
std::atomic<bool> switchIsOn = false;

} // namespace

LogSink* setDebugLogSink(LogSink* sink) { return currentSink.exchange(sink); }

void setDebugLogIsOn(bool isOn) { switchIsOn = isOn; }

bool debugLogIsOn() {
    return switchIsOn.load(std::memory_order_relaxed) &&
           currentSink.load(std::memory_order_relaxed) != nullptr;
}

void writeDebugLogLine(std::string_view line) {
    if (LogSink* const sink = currentSink.load(std::memory_order_acquire))
        sink->write(line);
}

} // namespace tavrin
