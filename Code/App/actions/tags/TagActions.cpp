#include "actions/ActionFamilies.h"
#include "actions/moving/ContentBasedAction.h"
#include "actions/moving/InsertionStrategies.h"
#include "tags/TagLibraryHelper.h"
#include "tags/TaggedFile.h"

namespace tavrin {

namespace {

constexpr std::u16string_view defaultPattern = u"<ImageWidth>x<ImageHeight>";
constexpr std::string_view help = "helpTopic67";
constexpr ExampleFile photo{"", "", "photo.jpg",
                            "a photo of 640 by 480 pixels, taken on 14 June 2024 at 7:31", u""};

ParameterDescription parameter() { return patternParameter("pattern", "Pattern", defaultPattern); }

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

/// Makes a text of a pattern of tags; a file that lacks a value keeps its name.
class TagBasedAction : public BaseRenameAction {
  public:
    TagBasedAction() { addParameter(parameter(), paramPattern); }
    [[nodiscard]] bool hasLongParameterList() const override { return true; }
    [[nodiscard]] bool usesTagLibrary() const override { return true; }
    [[nodiscard]] std::string_view helpAnchor() const override { return help; }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        pattern = TagLibraryHelper::sharedInstance().compile(paramPattern);
    }

    void processName(std::u16string_view fragment, const InputContext& input, OutputContext& output,
                     std::u16string& result) final {
        if (const TagText text = resolved(pattern, input, output))
            place(*text, fragment, result);
        else
            result += fragment;
    }

    virtual void place(std::u16string_view text, std::u16string_view fragment,
                       std::u16string& result) const = 0;

  private:
    std::u16string paramPattern;
    TagPattern pattern;
};

class ProduceNewNameUsingTagAction final : public TagBasedAction {
  public:
    static constexpr const char* name = "Rename from tag";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"pattern", u"<ShootingDate4DigitYear>-<ShootingDate0Month>-<ShootingDate0Day> "
                              u"<CameraModel>"}},
                 u"IMG_4021.jpg",
                 u"2024-06-14 Halden 40.jpg",
                 {"", "", "photo.jpg", "a photo taken on 14 June 2024 with a Halden 40", u""}}};
    }

  protected:
    void place(std::u16string_view text, std::u16string_view, std::u16string& result) const override {
        result += text;
    }
};

class AddTagAtFrontAction final : public TagBasedAction {
  public:
    static constexpr const char* name = "Add tag to front";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"pattern", u"<ShootingDate0Hour24>h<ShootingDate0Minute> "}},
                 u"sunrise.jpg",
                 u"07h31 sunrise.jpg",
                 photo}};
    }

  protected:
    void place(std::u16string_view text, std::u16string_view fragment,
               std::u16string& result) const override {
        result.append(text).append(fragment);
    }
};

class AddTagAtEndAction final : public TagBasedAction {
  public:
    static constexpr const char* name = "Add tag to end";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"pattern", u" (<ImageWidth>x<ImageHeight>)"}},
                 u"sunrise.jpg",
                 u"sunrise (640x480).jpg",
                 photo}};
    }

  protected:
    void place(std::u16string_view text, std::u16string_view fragment,
               std::u16string& result) const override {
        result.append(fragment).append(text);
    }
};

/// The text of a pattern of tags, or none for a file that lacks a value.
class TagsContentStrategy final : public ContentStrategy {
  public:
    void addParametersTo(ContentBasedAction& action) override {
        action.addParameter(parameter(), paramPattern);
    }
    void prepareParameters() override { pattern = TagLibraryHelper::sharedInstance().compile(paramPattern); }
    [[nodiscard]] std::optional<std::u16string_view> processName(std::u16string_view,
                                                                 StrategyContext& context) override {
        text = resolved(pattern, context.input, context.output);
        return text;
    }

  private:
    std::u16string paramPattern;
    TagPattern pattern;
    TagText text; ///< of the file in hand
};

class TagContentBasedAction : public ContentBasedAction {
  public:
    [[nodiscard]] bool hasLongParameterList() const override { return true; }
    [[nodiscard]] bool usesTagLibrary() const override { return true; }
    [[nodiscard]] std::string_view helpAnchor() const override { return help; }

  protected:
    explicit TagContentBasedAction(std::unique_ptr<InsertionStrategy> insertion)
        : ContentBasedAction(std::make_unique<TagsContentStrategy>(), std::move(insertion)) {}
};

class InsertTagAtPositionAction final : public TagContentBasedAction {
  public:
    static constexpr const char* name = "Insert tags at position";

    InsertTagAtPositionAction() : TagContentBasedAction(std::make_unique<PositionInsertionStrategy>()) {}
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"pattern", u"_<ShootingDate2DigitYear>"}, {"position", 3}},
                 u"IMG_4021.jpg",
                 u"IMG_24_4021.jpg",
                 photo}};
    }
};

class InsertTagsInFrontOfExistingTextAction final : public TagContentBasedAction {
  public:
    static constexpr const char* name = "Insert tags in front of existing text";

    InsertTagsInFrontOfExistingTextAction()
        : TagContentBasedAction(std::make_unique<InFrontOfExistingTextInsertionStrategy>()) {}
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"pattern", u"<ShootingDate4DigitYear> "}, {"searchTerm", u"in vienna"}},
                 u"Summer in Vienna.jpg",
                 u"Summer 2024 in Vienna.jpg",
                 photo}};
    }
};

class InsertTagsAfterOfExistingTextAction final : public TagContentBasedAction {
  public:
    static constexpr const char* name = "Insert tags after existing text";

    InsertTagsAfterOfExistingTextAction()
        : TagContentBasedAction(std::make_unique<AfterExistingTextInsertionStrategy>()) {}
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"pattern", u" <ShootingDate4DigitYear>"}, {"searchTerm", u"summer"}},
                 u"Summer in Vienna.jpg",
                 u"Summer 2024 in Vienna.jpg",
                 photo}};
    }
};

constexpr ActionEntry entries[]{
    entryFor<ProduceNewNameUsingTagAction>(),
    entryFor<AddTagAtFrontAction>(),
    entryFor<AddTagAtEndAction>(),
    entryFor<InsertTagAtPositionAction>(),
    entryFor<InsertTagsInFrontOfExistingTextAction>(),
    entryFor<InsertTagsAfterOfExistingTextAction>(),
};

} // namespace

std::span<const ActionEntry> tagActions() { return entries; }

} // namespace tavrin
