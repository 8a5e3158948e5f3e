#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/Sequences.h"
#include "support/text/KQStringUtilities.h"
#include "support/text/TextSearch.h"

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

constexpr std::array<std::u16string_view, 6> patterns{
    u"",
    // Without the "V", as it has always been.
    u" !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~",
    u"ABCDEFGHIJKLMNOPQRSTUVWXYZ",
    u"abcdefghijklmnopqrstuvwxyz",
    u"0123456789",
    u" !\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~",
};
constexpr std::array<std::string_view, 6> patternTitles{"",         "All printable", "A\u2013Z",
                                                        "a\u2013z", "0\u20139",      "Punctuation"};

/// Keeps what a text contains, but never empties a name.
class KeepOnlySpecificCharactersAction final : public FragmentAction {
  public:
    KeepOnlySpecificCharactersAction() {
        addParameter(textParameter("string", "Keep",
                                   u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-&+")
                         .first()
                         .orLeftOut(),
                     paramString);
    }
    [[nodiscard]] std::span<const std::string_view> patternMenu() const override { return patternTitles; }
    [[nodiscard]] std::string_view patternMenuTitle() const override { return "Add"; }
    void selectPattern(std::int32_t index) override;

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        isKept.refill([this](std::u16string_view sequence) { return isContained(sequence); });
    }

    void processName(std::u16string_view fragment, std::u16string& result) override {
        const auto start = result.size();
        forEachSequence(fragment, [&](std::u16string_view sequence) {
            if (isKept.valueFor(sequence, [this](std::u16string_view other) { return isContained(other); }))
                result += sequence;
        });
        if (result.size() == start)
            result += fragment;
    }

  private:
    [[nodiscard]] bool isContained(std::u16string_view sequence) const {
        return contains(paramString, sequence, CaseSensitivity::sensitive);
    }

    std::u16string paramString;
    SequenceMemory<bool> isKept;
};

/// The characters of the pattern come last, each once.
void KeepOnlySpecificCharactersAction::selectPattern(std::int32_t index) {
    const bool isKnown = index >= 0 && index < static_cast<std::int32_t>(patterns.size());
    auto characters = KQStringUtilities::decomposeIntoStringArray(getParamString("string"));
    for (auto& character : KQStringUtilities::decomposeIntoStringArray(
             patterns[isKnown ? static_cast<std::size_t>(index) : 0])) {
        std::erase(characters, character);
        characters.push_back(std::move(character));
    }
    std::u16string joined;
    for (const auto& character : characters)
        joined += character;
    setValue(joined, "string");
}

bool isVowel(char16_t unit) {
    switch (text::units::asciiLower(unit)) {
    case u'a':
    case u'e':
    case u'i':
    case u'o':
    case u'u':
    case u'y':
        return true;
    }
    return false;
}

/// Drops what begins with a vowel, so an accented one goes only where it is decomposed.
void appendWithoutVowels(std::u16string_view fragment, std::u16string& result) {
    forEachSequence(fragment, [&](std::u16string_view sequence) {
        if (!isVowel(sequence.front()))
            result += sequence;
    });
}

void appendWithoutTrailingSpaces(std::u16string_view fragment, std::u16string& result) {
    // Of blanks only, nothing is left: no last other character is npos, whose successor is 0.
    result += fragment.substr(0, fragment.find_last_not_of(u' ') + 1);
}

} // namespace

std::vector<ActionEntry> characterSetActions() {
    constexpr auto category = ActionCategory::remove;
    return {
        {"Remove vowels",
         "Remove vowels",
         {"remove-vowels"},
         category,
         newAction<PlainAction<appendWithoutVowels>>,
         {{{}, u"Yellow Submarine.mp3", u"llw Sbmrn.mp3"}},
         u"Removes a, e, i, o, u and y."},
        {"Remove trailing spaces",
         "Remove trailing spaces",
         {"trim", Place::end},
         category,
         newAction<PlainAction<appendWithoutTrailingSpaces>>,
         {{{}, u"letter  .txt", u"letter.txt"}},
         u"Removes blanks at the end of the name."},
        {"Keep only specific characters",
         "Keep only some characters",
         {"keep"},
         category,
         newAction<KeepOnlySpecificCharactersAction>,
         {{{}, u"my photo (2)!.jpg", u"myphoto2.jpg"},
          {{{"string", u"0123456789"}}, u"IMG_4021.JPG", u"4021.JPG"}}},
    };
}

} // namespace tavrin
