#pragma once

#include "actions/moving/RenameActionStrategy.h"
#include "support/text/TextSearch.h"

namespace tavrin {

class AddAtFrontInsertionStrategy final : public InsertionStrategy {
  public:
    void insert(std::u16string_view text, std::u16string_view into, const StrategyContext& context,
                std::u16string& result) override;
};

class AddToEndInsertionStrategy final : public InsertionStrategy {
  public:
    void insert(std::u16string_view text, std::u16string_view into, const StrategyContext& context,
                std::u16string& result) override;
};

class PositionInsertionStrategy final : public InsertionStrategy {
  public:
    void addParametersTo(ContentBasedAction& action) override;
    void insert(std::u16string_view text, std::u16string_view into, const StrategyContext& context,
                std::u16string& result) override;

  private:
    std::int32_t position = 0;
    std::int32_t mode = 0;
};

/// The text sought is brought to form C, the name is not.
class InFrontOfExistingTextInsertionStrategy : public InsertionStrategy {
  public:
    /// The key of the case switch is told apart where the content has one too.
    explicit InFrontOfExistingTextInsertionStrategy(std::string_view keyOfIgnoreCase = "ignoreCase")
        : ignoreCaseKey(keyOfIgnoreCase) {}

    void addParametersTo(ContentBasedAction& action) override;
    void prepareParameters() override;
    void insert(std::u16string_view text, std::u16string_view into, const StrategyContext& context,
                std::u16string& result) override;

  protected:
    std::int32_t mode = 0;
    TextSearch search;

  private:
    std::string_view ignoreCaseKey;
    std::u16string searchTerm;
    std::int32_t ignoreCase = 0;
};

class AfterExistingTextInsertionStrategy final : public InFrontOfExistingTextInsertionStrategy {
  public:
    using InFrontOfExistingTextInsertionStrategy::InFrontOfExistingTextInsertionStrategy;

    void insert(std::u16string_view text, std::u16string_view into, const StrategyContext& context,
                std::u16string& result) override;
};

/// Inserts the text that the content strategy cut out of the name into what it left of it.
class TranspositionInsertionStrategyAdapter final : public InsertionStrategy {
  public:
    explicit TranspositionInsertionStrategyAdapter(std::unique_ptr<InsertionStrategy> inner);

    void addParametersTo(ContentBasedAction& action) override;
    void prepareParameters() override;
    void insert(std::u16string_view text, std::u16string_view into, const StrategyContext& context,
                std::u16string& result) override;

  private:
    std::unique_ptr<InsertionStrategy> insertionStrategy;
};

} // namespace tavrin
