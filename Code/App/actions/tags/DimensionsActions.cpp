#include "actions/ActionFamilies.h"
#include "actions/tags/TextOfFile.h"
#include "platform/metadata/FileManager.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <array>

namespace tavrin {

namespace {

constexpr std::int32_t width = 1;
constexpr std::int32_t height = 2;

constexpr std::array<ParameterChoice, 3> dimensionChoices{
    {{width, "Width"}, {height, "Height"}, {0, "Nothing"}}};

/// The size of a picture in pixels, in a form made of five parameters.
class DimensionsAction : public BaseRenameAction {
  public:
    static constexpr const char* name = "Add dimensions";

    DimensionsAction() {
        addParameter(textParameter("leadingCharacter", "Text in front", u"_"), paramLeadingCharacter);
        addParameter(choiceParameter("firstDimensionChoice", "First", dimensionChoices, width, width),
                     paramFirstDimensionChoice);
        addParameter(textParameter("separationCharacter", "Between", u"x"), paramSeparationCharacter);
        addParameter(choiceParameter("secondDimensionChoice", "Second", dimensionChoices, height, height),
                     paramSecondDimensionChoice);
        addParameter(textParameter("trailingCharacter", "Text behind"), paramTrailingCharacter);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"leadingCharacter", u""}}, u"sunrise.jpg", u"640x480.jpg", picture}};
    }

  protected:
    static constexpr ExampleFile picture{"", "", "photo.jpg", "a picture of 640 by 480 pixels", u""};

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

    /// The name itself for a file that is no picture.
    void takeText(std::u16string_view fragment, const InputContext& input, OutputContext&) {
        textInHand = formattedDimensionsString(input.inputPath()).value_or(std::u16string(fragment));
    }
    [[nodiscard]] std::optional<std::u16string_view> textToPlace(const InputContext&) const {
        return textInHand;
    }

    void processName(std::u16string_view fragment, const InputContext& input, OutputContext& output,
                     std::u16string& result) override {
        takeText(fragment, input, output);
        result += textInHand;
    }

  private:
    std::int32_t paramFirstDimensionChoice = width;
    std::int32_t paramSecondDimensionChoice = height;
    std::u16string paramLeadingCharacter;
    std::u16string paramSeparationCharacter;
    std::u16string paramTrailingCharacter;
    std::u16string textInHand; ///< of the file in hand
};

class RenameToDimensionsAction final : public DimensionsAction {
  public:
    static constexpr const char* name = "Rename to dimensions";

    [[nodiscard]] std::string actionName() const override { return name; }
};

class AddDimensionsToFrontAction final : public DimensionsAction {
  public:
    static constexpr const char* name = "Add dimensions to start";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"leadingCharacter", u""}, {"trailingCharacter", u" "}},
                 u"sunrise.jpg",
                 u"640x480 sunrise.jpg",
                 picture}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext&,
                     std::u16string& result) override {
        result.append(formattedDimensionsString(input.inputPath()).value_or(u"")).append(fragment);
    }
};

class AddDimensionsToEndAction final : public DimensionsAction {
  public:
    static constexpr const char* name = "Add dimensions to end";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{}, u"sunrise.jpg", u"sunrise_640x480.jpg", picture}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext&,
                     std::u16string& result) override {
        result.append(fragment).append(formattedDimensionsString(input.inputPath()).value_or(u""));
    }
};

class InsertImageDimensionsAtPositionAction final : public TextAtPosition<DimensionsAction> {
  public:
    static constexpr const char* name = "Add dimensions at position";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"position", 3}}, u"IMG_4021.jpg", u"IMG_640x480_4021.jpg", picture}};
    }
};

class InsertImageDimensionsInFrontOfExistingTextAction final
    : public PlacedTextOfFile<placement::InFrontOfText<DimensionsAction>, NameComposed::beforeText> {
  public:
    static constexpr const char* name = "Add dimensions in front of existing text";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"searchTerm", u"_small"}}, u"sunrise_small.jpg", u"sunrise_640x480_small.jpg", picture}};
    }
};

class InsertImageDimensionsAfterExistingTextAction final
    : public PlacedTextOfFile<placement::AfterText<DimensionsAction>, NameComposed::beforeText> {
  public:
    static constexpr const char* name = "Add dimensions after existing text";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"searchTerm", u"img"}}, u"IMG_4021.jpg", u"IMG_640x480_4021.jpg", picture}};
    }
};

constexpr ActionEntry entries[]{
    entryFor<DimensionsAction>(),
    entryFor<RenameToDimensionsAction>(),
    entryFor<AddDimensionsToFrontAction>(),
    entryFor<AddDimensionsToEndAction>(),
    entryFor<InsertImageDimensionsAtPositionAction>(),
    entryFor<InsertImageDimensionsInFrontOfExistingTextAction>(),
    entryFor<InsertImageDimensionsAfterExistingTextAction>(),
};

} // namespace

std::span<const ActionEntry> dimensionsActions() { return entries; }

} // namespace tavrin
