#include "platform/desktop/ThunarActions.h"

#include "platform/propertylists/XmlParser.h"

#include <expat.h>
#include <fmt/format.h>

#include <strings.h>
#include <vector>

namespace tavrin {

namespace {

struct Range {
    std::size_t begin = 0;
    std::size_t end = 0;
};

constexpr const char* notUtf8 = "it is not in UTF-8";

/// Finds the actions of a list by the positions of their bytes.
class Finder final : public XmlParser {
  public:
    explicit Finder(std::string_view list) : bytes(list) {
        // Positions inside entities would not be positions in the file, and entities can grow.
        XML_SetEntityDeclHandler(expat(),
                                 [](void* self, const char*, int, const char*, int, const char*, const char*,
                                    const char*, const char*) { of(self).fail("it declares entities"); });
        // What is put in is UTF-8.
        XML_SetXmlDeclHandler(expat(), [](void* self, const char*, const char* encoding, int) {
            if (encoding && ::strcasecmp(encoding, "UTF-8") != 0)
                of(self).fail(notUtf8);
        });
    }

    /// Empty where all is well.
    std::string find() {
        if (bytes.find('\0') != std::string_view::npos)
            return notUtf8; // it may be without a declaration
        return parse(bytes);
    }

    std::vector<Range> own; ///< our actions, each with the line feed behind it
    std::string command;    ///< of the first of them
    Range rootEnd;          ///< the end tag, or the whole element where it is bare

  private:
    static Finder& of(void* self) { return static_cast<Finder&>(*static_cast<XmlParser*>(self)); }

    void doctype(bool) override {}

    /// Of the tag in hand.
    Range tag() const {
        const auto begin = static_cast<std::size_t>(XML_GetCurrentByteIndex(expat()));
        return {begin, begin + static_cast<std::size_t>(XML_GetCurrentByteCount(expat()))};
    }

    void start(std::string_view name, const char**) override {
        ++depth;
        content.clear();
        if (depth == 1) {
            if (name != "actions")
                fail("it holds no actions");
            rootEnd = tag();
        } else if (depth == 2) {
            action = {tag(), {}, {}};
        } else if (depth == 3) {
            isId = name == "unique-id";
            isCommand = name == "command";
        }
    }

    void characters(std::string_view text) override { content += text; }

    void end(std::string_view) override {
        if (depth == 1)
            endRoot();
        else if (depth == 2)
            endAction();
        else if (depth == 3 && isId)
            action.id = content;
        else if (depth == 3 && isCommand)
            action.command = content;
        --depth;
    }

    /// A bare element has no end tag of its own.
    void endRoot() {
        if (const Range end = tag(); end.begin != end.end)
            rootEnd = end;
    }

    void endAction() {
        if (action.id != ThunarActions::id)
            return;
        if (own.empty())
            command = action.command;
        Range range{action.range.begin, tag().end};
        if (range.end < bytes.size() && bytes[range.end] == '\n')
            ++range.end;
        own.push_back(range);
    }

    struct Action {
        Range range;
        std::string id;
        std::string command;
    };

    std::string_view bytes;
    std::string content;
    Action action;
    std::size_t depth = 0;
    bool isId = false;
    bool isCommand = false;
};

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '&' || c == '<' || c == '>')
            result += fmt::format("&#{};", static_cast<int>(c));
        else
            result += c;
    }
    return result;
}

/// Without the elements of newer versions: older ones refuse what they don't know.
std::string element(std::string_view command) {
    return fmt::format("<action>\n\t<icon>net.calderwick.tavrin</icon>\n\t<name>Rename with Tavrin…</name>\n"
                       "\t<unique-id>{}</unique-id>\n\t<command>{}</command>\n"
                       "\t<description>Rename the selected files and folders at once</description>\n"
                       "\t<patterns>*</patterns>\n\t<directories/>\n\t<audio-files/>\n\t<image-files/>\n"
                       "\t<other-files/>\n\t<text-files/>\n\t<video-files/>\n</action>\n",
                       ThunarActions::id, escaped(command));
}

} // namespace

std::variant<ThunarActions::Error, ThunarActions> ThunarActions::read(std::string_view list) {
    Finder finder(list);
    if (const std::string error = finder.find(); !error.empty())
        return Error{error};
    ThunarActions result;
    result.ownCommand = finder.command;
    result.rest = list;
    result.isBare = list.substr(0, finder.rootEnd.end).ends_with("/>");
    result.place = result.isBare ? finder.rootEnd.end - 2 : finder.rootEnd.begin;
    for (auto range = finder.own.rbegin(); range != finder.own.rend(); ++range) {
        result.rest.erase(range->begin, range->end - range->begin);
        result.place -= range->end - range->begin;
    }
    return result;
}

std::string ThunarActions::with(std::string_view command) const {
    std::string result = rest;
    if (isBare)
        return result.replace(place, 2, fmt::format(">\n{}</actions>", element(command)));
    return result.insert(place, element(command));
}

} // namespace tavrin
