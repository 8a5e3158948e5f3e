#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/characters/SequenceFilter.h"
#include "support/text/KQStringUtilities.h"
#include "support/text/TextSearch.h"

#include <algorithm>
#include <array>
#include <unordered_map>

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
class KeepOnlySpecificCharactersAction final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Keep only specific characters";

    KeepOnlySpecificCharactersAction() {
        addParameter(textParameter("string", "Keep",
                                   u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-&+"),
                     paramString);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{}, u"my photo (2)!.jpg", u"myphoto2.jpg"},
                {{{"string", u"0123456789"}}, u"IMG_4021.JPG", u"4021.JPG"}};
    }
    [[nodiscard]] std::span<const std::string_view> patternMenu() const override { return patternTitles; }
    [[nodiscard]] std::string_view patternMenuTitle() const override { return "Add"; }
    void selectPattern(std::int32_t index) override;

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        for (std::size_t unit = 0; unit < isAsciiKept.size(); ++unit)
            isAsciiKept[unit] = isContained(std::u16string(1, static_cast<char16_t>(unit)));
        othersKept.clear();
    }

    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        const auto start = result.size();
        appendSequences(fragment, result, [this](std::u16string_view sequence) { return isKept(sequence); });
        if (result.size() == start)
            result += fragment;
    }

  private:
    [[nodiscard]] bool isContained(std::u16string_view sequence) const {
        return contains(paramString, sequence, CaseSensitivity::sensitive);
    }

    [[nodiscard]] bool isKept(std::u16string_view sequence) {
        if (sequence.size() == 1 && sequence.front() < isAsciiKept.size())
            return isAsciiKept[sequence.front()];
        constexpr std::size_t mostRemembered = 4096;
        const std::u16string key(sequence);
        if (const auto known = othersKept.find(key); known != othersKept.end())
            return known->second;
        if (othersKept.size() >= mostRemembered)
            othersKept.clear();
        return othersKept.emplace(key, isContained(sequence)).first->second;
    }

    std::u16string paramString;
    std::array<bool, 128> isAsciiKept{};
    std::unordered_map<std::u16string, bool> othersKept; ///< bounded memory of isContained
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

/// Drops what begins with a vowel, so an accented one goes only where it is decomposed.
class RemoveVowelsAction final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Remove vowels";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{}, u"Yellow Submarine.mp3", u"llw Sbmrn.mp3"}};
    }
    [[nodiscard]] std::u16string explanation() const override { return u"Removes a, e, i, o, u and y."; }

  protected:
    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        constexpr std::u16string_view vowels = u"aeiouyAEIOUY";
        appendSequences(fragment, result, [&](std::u16string_view sequence) {
            return vowels.find(sequence.front()) == vowels.npos;
        });
    }
};

class RemoveTrailingSpacesAction final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Remove trailing spaces";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{}, u"letter  .txt", u"letter.txt"}};
    }
    [[nodiscard]] std::u16string explanation() const override {
        return u"Removes blanks at the end of the name.";
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        // Of blanks only, nothing is left: no last other character is npos, whose successor is 0.
        result += fragment.substr(0, fragment.find_last_not_of(u' ') + 1);
    }
};

constexpr ActionEntry entries[]{entryFor<KeepOnlySpecificCharactersAction>(), entryFor<RemoveVowelsAction>(),
                                entryFor<RemoveTrailingSpacesAction>()};

} // namespace

std::span<const ActionEntry> characterSetActions() { return entries; }

} // namespace tavrin
