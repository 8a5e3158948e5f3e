#pragma once

#include "actions/BaseRenameAction.h"
#include "actions/PrecomposedText.h"
#include "actions/RenameActionHelper.h"
#include "support/text/Text.h"
#include "support/text/TextSearch.h"

#include <string>
#include <string_view>

/// Where the members of a family put the text that their base makes. The base offers
/// `std::optional<std::u16string_view> textToPlace(const InputContext&)`; where that is absent, the name
/// stays as it came.
namespace tavrin::placement {

template <typename Base> class AtStart : public Base {
  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext&,
                     std::u16string& result) override {
        if (const auto text = this->textToPlace(input))
            result += *text;
        result += fragment;
    }
};

template <typename Base> class AtEnd : public Base {
  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext&,
                     std::u16string& result) override {
        result += fragment;
        if (const auto text = this->textToPlace(input))
            result += *text;
    }
};

template <typename Base> class AtPosition : public Base {
  public:
    AtPosition() {
        this->addParameter(
            numberParameter("position", "At", 0, 0).between(0, 9999).in(PanelSection::placement), position);
        this->addParameter(choiceParameter("mode", "Counted", positionModeChoices(), 0, 0).beside("position"),
                           mode);
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext&,
                     std::u16string& result) override {
        RenameActionHelper::insertAtPosition(this->textToPlace(input), fragment, position, mode, result);
    }

  private:
    std::int32_t position = 0;
    std::int32_t mode = 0;
};

/// What the placements beside an existing text share. The text sought is in form C.
template <typename Base> class BesideText : public Base {
  public:
    BesideText() {
        this->addParameter(textParameter("searchTerm", "Text to find").in(PanelSection::placement),
                           searchTerm);
        this->addParameter(
            choiceParameter("mode", "Which one", occurrenceChoices(), 0, 0).in(PanelSection::placement),
            mode);
        this->addParameter(checkboxParameter("ignoreCase", "Ignore case", 1, 0).in(PanelSection::placement),
                           ignoreCase);
    }

  protected:
    void prepareParameters() override {
        Base::prepareParameters();
        search = TextSearch(text::precomposed(searchTerm), RenameActionHelper::sensitivity(ignoreCase));
    }

    std::int32_t mode = 0;
    TextSearch search;

  private:
    std::u16string searchTerm;
    std::int32_t ignoreCase = 0;
};

template <typename Base> class InFrontOfText : public BesideText<Base> {
  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext&,
                     std::u16string& result) override {
        RenameActionHelper::insertInFrontOfExistingText(this->textToPlace(input), fragment, this->search,
                                                        this->mode, result);
    }
};

template <typename Base> class AfterText : public BesideText<Base> {
  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext&,
                     std::u16string& result) override {
        RenameActionHelper::insertAfterExistingText(this->textToPlace(input), fragment, this->search,
                                                    this->mode, result);
    }
};

/// The text between two others is the whole new fragment.
template <typename Base> class WholeName : public Base {
  public:
    WholeName() {
        this->addParameter(textParameter("prefix", "Text in front").in(PanelSection::front), prefix);
        this->addParameter(textParameter("suffix", "Text behind").in(PanelSection::behind), suffix);
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext&,
                     std::u16string& result) override {
        if (const auto text = this->textToPlace(input))
            result.append(prefix).append(*text).append(suffix);
        else
            result += fragment;
    }

  private:
    std::u16string prefix;
    std::u16string suffix;
};

/// A placement that works on, and returns, the name in form C; but for a name that stays as it came, since
/// there is no text to place.
template <typename Placement> class OnPrecomposedName : public Placement {
  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext& output,
                     std::u16string& result) override {
        if (this->textToPlace(input))
            Placement::processName(PrecomposedText(fragment).view(), input, output, result);
        else
            result += fragment;
    }
};

} // namespace tavrin::placement
