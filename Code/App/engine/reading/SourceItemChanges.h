#pragma once

#include <string>
#include <vector>

namespace tavrin {

/// What the renames of one batch mean for the list of paths that the user added.
class SourceItemChanges {
  public:
    void change(std::string from, std::string to);
    void remove(std::string path) { toBeRemoved.push_back(std::move(path)); }
    void add(std::string path) { toBeAdded.push_back(std::move(path)); }

    /// Tells SourceItemManager: changes, then removals, then additions, since a swap removes and adds the
    /// same two paths. Empties the lists.
    void apply();

  private:
    std::vector<std::string> changeFrom;
    std::vector<std::string> changeTo;
    std::vector<std::string> toBeRemoved;
    std::vector<std::string> toBeAdded;
};

} // namespace tavrin
