#pragma once

#include <QObject>
#include <functional>
#include <map>
#include <string>

namespace tavrin {

/// Reads all tags of one file on another thread. Main thread.
class TagValues final : public QObject {
  public:
    /// The texts of the tags that the file has, by tag.
    using Texts = std::map<std::u16string, std::u16string>;

    ~TagValues() override;

    /// Calls `then` with the texts, unless another file is asked for first. A path that is empty has none.
    void read(const std::string& path, std::function<void(const Texts&)> then);

  private:
    std::uint64_t asked = 0;
};

} // namespace tavrin
