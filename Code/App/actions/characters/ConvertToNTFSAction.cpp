#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "support/text/Text.h"

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

constexpr std::array<std::u16string_view, 23> reservedNames{
    u"CON",  u"PRN",  u"AUX",  u"NUL",  u"COM1", u"COM2", u"COM3",  u"COM4",
    u"COM5", u"COM6", u"COM7", u"COM8", u"COM9", u"LPT1", u"LPT2",  u"LPT3",
    u"LPT4", u"LPT5", u"LPT6", u"LPT7", u"LPT8", u"LPT9", u"CLOCK$"};

bool isReserved(std::u16string_view name) {
    return std::any_of(reservedNames.begin(), reservedNames.end(), [&](std::u16string_view reserved) {
        return name.size() == reserved.size() && text::equalIgnoringCase(name, reserved);
    });
}

bool hasBlankAtAnEdge(std::u16string_view text) { return text.starts_with(u' ') || text.ends_with(u' '); }

/// Makes the whole name fit for a file system that refuses certain characters, blanks at the ends, a dot at
/// the end and the names of devices. What it has made fit, it leaves as it is.
class ConvertToNTFSAction final : public FragmentAction {
  public:
    ConvertToNTFSAction() {
        setDefault("fragmentSelection", 0);
        addParameter(characterParameter("fillerCharacter", "Replace forbidden characters by", u"_")
                         .first()
                         .orLeftOut());
        for (char16_t control = 1; control < u' '; ++control)
            illegalCharacters += control;
        for (const char16_t unit : illegalCharacters)
            isIllegalAscii[unit] = true;
    }
    [[nodiscard]] bool isFragmentSelectionSupported() const override { return false; }

  protected:
    void prepareParameters() override;

    void processName(std::u16string_view fragment, std::u16string& result) override {
        const auto start = result.size();
        for (const char16_t unit : fragment) {
            if (isIllegal(unit))
                result += paramFillerCharacter;
            else
                result += unit;
        }
        // No filler holds what is illegal, so once is enough for these.
        while (processTheNameOneTime(result, start)) {
        }
    }

  private:
    [[nodiscard]] bool isIllegal(char16_t unit) const {
        return unit < isIllegalAscii.size() && isIllegalAscii[unit];
    }
    [[nodiscard]] bool processTheNameOneTime(std::u16string& text, std::size_t start) const;
    [[nodiscard]] bool replaceTrailingSpaces(std::u16string& text, std::size_t start) const;
    [[nodiscard]] bool replaceLeadingSpaces(std::u16string& text, std::size_t start) const;

    std::u16string illegalCharacters = u"\"*/<>?\\|[]=+<>;:,";
    std::array<bool, 128> isIllegalAscii{};
    std::u16string paramFillerCharacter;
    std::u16string paramComputedFillerCharacterForLastCharacter;
    std::u16string paramComputedFillerCharacterForMakingAUniqueName;
    std::u16string paramComputedFillerCharacterForReplacingLeadingAndTrailingSpaces;
};

void ConvertToNTFSAction::prepareParameters() {
    BaseRenameAction::prepareParameters();
    workOnTheWholeName();
    auto& filler = paramFillerCharacter;
    filler = limitTextFieldInputTo1Character("fillerCharacter");
    // A character may be of several units: any of them can be what it must not, or be a blank or a dot at an
    // end, where it would have to be replaced by itself for ever.
    if (filler.find_first_of(illegalCharacters) != filler.npos) {
        filler = u"_";
        setValue(filler, "fillerCharacter");
    }
    const bool isUnfitAtEnd = filler.ends_with(u'.') || hasBlankAtAnEdge(filler);
    paramComputedFillerCharacterForLastCharacter = isUnfitAtEnd ? u"_" : filler;
    paramComputedFillerCharacterForMakingAUniqueName = filler.empty() || isUnfitAtEnd ? u"_" : filler;
    paramComputedFillerCharacterForReplacingLeadingAndTrailingSpaces =
        hasBlankAtAnEdge(filler) ? u"_" : filler;
}

/// One round; false when it has found nothing to do.
bool ConvertToNTFSAction::processTheNameOneTime(std::u16string& text, std::size_t start) const {
    if (isReserved(std::u16string_view(text).substr(start))) {
        text += paramComputedFillerCharacterForMakingAUniqueName;
        return true;
    }
    bool hasChanged = replaceTrailingSpaces(text, start);
    hasChanged = replaceLeadingSpaces(text, start) || hasChanged;
    if (text.size() == start) {
        text += paramFillerCharacter.empty() ? u"_" : paramFillerCharacter;
        hasChanged = true;
    }
    if (text.back() == u'.') {
        text.pop_back();
        text += paramComputedFillerCharacterForLastCharacter;
        hasChanged = true;
    }
    return hasChanged;
}

bool ConvertToNTFSAction::replaceTrailingSpaces(std::u16string& text, std::size_t start) const {
    std::size_t blanks = 0;
    while (text.size() > start && text.back() == u' ') {
        text.pop_back();
        ++blanks;
    }
    for (std::size_t i = 0; i < blanks; ++i)
        text += paramComputedFillerCharacterForReplacingLeadingAndTrailingSpaces;
    return blanks > 0;
}

bool ConvertToNTFSAction::replaceLeadingSpaces(std::u16string& text, std::size_t start) const {
    const std::size_t end = std::min(text.find_first_not_of(u' ', start), text.size());
    std::u16string fillers;
    for (std::size_t i = start; i < end; ++i)
        fillers += paramComputedFillerCharacterForReplacingLeadingAndTrailingSpaces;
    text.replace(start, end - start, fillers);
    return end > start;
}

} // namespace

std::vector<ActionEntry> convertToNTFSActions() {
    return {
        {"Convert to NTFS",
         "Windows-safe names",
         {"windows"},
         ActionCategory::lengthAndSystems,
         newAction<ConvertToNTFSAction>,
         {{{}, u"Why? Part 1: begin.txt", u"Why_ Part 1_ begin.txt"},
          {{{"fillerCharacter", u"-"}}, u"aux", u"aux-"}}},
    };
}

} // namespace tavrin
