#include "platform/UpdateFeedReader.h"

#include <expat.h>
#include <fmt/format.h>

#include <array>
#include <memory>
#include <optional>
#include <utility>

namespace tavrin {

namespace {

constexpr std::size_t depthLimit = 64;
constexpr std::size_t itemLimit = 1000;
constexpr std::size_t textLimit = 16 * 1024;

/// Stands between the namespace and the name; no address holds a blank.
constexpr char namespaceEnd = ' ';

struct QualifiedName {
    bool isOfFeed; ///< in some namespace: RSS itself has none
    std::string_view name;
};

QualifiedName parsed(std::string_view name) {
    const std::size_t end = name.rfind(namespaceEnd);
    return end == std::string_view::npos ? QualifiedName{false, name}
                                         : QualifiedName{true, name.substr(end + 1)};
}

/// The elements whose text counts, and where it goes.
struct TextElement {
    bool isOfFeed;
    std::string_view name;
    std::string UpdateFeedItem::*field;
};
constexpr std::array<TextElement, 6> textElements{
    {{false, "title", &UpdateFeedItem::title},
     {false, "link", &UpdateFeedItem::link},
     {true, "version", &UpdateFeedItem::version},
     {true, "shortVersionString", &UpdateFeedItem::shortVersion},
     {true, "minimumSystemVersion", &UpdateFeedItem::minimumSystemVersion},
     {true, "releaseNotesLink", &UpdateFeedItem::releaseNotesLink}}};

void trim(std::string& text) {
    constexpr const char* blanks = " \t\r\n";
    text.erase(text.find_last_not_of(blanks) + 1);
    text.erase(0, text.find_first_not_of(blanks));
}

/// Takes expat's events and gathers the items. The first fault stops the parser.
class FeedReader {
  public:
    explicit FeedReader(XML_Parser xmlParser) : parser(xmlParser) {
        XML_SetUserData(parser, this);
        XML_SetElementHandler(
            parser,
            [](void* self, const char* name, const char** attributes) { of(self).start(name, attributes); },
            [](void* self, const char*) { of(self).end(); });
        XML_SetCharacterDataHandler(parser, [](void* self, const char* text, int length) {
            of(self).characters({text, static_cast<std::size_t>(length)});
        });
        XML_SetStartDoctypeDeclHandler(parser, [](void* self, const char*, const char*, const char*, int) {
            of(self).fail("a document type is not allowed");
        });
    }

    UpdateFeedReader::Result read(std::string_view bytes) {
        const auto status = XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), XML_TRUE);
        if (error.empty() && status != XML_STATUS_OK)
            error = atLine(XML_ErrorString(XML_GetErrorCode(parser)));
        if (!error.empty())
            return UpdateFeedError{error};
        return std::move(items);
    }

  private:
    static FeedReader& of(void* self) { return *static_cast<FeedReader*>(self); }

    std::string atLine(std::string_view message) const {
        return fmt::format("line {}: {}", XML_GetCurrentLineNumber(parser), message);
    }

    void fail(std::string_view message) {
        if (!error.empty())
            return;
        error = atLine(message);
        XML_StopParser(parser, XML_FALSE);
    }

    void start(std::string_view qualifiedName, const char** attributes) {
        if (!error.empty())
            return;
        const QualifiedName element = parsed(qualifiedName);
        if (depth == 0 && (element.isOfFeed || element.name != "rss"))
            return fail("this is no feed of updates");
        if (++depth > depthLimit)
            return fail("nested too deeply");
        if (itemDepth == 0 && !element.isOfFeed && element.name == "item")
            return startItem();
        if (itemDepth == 0 || depth != itemDepth + 1)
            return;
        if (!element.isOfFeed && element.name == "enclosure")
            return readEnclosure(attributes);
        for (const TextElement& each : textElements)
            if (each.isOfFeed == element.isOfFeed && each.name == element.name)
                field = &(items.back().*each.field);
        if (field)
            field->clear();
    }

    void startItem() {
        if (items.size() >= itemLimit)
            return fail("too many items");
        items.emplace_back();
        itemDepth = depth;
    }

    void readEnclosure(const char** attributes) {
        for (; *attributes != nullptr; attributes += 2) {
            const QualifiedName attribute = parsed(attributes[0]);
            const std::string_view value = attributes[1];
            if (value.size() > textLimit)
                return fail("a text is too long");
            if (attribute.isOfFeed && attribute.name == "version")
                items.back().version = value;
            else if (attribute.isOfFeed && attribute.name == "shortVersionString")
                items.back().shortVersion = value;
        }
    }

    void characters(std::string_view text) {
        if (!error.empty() || !field || depth != itemDepth + 1)
            return;
        *field += text;
        if (field->size() > textLimit)
            fail("a text is too long");
    }

    void end() {
        if (!error.empty())
            return;
        if (field && depth == itemDepth + 1)
            trim(*std::exchange(field, nullptr));
        if (depth == itemDepth)
            itemDepth = 0;
        --depth;
    }

    XML_Parser parser;
    std::vector<UpdateFeedItem> items;
    std::string* field = nullptr; ///< of the last item: takes the text of the open element
    std::size_t depth = 0;
    std::size_t itemDepth = 0; ///< of the open item; 0 outside
    std::string error;
};

} // namespace

UpdateFeedReader::Result UpdateFeedReader::read(std::string_view bytes) {
    if (bytes.size() > sizeLimit)
        return UpdateFeedError{"larger than 4 MiB"};
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreateNS(nullptr, namespaceEnd), XML_ParserFree);
    return FeedReader(parser.get()).read(bytes);
}

} // namespace tavrin
