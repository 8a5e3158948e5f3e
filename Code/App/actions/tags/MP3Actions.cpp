#include "actions/ActionFamilies.h"
#include "actions/tags/MP3Patterns.h"
#include "actions/tags/TextOfFile.h"
#include "platform/metadata/FileManager.h"

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

constexpr std::size_t patternCount = 5;
using PatternSet = std::array<std::u16string_view, patternCount>;

struct PatternParameter {
    const char* key;
    const char* label;
    std::u16string_view whenNew;
};

constexpr std::array<PatternParameter, patternCount> patternParameters{{
    {"pattern", "1st choice", u"<Artist> - <Album> - <Song>"},
    {"pattern1", "2nd choice", u"<Artist> - <Song>"},
    {"pattern2", "3rd choice", u"<Song>"},
    {"pattern3", "4th choice", u""},
    {"pattern4", "5th choice", u""},
}};

/// The ready-made sets, and how they are called in the menu.
constexpr std::array<PatternSet, 5> patternSets{{
    {u"", u"", u"", u"", u""},
    {u"<Artist> - <Song>", u"<Song>", u"", u"", u""},
    {u"<Artist> - <Album> - <Song>", u"<Artist> - <Song>", u"<Song>", u"", u""},
    {u"<Artist> - <Album> - <Song> (<TrackNum>)", u"<Artist> - <Album> - <Song>", u"<Artist> - <Song>",
     u"<Song>", u""},
    {u"<Artist> - <Album> - <Song> (<TrackNum>/<NumTracks>)", u"<Artist> - <Album> - <Song> (<TrackNum>)",
     u"<Artist> - <Album> - <Song>", u"<Artist> - <Song>", u"<Song>"},
}};
constexpr std::array<std::string_view, patternSets.size()> patternSetNames{
    "Clear all",
    "<Artist> - <Song>",
    "<Artist> - <Album> - <Song>",
    "<Artist> - <Album> - <Song> (<TrackNum>)",
    "<Artist> - <Album> - <Song> (<TrackNum>/<NumTracks>)",
};

/// Makes a text of the first pattern for which a piece of music has all values. The tool is asked for each
/// name.
class MP3Action : public BaseRenameAction {
  public:
    MP3Action() {
        for (std::size_t i = 0; i < patternCount; ++i)
            addParameter(textParameter(patternParameters[i].key, patternParameters[i].label,
                                       patternParameters[i].whenNew),
                         paramPatterns[i]);
    }
    [[nodiscard]] std::string actionName() const override { return "MP3 rename"; }
    [[nodiscard]] bool hasLongParameterList() const override { return true; }
    [[nodiscard]] bool usesMiniButtons() const override { return true; }
    [[nodiscard]] std::string_view helpAnchor() const override { return "helpTopic41"; }
    [[nodiscard]] std::u16string explanation() const override {
        return u"The first pattern for which a file has all tags is used.";
    }
    [[nodiscard]] std::span<const std::string_view> patternMenu() const override { return patternSetNames; }

    /// Fills all patterns; an index outside the menu changes nothing.
    void selectPattern(std::int32_t index) override {
        if (index < 0 || static_cast<std::size_t>(index) >= patternSets.size())
            return;
        const PatternSet& patterns = patternSets[static_cast<std::size_t>(index)];
        for (std::size_t i = 0; i < patternCount; ++i)
            setValue(PropertyValue(std::u16string(patterns[i])), patternParameters[i].key);
    }

  protected:
    static constexpr ExampleFile song{"", "", "song.mp3",
                                      "a song of Ann, \"Blue Hour\", track 3 of 12 of \"Best\"", u""};

    /// None for a file without metadata; the name itself where no pattern fits.
    void takeText(std::u16string_view fragment, const InputContext& input, OutputContext& output) {
        const std::optional<FileMetadata> metadata = FileManager::instance().mp3TagsFor(input.inputPath());
        textInHand.reset();
        if (!metadata || metadata->tags.empty()) {
            output.failure = metadata ? metadata->failure : "";
            return;
        }
        const PropertyDictionary& tags = metadata->tags;
        const auto pattern = std::ranges::find_if(paramPatterns, [&](const std::u16string& each) {
            return MP3Patterns::allDataForPattern(each, tags);
        });
        textInHand =
            pattern == paramPatterns.end() ? std::u16string(fragment) : MP3Patterns::filled(*pattern, tags);
    }
    [[nodiscard]] std::optional<std::u16string_view> textToPlace(const InputContext&) const {
        return textInHand;
    }

  private:
    std::array<std::u16string, patternCount> paramPatterns;
    std::optional<std::u16string> textInHand; ///< of the file in hand
};

class MP3RenameAction final : public MP3Action {
  public:
    static constexpr const char* name = "MP3 rename";

    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{}, u"track03.mp3", u"Ann - Best - Blue Hour.mp3", song}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext& output,
                     std::u16string& result) override {
        takeText(fragment, input, output);
        result += textToPlace(input).value_or(fragment);
    }
};

class AddMP3ToStartAction final
    : public PlacedTextOfFile<placement::AtStart<MP3Action>, NameComposed::never> {
  public:
    static constexpr const char* name = "Add MP3 to start";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"pattern", u"<0TrackNum> "}}, u"Blue Hour.mp3", u"03 Blue Hour.mp3", song}};
    }
};

class AddMP3ToEndAction final : public PlacedTextOfFile<placement::AtEnd<MP3Action>, NameComposed::never> {
  public:
    static constexpr const char* name = "Add MP3 to end";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"pattern", u" (<Artist>)"}}, u"Blue Hour.mp3", u"Blue Hour (Ann).mp3", song}};
    }
};

class InsertMP3AtPositionAction final : public TextAtPosition<MP3Action> {
  public:
    static constexpr const char* name = "Add MP3 at position";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"pattern", u" of <NumTracks>"}, {"position", 2}},
                 u"03 Blue Hour.mp3",
                 u"03 of 12 Blue Hour.mp3",
                 song}};
    }
};

class InsertMP3InFrontOfExistingTextAction final
    : public PlacedTextOfFile<placement::InFrontOfText<MP3Action>, NameComposed::beforeText> {
  public:
    static constexpr const char* name = "Add MP3 in front of existing text";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"pattern", u"<Artist> - "}, {"searchTerm", u"blue"}},
                 u"03 Blue Hour.mp3",
                 u"03 Ann - Blue Hour.mp3",
                 song}};
    }
};

class InsertMP3AfterExistingTextAction final
    : public PlacedTextOfFile<placement::AfterText<MP3Action>, NameComposed::afterText> {
  public:
    static constexpr const char* name = "Add MP3 to end of existing text";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"pattern", u" (<Year>)"}, {"searchTerm", u"hour"}},
                 u"Blue Hour live.mp3",
                 u"Blue Hour (1999) live.mp3",
                 song}};
    }
};

constexpr ActionEntry entries[]{
    entryFor<MP3RenameAction>(),
    entryFor<AddMP3ToStartAction>(),
    entryFor<AddMP3ToEndAction>(),
    entryFor<InsertMP3AtPositionAction>(),
    entryFor<InsertMP3InFrontOfExistingTextAction>(),
    entryFor<InsertMP3AfterExistingTextAction>(),
};

} // namespace

std::span<const ActionEntry> mp3Actions() { return entries; }

} // namespace tavrin
