#include "actions/dates/RenameToDateAction.h"

#include "actions/PListIndexValueTranslater.h"
#include "actions/dates/DateFormatter.h"
#include "platform/metadata/FileManager.h"

namespace tavrin {

namespace {

constexpr ParameterChoice modeChoices[]{{0, "Created"}, {1, "Modified"}, {2, "Taken (EXIF)"}, {3, "Now"}};

constexpr ParameterChoice separatorChoices[]{
    {0, "Date first, blank between"}, {1, "Date first, nothing between"}, {2, "Date first, - between"},
    {3, "Date first, _ between"},     {4, "Date first, / between"},       {5, "Date first, . between"},
    {6, "Time first, blank between"}, {7, "Time first, nothing between"}, {8, "Time first, - between"},
    {9, "Time first, _ between"},     {10, "Time first, / between"},      {11, "Time first, . between"},
};

void translate(PropertyDictionary& list, std::string_view key, const std::string& from,
               const std::string& to) {
    if (const auto found = list.find(std::string(key)); found != list.end())
        found->second = PListIndexValueTranslater::translateIndex(intValue(found->second), from, to);
}

} // namespace

RenameToDateAction::RenameToDateAction() {
    addParameter(choiceParameter("mode", "Date", modeChoices, 0, 0), paramMode);
    addParameter(choiceParameter("datePatternIndex", "Date as", dateMenuItems(), 1, 1),
                 paramDatePatternIndex);
    addParameter(choiceParameter("timePatternIndex", "Time as", timeMenuItems(), 1, 1),
                 paramTimePatternIndex);
    addParameter(choiceParameter("separatorMode", "Order", separatorChoices, 0, 0), paramSeparatorMode);
    addParameter(checkboxParameter("uppercaseAmPm", "AM/PM in capitals", 1, 1), paramUppercase);
    addParameter(numberParameter("version", "Version of the patterns", 1, 1).between(1, 1).hidden());
}

std::span<const ParameterChoice> RenameToDateAction::dateMenuItems() const {
    return DateFormatter::instance().dateChoices();
}

std::span<const ParameterChoice> RenameToDateAction::timeMenuItems() const {
    return DateFormatter::instance().timeChoices();
}

std::vector<ActionExample> RenameToDateAction::examples() const {
    const ExampleFile changed{"", "2024-06-14 07:31:05", "", "", u""};
    const ExampleFile taken{"", "", "photo.jpg", "a photograph taken 2024-06-14 07:31:05", u""};
    return {{{{"mode", 2}}, u"DSC_0042.jpg", u"2024-06-14 07-31-05.jpg", taken},
            {{{"mode", 1}, {"datePatternIndex", 2}, {"timePatternIndex", 2}, {"separatorMode", 3}},
             u"scan.pdf",
             u"20240614_073105.pdf",
             changed}};
}

void RenameToDateAction::setParameterList(const PropertyDictionary& list) {
    auto present = cleanUpPotentiallyOldParameterList(list);
    if (!present.contains("version")) {
        translate(present, "datePatternIndex", "datePatterns0", "datePatterns");
        translate(present, "timePatternIndex", "timePatterns0", "timePatterns");
    }
    BaseRenameAction::setParameterList(present);
}

std::optional<double> RenameToDateAction::date(const InputContext& input) const {
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

std::optional<std::u16string> RenameToDateAction::dateText(std::u16string_view fragment,
                                                           const InputContext& input) const {
    const auto chosen = date(input);
    if (!chosen)
        return std::nullopt;
    if (*chosen == FileManager::distantPast)
        return std::u16string(fragment);
    return DateFormatter::instance().formatDate(*chosen, paramDatePatternIndex, paramTimePatternIndex,
                                                paramSeparatorMode, paramUppercase != 0);
}

void RenameToDateAction::processName(std::u16string_view fragment, const InputContext& input, OutputContext&,
                                     std::u16string& result) {
    const auto text = dateText(fragment, input);
    result += text ? *text : fragment;
}

} // namespace tavrin
