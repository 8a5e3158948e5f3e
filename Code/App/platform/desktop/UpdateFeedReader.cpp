#include "platform/desktop/UpdateFeedReader.h"

#include "platform/propertylists/XmlParser.h"

#include <array>
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

/// Gathers the items.
class FeedReader final : public XmlParser {
  public:
    FeedReader() : XmlParser(namespaceEnd) {}

    UpdateFeedReader::Result read(std::string_view bytes) {
        if (std::string error = parse(bytes); !error.empty())
            return UpdateFeedError{std::move(error)};
        return std::move(items);
    }

  private:
    void start(std::string_view qualifiedName, const char** attributes) override {
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

    void characters(std::string_view text) override {
        if (!field || depth != itemDepth + 1)
            return;
        *field += text;
        if (field->size() > textLimit)
            fail("a text is too long");
    }

    void end(std::string_view) override {
        if (field && depth == itemDepth + 1)
            trim(*std::exchange(field, nullptr));
        if (depth == itemDepth)
            itemDepth = 0;
        --depth;
    }

    std::vector<UpdateFeedItem> items;
    std::string* field = nullptr; ///< of the last item: takes the text of the open element
    std::size_t depth = 0;
    std::size_t itemDepth = 0; ///< of the open item; 0 outside
};

} // namespace

UpdateFeedReader::Result UpdateFeedReader::read(std::string_view bytes) {
    if (bytes.size() > sizeLimit)
        return UpdateFeedError{"larger than 4 MiB"};
    return FeedReader().read(bytes);
}

} // namespace tavrin
