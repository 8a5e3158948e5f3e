#include "actions/ActionFamilies.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "presentation/MainWindow.h"
#include "presentation/WindowFixture.h"
#include "shell/MainController.h"

#include <QMap>
#include <QRegularExpression>
#include <QStringList>

namespace tavrin::test {

namespace {

class Keyboard : public WindowFixture {
  protected:
    /// What the Tab key leads to, in its order, from the search on.
    QList<QWidget*> tabStops() {
        QList<QWidget*> stops;
        QWidget* const first = find("findAction");
        QWidget* widget = first;
        do {
            if (widget->isVisible() && (widget->focusPolicy() & Qt::TabFocus) && !widget->focusProxy())
                stops.append(widget);
            widget = widget->nextInFocusChain();
        } while (widget != first);
        return stops;
    }

    /// The labels by the access key that they have.
    QMap<QString, QStringList> accessKeys() {
        static const QRegularExpression marked("(?<!&)&(\\w)");
        QMap<QString, QStringList> labels;
        for (const QWidget* widget : application->window().findChildren<QWidget*>()) {
            const QString text = widget->property("text").toString();
            const auto match = marked.match(text);
            if (widget->isVisible() && match.hasMatch())
                labels[match.captured(1).toLower()].append(text);
        }
        return labels;
    }
};

} // namespace

TEST_F(Keyboard, ReachesEverythingInTheOrderOfReading) {
    start({makeFile("a.txt")});
    chooseAction("Rename from list"); // the panel is not the first
    chooseAction("Insert number at position");
    const char* const inOrder[] = {"findAction",
                                   "categoryPopUpButton",
                                   "actionPopUpButton",
                                   "startValue",
                                   "padding",
                                   "position",
                                   "mode",
                                   "sortingMode",
                                   "sortEachFolderSeparately",
                                   "fragment3",
                                   "discloseAdvancedOptions",
                                   "addButton",
                                   "showButton",
                                   "previewTableView",
                                   "manualButton",
                                   "okButton"};
    const QList<QWidget*> stops = tabStops();
    qsizetype last = -1;
    for (const char* name : inOrder) {
        const qsizetype place = stops.indexOf(find(name));
        EXPECT_GT(place, last) << name;
        last = place;
    }
}

TEST_F(Keyboard, NamesEveryStopAndGivesNoKeyTwice) {
    start({makeFile("a.txt")});
    application->controller().globalSettings().setValue(1, "discloseAdvancedOptions");
    for (const ActionEntry& entry : allActions()) {
        SCOPED_TRACE(entry.name);
        chooseAction(std::string(entry.name));
        for (const QWidget* stop : tabStops())
            EXPECT_FALSE(stop->accessibleName().isEmpty() && stop->property("text").toString().isEmpty())
                << stop->metaObject()->className() << ' ' << stop->objectName().toStdString();
        const auto keys = accessKeys();
        for (auto key = keys.begin(); key != keys.end(); ++key)
            EXPECT_EQ(key->size(), 1) << key->join(" | ").toStdString();
    }
}

} // namespace tavrin::test
