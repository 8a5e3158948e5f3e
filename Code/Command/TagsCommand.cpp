#include "Commands.h"
#include "PathList.h"
#include "Terminal.h"
#include "platform/files/AbsolutePaths.h"
#include "platform/metadata/MetadataTool.h"
#include "support/text/DisplayText.h"
#include "support/text/Text.h"
#include "tags/TagLibraryHelper.h"
#include "tags/TaggedFile.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <set>
#include <system_error>
#include <unistd.h>
#include <unordered_set>
#include <utility>

namespace tavrin {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 5> headings{{
    {"image", "Image"},
    {"camera", "Camera"},
    {"exif_date", "Shooting date"},
    {"file_date", "File dates"},
    {"music", "Music"},
}};

/// With the folders of the paths resolved. A file that cannot be read is an error at once: a list without its
/// tags would look as if it had none.
std::vector<std::string> readablePaths(const std::vector<std::string>& given) {
    std::vector<std::string> paths = absolutePaths(given);
    for (std::size_t i = 0; i < paths.size(); ++i) {
        if (::access(paths[i].c_str(), R_OK) == 0)
            continue;
        const std::string reason = std::generic_category().message(errno);
        throw UsageError(fmt::format("{}: {}", given[i].empty() ? "\"\"" : given[i], reason));
    }
    return paths;
}

// --- For people ---

std::string listOf(const TagLibraryHelper& library, TaggedFile& file, const Terminal& terminal) {
    std::string lines;
    for (const auto& [category, heading] : headings) {
        lines += fmt::format("{}{}\n", lines.empty() ? "" : "\n", heading);
        for (const TagItem& item : library.availableTags()) {
            if (item.category != category)
                continue;
            const TagText value = item.extractStringFromFile(file);
            lines += fmt::format("  {:<40} {}\n", text::toUtf8(item.name),
                                 value ? terminal.shown(text::toUtf8(*value)) : "-");
        }
    }
    return lines;
}

// --- For programs ---

std::string objectOf(const TagLibraryHelper& library, TaggedFile& file, const std::string& path) {
    std::string json = "{\"fullPath\":";
    display::appendJson(text::fromBytes(path), json);
    json += ",\"tags\":{";
    std::set<std::u16string_view> told; // some stand in two categories
    for (const TagItem& item : library.availableTags()) {
        if (!told.insert(item.name).second)
            continue;
        json += told.size() == 1 ? "" : ",";
        display::appendJson(item.name, json);
        json += ':';
        if (const TagText value = item.extractStringFromFile(file))
            display::appendJson(*value, json);
        else
            json += "null";
    }
    return json + "}}\n";
}

/// Those of the command line, then those of the list that have not come before.
std::vector<std::string> givenPaths(const TagsOptions& options) {
    std::vector<std::string> given = options.paths;
    if (!options.selection.filesFrom)
        return given;
    const std::vector<std::string> known = absolutePaths(given);
    std::unordered_set<std::string> seen(known.begin(), known.end());
    PathList list(*options.selection.filesFrom, options.selection.null);
    for (std::vector<std::string> paths; !(paths = list.next()).empty();) {
        const std::vector<std::string> resolved = absolutePaths(paths);
        for (std::size_t i = 0; i < paths.size(); ++i) {
            if (seen.insert(resolved[i]).second)
                given.push_back(std::move(paths[i]));
        }
    }
    return given;
}

ExitStatus printTags(const TagsOptions& options, const std::vector<std::string>& given) {
    Terminal terminal;
    const std::vector<std::string> paths = readablePaths(given);
    const TagLibraryHelper library;
    std::size_t unread = 0;
    std::string reason;
    const auto noteFailure = [&](const TaggedFile& file) {
        if (const std::string failure = file.failure(); !failure.empty() && ++unread == 1)
            reason = failure;
    };
    for (std::size_t i = 0; i < paths.size(); ++i) {
        TaggedPath file(paths[i]);
        if (options.json) {
            terminal.output().append(objectOf(library, file, paths[i]));
            noteFailure(file);
            continue;
        }
        if (paths.size() > 1)
            terminal.output().append(fmt::format("{}{}:\n", i == 0 ? "" : "\n", terminal.shown(given[i])));
        terminal.output().append(listOf(library, file, terminal));
        noteFailure(file);
    }
    if (unread == 0)
        return terminal.finish();
    terminal.complain(fmt::format("{}: {}", unreadMetadataOf(unread), reason));
    return terminal.finish(ExitStatus::itemsFailed);
}

} // namespace

ExitStatus runTagsCommand(const TagsOptions& options) { return printTags(options, givenPaths(options)); }

} // namespace tavrin
