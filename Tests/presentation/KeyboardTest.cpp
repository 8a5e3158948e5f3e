#include "actions/ActionFamilies.h"
#include "presentation/WindowFixture.h"

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
    std::map<QString, QStringList> accessKeys() {
        static const QRegularExpression marked("(?<!&)&(\\w)");
        std::map<QString, QStringList> labels;
        for (const QWidget* widget : application->window().findChildren<QWidget*>()) {
            const QString text = widget->property("text").toString();
            if (const auto match = marked.match(text); widget->isVisible() && match.hasMatch())
                labels[match.captured(1).toLower()].append(text);
        }
        return labels;
    }
};

TEST_F(Keyboard, ReachesEverythingInTheOrderOfReading) {
    start({makeFile("a.txt")});
    chooseAction("Rename from list"); // the panel is not the first
    chooseAction("Insert number at position");
    const QList<QWidget*> stops = tabStops();
    qsizetype last = -1;
    for (const char* name :
         {"findAction", "categoryPopUpButton", "actionPopUpButton", "startValue", "padding", "position",
          "mode", "sortingMode", "sortEachFolderSeparately", "fragment3", "discloseAdvancedOptions",
          "addButton", "showButton", "previewTableView", "manualButton", "okButton"}) {
        const qsizetype place = stops.indexOf(find(name));
        EXPECT_GT(place, last) << name;
        last = place;
    }
}

TEST_F(Keyboard, NamesEveryStopAndGivesNoKeyTwice) {
    start({makeFile("a.txt")});
    set("discloseAdvancedOptions", 1);
    for (const ActionEntry& entry : allActions()) {
        SCOPED_TRACE(entry.name);
        chooseAction(std::string(entry.name));
        for (const QWidget* stop : tabStops())
            EXPECT_FALSE(stop->accessibleName().isEmpty() && stop->property("text").toString().isEmpty())
                << stop->metaObject()->className() << ' ' << stop->objectName().toStdString();
        for (const auto& [key, labels] : accessKeys())
            EXPECT_EQ(labels.size(), 1) << labels.join(" | ").toStdString();
    }
}

} // namespace
} // namespace tavrin::test
