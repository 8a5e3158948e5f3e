#include "presentation/help/RecipeReference.h"

#include "documents/recipe/RecipeWords.h"
#include "presentation/QtText.h"

#include <QCoreApplication>
#include <QStringList>
#include <algorithm>

namespace tavrin::recipeReference {

namespace {

QString translated(const char* text) { return QCoreApplication::translate("RecipeReference", text); }

QString escaped(std::string_view text) { return toQString(text).toHtmlEscaped(); }

QString code(std::string_view text) { return "<code>" + escaped(text) + "</code>"; }

/// Stands for the value, in quotes where it is a text.
QString value(const ParameterDescription& row) {
    const QString label = escaped(row.label);
    return "<i>" + (row.isText() ? "\"" + label + "\"" : label) + "</i>";
}

QString inBrackets(const QString& text, bool mayBeLeftOut) { return mayBeLeftOut ? "[" + text + "]" : text; }

/// What stands between the word of a phrase and its text; empty for most.
QString sides(const RecipeAction& action, const ParameterDescription& row) {
    const ParameterDescription* const side = action.row(row.sideKey);
    QStringList words;
    if (side != nullptr)
        for (const ParameterChoice& choice : side->choices)
            words.append(code(choice.word));
    return words.isEmpty() ? QString() : words.join("/") + " ";
}

/// Rows of which one is in use, by the same other parameter, are alternatives.
QStringList phrases(const RecipeAction& action) {
    QStringList all;
    const ParameterDescription* last = nullptr;
    for (const ParameterDescription& row : action.rows()) {
        if (row.form != RecipeForm::phrase)
            continue;
        const bool isAlternative =
            last != nullptr && !row.shownWhenKey.empty() && row.shownWhenKey == last->shownWhenKey;
        const bool saysWord = !isAlternative || row.word != last->word;
        const QString phrase =
            (saysWord ? code(row.word) + " " : QString()) + sides(action, row) + value(row);
        if (isAlternative)
            all.back() += " " + translated("or") + " " + phrase;
        else
            all.append((row.mayBeLeftOut ? "[" : "") + phrase);
        last = &row;
    }
    for (QString& phrase : all)
        phrase += phrase.startsWith('[') ? "]" : "";
    return all;
}

QString synonymsOfVerb(std::string_view verb) {
    QStringList all;
    for (const RecipeSynonym& each : recipeSynonyms())
        if (each.kind == RecipeSynonym::Kind::verb && each.meaning == verb)
            all.append(code(each.synonym) +
                       (each.place == Place::wholeName ? "" : " (… " + code(wordOf(each.place)) + ")"));
    return all.isEmpty() ? QString() : "<p>" + translated("Also understood:") + " " + all.join(", ") + "</p>";
}

QString sectionOfVerb(std::string_view verb, RecipeVocabulary& vocabulary) {
    QString html = QString("<h2><a name=\"verb:%1\"></a>%1</h2><ul>").arg(escaped(verb));
    for (const RecipeAction* action : vocabulary.withVerb(verb))
        html += QString("<li>%1: <a href=\"#action:%2\">%3</a></li>")
                    .arg(beginning(*action), escaped(action->entry().name), escaped(action->entry().label));
    return html + "</ul>" + synonymsOfVerb(verb);
}

QString synonymsOfWords() {
    QStringList all;
    for (const RecipeSynonym& each : recipeSynonyms()) {
        const char* const end = each.kind == RecipeSynonym::Kind::option ? "=" : "";
        if (each.kind != RecipeSynonym::Kind::verb)
            all.append(QString("<code>%1%3</code> (<code>%2%3</code>)")
                           .arg(escaped(each.synonym), escaped(each.meaning), end));
    }
    return "<h2>" + translated("Other words that are understood") + "</h2><p>" + all.join(", ") + "</p>";
}

} // namespace

QString beginning(const RecipeAction& action) {
    const RecipeVerb& verb = action.entry().recipe;
    QStringList parts(verb.slash == 0 ? code(verb.verb) : code(std::string(1, verb.slash) + "/…/…/"));
    if (verb.slash == 0)
        for (const ParameterDescription* row : action.texts())
            parts.append(inBrackets(value(*row), row->mayBeLeftOut));
    if (!action.dateRows().empty())
        parts.append("[<i>" + translated("Pattern") + "</i>]");
    parts += phrases(action);
    if (verb.place == Place::start || verb.place == Place::end)
        parts.append(code(wordOf(verb.place)));
    return parts.join(" ");
}

QString word(const ParameterDescription& parameter) {
    const bool isSaidByChoice =
        parameter.kind == ParameterKind::choice && parameter.form != RecipeForm::option;
    if (parameter.form == RecipeForm::phrase || isSaidByChoice)
        return {};
    const QString word = toQString(parameter.word);
    return parameter.form == RecipeForm::option ? word + "=" : word;
}

QString page() {
    RecipeVocabulary vocabulary;
    QString html = "<h1><a name=\"recipe-words\"></a>" + translated("Recipe words") +
                   "</h1><p><a href=\"#recipes\">" + translated("How recipes are written") + "</a></p>";
    for (const std::string_view verb : vocabulary.verbs())
        html += sectionOfVerb(verb, vocabulary);
    return html + synonymsOfWords();
}

} // namespace tavrin::recipeReference
