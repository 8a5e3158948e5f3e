#include "Catalogue.h"
#include "Commands.h"
#include "RecipeLoader.h"
#include "Terminal.h"
#include "documents/recipe/RecipeCompletion.h"
#include "documents/recipe/RecipeText.h"
#include "platform/propertylists/PropertyList.h"
#include "support/text/DisplayText.h"
#include "support/text/Text.h"

#include <fmt/format.h>

namespace tavrin {

namespace {

/// A description as comments, line by line.
std::string comment(std::u16string_view text) {
    std::string lines;
    while (!text.empty()) {
        const auto end = std::min(text.find_first_of(u"\n\r\u2028\u2029"), text.size());
        lines += fmt::format("# {}\n", display::visible(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::string inLines(const Recipe& recipe, const RecipeSource& source) {
    std::string lines;
    if (const auto* preset = std::get_if<RecipeOfPreset>(&source))
        lines = comment(text::fromBytes(preset->name));
    lines += comment(recipe.description);
    for (const auto& step : RecipeText::writeSteps(recipe.flatParameterList))
        lines += text::toUtf8(step) + '\n';
    return lines;
}

std::string inJson(const Recipe& recipe) {
    std::string object = "{\"canonical\":";
    display::appendJson(RecipeText::write(recipe.flatParameterList), object);
    object += ",\"steps\":";
    char separator = '[';
    for (const auto& step : RecipeText::writeSteps(recipe.flatParameterList)) {
        object += separator;
        display::appendJson(step, object);
        separator = ',';
    }
    return object + "]}\n";
}

std::string inJson(const RecipeText::Remark& mistake) {
    std::string object = fmt::format("{{\"line\":{},\"column\":{},\"length\":{},\"message\":", mistake.line,
                                     mistake.column, mistake.length);
    display::appendJson(text::fromUtf8(mistake.message), object);
    object += ",\"hint\":";
    display::appendJson(text::fromUtf8(mistake.hint), object);
    return object + "}\n";
}

std::string shown(const Recipe& recipe, const RecipeTextOptions& options) {
    switch (options.form) {
    case RecipeTextOptions::Form::lines:
        return inLines(recipe, *options.recipe);
    case RecipeTextOptions::Form::propertyList:
        return PropertyList::toXml(recipe.flatParameterList);
    case RecipeTextOptions::Form::json:
        return inJson(recipe);
    case RecipeTextOptions::Form::line:
        break;
    }
    return text::toUtf8(RecipeText::write(recipe.flatParameterList)) + '\n';
}

/// A line each: the text with its last token complete, and what that is about.
void printCompletions(std::string_view unfinished, Terminal& terminal) {
    RecipeVocabulary vocabulary;
    for (const auto& each : recipe::completions(text::fromBytes(unfinished), vocabulary))
        terminal.output().append(terminal.shown(text::toBytes(each.text).value_or("")) + '\t' + each.about +
                                 '\n');
}

} // namespace

ExitStatus runRecipeCommand(const RecipeTextOptions& options) {
    const Catalogue catalogue;
    Terminal terminal;
    if (options.complete) {
        printCompletions(*options.complete, terminal);
        return terminal.finish();
    }
    try {
        const Recipe recipe = loadRecipe(*options.recipe, RecipeFile::Accept::anything);
        tellNotes(recipe, terminal);
        if (recipe.globalSettings)
            terminal.complain("tvrn: the settings of the droplet are no part of its recipe");
        terminal.output().append(shown(recipe, options));
        return terminal.finish();
    } catch (const RecipeTextError& error) {
        if (options.form != RecipeTextOptions::Form::json)
            throw;
        terminal.output().append(inJson(error.remark()));
        return terminal.finish(ExitStatus::badUsage);
    }
}

} // namespace tavrin
