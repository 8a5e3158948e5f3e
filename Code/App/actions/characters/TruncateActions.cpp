#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"

#include <algorithm>

namespace tavrin {

namespace {

/// Cuts a fragment to a length, at its end or at the end of what lies in front of its first dot.
class TruncateAction : public FragmentAction {
  public:
    TruncateAction() {
        addParameter(
            numberParameter("numberOfCharacters", "To characters", 8).between(1, 255).first().orLeftOut(),
            paramNumberOfCharacters);
        addParameter(checkboxParameter("smart", "Keep the extension", 0).mark("keep-ext"), paramSmart);
    }

  protected:
    void processName(std::u16string_view fragment, std::u16string& result) override {
        const std::size_t most = static_cast<std::uint32_t>(paramNumberOfCharacters);
        if (fragment.size() <= most) { // always so for a negative number
            result += fragment;
            return;
        }
        const auto extension =
            paramSmart == 1 ? fragment.substr(std::min(fragment.find(u'.'), fragment.size())) : u"";
        if (extension.size() >= most)
            result += extension.substr(extension.size() - most);
        else
            result.append(fragment, 0, most - extension.size()).append(extension);
    }

    std::int32_t paramNumberOfCharacters = 8;
    std::int32_t paramSmart = 0;
};

/// Eight units and, from the last dot on, four.
void appendTruncatedToDOS(std::u16string_view fragment, std::u16string& result) {
    constexpr std::size_t mostOfBase = 8;
    constexpr std::size_t mostOfExtension = 4;
    const auto dot = std::min(fragment.rfind(u'.'), fragment.size());
    result.append(fragment, 0, std::min(dot, mostOfBase)).append(fragment, dot, mostOfExtension);
}

class ConvertToMacOS9Action final : public TruncateAction {
  public:
    ConvertToMacOS9Action() {
        setDefault("fragmentSelection", 0);
        retireParameter("numberOfCharacters");
        retireParameter("smart");
    }
    [[nodiscard]] bool isFragmentSelectionSupported() const override { return false; }

  protected:
    void prepareParameters() override {
        TruncateAction::prepareParameters();
        workOnTheWholeName();
        paramNumberOfCharacters = 31;
        paramSmart = 1;
    }
};

} // namespace

std::vector<ActionEntry> truncateActions() {
    constexpr auto category = ActionCategory::lengthAndSystems;
    return {
        {"Truncate",
         "Shorten",
         {"shorten"},
         category,
         newAction<TruncateAction>,
         {{{{"numberOfCharacters", 7}}, u"holiday photos.jpeg", u"holiday.jpeg"},
          {{{"smart", 1}, {"fragmentSelection", 0}}, u"longname.txt", u"long.txt"}}},
        {"Truncate to DOS",
         "8.3 names",
         {"dos"},
         category,
         newAction<PlainAction<appendTruncatedToDOS>>,
         {{{{"fragmentSelection", 0}}, u"longfilename.jpeg", u"longfile.jpe"}},
         u"Shortens names to 8 characters, a dot and 3 characters."},
        {"Convert to Mac OS 9",
         "Old Mac names, 31 characters",
         {"mac"},
         category,
         newAction<ConvertToMacOS9Action>,
         {{{}, u"minutes of the meeting in spring.txt", u"minutes of the meeting in s.txt"}},
         u"Shortens names to 31 characters. The extension is kept."},
    };
}

} // namespace tavrin
