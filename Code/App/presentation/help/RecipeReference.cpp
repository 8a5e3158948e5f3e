#include "presentation/help/RecipeReference.h"

#include "documents/recipe/RecipeUsage.h"
#include "documents/recipe/RecipeWords.h"
#include "presentation/QtText.h"

#include <QCoreApplication>
#include <QStringList>

namespace tavrin::recipeReference {

namespace {

QString translated(const char* text) { return QCoreApplication::translate("RecipeReference", text); }

QString escaped(std::string_view text) { return toQString(text).toHtmlEscaped(); }

QString code(std::string_view text) { return "<code>" + escaped(text) + "</code>"; }

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
    QString html;
    for (const auto& [kind, shown, followsBlank] : recipeUsage(action)) {
        html += followsBlank ? " " : "";
        if (kind == RecipeUsagePart::Kind::word)
            html += code(shown);
        else if (kind == RecipeUsagePart::Kind::text)
            html += "<i>\"" + escaped(shown) + "\"</i>";
        else if (kind == RecipeUsagePart::Kind::number)
            html += "<i>" + escaped(shown) + "</i>";
        else
            html += toQString(shown);
    }
    return html;
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
