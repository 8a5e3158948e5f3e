#include "RenamePrinter.h"

#include "Terminal.h"
#include "support/text/Text.h"

namespace tavrin {

namespace {

/// As rows tell names: with every ":" a "/", in composed form.
std::string asInRows(std::string_view component) {
    std::u16string name = text::fromBytes(component);
    text::replaceUnit(name, u':', u'/');
    name = text::precomposed(name);
    return text::toBytes(name).value_or(text::toUtf8(name));
}

} // namespace

void RenamePrinter::itemWasRenamed(std::string_view from, std::string_view to) {
    terminal.printNow(terminal.shown(asInRows(from)) + '\t' + terminal.shown(asInRows(to)) + end);
}

} // namespace tavrin
