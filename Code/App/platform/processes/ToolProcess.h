#pragma once

#include "platform/files/Descriptor.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace tavrin {

/// A child process that is given lines and answers each with text up to an end marker. It is killed and
/// reaped with this object. One thread at a time.
class ToolProcess {
  public:
    /// `endMarker` must outlive this object.
    struct Protocol {
        std::string_view endMarker;
        std::size_t answerLimit; ///< bytes
        std::chrono::milliseconds timeLimit;
    };
    enum class Outcome {
        answered,
        ended,     ///< the child takes no more lines, or ended before the end marker
        overdue,   ///< no end marker in time
        oversized, ///< no end marker within the limit of an answer
        unasked,   ///< it says more than it was asked
    };

    /// Starts the program, without arguments, in its own folder, in an environment that holds nothing of the
    /// user's but the time zone. Null with an errno value when that fails.
    [[nodiscard]] static std::unique_ptr<ToolProcess> start(const std::string& program, Protocol protocol,
                                                            int& error);
    ~ToolProcess();
    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    /// Asks one line, which holds no line feed, and waits for the answer, which then ends before the end
    /// marker. After any outcome but `answered` the child is out of step: it must be asked no more.
    [[nodiscard]] Outcome ask(const std::string& line, std::string& answer);

  private:
    using Clock = std::chrono::steady_clock;

    ToolProcess(pid_t child, Descriptor requests, Descriptor answers, Protocol protocol);
    bool hasSpoken();
    Outcome send(const std::string& line, Clock::time_point end);
    Outcome receive(std::string& answer, Clock::time_point end);

    pid_t process;
    Descriptor input;  ///< of the child
    Descriptor output; ///< of the child
    Protocol terms;
};

} // namespace tavrin
