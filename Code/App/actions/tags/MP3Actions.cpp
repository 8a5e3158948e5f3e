#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/PrecomposedText.h"
#include "actions/TextPlacement.h"
#include "actions/tags/MP3Patterns.h"
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
class MP3Action final : public BaseRenameAction {
  public:
    explicit MP3Action(Place place) : placement(place) {
        for (std::size_t i = 0; i < patternCount; ++i)
            addParameter(textParameter(patternParameters[i].key, patternParameters[i].label,
                                       patternParameters[i].whenNew)
                             .first()
                             .orLeftOut(),
                         paramPatterns[i]);
        placement.addParametersTo(*this);
    }
    [[nodiscard]] bool hasLongParameterList() const override { return true; }
    [[nodiscard]] bool usesMiniButtons() const override { return true; }
    [[nodiscard]] std::vector<std::u16string_view> knownTags() const override { return musicTags(); }
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
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        placement.prepareParameters();
    }

    void processName(std::u16string_view fragment, std::u16string& result) override {
        const PrecomposedText composed(placement.isBesideText() ? fragment : u"");
        const bool readsComposed = placement.where() == Place::beforeText;
        const auto text = textFor(readsComposed ? composed.view() : fragment);
        placement.putIfAny(text, text && placement.isBesideText() ? composed.view() : fragment, result);
    }

  private:
    /// None for a file without metadata; the name itself where no pattern fits.
    [[nodiscard]] std::optional<std::u16string> textFor(std::u16string_view name) const {
        const std::optional<FileMetadata> metadata = FileManager::instance().mp3TagsFor(item().inputPath());
        if (!metadata || metadata->tags.empty()) {
            answer().failure = metadata ? metadata->failure : "";
            return std::nullopt;
        }
        const PropertyDictionary& tags = metadata->tags;
        const auto pattern = std::ranges::find_if(
            paramPatterns, [&](const std::u16string& each) { return allDataForPattern(each, tags); });
        return pattern == paramPatterns.end() ? std::u16string(name) : filledPattern(*pattern, tags);
    }

    std::array<std::u16string, patternCount> paramPatterns;
    TextPlacement placement;
};

constexpr ExampleFile song{"", "", "song.mp3", "a song of Ann, \"Blue Hour\", track 3 of 12 of \"Best\"",
                           u""};

} // namespace

std::vector<ActionEntry> mp3Actions() {
    constexpr auto category = ActionCategory::music;
    return {
        {"MP3 rename",
         "Music tags as new name",
         {"music"},
         category,
         newAction<MP3Action, Place::wholeName>,
         {{{}, u"track03.mp3", u"Ann - Best - Blue Hour.mp3", song}}},
        {"Add MP3 to start",
         "Add music tags to start",
         {"music", Place::start},
         category,
         newAction<MP3Action, Place::start>,
         {{{{"pattern", u"<0TrackNum> "}}, u"Blue Hour.mp3", u"03 Blue Hour.mp3", song}}},
        {"Add MP3 to end",
         "Add music tags to end",
         {"music", Place::end},
         category,
         newAction<MP3Action, Place::end>,
         {{{{"pattern", u" (<Artist>)"}}, u"Blue Hour.mp3", u"Blue Hour (Ann).mp3", song}}},
        {"Add MP3 at position",
         "Insert music tags at position",
         {"music", Place::position},
         category,
         newAction<MP3Action, Place::position>,
         {{{{"pattern", u" of <NumTracks>"}, {"position", 2}},
           u"03 Blue Hour.mp3",
           u"03 of 12 Blue Hour.mp3",
           song}}},
        {"Add MP3 in front of existing text",
         "Insert music tags before text",
         {"music", Place::beforeText},
         category,
         newAction<MP3Action, Place::beforeText>,
         {{{{"pattern", u"<Artist> - "}, {"searchTerm", u"blue"}},
           u"03 Blue Hour.mp3",
           u"03 Ann - Blue Hour.mp3",
           song}}},
        {"Add MP3 to end of existing text",
         "Insert music tags after text",
         {"music", Place::afterText},
         category,
         newAction<MP3Action, Place::afterText>,
         {{{{"pattern", u" (<Year>)"}, {"searchTerm", u"hour"}},
           u"Blue Hour live.mp3",
           u"Blue Hour (1999) live.mp3",
           song}}},
    };
}

} // namespace tavrin
