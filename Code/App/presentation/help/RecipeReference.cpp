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

QString place(std::string_view label) { return "<i>" + escaped(label) + "</i>"; }

QString inBrackets(const QString& text, bool mayBeLeftOut) { return mayBeLeftOut ? "[" + text + "]" : text; }

/// Rows of one word are the ways in which the phrase can go on.
QStringList phrases(const RecipeAction& action) {
    QStringList all;
    std::string_view last;
    for (const ParameterDescription& row : action.rows()) {
        if (row.form != RecipeForm::phrase)
            continue;
        if (row.word != last)
            all.append(inBrackets(code(row.word) + " " + place(row.label), row.mayBeLeftOut));
        last = row.word;
    }
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
            parts.append(inBrackets(place(row->label), row->mayBeLeftOut));
    if (!action.dateRows().empty())
        parts.append(inBrackets("<i>" + translated("Pattern") + "</i>", true));
    parts += phrases(action);
    if (verb.place == Place::start || verb.place == Place::end)
        parts.append(code(wordOf(verb.place)));
    return parts.join(" ");
}

QString word(const ParameterDescription& parameter) {
    if (parameter.word.empty() || parameter.form == RecipeForm::phrase)
        return {};
    return toQString(parameter.word) + (parameter.form == RecipeForm::option ? "=" : "");
}

QString page() {
    RecipeVocabulary vocabulary;
    QString html = "<h1><a name=\"recipe-words\"></a>" + translated("Recipe words") + "</h1>";
    for (const std::string_view verb : vocabulary.verbs())
        html += sectionOfVerb(verb, vocabulary);
    return html + synonymsOfWords();
}

} // namespace tavrin::recipeReference
