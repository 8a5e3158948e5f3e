#include "platform/propertylists/PropertyListFormats.h"
#include "platform/propertylists/PropertyListScalars.h"
#include "platform/propertylists/XmlParser.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tavrin::plist {

namespace {

/// Builds the value.
class XmlReader final : public XmlParser {
  public:
    PropertyList::Result read(std::string_view bytes) {
        if (std::string error = parse(bytes); !error.empty())
            return PropertyListError{std::move(error)};
        if (!root)
            return PropertyListError{"the property list is empty"};
        return std::move(*root);
    }

  private:
    struct Container {
        PropertyValue value;
        std::optional<std::string> key; ///< of a dictionary: waits for its value
    };

    /// A list needs no declarations; refusing them leaves no room for entities that grow.
    void doctype(bool hasDeclarations) override {
        if (hasDeclarations)
            fail("declarations inside the document type are not allowed");
    }

    void start(std::string_view name, const char** attributes) override {
        if (!leaf.empty())
            return fail(fmt::format("<{}> inside <{}>", shown(name), leaf));
        if (!insidePlist)
            return startRoot(name);
        if (*attributes != nullptr)
            return fail(fmt::format("unexpected attribute: {}", shown(*attributes)));
        if (++valueCount > valueLimit)
            return fail("too many values");
        if (name == "dict" || name == "array")
            return startContainer(name);
        if (!isLeaf(name))
            return fail(fmt::format("unknown element: {}", shown(name)));
        if (name != "key" && !mayTakeValue(name))
            return;
        leaf = name;
        content.clear();
    }

    void startRoot(std::string_view name) {
        if (name != "plist")
            return fail(fmt::format("not a property list but: {}", shown(name)));
        insidePlist = true;
    }

    void startContainer(std::string_view name) {
        if (!mayTakeValue(name))
            return;
        if (containers.size() >= depthLimit)
            return fail("nested too deeply");
        if (name == "dict")
            containers.push_back({PropertyDictionary(), std::nullopt});
        else
            containers.push_back({PropertyArray(), std::nullopt});
    }

    static bool isLeaf(std::string_view name) {
        return name == "key" || name == "string" || name == "integer" || name == "real" || name == "true" ||
               name == "false" || name == "date" || name == "data";
    }

    bool mayTakeValue(std::string_view name) {
        if (containers.empty() && root)
            fail("more than one value at the top");
        else if (!containers.empty() && containers.back().value.asDictionary() != nullptr &&
                 !containers.back().key)
            fail(fmt::format("<{}> without a key", name));
        return !hasFailed();
    }

    void characters(std::string_view text) override {
        if (!leaf.empty())
            content += text;
        else if (text.find_first_not_of(" \t\r\n") != std::string_view::npos)
            fail(fmt::format("unexpected text: {}", shown(text)));
    }

    void end(std::string_view name) override {
        if (name == "plist")
            return;
        if (!leaf.empty())
            return endLeaf();
        Container done = std::move(containers.back());
        containers.pop_back();
        if (done.key)
            return fail(fmt::format("key without a value: {}", shown(*done.key)));
        add(std::move(done.value));
    }

    void endLeaf() {
        const std::string name = std::exchange(leaf, std::string());
        if (name == "key")
            return addKey();
        if (name == "string")
            return add(text::fromUtf8(content));
        if (name == "true" || name == "false")
            return content.empty() ? add(name == "true") : fail(fmt::format("text inside <{}>", name));
        if (name == "integer")
            return addParsed(integerFrom(content), "an integer");
        if (name == "real")
            return addParsed(realFrom(content), "a real number");
        if (name == "date")
            return addParsed(dateFrom(content), "a date");
        if (auto bytes = dataFrom(content))
            return add(PropertyData{std::move(*bytes)});
        fail(fmt::format("not data: {}", shown(content)));
    }

    template <typename Parsed> void addParsed(const std::optional<Parsed>& parsed, std::string_view kind) {
        if (parsed)
            add(*parsed);
        else
            fail(fmt::format("not {}: {}", kind, shown(content)));
    }

    void addKey() {
        if (containers.empty() || containers.back().value.asDictionary() == nullptr)
            return fail("a key outside a dictionary");
        Container& dictionary = containers.back();
        if (dictionary.key)
            return fail(fmt::format("key without a value: {}", shown(*dictionary.key)));
        if (dictionary.value.asDictionary()->contains(content))
            return fail(fmt::format("key given twice: {}", shown(content)));
        dictionary.key = std::move(content);
        content.clear();
    }

    void add(PropertyValue value) {
        if (containers.empty()) {
            root = std::move(value);
            return;
        }
        Container& container = containers.back();
        if (PropertyArray* array = container.value.asArray())
            return array->push_back(std::move(value));
        container.value.asDictionary()->emplace(std::move(*container.key), std::move(value));
        container.key.reset();
    }

    std::vector<Container> containers;
    std::string leaf; ///< the open element without children; empty when there is none
    std::string content;
    std::optional<PropertyValue> root;
    std::size_t valueCount = 0;
    bool insidePlist = false;
};

} // namespace

PropertyList::Result readXml(std::string_view bytes) { return XmlReader().read(bytes); }

} // namespace tavrin::plist
