#pragma once

#include "tags/TagItem.h"

#include <atomic>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class TagNotice;

/// A pattern of tags and text, cut so that it need not be read again for each file. Made by
/// TagLibraryHelper, and usable without it.
struct TagPattern {
    /// A text as it stands, or a tag.
    struct Piece {
        std::u16string text;
        TagAccessor tag; ///< null for a text
    };
    std::vector<Piece> pieces;
};

/// The vocabulary of tags, and the interpreter of patterns. A tag is a run from a "<" to the next ">", both
/// included; patterns are walked by composed character sequences. Any thread.
class TagLibraryHelper {
  public:
    /// Not owned; null tells nobody.
    explicit TagLibraryHelper(TagNotice* missingTagNotice = nullptr);
    ~TagLibraryHelper();
    TagLibraryHelper(const TagLibraryHelper&) = delete;
    TagLibraryHelper& operator=(const TagLibraryHelper&) = delete;
    /// The one that the application registered, else one made at the first call.
    static TagLibraryHelper& sharedInstance();
    /// Not owned; null unregisters.
    static void setSharedInstance(TagLibraryHelper* helper);

    /// All rows in order; some tags stand in more than one category.
    [[nodiscard]] const std::vector<TagItem>& availableTags() const { return items; }
    /// Their names, in the same order.
    [[nodiscard]] const std::vector<std::u16string>& validTags() const { return names; }
    [[nodiscard]] const std::map<std::u16string, TagItem, std::less<>>& tagItemsByName() const {
        return itemsByName;
    }
    [[nodiscard]] bool isValidTag(std::u16string_view name) const { return itemsByName.contains(name); }

    /// The tokens of a pattern in order, for editing. Joined they give the pattern, without a tag that is
    /// open at its end. A ">" outside a tag puts an empty token in front of its text.
    [[nodiscard]] static std::vector<std::u16string>
    decomposeStringIntoTokenArray(std::u16string_view pattern);

    /// Cuts a pattern for resolving: unknown tags, and one that is open at the end, are dropped.
    [[nodiscard]] TagPattern compile(std::u16string_view pattern) const;
    /// The text of a pattern for a file. Absent when a tag has no value for it, of which the user is told.
    [[nodiscard]] TagText resolvePattern(const TagPattern& pattern, TaggedFile& file);
    [[nodiscard]] TagText resolvePattern(std::u16string_view pattern, TaggedFile& file);
    /// Shows the notice of a missing value, once in the life of this object.
    void informUser();

  private:
    TagNotice* notice;
    std::vector<TagItem> items;
    std::vector<std::u16string> names;
    std::map<std::u16string, TagItem, std::less<>> itemsByName;
    std::atomic<bool> isUserInformed = false; ///< two threads that race past it can only tell the user twice
};

} // namespace tavrin
