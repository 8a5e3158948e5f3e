#include "actions/list/RenameFromListAction.h"

#include "actions/ActionFamilies.h"
#include "actions/list/SharedRenameLists.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavrin {

namespace {

constexpr const char16_t* noFile = u"<no file>";

ParameterDescription ofKind(ParameterKind kind, ParameterDescription row) {
    row.kind = kind;
    return row;
}

std::string errorOnLine(int line) { return fmt::format("Error on line {}.", line); }

} // namespace

RenameFromListAction::RenameFromListAction() {
    addParameter(ofKind(ParameterKind::file, textParameter("listFilePath", "List", noFile).first()),
                 paramListFilePath);
    addParameter(ofKind(ParameterKind::status, textParameter("status", "Status", u"Nothing loaded."))
                     .beside("listFilePath"));
    addParameter(checkboxParameter("ignoreCase", "Ignore case of current names", 1).alone("case"),
                 paramIgnoreCase);
}

void RenameFromListAction::setParameterList(const PropertyDictionary& parameters) {
    SortBasedAction::setParameterList(parameters);
    prepare();
    load(paramListFilePath);
}

void RenameFromListAction::prepareParameters() {
    SortBasedAction::prepareParameters();
    ignoresCase = (paramIgnoreCase & 0xFF) != 0;
    paramIsTabDelimitedList = !list->fileNames().empty();
}

// ---- loading

void RenameFromListAction::load(const std::u16string& path) { load(path, Freshness::mayBeShared); }

void RenameFromListAction::reload() {
    prepare();
    load(paramListFilePath, Freshness::fromFile);
}

void RenameFromListAction::clear() { load(noFile); }

void RenameFromListAction::load(std::u16string path, Freshness freshness) {
    prepare();
    const auto bytes = text::toBytes(path);
    problem.clear();
    if (bytes && path != noFile) {
        read(*bytes, freshness);
    } else {
        problem = "File does not exist.";
        list = std::make_shared<RenameList>();
    }
    setValue(text::fromUtf8(problem.empty() ? summary() : problem + " Nothing loaded."), "status");
    setValue(std::move(path), "listFilePath");
}

void RenameFromListAction::read(const std::string& path, Freshness freshness) {
    const auto source = SharedRenameLists::sourceFor(path, ignoresCase);
    if (auto shared =
            source && freshness == Freshness::mayBeShared ? SharedRenameLists::find(*source) : nullptr) {
        list = std::move(shared);
        return;
    }
    readFromFile(path);
    if (source && problem.empty())
        SharedRenameLists::offer(*source, list);
}

void RenameFromListAction::readFromFile(const std::string& path) {
    const ListFile::Content content = ListFile::read(path);
    if (!content.problem.empty()) {
        problem = content.problem;
        list = std::make_shared<RenameList>();
        return;
    }
    TabDelimitedFileListLoader pairs;
    pairs.setIgnoreCase(ignoresCase);
    if (const int line = pairs.load(content.bytes); line > 1) {
        problem = errorOnLine(line);
    } else if (line == 0) {
        list = std::make_shared<RenameList>(std::move(pairs.getFileArray()),
                                            std::move(pairs.getNewNameArray()), pairs.usesFullPosixPath());
    } else {
        // The very first line is no pair, so it may be a list of new names alone.
        RenameListLoader names;
        if (const int failedLine = names.load(content.bytes); failedLine != 0)
            problem = errorOnLine(failedLine);
        else
            list = std::make_shared<RenameList>(std::move(names.getFileArray()));
    }
}

std::string RenameFromListAction::failure() const {
    return problem.empty()
               ? std::string()
               : fmt::format("{}: {} Nothing loaded.",
                             text::toBytes(paramListFilePath).value_or(text::toUtf8(paramListFilePath)),
                             problem);
}

std::string RenameFromListAction::summary() const {
    const std::size_t count = list->newNames().size();
    if (count > 0 && list->fileNames().empty())
        return fmt::format("{} new names loaded.", count);
    return fmt::format("{} \"{}, new name\" pairs loaded.", count,
                       list->usesFullPosixPath() ? "file path" : "current name");
}

// ---- execution

void RenameFromListAction::processName(std::u16string_view fragment, std::u16string& result) {
    result += listedName(item()).value_or(fragment);
}

std::optional<std::u16string_view> RenameFromListAction::listedName(const InputContext& input) {
    if (!paramIsTabDelimitedList) {
        const std::int32_t rank = getSortIndex(input);
        const bool isListed = rank > 0 && static_cast<std::size_t>(rank) <= list->newNames().size();
        return isListed ? std::optional(list->newNames()[static_cast<std::size_t>(rank) - 1]) : std::nullopt;
    }
    std::string file = input.inputPath();
    if (list->usesFullPosixPath())
        return list->newNameFor(key.normalized(file, ignoresCase));
    file.erase(0, folderPrefix(file).size());
    auto found = list->newNameFor(key.normalized(file, ignoresCase));
    if (!found && file.find(':') != std::string::npos) {
        std::replace(file.begin(), file.end(), ':', '/');
        found = list->newNameFor(key.normalized(file, ignoresCase));
    }
    return found;
}

std::vector<ActionEntry> renameFromListActions() {
    const ExampleFile pairs{"", "", "", "", u"IMG_1.JPG\tHarbour\nIMG_2.JPG\tLighthouse\n"};
    const ExampleFile names{"", "", "", "", u"Harbour.png\nLighthouse.png\n"};
    return {
        {"Rename from list",
         "New names from a list",
         {"list"},
         ActionCategory::listFile,
         newAction<RenameFromListAction>,
         {{{}, u"img_1.jpg", u"Harbour.jpg", pairs},
          {{{"fragmentSelection", 0}}, u"img_1.jpg", u"Harbour.png", names}}},
    };
}

} // namespace tavrin
