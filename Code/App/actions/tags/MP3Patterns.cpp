#include "actions/tags/MP3Patterns.h"

#include "support/text/Text.h"
#include "tags/TagForms.h"

#include <algorithm>

namespace tavrin {

namespace {

/// Far beyond any name; texts that hold tags of each other would grow without end.
constexpr std::size_t longest = 32768;

std::u16string asItIs(std::u16string_view text) { return std::u16string(text); }

struct Substitution {
    std::string_view key;
    std::u16string_view tag;
    std::u16string (*change)(std::u16string_view);
    std::u16string_view sought = tag; ///< what makes a pattern need the key
};

/// In the order in which they are made.
constexpr Substitution substitutions[]{
    {"Year", u"<Year>", asItIs},
    {"Artist", u"<Artist>", asItIs},
    {"Artist", u"<artist>", text::lowercased},
    {"Artist", u"<ARTIST>", text::uppercased},
    {"Artist", u"<Artist_sentence_case>", sentenceCased},
    {"Artist", u"<Artist_Capitalized>", capitalized},
    {"Album", u"<Album>", asItIs},
    {"Album", u"<album>", text::lowercased},
    {"Album", u"<ALBUM>", text::uppercased},
    {"Album", u"<Album_sentence_case>", sentenceCased},
    {"Album", u"<Album_Capitalized>", capitalized},
    {"Title", u"<Song>", asItIs},
    {"Title", u"<song>", text::lowercased},
    {"Title", u"<SONG>", text::uppercased},
    {"Title", u"<Song_sentence_case>", sentenceCased},
    {"Title", u"<Song_Capitalized>", capitalized},
    {"numTrack", u"<NumTracks>", asItIs},
    {"track", u"<TrackNum>", asItIs},
    {"numTrack", u"<0NumTracks>", zeroPadded},
    {"track", u"<0TrackNum>", zeroPadded},
    {"numCds", u"<NumCDs>", asItIs, u"<NumCDs"},
    {"cd", u"<CDNum>", asItIs},
    {"numCds", u"<0NumCDs>", zeroPadded, u"<0NumCDs"},
    {"cd", u"<0CDNum>", zeroPadded},
};

std::u16string replaced(std::u16string_view text, std::u16string_view tag, std::u16string_view value) {
    std::u16string result;
    std::size_t start = 0;
    for (std::size_t at = text.find(tag); at != text.npos && result.size() < longest;
         at = text.find(tag, start)) {
        result.append(text, start, at - start).append(value);
        start = at + tag.size();
    }
    return result.append(text, start);
}

} // namespace

std::vector<std::u16string_view> musicTags() {
    std::vector<std::u16string_view> tags;
    for (const Substitution& each : substitutions)
        tags.push_back(each.tag);
    return tags;
}

bool allDataForPattern(std::u16string_view pattern, const PropertyDictionary& tags) {
    return !pattern.empty() && std::ranges::none_of(substitutions, [&](const Substitution& each) {
        return pattern.find(each.sought) != pattern.npos && !find(tags, each.key);
    });
}

std::u16string filledPattern(std::u16string pattern, const PropertyDictionary& tags) {
    for (const Substitution& each : substitutions) {
        if (pattern.find(each.tag) == pattern.npos)
            continue;
        const PropertyValue* value = find(tags, each.key);
        pattern = replaced(pattern, each.tag, each.change(value ? textValue(*value) : std::u16string()));
    }
    return pattern;
}

} // namespace tavrin
