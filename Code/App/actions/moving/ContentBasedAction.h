#pragma once

#include "actions/moving/RenameActionStrategy.h"

namespace tavrin {

/// An action composed of two strategies: where a text comes from, and where it goes.
class ContentBasedAction : public BaseRenameAction {
  public:
    ContentBasedAction(std::unique_ptr<ContentStrategy> content,
                       std::unique_ptr<InsertionStrategy> insertion);

    using BaseAction::addParameter;

  protected:
    void prepareParameters() override;
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext& output,
                     std::u16string& result) override;

  private:
    std::unique_ptr<ContentStrategy> contentStrategy;
    std::unique_ptr<InsertionStrategy> insertionStrategy;
};

} // namespace tavrin
