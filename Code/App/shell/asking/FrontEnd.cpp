#include "shell/asking/FrontEnd.h"

#include <fmt/format.h>

namespace tavrin {

namespace {

struct WarningWords {
    const char* title;
    const char* text;
};

constexpr WarningWords iTunesWarning{
    "Renaming files in your iTunes Music Library may damage your music library.",
    "Tavrin 9 thinks that you might be attempting to change the names of music files that are managed by "
    "iTunes.\n\niTunes uses the name and location of multimedia files to keep track of them. Changing the "
    "names will result in iTunes no longer being able to find the files and will break meta-information, "
    "such as playlists.\n\nYou should first export the files you want to rename from iTunes, then rename "
    "them and finally re-import them back into your iTunes library."};

constexpr WarningWords iPhotoWarning{
    "Renaming files in your iPhoto Library may damage your library.",
    "Tavrin 9 thinks that you might be attempting to change the names of files that are managed by "
    "iPhoto.\n\niPhoto uses the name and location of multimedia files to keep track of them. Changing the "
    "names will result in iPhoto no longer being able to find the files and will break meta-information, "
    "such as slideshows.\n\nYou should first export the files you want to rename from iPhoto, then rename "
    "them and finally re-import them back into your iPhoto library."};

/// A question that is told as an alert; nothing for one that has a sheet of its own.
struct AlertOfQuestion {
    std::optional<Alert> operator()(const LibraryWarning& warning) const {
        const bool isITunes = warning.library == LibraryWarning::Library::iTunes;
        const WarningWords& words = isITunes ? iTunesWarning : iPhotoWarning;
        return Alert{.kind = AlertKind::runQuestion,
                     .title = words.title,
                     .text = words.text,
                     .buttons = {"Continue", "Abort"}};
    }
    std::optional<Alert> operator()(const NoRecordQuestion& question) const {
        return Alert{.kind = AlertKind::runQuestion,
                     .title = "This renaming can't be recorded, so it could not be undone.",
                     .text = fmt::format("The record of the names can't be written: {}.", question.reason),
                     .buttons = {"Rename All the Same", "Cancel"}};
    }
    std::optional<Alert> operator()(const PipelineFailure& failure) const {
        return Alert{.kind = AlertKind::runQuestion,
                     .style = AlertStyle::critical,
                     .title = failure.title,
                     .text = failure.text,
                     .buttons = {"Quit"}};
    }
    std::optional<Alert> operator()(const auto&) const { return std::nullopt; }
};

} // namespace

std::optional<Alert> alertOf(const RunQuestion& question) { return std::visit(AlertOfQuestion(), question); }

void FrontEnd::showRunReport(const RunReport& report, std::function<void(ReportAnswer)> answer) {
    const auto closed = [answer = std::move(answer)] { answer(ReportAnswer::close); };
    if (!report.errors.empty()) {
        const std::string done = report.summary + (report.details.empty() ? "" : " " + report.details);
        showProcessingErrors({report.errors, report.notRenamed, done}, closed);
        return;
    }
    std::string details = report.details;
    if (report.notRenamed > 0)
        details += (details.empty() ? "" : " ") + notRenamedText(report.notRenamed);
    showAlert({.kind = AlertKind::summary,
               .style = AlertStyle::informational,
               .title = report.summary,
               .text = details,
               .buttons = {"OK"}},
              [closed](AlertAnswer) { closed(); });
}

std::string notRenamedText(std::size_t count) {
    return count == 1 ? "1 item was not renamed." : fmt::format("{} items were not renamed.", count);
}

} // namespace tavrin
