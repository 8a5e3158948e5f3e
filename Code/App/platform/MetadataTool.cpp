#include "platform/MetadataTool.h"

namespace tavrin {

struct MetadataTool::Child {};

MetadataTool::MetadataTool(std::string path) : script(std::move(path)) {}
MetadataTool::~MetadataTool() = default;
PropertyDictionary MetadataTool::tagsFor(const std::string&, Client) { return {}; }
PropertyDictionary MetadataTool::parseAnswer(const std::string&) { return {}; }

} // namespace tavrin
