#pragma once

#include "engine/pipeline/ProgressInfo.h"

#include <fmt/core.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace tavrin {

/// Reports to a progress record that may be absent.
class StageProgress {
  public:
    explicit StageProgress(ProgressInfo* record) : info(record) {}

    void describe(std::string_view text) const {
        if (info)
            info->updateCurrentActionDescription(std::string(text));
    }
    template <typename... Arguments>
    void describe(fmt::format_string<Arguments...> format, Arguments&&... arguments) const {
        if (info)
            info->updateCurrentActionDescription(fmt::format(format, std::forward<Arguments>(arguments)...));
    }
    /// For texts per item: `text` is asked for only when somebody will see it.
    template <typename Text> void describeItem(Text text) const {
        if (info && info->wantsItemDescription())
            info->updateCurrentActionDescription(text());
    }
    void stage(std::string text) const {
        if (info)
            info->updateStageText(std::move(text));
    }
    void item(std::int32_t number) const {
        if (info)
            info->updateCurrentItemNumber(number);
    }
    void numberOfItems(std::int32_t number) const {
        if (info)
            info->setNumberOfItems(number);
    }
    void indeterminate(bool isIndeterminate) const {
        if (info)
            info->updateIsIndeterminate(isIndeterminate);
    }
    void done(bool isDone) const {
        if (info)
            info->updateIsDone(isDone);
    }

  private:
    ProgressInfo* info;
};

} // namespace tavrin
