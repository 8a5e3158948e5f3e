#include "platform/propertylists/XmlParser.h"

#include <expat.h>
#include <fmt/format.h>

#include <new>

namespace tavrin {

namespace {

constexpr std::size_t shownLength = 40;

} // namespace

void XmlParser::Free::operator()(XML_ParserStruct* parser) const { XML_ParserFree(parser); }

XmlParser::XmlParser(char namespaceSeparator)
    : parser(namespaceSeparator == '\0' ? XML_ParserCreate(nullptr)
                                        : XML_ParserCreateNS(nullptr, namespaceSeparator)) {
    if (!parser)
        throw std::bad_alloc();
    XML_SetUserData(parser.get(), this);
    setHandlers();
}

XmlParser::~XmlParser() = default;

/// Each event is checked: a parser that has been stopped still brings those of the piece in hand.
void XmlParser::setHandlers() {
    static constexpr auto of = [](void* self) -> XmlParser& { return *static_cast<XmlParser*>(self); };
    XML_SetElementHandler(
        parser.get(),
        [](void* self, const char* name, const char** attributes) {
            if (!of(self).hasFailed())
                of(self).start(name, attributes);
        },
        [](void* self, const char* name) {
            if (!of(self).hasFailed())
                of(self).end(name);
        });
    XML_SetCharacterDataHandler(parser.get(), [](void* self, const char* text, int length) {
        if (!of(self).hasFailed())
            of(self).characters({text, static_cast<std::size_t>(length)});
    });
    XML_SetStartDoctypeDeclHandler(parser.get(),
                                   [](void* self, const char*, const char*, const char*,
                                      int hasInternalSubset) { of(self).doctype(hasInternalSubset != 0); });
    XML_SetSkippedEntityHandler(parser.get(), [](void* self, const char* name, int) {
        of(self).fail(fmt::format("unknown entity: {}", shown(name)));
    });
}

std::string XmlParser::parse(std::string_view bytes) {
    const auto status = XML_Parse(parser.get(), bytes.data(), static_cast<int>(bytes.size()), XML_TRUE);
    if (fault.empty() && status != XML_STATUS_OK)
        fault = atLine(XML_ErrorString(XML_GetErrorCode(parser.get())));
    return fault;
}

void XmlParser::doctype(bool) { fail("a document type is not allowed"); }

void XmlParser::fail(std::string_view message) {
    if (hasFailed())
        return;
    fault = atLine(message);
    XML_StopParser(parser.get(), XML_FALSE);
}

std::string XmlParser::shown(std::string_view text) {
    if (text.size() <= shownLength)
        return std::string(text);
    std::size_t cut = shownLength;
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80)
        --cut;
    return std::string(text.substr(0, cut)) + "...";
}

std::string XmlParser::atLine(std::string_view message) const {
    return fmt::format("line {}: {}", XML_GetCurrentLineNumber(parser.get()), message);
}

} // namespace tavrin
