#include "SelectionOptions.h"

#include "ExitStatus.h"
#include "platform/files/FileSystem.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <ctime>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

namespace tavrin {

namespace {

/// With its values read back raw, in the order given.
CLI::Option* addGlobs(CLI::App& app, const std::string& name) {
    return app.add_option(name)
        ->expected(1, std::numeric_limits<int>::max())
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

std::optional<std::string> valueOf(const CLI::Option* option) {
    return *option ? std::optional(option->results().at(0)) : std::nullopt;
}

std::vector<Glob> globsOf(std::string_view name, const CLI::Option* option) {
    std::vector<Glob> globs;
    for (const std::string& text : option->results()) {
        try {
            globs.emplace_back(text);
        } catch (const GlobError& error) {
            constexpr std::size_t shown = 60;
            throw UsageError(fmt::format("{} {}{}: {}", name, text.substr(0, shown),
                                         text.size() > shown ? "..." : "", error.what()));
        }
    }
    return globs;
}

ItemKinds kindsOf(std::string_view text) {
    ItemKinds kinds;
    for (std::string_view rest = text;; rest.remove_prefix(2)) {
        const char letter = rest.empty() ? '\0' : rest.front();
        kinds.files |= letter == 'f';
        kinds.folders |= letter == 'd';
        kinds.links |= letter == 'l';
        const bool isKind = letter == 'f' || letter == 'd' || letter == 'l';
        if (isKind && rest.size() == 1)
            return kinds;
        if (!isKind || rest[1] != ',')
            throw UsageError(fmt::format("--type {}: expected f for files, d for folders, l for links, or "
                                         "several with commas between them",
                                         text));
    }
}

template <typename Number> std::optional<Number> wholeNumber(std::string_view text) {
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isNumber = error == std::errc() && end == text.data() + text.size() && text.front() != '-';
    return isNumber ? std::optional(number) : std::nullopt;
}

int depthOf(const std::string& text) {
    const std::optional<int> depth = text.empty() ? std::nullopt : wholeNumber<int>(text);
    if (depth.value_or(0) == 0)
        throw UsageError(
            fmt::format("--depth {}: expected a number from 1, for what a folder itself holds", text));
    return *depth;
}

/// Of local time; absent for what is no date of the form, or is on no calendar.
std::optional<double> momentOfDate(const std::string& text) {
    for (const char* form : {"%Y-%m-%d", "%Y-%m-%d %H:%M", "%Y-%m-%d %H:%M:%S"}) {
        std::tm parts{};
        std::array<char, 32> again{};
        const char* const end = ::strptime(text.c_str(), form, &parts);
        // What reads back in other words was no such date: digits are missing, or the month is shorter.
        if (end == nullptr || *end != '\0')
            continue;
        std::tm checked = parts;
        static_cast<void>(::timegm(&checked));
        const std::size_t length = std::strftime(again.data(), again.size(), form, &checked);
        if (std::string_view(again.data(), length) != text)
            continue;
        parts.tm_isdst = -1;
        return static_cast<double>(std::mktime(&parts) - referenceDateSince1970);
    }
    return std::nullopt;
}

/// In seconds.
std::optional<double> ageOf(std::string_view text) {
    constexpr std::array<std::pair<std::string_view, double>, 4> units{
        {{"min", 60}, {"h", 3600}, {"d", 86400}, {"w", 7 * 86400}}};
    for (const auto& [unit, seconds] : units) {
        if (!text.ends_with(unit) || text.size() == unit.size())
            continue;
        if (const auto number = wholeNumber<std::uint32_t>(text.substr(0, text.size() - unit.size())))
            return *number * seconds;
    }
    return std::nullopt;
}

/// Seconds since 2001. A name that could be a date or an age is one, and "./" in front of it makes a path of
/// it.
double momentOf(const std::string& text, double now) {
    if (const std::optional<double> date = momentOfDate(text))
        return *date;
    if (const std::optional<double> age = ageOf(text))
        return now - *age;
    FileStatus status;
    const int error = FileSystem::sharedInstance().followedStatus(text, status);
    if (error == 0 && !text.empty())
        return status.modificationDate;
    throw UsageError(fmt::format("{}: expected a date (2026-11-01, \"2026-11-01 14:30\"), an age (30min, 2h, "
                                 "3d, 1w), or a file that is there",
                                 text));
}

std::optional<double> valueOfMoment(std::string_view name, const CLI::Option* option) {
    if (!*option)
        return std::nullopt;
    try {
        return momentOf(option->results().at(0), secondsSince2001());
    } catch (const UsageError& error) {
        throw UsageError(fmt::format("{} {}", name, error.what()));
    }
}

} // namespace

ListParser::ListParser(CLI::App& app)
    : filesFrom(app.add_option("-T,--files-from")->expected(1)), null(app.add_flag("-0,--null")) {}

void ListParser::read(SelectionOptions& into) const {
    into.filesFrom = valueOf(filesFrom);
    into.null = null->count() > 0;
}

SelectionParser::SelectionParser(CLI::App& app)
    : list(app), include(addGlobs(app, "--include")), exclude(addGlobs(app, "--exclude")),
      type(app.add_option("--type")->expected(1)), depth(app.add_option("--depth")->expected(1)),
      newer(app.add_option("--newer")->expected(1)), older(app.add_option("--older")->expected(1)),
      hidden(app.add_flag("--hidden")), links(app.add_flag("--links")) {}

SelectionOptions SelectionParser::read() const {
    SelectionOptions options;
    list.read(options);
    options.items.includes = globsOf("--include", include);
    options.items.excludes = globsOf("--exclude", exclude);
    if (const auto kinds = valueOf(type))
        options.kinds = kindsOf(*kinds);
    if (const auto levels = valueOf(depth))
        options.depth = depthOf(*levels);
    options.items.changedAfter = valueOfMoment("--newer", newer);
    options.items.changedBefore = valueOfMoment("--older", older);
    options.items.findsHidden = hidden->count() > 0;
    options.items.renamesLinks = links->count() > 0;
    options.items.followsLinks = links->count() == 0 && !(options.kinds && options.kinds->links);
    return options;
}

} // namespace tavrin
