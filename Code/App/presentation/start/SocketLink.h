#pragma once

#include "presentation/start/WindowLink.h"

#include <QByteArray>
#include <QSocketNotifier>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace tavrin {

/// The window behind a socket in the user's own runtime folder. Who holds the lock beside it is the window;
/// the system frees it with the process, so a socket that was left behind is no obstacle.
class SocketLink final : public WindowLink {
  public:
    explicit SocketLink(std::string runtimeFolder);
    ~SocketLink() override;

    [[nodiscard]] Role join(const std::vector<std::string>& paths) override;

  private:
    /// A descriptor that is closed with this.
    class Descriptor {
      public:
        explicit Descriptor(int descriptor = -1) : number(descriptor) {}
        ~Descriptor();
        Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
        Descriptor& operator=(Descriptor&& other) noexcept;
        [[nodiscard]] int get() const { return number; }
        [[nodiscard]] bool isOpen() const { return number >= 0; }

      private:
        int number;
    };
    struct Caller {
        Descriptor socket;
        std::unique_ptr<QSocketNotifier> notifier;
        QByteArray content;
    };

    [[nodiscard]] bool listen();
    void accept();
    void read(int caller);
    /// Whether the window has taken the paths; absent when nobody listens.
    [[nodiscard]] std::optional<bool> handOver(const std::vector<std::string>& paths) const;

    const std::string socketPath;
    const std::string lockPath;
    Descriptor lock;
    Descriptor listener;
    std::unique_ptr<QSocketNotifier> notifier;
    std::map<int, Caller> callers;
};

} // namespace tavrin
