#include "platform/metadata/MetadataTool.h"

#include "platform/processes/ToolProcess.h"
#include "support/application/DebugLog.h"
#include "support/text/Text.h"
#include "support/values/DecimalNumbers.h"

#include <fmt/format.h>

#include <filesystem>
#include <optional>
#include <system_error>

namespace tavrin {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view endMarker = "---finished---";
constexpr std::u16string_view keyMarker = u"{extracted-key}:";
constexpr std::string_view failureMarker =
    "{extracted-failure}:"; ///< at the start of an answer: no value is there
constexpr int usesOfAChild = 100;

std::string absolutePath(const std::string& path) {
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    return error ? path : absolute.string();
}

std::u16string_view trimmed(std::u16string_view text) {
    while (!text.empty() && text::isWhitespaceOrNewline(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && text::isWhitespaceOrNewline(text.back()))
        text.remove_suffix(1);
    return text;
}

/// Made at first use: opening the locale's data takes time that most runs need not spend.
const DecimalNumbers& integerFormatter() {
    static const DecimalNumbers formatter(DecimalNumbers::userLocale());
    return formatter;
}

std::optional<double> convertStringToNumber(std::u16string_view text) {
    return integerFormatter().numberFrom(text);
}

std::u16string convertNumberToString(std::optional<double> number) {
    return number ? integerFormatter().textOf(*number) : std::u16string();
}

/// What stands before and behind the first of a separator, up to the second.
std::optional<std::pair<std::u16string_view, std::u16string_view>> splitAt(std::u16string_view text,
                                                                           std::u16string_view separator) {
    const std::size_t at = text.find(separator);
    if (at == std::u16string_view::npos)
        return std::nullopt;
    const std::u16string_view rest = text.substr(at + separator.size());
    return std::pair(text.substr(0, at), rest.substr(0, rest.find(separator)));
}

/// Adds n and m of a value "n of m" or "n/m" under these keys, n alone of any other; what is no number as
/// empty text.
void extractNOfMValuesFrom(std::u16string_view value, std::string_view firstTag, std::string_view secondTag,
                           PropertyDictionary& addTo) {
    const auto normalized = [](std::u16string_view text) {
        return convertNumberToString(convertStringToNumber(text));
    };
    auto parts = splitAt(value, u" of ");
    if (!parts)
        parts = splitAt(value, u"/");
    addTo.insert_or_assign(std::string(firstTag), normalized(parts ? parts->first : value));
    if (parts)
        addTo.insert_or_assign(std::string(secondTag), normalized(parts->second));
}

/// Reads the lines of an answer. A value is stored when the next key comes: the last key's is left out.
class AnswerReader {
  public:
    void read(std::u16string_view line) {
        if (line.find(keyMarker) == std::u16string_view::npos) {
            addValueLine(trimmed(line));
            return;
        }
        if (key && !value.empty())
            store();
        std::u16string_view name = line.substr(keyMarker.size());
        for (const std::u16string_view repeat : {u" (1)"sv, u" (2)"sv, u" (3)"sv}) {
            if (name.find(repeat) != std::u16string_view::npos) {
                name.remove_suffix(repeat.size());
                break;
            }
        }
        key = text::toUtf8(name);
        value.clear();
    }

    PropertyDictionary dictionary;

  private:
    void addValueLine(std::u16string_view line) {
        if (value.empty())
            value = line;
        else
            value.append(u"/n").append(line);
    }

    void store() {
        if (*key == "TrackNumber" || *key == "Track")
            extractNOfMValuesFrom(value, "track", "numTrack", dictionary);
        else if (*key == "DiskNumber" || *key == "PartOfSet")
            extractNOfMValuesFrom(value, "cd", "numCds", dictionary);
        else
            dictionary.insert_or_assign(*key, value);
    }

    std::optional<std::string> key;
    std::u16string value;
};

const char* description(ToolProcess::Outcome outcome) {
    switch (outcome) {
    case ToolProcess::Outcome::answered:
        return "the metadata tool answers nothing sensible";
    case ToolProcess::Outcome::ended:
        return "the metadata tool ended before its answer did";
    case ToolProcess::Outcome::overdue:
        return "the metadata tool did not answer in time";
    case ToolProcess::Outcome::oversized:
        return "the answer of the metadata tool has no end";
    case ToolProcess::Outcome::unasked:
        return "the metadata tool answered more than was asked";
    }
    return "";
}

} // namespace

MetadataTool::MetadataTool(const std::string& path) : MetadataTool(path, Limits()) {}
MetadataTool::MetadataTool(const std::string& path, Limits bounds)
    : script(absolutePath(path)), limits(bounds) {}
MetadataTool::~MetadataTool() = default;

/// A client's first request and each that follows 100 of its own get a new child.
void MetadataTool::prepareChild(Client client) {
    int& uses = useCounts[static_cast<std::size_t>(client)];
    if (uses == 0 || uses == usesOfAChild) {
        child.reset();
        uses = 0;
    }
    ++uses;
}

MetadataTool::Attempt MetadataTool::ask(const std::string& path, std::string& answer) {
    int error = 0;
    if (!child)
        child = ToolProcess::start(script, {endMarker, limits.answer, limits.time}, error);
    if (!child) {
        problem = "the metadata tool cannot be started: " + std::generic_category().message(error);
        return Attempt::failed;
    }
    const ToolProcess::Outcome outcome = child->ask(path, answer);
    if (outcome == ToolProcess::Outcome::answered && answer.starts_with(failureMarker)) {
        problem = answer.substr(failureMarker.size(), answer.find('\n') - failureMarker.size());
        return Attempt::refused;
    }
    if (outcome == ToolProcess::Outcome::answered && answer.find("{extracted-key}:") != std::string::npos)
        return Attempt::succeeded;
    // Whatever else the child would say could be taken for the answer about the next file.
    child.reset();
    problem = description(outcome);
    return outcome == ToolProcess::Outcome::ended ? Attempt::died : Attempt::failed;
}

FileMetadata MetadataTool::tagsFor(const std::string& path, Client client) {
    if (path.find_first_of("\n\0"sv) != std::string::npos)
        return {.failure = "its path cannot be given to the metadata tool"};
    std::string answer;
    std::string failure;
    {
        const std::lock_guard lock(mutex);
        prepareChild(client);
        Attempt attempt = ask(path, answer);
        if (attempt == Attempt::died)
            attempt = ask(path, answer);
        if (attempt != Attempt::succeeded)
            failure = problem;
    }
    if (!failure.empty()) {
        debugLog("metadata tool {}: no tags for {}: {}", script, path, failure);
        return {.failure = failure};
    }
    return {.tags = parseAnswer(answer)};
}

PropertyDictionary MetadataTool::parseAnswer(const std::string& bytes) {
    AnswerReader reader;
    const std::u16string text = text::fromUtf8OrMacRoman(bytes);
    std::u16string_view rest = text;
    for (;;) {
        const std::size_t end = rest.find(u'\n');
        reader.read(rest.substr(0, end));
        if (end == std::u16string_view::npos)
            return std::move(reader.dictionary);
        rest.remove_prefix(end + 1);
    }
}

std::string unreadMetadataOf(std::size_t files) {
    return fmt::format("The metadata of {} {} could not be read", files, files == 1 ? "file" : "files");
}

} // namespace tavrin
