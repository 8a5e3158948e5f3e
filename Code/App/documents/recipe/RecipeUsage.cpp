#include "documents/recipe/RecipeUsage.h"

#include "support/text/TextUnits.h"

#include <algorithm>

namespace tavrin {

namespace {

using Parts = std::vector<RecipeUsagePart>;
using Kind = RecipeUsagePart::Kind;

RecipeUsagePart valueOf(const ParameterDescription& row) {
    if (row.isText())
        return {Kind::text, std::string(row.label)};
    const bool repeatsWord = std::ranges::equal(row.label, row.word, {}, text::units::asciiLower<char>);
    return {Kind::number, repeatsWord ? "Number" : std::string(row.label)};
}

/// Rows of which one is in use, by the same other parameter, are alternatives; those of the same word say it
/// once.
void appendPhrases(const RecipeAction& action, Parts& parts) {
    const ParameterDescription* last = nullptr;
    const auto close = [&] {
        if (last && last->mayBeLeftOut)
            parts.push_back({Kind::mark, "]"});
    };
    for (const ParameterDescription& row : action.rows()) {
        if (row.form != RecipeForm::phrase)
            continue;
        const bool isAlternative =
            last && !row.shownWhenKey.empty() && row.shownWhenKey == last->shownWhenKey;
        if (!isAlternative)
            close();
        if (!isAlternative && row.mayBeLeftOut)
            parts.push_back({Kind::mark, "["});
        if (isAlternative)
            parts.push_back({Kind::mark, "|"});
        if (!isAlternative || row.word != last->word)
            parts.push_back({Kind::word, std::string(row.word)});
        if (!row.sideKey.empty())
            for (const ParameterChoice& side : action.row(row.sideKey)->choices) {
                if (&side != &action.row(row.sideKey)->choices.front())
                    parts.push_back({Kind::mark, "/"});
                parts.push_back({Kind::word, std::string(side.word)});
            }
        parts.push_back(valueOf(row));
        last = &row;
    }
    close();
}

} // namespace

Parts recipeUsage(const RecipeAction& action) {
    const RecipeVerb& verb = action.entry().recipe;
    Parts parts;
    if (verb.slash != 0)
        parts = {{Kind::word, std::string(1, verb.slash) + "/…/…/"}, {Kind::mark, "|"}};
    parts.push_back({Kind::word, std::string(verb.verb)});
    for (const ParameterDescription* row : action.texts()) {
        if (row->mayBeLeftOut)
            parts.push_back({Kind::mark, "["});
        parts.push_back(valueOf(*row));
        if (row->mayBeLeftOut)
            parts.push_back({Kind::mark, "]"});
    }
    if (!action.dateRows().empty())
        parts.insert(parts.end(), {{Kind::mark, "["}, {Kind::text, "Pattern"}, {Kind::mark, "]"}});
    appendPhrases(action, parts);
    if (verb.place == Place::start || verb.place == Place::end)
        parts.push_back({Kind::word, std::string(wordOf(verb.place))});
    parts.front().followsBlank = false;
    for (std::size_t i = 1; i < parts.size(); ++i) {
        const auto isMark = [](const RecipeUsagePart& part, std::string_view mark) {
            return part.kind == Kind::mark && part.shown == mark;
        };
        parts[i].followsBlank = !isMark(parts[i - 1], "[") && !isMark(parts[i - 1], "/") &&
                                !isMark(parts[i], "]") && !isMark(parts[i], "/");
    }
    return parts;
}

std::string recipeUsageLine(const RecipeAction& action) {
    std::string line;
    for (const auto& [kind, shown, followsBlank] : recipeUsage(action)) {
        line += followsBlank ? " " : "";
        if (kind == Kind::text)
            line += '"' + shown + '"';
        else if (kind == Kind::number)
            std::ranges::transform(shown, std::back_inserter(line), text::units::asciiUpper<char>);
        else
            line += shown;
    }
    return line;
}

} // namespace tavrin
