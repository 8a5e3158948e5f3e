#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/TextPlacement.h"
#include "tags/TagLibraryHelper.h"
#include "tags/TaggedFile.h"

#include <ranges>

namespace tavrin {

namespace {

TagText resolved(const TagPattern& pattern, TaggedFile& file, OutputContext& output) {
    TagText text = TagLibraryHelper::sharedInstance().resolvePattern(pattern, file);
    output.failure = file.failure();
    return text;
}

TagText resolved(const TagPattern& pattern, const InputContext& input, OutputContext& output) {
    if (input.fileMo) {
        TaggedRow row(*input.fileMo);
        return resolved(pattern, row, output);
    }
    TaggedPath file(input.path);
    return resolved(pattern, file, output);
}

/// A file that has nothing, and remembers which dates were wanted.
class AskedFile final : public TaggedFile {
  public:
    [[nodiscard]] std::optional<double> date(Date which) override {
        asked |= RowValues::ofStatus;
        if (which == Date::shooting)
            asked |= RowValues::shootingDate;
        return std::nullopt;
    }
    [[nodiscard]] const PropertyDictionary& tagDictionary() override { return nothing; }

    RowValues asked = RowValues::none;

  private:
    const PropertyDictionary nothing;
};

RowValues valuesAskedFor(const TagPattern& pattern) {
    AskedFile file;
    for (const TagPattern::Piece& piece : pattern.pieces)
        if (piece.tag)
            static_cast<void>(piece.tag(file));
    return file.asked;
}

/// Makes a text of a pattern of tags; a file that lacks a value keeps its name.
class TagBasedAction final : public BaseRenameAction {
  public:
    explicit TagBasedAction(Place place) : placement(place) {
        addParameter(
            patternParameter("pattern", "Pattern", u"<ImageWidth>x<ImageHeight>").first().orLeftOut(),
            paramPattern);
        placement.addParametersTo(*this);
    }
    [[nodiscard]] bool hasLongParameterList() const override { return true; }
    [[nodiscard]] bool usesTagLibrary() const override { return true; }
    [[nodiscard]] RowValues valuesNeeded() const override {
        return valuesAskedFor(TagLibraryHelper::sharedInstance().compile(getParamString("pattern")));
    }
    [[nodiscard]] std::vector<std::u16string_view> knownTags() const override {
        const auto& tags = TagLibraryHelper::sharedInstance().tagItemsByName();
        const auto names = std::views::keys(tags);
        return {names.begin(), names.end()};
    }
    [[nodiscard]] std::string_view helpAnchor() const override { return "helpTopic67"; }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        placement.prepareParameters();
        pattern = TagLibraryHelper::sharedInstance().compile(paramPattern);
    }

    void processName(std::u16string_view fragment, std::u16string& result) override {
        placement.putIfAny(resolved(pattern, item(), answer()), fragment, result);
    }

  private:
    std::u16string paramPattern;
    TagPattern pattern;
    TextPlacement placement;
};

constexpr ExampleFile photo{"", "", "photo.jpg",
                            "a photo of 640 by 480 pixels, taken on 14 June 2024 at 7:31", u""};

} // namespace

std::vector<ActionEntry> tagActions() {
    constexpr auto category = ActionCategory::tags;
    return {
        {"Rename from tag",
         "Tags as new name",
         {"tag"},
         category,
         newAction<TagBasedAction, Place::wholeName>,
         {{{{"pattern", u"<ShootingDate4DigitYear>-<ShootingDate0Month>-<ShootingDate0Day> <CameraModel>"}},
           u"IMG_4021.jpg",
           u"2024-06-14 Halden 40.jpg",
           {"", "", "photo.jpg", "a photo taken on 14 June 2024 with a Halden 40", u""}}}},
        {"Add tag to front",
         "Add tags to start",
         {"tag", Place::start},
         category,
         newAction<TagBasedAction, Place::start>,
         {{{{"pattern", u"<ShootingDate0Hour24>h<ShootingDate0Minute> "}},
           u"sunrise.jpg",
           u"07h31 sunrise.jpg",
           photo}}},
        {"Add tag to end",
         "Add tags to end",
         {"tag", Place::end},
         category,
         newAction<TagBasedAction, Place::end>,
         {{{{"pattern", u" (<ImageWidth>x<ImageHeight>)"}},
           u"sunrise.jpg",
           u"sunrise (640x480).jpg",
           photo}}},
        {"Insert tags at position",
         "Insert tags at position",
         {"tag", Place::position},
         category,
         newAction<TagBasedAction, Place::position>,
         {{{{"pattern", u"_<ShootingDate2DigitYear>"}, {"position", 3}},
           u"IMG_4021.jpg",
           u"IMG_24_4021.jpg",
           photo}}},
        {"Insert tags in front of existing text",
         "Insert tags before text",
         {"tag", Place::beforeText},
         category,
         newAction<TagBasedAction, Place::beforeText>,
         {{{{"pattern", u"<ShootingDate4DigitYear> "}, {"searchTerm", u"in vienna"}},
           u"Summer in Vienna.jpg",
           u"Summer 2024 in Vienna.jpg",
           photo}}},
        {"Insert tags after existing text",
         "Insert tags after text",
         {"tag", Place::afterText},
         category,
         newAction<TagBasedAction, Place::afterText>,
         {{{{"pattern", u" <ShootingDate4DigitYear>"}, {"searchTerm", u"summer"}},
           u"Summer in Vienna.jpg",
           u"Summer 2024 in Vienna.jpg",
           photo}}},
    };
}

} // namespace tavrin
