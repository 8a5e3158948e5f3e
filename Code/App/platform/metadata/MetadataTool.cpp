#include "platform/metadata/MetadataTool.h"

#include "platform/metadata/FileManager.h"
#include "platform/processes/ToolProcess.h"
#include "support/application/DebugLog.h"
#include "support/text/Text.h"

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
            FileManager::extractNOfMValuesFrom(value, "track", "numTrack", dictionary);
        else if (*key == "DiskNumber" || *key == "PartOfSet")
            FileManager::extractNOfMValuesFrom(value, "cd", "numCds", dictionary);
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

} // namespace tavrin
