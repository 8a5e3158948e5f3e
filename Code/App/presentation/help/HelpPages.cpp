#include "presentation/help/HelpPages.h"

#include "actions/ActionList.h"
#include "actions/BaseRenameAction.h"
#include "documents/recipe/RecipeWords.h"
#include "platform/desktop/ResourceFolder.h"
#include "presentation/QtText.h"
#include "presentation/help/RecipeReference.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTextDocumentFragment>
#include <algorithm>

namespace tavrin {

namespace {

QString translated(const char* text) { return QCoreApplication::translate("HelpPages", text); }

/// Of recipes.
QString wordInBrackets(const QString& word) {
    return word.isEmpty() ? QString() : " (<code>" + word.toHtmlEscaped() + "</code>)";
}

QString parameterRow(const ParameterDescription& parameter) {
    QStringList choices;
    if (parameter.kind == ParameterKind::choice)
        for (const ParameterChoice& choice : parameter.choices)
            choices.append(toQString(choice.label).toHtmlEscaped() +
                           wordInBrackets(toQString(wordOf(parameter, choice))));
    const QString list = choices.isEmpty() ? QString() : ": " + choices.join(", ");
    return "<li><b>" + toQString(parameter.label).toHtmlEscaped() + "</b>" +
           wordInBrackets(recipeReference::word(parameter)) + list + "</li>";
}

QString exampleRow(const ActionExample& example) {
    return "<p>" + toQString(example.before).toHtmlEscaped() + " → <b>" +
           toQString(example.after).toHtmlEscaped() + "</b></p>";
}

QString actionSection(ActionList& list, std::int32_t index) {
    const std::string name = list.nameForPopUpIndex(index);
    const auto action = list.newActionForName(name, ActionUse::privateRun);
    QString html = QString("<h3><a name=\"action:%1\"></a>%2</h3>")
                       .arg(toQString(std::string_view(name)).toHtmlEscaped(),
                            toQString(list.popUpMenuItemStringForName(name)).toHtmlEscaped());
    html += "<p>" + translated("In recipes:") + " " +
            recipeReference::beginning(RecipeAction(*list.entryForName(name))) + "</p>";
    QString rows;
    for (const ParameterDescription& parameter : action->parameters())
        if (action->hasUseFor(parameter) && (!parameter.isHidden || parameter.form == RecipeForm::part))
            rows += parameterRow(parameter);
    html += "<ul>" + rows + "</ul>";
    for (const ActionExample& example : list.entryForName(name)->examples)
        html += exampleRow(example);
    const QString anchor = toQString(action->helpAnchor());
    if (!anchor.isEmpty())
        html += QString("<p><a href=\"#%1\">%2</a></p>").arg(anchor, translated("More about this action"));
    return html;
}

} // namespace

void HelpPages::load() {
    pages.clear();
    QDir folder(QString::fromStdString(resourcePath("help")), "*.html", QDir::Name, QDir::Files);
    for (const QString& name : folder.entryList()) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            addPage(QString::fromUtf8(file.readAll()));
    }
    addActionReference();
    addPage(recipeReference::page());
}

void HelpPages::addPage(const QString& html) {
    static const QRegularExpression heading("<h1[^>]*>(.*?)</h1>");
    const QString title = QTextDocumentFragment::fromHtml(heading.match(html).captured(1)).toPlainText();
    pages.push_back({title, html, QTextDocumentFragment::fromHtml(html).toPlainText()});
}

void HelpPages::addActionReference() {
    ActionList& list = ActionList::sharedActionList();
    QString html = "<h1>" + translated("All actions") + "</h1>";
    std::vector<std::u16string> categories = list.categoryPopUpMenuItems();
    std::erase(categories, u"");
    const auto& mapping = list.categoryToActionMapping();
    for (std::size_t category = 0; category < mapping.size() && category < categories.size(); ++category) {
        html += "<h2>" + toQString(categories[category]).toHtmlEscaped() + "</h2>";
        for (const std::int32_t index : mapping[category])
            if (!list.nameForPopUpIndex(index).empty())
                html += actionSection(list, index);
    }
    addPage(html);
}

bool HelpPages::contains(std::size_t page, const QString& words) const {
    const Page& each = pages.at(page);
    return std::ranges::all_of(words.split(' ', Qt::SkipEmptyParts), [&](const QString& word) {
        return each.title.contains(word, Qt::CaseInsensitive) ||
               each.text.contains(word, Qt::CaseInsensitive);
    });
}

std::optional<std::size_t> HelpPages::pageOfAnchor(const QString& anchor) const {
    if (anchor.isEmpty())
        return std::nullopt;
    const auto found = std::ranges::find_if(pages, [&](const Page& page) {
        return page.html.contains("name=\"" + anchor.toHtmlEscaped() + '"');
    });
    return found == pages.end() ? std::nullopt
                                : std::optional(static_cast<std::size_t>(found - pages.begin()));
}

} // namespace tavrin
