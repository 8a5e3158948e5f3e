#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/PrecomposedText.h"
#include "actions/TextPlacement.h"
#include "actions/dates/DateFormatter.h"
#include "platform/metadata/FileManager.h"

namespace tavrin {

namespace {

constexpr ParameterChoice modeChoices[]{
    {0, "Created", "created"}, {1, "Modified", "modified"}, {2, "Taken (EXIF)", "taken"}, {3, "Now", "now"}};

constexpr ParameterChoice separatorChoices[]{
    {0, "Date first, blank between", " "}, {1, "Date first, nothing between", ""},
    {2, "Date first, - between", "-"},     {3, "Date first, _ between", "_"},
    {4, "Date first, / between", "/"},     {5, "Date first, . between", "."},
    {6, "Time first, blank between", " "}, {7, "Time first, nothing between", ""},
    {8, "Time first, - between", "-"},     {9, "Time first, _ between", "_"},
    {10, "Time first, / between", "/"},    {11, "Time first, . between", "."},
};

void translate(PropertyDictionary& list, const std::string& key, const std::string& from,
               const std::string& to) {
    if (const auto found = list.find(key); found != list.end())
        found->second = translateIndex(intValue(found->second), from, to);
}

/// Puts one of the dates of a file, or the present moment, into its name. Beside an existing text it works
/// on, and returns, form C.
class RenameToDateAction final : public BaseRenameAction {
  public:
    explicit RenameToDateAction(Place place) : placement(place) {
        const auto& formatter = DateFormatter::instance();
        addParameter(choiceParameter("mode", "Date", modeChoices, 0).alone(), paramMode);
        addParameter(
            choiceParameter("datePatternIndex", "Date as", formatter.dateChoices(), 1).as(RecipeForm::date),
            paramDatePatternIndex);
        addParameter(
            choiceParameter("timePatternIndex", "Time as", formatter.timeChoices(), 1).as(RecipeForm::date),
            paramTimePatternIndex);
        addParameter(choiceParameter("separatorMode", "Order", separatorChoices, 0).as(RecipeForm::date),
                     paramSeparatorMode);
        addParameter(checkboxParameter("uppercaseAmPm", "AM/PM in capitals", 1).mark("small-am"),
                     paramUppercase);
        addParameter(numberParameter("version", "Version of the patterns", 1).between(1, 1).unused());
        if (place == Place::start)
            addParameter(checkboxParameter("trailingSpace", "Space between", 1).mark("no-space"), paramSpace);
        if (place == Place::end)
            addParameter(checkboxParameter("leadingSpace", "Space between", 1).mark("no-space"), paramSpace);
        placement.addParametersTo(*this, "mode2");
    }
    [[nodiscard]] bool hasLongParameterList() const override { return true; }
    /// A list without "version" has the indexes of older tables of patterns, which are brought to those of
    /// today. Values set by key are taken as they are.
    [[nodiscard]] PropertyDictionary presentForm(const PropertyDictionary& list) const override {
        auto present = cleanUpPotentiallyOldParameterList(list);
        if (!present.contains("version")) {
            translate(present, "datePatternIndex", "datePatterns0", "datePatterns");
            translate(present, "timePatternIndex", "timePatterns0", "timePatterns");
        }
        return present;
    }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        placement.prepareParameters();
    }

    void processName(std::u16string_view fragment, std::u16string& result) override {
        auto text = dateText(fragment, item());
        if (placement.isBesideText()) {
            placement.putIfAny(text, PrecomposedText(fragment).view(), result);
            return;
        }
        const bool isAtStart = placement.where() == Place::start;
        if (text && (isAtStart || placement.where() == Place::end)) {
            if (*text == fragment)
                text.reset();
            else if (paramSpace != 0)
                text->insert(isAtStart ? text->end() : text->begin(), u' ');
        }
        placement.putIfAny(text, fragment, result);
    }

