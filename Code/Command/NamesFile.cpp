#include "NamesFile.h"

#include "documents/recipe/RecipeTokens.h"
#include "shell/names/NameLines.h"
#include "support/text/DisplayText.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <unordered_map>

namespace tavrin {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view mark = "#! ";

constexpr std::string_view explanation =
    R"(# Change the names, save, and close the editor; then the items are renamed.
# The number tells which item it is: lines may change places, and an item
# without a line keeps its name. What is wrong is told behind "#!", and then
# nothing is renamed, nor is it if the editor ends with a failure.
# Names that an editor could not keep as they are stand in quotes: "\t" is a
# tab, "\xff" a byte, "\"" a quote, "\\" a backslash.
)";

/// What is wrong with a line.
class LineError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

std::string written(const std::string& name) {
    const std::u16string text = text::fromBytes(name);
    return nameLines::hindrance(text).empty() ? name : text::toUtf8(recipe::quoted(text));
}

/// Of a text that begins with a quote.
std::u16string unquoted(std::u16string_view quoted) {
    try {
        RecipeToken token = RecipeLexer(quoted).next();
        if (token.place.end() == quoted.size())
            return std::move(token.text);
    } catch (const RecipeMistake& mistake) {
        throw LineError(mistake.hint.empty() ? mistake.message
                                             : fmt::format("{}; {}", mistake.message, mistake.hint));
    }
    throw LineError("something stands behind the closing quote");
}

std::string nameOf(std::string_view text) {
    std::u16string name = text::fromBytes(text);
    if (name.starts_with(u'"')) {
        name = unquoted(name);
    } else if (const std::string_view need = nameLines::hindrance(name); !need.empty()) {
        throw LineError(fmt::format("{}; if that is meant, write the name in double quotes", need));
    }
    const auto bytes = text::toBytes(name);
    if (const std::string_view wrong = nameLines::wrongWith(bytes); !wrong.empty())
        throw LineError(std::string(wrong));
    return *bytes;
}

/// Calls with each line but marks, without what ends it, and its number among these from 1.
template <typename Take> void eachLine(std::string_view text, Take take) {
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    for (std::size_t number = 1; !text.empty();) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (!line.starts_with(mark))
            take(line, number++);
    }
}

} // namespace

void NamesFile::beginFolder(std::string_view shown) { folders.push_back({std::string(shown), all.size()}); }

void NamesFile::add(Item item) { all.push_back(std::move(item)); }

std::string NamesFile::text() const {
    std::string result(explanation);
    auto folder = folders.begin();
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (; folder != folders.end() && folder->firstItem == i; ++folder)
            result += fmt::format("\n# {}\n", display::visible(folder->shown));
        result += fmt::format("{}\t{}\n", i + 1, written(all[i].start));
    }
    return result;
}

NamesFile::Reading NamesFile::read(std::string_view edited) const {
    Reading reading;
    reading.lines.resize(all.size());
    std::ranges::transform(all, std::back_inserter(reading.names), &Item::name);
    eachLine(edited, [&](std::string_view line, std::size_t number) {
        const std::size_t start = line.find_first_not_of(" \t");
        if (start == std::string_view::npos || line[start] == '#')
            return;
        reading.hasLines = true;
        try {
            readLine(line.substr(start), number, reading);
        } catch (const LineError& error) {
            reading.wrong.emplace(number, error.what());
        }
    });
    findSameNames(reading);
    return reading;
}

void NamesFile::readLine(std::string_view line, std::size_t number, Reading& reading) const {
    std::size_t item = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), item);
    const auto digits = static_cast<std::size_t>(end - line.data());
    if (digits == 0 || line.substr(digits, 1) != "\t")
        throw LineError("a line begins with the number of an item and a tab");
    if (error != std::errc() || item == 0 || item > all.size())
        throw LineError(fmt::format("there is no item {}", line.substr(0, digits)));
    if (reading.lines[item - 1] != 0)
        throw LineError(fmt::format("the item {} has a line above", item));
    reading.lines[item - 1] = number;
    std::string name = nameOf(line.substr(digits + 1));
    // An editor may have put the name into another Unicode form.
    for (const std::string* known : {&all[item - 1].start, &all[item - 1].name})
        if (name != *known && text::canonicallyEqual(text::fromBytes(name), text::fromBytes(*known)))
            name = *known;
    reading.names[item - 1] = std::move(name);
}

/// Of items of one folder that are to have one name, those that are to get it are wrong.
void NamesFile::findSameNames(Reading& reading) const {
    for (auto folder = folders.begin(); folder != folders.end(); ++folder) {
        const std::size_t end =
            std::next(folder) == folders.end() ? all.size() : std::next(folder)->firstItem;
        std::unordered_map<std::string_view, std::size_t> owners;
        for (std::size_t i = folder->firstItem; i < end; ++i) {
            const auto [owner, isNew] = owners.emplace(reading.names[i], i);
            if (isNew)
                continue;
            for (const auto& [one, other] : {std::pair(i, owner->second), std::pair(owner->second, i)})
                if (reading.names[one] != all[one].name)
                    reading.wrong.emplace(reading.lines[one],
                                          fmt::format("the item {} has this name too", other + 1));
        }
    }
}

std::string NamesFile::marked(std::string_view edited, const std::map<std::size_t, std::string>& wrong) {
    std::string result;
    const auto appendMark = [&](const std::string& reason) {
        ((result += mark) += display::visible(reason)) += '\n';
    };
    eachLine(edited, [&](std::string_view line, std::size_t number) {
        if (const auto reason = wrong.find(number); reason != wrong.end())
            appendMark(reason->second);
        (result += line) += '\n';
    });
    return result;
}

bool NamesFile::isSame(std::string_view a, std::string_view b) { return marked(a, {}) == marked(b, {}); }

} // namespace tavrin
