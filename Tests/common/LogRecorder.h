#pragma once

#include "common/Testing.h"
#include "support/application/DebugLog.h"

#include <condition_variable>

namespace tavrin::test {

/// Switches the debug log on and keeps its lines while it lives. Any thread.
class LogRecorder : public LogSink {
  public:
    LogRecorder() : former(setDebugLogSink(this)) { setDebugLogIsOn(true); }
    ~LogRecorder() override {
        setDebugLogIsOn(false);
        setDebugLogSink(former);
    }
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

    /// Called with each line on the thread that writes it, no lock held.
    std::function<void(std::string_view line)> onLine;

    void write(std::string_view line) override {
        {
            const std::lock_guard lock(mutex);
            written.emplace_back(line);
            changed.notify_all();
        }
        if (onLine)
            onLine(line);
    }
    [[nodiscard]] std::vector<std::string> lines() const {
        const std::lock_guard lock(mutex);
        return written;
    }
    /// How many lines hold the text.
    [[nodiscard]] std::size_t count(std::string_view text) const {
        const std::lock_guard lock(mutex);
        return static_cast<std::size_t>(std::ranges::count_if(
            written, [text](const auto& line) { return line.find(text) != line.npos; }));
    }
    /// Waits until that many lines hold the text; false after a minute.
    bool waitFor(std::string_view text, std::size_t number) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, std::chrono::minutes(1), [&] { return count(text) >= number; });
    }

  private:
    mutable std::recursive_mutex mutex; ///< guards `written`
    std::condition_variable_any changed;
    std::vector<std::string> written;
    LogSink* former;
};

} // namespace tavrin::test