  private:
    [[nodiscard]] std::optional<double> date(const InputContext& input) const {
        const auto& files = FileManager::instance();
        switch (paramMode) {
        case 0:
            return files.fileCreationDate(input.inputPath());
        case 1:
            return files.fileModificationDate(input.inputPath());
        case 2:
            return files.fileEXIFDate(input.inputPath());
        case 3:
            return files.now();
        }
        return std::nullopt;
    }

    /// The fragment itself where the image has no shooting date, which members that insert put into itself;
    /// absent where there is no text: the file is gone, a mode is none of the known ones.
    [[nodiscard]] std::optional<std::u16string> dateText(std::u16string_view fragment,
                                                         const InputContext& input) const {
        const auto chosen = date(input);
        if (!chosen)
            return std::nullopt;
        if (*chosen == FileManager::distantPast)
            return std::u16string(fragment);
        return DateFormatter::instance().formatDate(*chosen, paramDatePatternIndex, paramTimePatternIndex,
                                                    paramSeparatorMode, paramUppercase != 0);
    }

    std::int32_t paramDatePatternIndex = 1;
    std::int32_t paramTimePatternIndex = 1;
    std::int32_t paramUppercase = 1;
    std::int32_t paramMode = 0;
    std::int32_t paramSeparatorMode = 0;
    std::int32_t paramSpace = 1; ///< between date and name
    TextPlacement placement;
};

constexpr ExampleFile changed{"", "2024-06-14 07:31:05", "", "", u""};
constexpr ExampleFile taken{"", "", "photo.jpg", "a photograph taken 2024-06-14 07:31:05", u""};

} // namespace

std::vector<ActionEntry> dateActions() {
    constexpr auto category = ActionCategory::date;
    return {
        {"Rename to date",
         "Date as new name",
         {"date"},
         category,
         newAction<RenameToDateAction, Place::wholeName>,
         {{{{"mode", 2}}, u"DSC_0042.jpg", u"2024-06-14 07-31-05.jpg", taken},
          {{{"mode", 1}, {"datePatternIndex", 2}, {"timePatternIndex", 2}, {"separatorMode", 3}},
           u"scan.pdf",
           u"20240614_073105.pdf",
           changed}}},
        {"Add date to front",
         "Add date to start",
         {"date", Place::start},
         category,
         newAction<RenameToDateAction, Place::start>,
         {{{{"mode", 1}, {"timePatternIndex", 0}}, u"plan.txt", u"2024-06-14 plan.txt", changed}}},
        {"Add date to end",
         "Add date to end",
         {"date", Place::end},
         category,
         newAction<RenameToDateAction, Place::end>,
         {{{{"mode", 1}, {"timePatternIndex", 0}}, u"plan.txt", u"plan 2024-06-14.txt", changed}}},
        {"Add date at position",
         "Insert date at position",
         {"date", Place::position},
         category,
         newAction<RenameToDateAction, Place::position>,
         {{{{"mode", 1}, {"datePatternIndex", 2}, {"timePatternIndex", 0}, {"position", 4}},
           u"IMG_42.jpg",
           u"IMG_2024061442.jpg",
           changed}}},
        {"Add date in front of existing text",
         "Insert date before text",
         {"date", Place::beforeText},
         category,
         newAction<RenameToDateAction, Place::beforeText>,
         {{{{"mode", 1}, {"timePatternIndex", 0}, {"searchTerm", u" plan"}},
           u"The plan.txt",
           u"The2024-06-14 plan.txt",
           changed}}},
        {"Add date after existing text",
         "Insert date after text",
         {"date", Place::afterText},
         category,
         newAction<RenameToDateAction, Place::afterText>,
         {{{{"mode", 1}, {"timePatternIndex", 0}, {"searchTerm", u"the "}},
           u"The plan.txt",
           u"The 2024-06-14plan.txt",
           changed}}},
    };
}

} // namespace tavrin
