#include "platform/propertylists/PropertyListFormats.h"
#include "platform/propertylists/PropertyListScalars.h"
#include "support/text/Text.h"

#include <string_view>

namespace tavrin::plist {

namespace {

constexpr std::string_view header = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";

/// One call writes one value, begun at the given depth of indentation.
class XmlWriter {
  public:
    std::string result;

    void write(const PropertyValue& value, std::size_t depth) {
        if (const auto* dictionary = value.asDictionary())
            return writeDictionary(*dictionary, depth);
        if (const auto* array = value.asArray())
            return writeArray(*array, depth);
        result.append(depth, '\t');
        if (const auto* text = value.asText())
            writeText(*text);
        else
            writeScalar(value);
        result += '\n';
    }

  private:
    void writeDictionary(const PropertyDictionary& dictionary, std::size_t depth) {
        line(depth, dictionary.empty() ? "<dict/>" : "<dict>");
        for (const auto& [key, value] : dictionary) {
            result.append(depth + 1, '\t');
            element("key", text::toUtf8(text::fromBytes(key)));
            result += '\n';
            write(value, depth + 1);
        }
        if (!dictionary.empty())
            line(depth, "</dict>");
    }

    void writeArray(const PropertyArray& array, std::size_t depth) {
        line(depth, array.empty() ? "<array/>" : "<array>");
        for (const PropertyValue& value : array)
            write(value, depth + 1);
        if (!array.empty())
            line(depth, "</array>");
    }

    void writeText(const std::u16string& content) {
        if (isXmlText(content))
            element("string", text::toUtf8(content));
        else
            element("data", dataText(dataFromText(content)));
    }

    void writeScalar(const PropertyValue& value) {
        if (const bool* boolean = value.asBoolean())
            result += *boolean ? "<true/>" : "<false/>";
        else if (const auto* integer = value.asInteger())
            element("integer", std::to_string(*integer));
        else if (const double* real = value.asReal())
            element("real", realText(*real));
        else if (const auto* date = value.asDate())
            element("date", dateText(*date));
        else if (const auto* data = value.asData())
            element("data", dataText(data->bytes));
    }

    void element(std::string_view name, std::string_view content) {
        result.append("<").append(name).append(">");
        for (const char c : content)
            escape(c);
        result.append("</").append(name).append(">");
    }

    void escape(char c) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else if (c == '\r') // a bare one would be read as a line feed
            result += "&#13;";
        else
            result += c;
    }

    void line(std::size_t depth, std::string_view content) {
        result.append(depth, '\t').append(content).append("\n");
    }
};

std::string obstacle(const PropertyValue& value, int depth) {
    const auto* dictionary = value.asDictionary();
    const auto* array = value.asArray();
    if ((dictionary != nullptr || array != nullptr) && depth >= depthLimit)
        return "the list is nested too deeply";
    if (dictionary != nullptr)
        for (const auto& [key, content] : *dictionary) {
            if (!isXmlText(text::fromBytes(key)))
                return "the key \"" + text::toUtf8(text::fromBytes(key)) + "\" cannot be written";
            if (auto found = obstacle(content, depth + 1); !found.empty())
                return found;
        }
    if (array != nullptr)
        for (const PropertyValue& content : *array)
            if (auto found = obstacle(content, depth + 1); !found.empty())
                return found;
    return {};
}

} // namespace

std::string writeXml(const PropertyValue& value) {
    XmlWriter writer;
    writer.result.append(header).append("<plist version=\"1.0\">\n");
    writer.write(value, 0);
    return std::move(writer.result.append("</plist>\n"));
}

std::string obstacleToWriting(const PropertyValue& value) { return obstacle(value, 0); }

} // namespace tavrin::plist
