#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/PrecomposedText.h"
#include "actions/TextPlacement.h"
#include "platform/metadata/FileManager.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <array>

namespace tavrin {

namespace {

constexpr std::int32_t width = 1;
constexpr std::int32_t height = 2;

constexpr std::array<ParameterChoice, 3> dimensionChoices{
    {{width, "Width", "width"}, {height, "Height", "height"}, {0, "Nothing", "none"}}};

/// Puts the size of a picture in pixels into its name, in a form made of five parameters.
class DimensionsAction final : public BaseRenameAction {
  public:
    explicit DimensionsAction(Place place) : placement(place) {
        addParameter(textParameter("leadingCharacter", "Text in front", u"_").option("prefix"),
                     paramLeadingCharacter);
        addParameter(
            choiceParameter("firstDimensionChoice", "First", dimensionChoices, width).option("first"),
            paramFirstDimensionChoice);
        addParameter(textParameter("separationCharacter", "Between", u"x").option("between"),
                     paramSeparationCharacter);
        addParameter(
            choiceParameter("secondDimensionChoice", "Second", dimensionChoices, height).option("second"),
            paramSecondDimensionChoice);
        addParameter(textParameter("trailingCharacter", "Text behind").option("suffix"),
                     paramTrailingCharacter);
        placement.addParametersTo(*this);
    }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        placement.prepareParameters();
    }

    void processName(std::u16string_view fragment, std::u16string& result) override {
        auto text = formattedDimensionsString(item().inputPath());
        const PrecomposedText composed(placement.isBesideText() ? fragment : u"");
        const auto name = placement.isBesideText() ? composed.view() : fragment;
        // The members that insert put the name of a file that is no picture into itself.
        if (!text && placement.where() != Place::start && placement.where() != Place::end)
            text = name;
        placement.putIfAny(text, name, result);
    }

  private:
    /// Absent for a file that is no picture.
    [[nodiscard]] std::optional<std::u16string> formattedDimensionsString(const std::string& path) const {
        const auto [pixelWidth, pixelHeight] = FileManager::instance().fileEXIFDimensions(path);
        if (pixelWidth == -1.0F)
            return std::nullopt;
        const auto rendered = [w = pixelWidth, h = pixelHeight](std::int32_t choice) -> std::u16string {
            if (choice != width && choice != height)
                return {};
            return text::fromUtf8(fmt::format("{}", static_cast<std::int64_t>(choice == width ? w : h)));
        };
        return paramLeadingCharacter + rendered(paramFirstDimensionChoice) + paramSeparationCharacter +
               rendered(paramSecondDimensionChoice) + paramTrailingCharacter;
    }

    std::int32_t paramFirstDimensionChoice = width;
    std::int32_t paramSecondDimensionChoice = height;
    std::u16string paramLeadingCharacter;
    std::u16string paramSeparationCharacter;
    std::u16string paramTrailingCharacter;
    TextPlacement placement;
};

constexpr ExampleFile picture{"", "", "photo.jpg", "a picture of 640 by 480 pixels", u""};

} // namespace

std::vector<ActionEntry> dimensionsActions() {
    constexpr auto category = ActionCategory::imageSize;
    const ActionExample wholeName{{{"leadingCharacter", u""}}, u"sunrise.jpg", u"640x480.jpg", picture};
    return {
        {"Rename to dimensions",
         "Image size as new name",
         {"size"},
         category,
         newAction<DimensionsAction, Place::wholeName>,
         {wholeName}},
        {"Add dimensions to start",
         "Add image size to start",
         {"size", Place::start},
         category,
         newAction<DimensionsAction, Place::start>,
         {{{{"leadingCharacter", u""}, {"trailingCharacter", u" "}},
           u"sunrise.jpg",
           u"640x480 sunrise.jpg",
           picture}}},
        {"Add dimensions to end",
         "Add image size to end",
         {"size", Place::end},
         category,
         newAction<DimensionsAction, Place::end>,
         {{{}, u"sunrise.jpg", u"sunrise_640x480.jpg", picture}}},
        {"Add dimensions at position",
         "Insert image size at position",
         {"size", Place::position},
         category,
         newAction<DimensionsAction, Place::position>,
         {{{{"position", 3}}, u"IMG_4021.jpg", u"IMG_640x480_4021.jpg", picture}}},
        {"Add dimensions in front of existing text",
         "Insert image size before text",
         {"size", Place::beforeText},
         category,
         newAction<DimensionsAction, Place::beforeText>,
         {{{{"searchTerm", u"_small"}}, u"sunrise_small.jpg", u"sunrise_640x480_small.jpg", picture}}},
        {"Add dimensions after existing text",
         "Insert image size after text",
         {"size", Place::afterText},
         category,
         newAction<DimensionsAction, Place::afterText>,
         {{{{"searchTerm", u"img"}}, u"IMG_4021.jpg", u"IMG_640x480_4021.jpg", picture}}},
        {"Add dimensions",
         "Image size, older form",
         {"size-older"},
         category,
         newAction<DimensionsAction, Place::wholeName>,
         {wholeName}},
    };
}

} // namespace tavrin
