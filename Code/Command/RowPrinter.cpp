#include "RowPrinter.h"

#include "engine/naming/NameProblems.h"
#include "store/contexts/StoreContext.h"
#include "support/text/AsciiBytes.h"
#include "support/text/DisplayText.h"
#include "support/text/Text.h"

namespace tavrin {

namespace {

void precompose(std::u16string& text) {
    if (!text::isPrecomposed(text))
        text = text::precomposed(text);
}

} // namespace

void RowPrinter::print(StoreContext& context, const Predicate& predicate) {
    const bool isPlain = !options.json && !options.affected && !makeVisible && !paints && options.format != 2;
    for (const RowId id : context.fetch({FetchEntity::file, predicate, {{NodeKey::name}}, 0})) {
        if (isPlain && printAsHeld(context, id)) {
            output.flushIfFull();
            if (output.error() != 0)
                return;
            continue;
        }
        context.name(id, name);
        context.finalName(id, finalName);
        if (options.affected && (name == finalName || text::canonicallyEqual(name, finalName)))
            continue;
        if (options.json)
            printObject(context, id);
        else
            printLine(context, id);
        output.flushIfFull();
        if (output.error() != 0)
            return;
    }
}

/// A line of names that are shown by the bytes that the store holds, as most are; false for others.
bool RowPrinter::printAsHeld(StoreContext& context, RowId id) {
    std::string& text = output.content();
    const std::size_t start = text.size();
    const std::string_view component = context.component(id);
    if (!text::isAsciiWithoutNul(component) || component.find(':') != component.npos)
        return false;
    text += component;
    const std::size_t length = component.size();
    const StoreContext::HeldName final = context.heldFinalName(id);
    if (!final.isName && (!final.hasBytes || !text::isAsciiWithoutNul(final.bytes))) {
        text.resize(start);
        return false;
    }
    if (options.format == 1 && !final.isName) {
        text.resize(start);
    } else if (options.format == 0) {
        text += '\t';
        if (final.isName)
            text.append(text, start, length);
    }
    if (!final.isName)
        text += final.bytes;
    text += options.null ? '\0' : '\n';
    return true;
}

/// The lines of a saved list of names: everything in composed form.
void RowPrinter::printLine(StoreContext& context, RowId id) {
    std::string& text = output.content();
    precompose(finalName);
    if (options.format == 0) {
        precompose(name);
        if (paints)
            return printPainted();
        appendField(name);
        text += '\t';
    } else if (options.format == 2) {
        context.fullPath(id, path);
        text::fromBytes(path, name);
        precompose(name);
        appendField(name);
        text += '\t';
    }
    appendField(finalName);
    text += options.null ? '\0' : '\n';
}

void RowPrinter::printPainted() {
    before.set(name, makeVisible);
    after.set(finalName, makeVisible);
    ShownName::compare(before, after);
    std::string& text = output.content();
    before.append(before.columns(), paint::removed, text);
    text += '\t';
    after.append(after.columns(), paint::added, text);
    text += options.null ? '\0' : '\n';
}

void RowPrinter::appendField(std::u16string_view text) {
    if (!text::toBytes(text, bytes))
        bytes = text::toUtf8(text); // no file can bear it, but it can be shown
    output.content() += makeVisible ? display::visible(bytes) : bytes;
}

void RowPrinter::printObject(StoreContext& context, RowId id) {
    output.content() += '{';
    context.fullPath(id, path);
    appendMember("fullPath", text::fromBytes(path));
    appendMember("name", name);
    appendMember("finalName", finalName);
    const NodeRow& row = context.row(id);
    appendMember("diff", row.diff);
    appendMember("treatAsFolder", row.treatAsFolder);
    appendMember("root", row.root);
    if (const auto columns = context.regexColumns(id)) {
        for (std::size_t i = 0; i < columns->size(); ++i)
            appendMember("regex" + std::to_string(i + 1), columns->at(i));
    }
    if (const auto problem = problemOf(context, id))
        appendProblem(*problem);
    if (const ProblemNote note = noteOf(context, id); !note.form.empty())
        appendMember("note", text::fromUtf8(note.sentence()));
    output.content().back() = '}'; // instead of the last comma
    output.content() += '\n';
}

void RowPrinter::appendProblem(const ToldProblem& problem) {
    output.content() += "\"problem\":{";
    appendMember("code", text::fromUtf8(problem.code));
    appendMember("message", text::fromUtf8(problem.message));
    output.content().back() = '}';
    output.content() += ',';
}

void RowPrinter::appendMember(std::string_view key, std::u16string_view text) {
    std::string& into = output.content();
    ((into += '"') += key) += "\":";
    display::appendJson(text, into);
    into += ',';
}

void RowPrinter::appendMember(std::string_view key, bool value) {
    ((((output.content() += '"') += key) += "\":") += value ? "true" : "false") += ',';
}

} // namespace tavrin
