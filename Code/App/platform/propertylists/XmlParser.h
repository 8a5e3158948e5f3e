#pragma once

#include <memory>
#include <string>
#include <string_view>

struct XML_ParserStruct;

namespace tavrin {

/// Reads an XML document (XML 1.0) by the events that a derived class takes. The first fault ends it: what is
/// not well-formed, an entity that is not predefined, a document type unless `doctype` allows it, or what
/// the derived class fails on. No event comes behind a fault.
class XmlParser {
  public:
    /// With a separator, names come as namespace, separator and name.
    explicit XmlParser(char namespaceSeparator = '\0');
    virtual ~XmlParser();
    XmlParser(const XmlParser&) = delete;
    XmlParser& operator=(const XmlParser&) = delete;

    /// Parses the whole document, once. The fault with its line, as part of a sentence; empty when all is
    /// well.
    [[nodiscard]] std::string parse(std::string_view bytes);

  protected:
    /// `attributes`: names and values in turn, then null.
    virtual void start(std::string_view name, const char** attributes) = 0;
    virtual void end(std::string_view name) = 0;
    /// A part of a text; it may come in several.
    virtual void characters(std::string_view text) = 0;
    virtual void doctype(bool hasDeclarations);

    void fail(std::string_view message);
    [[nodiscard]] bool hasFailed() const { return !fault.empty(); }
    /// Cut to a length that a message bears.
    [[nodiscard]] static std::string shown(std::string_view text);
    /// For events and questions beyond these. What takes its user data gets this object as an `XmlParser*`.
    [[nodiscard]] XML_ParserStruct* expat() const { return parser.get(); }

  private:
    void setHandlers();
    [[nodiscard]] std::string atLine(std::string_view message) const;

    struct Free {
        void operator()(XML_ParserStruct* parser) const;
    };
    std::unique_ptr<XML_ParserStruct, Free> parser;
    std::string fault;
};

} // namespace tavrin
