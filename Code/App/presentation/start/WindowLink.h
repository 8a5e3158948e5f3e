#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tavrin {

/// How a start finds the window that is open already. Of all starts of a session one becomes the window, also
/// of those at the same moment; the others hand their paths to it and end.
class WindowLink {
  public:
    enum class Role {
        window,     ///< this start is the window
        handedOver, ///< another is, and has taken the paths
        unanswered, ///< another is, and does not answer
    };
    /// Takes the paths of a later start, absolute and in bytes; none: the window is only to come up.
    using Open = std::function<void(const std::vector<std::string>& paths)>;

    virtual ~WindowLink() = default;

    [[nodiscard]] virtual Role join(const std::vector<std::string>& paths) = 0;
    /// Of a window: what comes is delivered from the event loop, and waits in it until then.
    void setOpen(Open handler) { open = std::move(handler); }

    /// Over the session bus where there is one, else over a socket. Null where there is neither.
    [[nodiscard]] static std::unique_ptr<WindowLink> forThisSession();

  protected:
    void deliver(const std::vector<std::string>& paths) const {
        if (open)
            open(paths);
    }

  private:
    Open open;
};

} // namespace tavrin
