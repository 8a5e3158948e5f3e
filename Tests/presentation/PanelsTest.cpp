#include "actions/ActionFamilies.h"
#include "actions/ActionList.h"
#include "actions/BaseRenameAction.h"
#include "presentation/WindowFixture.h"
#include "presentation/settings/PanelRows.h"

namespace tavrin::test {

namespace {

class Panels : public WindowFixture {
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

    /// Every stop has a name, and no access key is given twice.
    void expectNamesAndKeys() {
        for (const QWidget* stop : tabStops())
            EXPECT_FALSE(stop->accessibleName().isEmpty() && stop->property("text").toString().isEmpty())
                << stop->metaObject()->className() << ' ' << stop->objectName().toStdString();
        const QRegularExpression marked("(?<!&)&(\\w)");
        std::set<QString> keys;
        for (const QWidget* widget : application->window().findChildren<QWidget*>()) {
            const QString text = widget->property("text").toString();
            if (const auto match = marked.match(text); widget->isVisible() && match.hasMatch()) {
                EXPECT_TRUE(keys.insert(match.captured(1).toLower()).second) << text.toStdString();
            }
        }
    }

    /// Gives a control a second value as a user would, and tells which value the parameter should then have.
    PropertyValue change(QWidget* control, const ParameterDescription& parameter) {
        QWidget* field = dynamic_cast<QLineEdit*>(control);
        if (!field)
            field = control->findChild<QTextEdit*>();
        if (field) {
            field->setFocus();
            QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
            const bool isOne = parameter.kind == ParameterKind::character;
            QTest::keyClicks(field, isOne ? "QX" : "Q");
            EXPECT_TRUE(!isOne || field->property("text") == "Q");
            return u"Q";
        }
        if (auto* spin = dynamic_cast<QSpinBox*>(control)) {
            const bool isUp = spin->value() < spin->maximum();
            const int wanted = spin->value() + (isUp ? 1 : -1);
            QTest::keyClick(spin, isUp ? Qt::Key_Up : Qt::Key_Down);
            return wanted - parameter.shownOffset;
        }
        if (auto* check = dynamic_cast<QCheckBox*>(control)) {
            const bool wasOn = check->isChecked();
            QTest::keyClick(check, Qt::Key_Space);
            return wasOn ? 0 : 1;
        }
        if (auto* box = dynamic_cast<QComboBox*>(control)) {
            const bool isDown = box->currentIndex() == 0;
            const int row = box->currentIndex() + (isDown ? 1 : -1);
            QTest::keyClick(box, isDown ? Qt::Key_Down : Qt::Key_Up);
            return box->itemData(row).toInt();
        }
        if (auto* order = control->findChild<QComboBox*>("separatorModeOrder")) {
            QTest::keyClick(order, Qt::Key_Down);
            return 6;
        }
        ADD_FAILURE() << "no way to change " << parameter.key;
        return 0;
    }
};

// Every control of every panel: what is entered is stored, and what changes elsewhere shows at once. A
// parameter whose row was misspelt is seen here, too.
TEST_F(Panels, ShowAndStoreEveryParameterOnce) {
    start({makeFile("a.txt")});
    set("discloseAdvancedOptions", 1);
    for (const ActionEntry& entry : allActions()) {
        SCOPED_TRACE(entry.name);
        chooseAction(std::string(entry.name));
        expectNamesAndKeys();
        std::multiset<std::string_view> shown;
        for (const PanelRow& row : panelRowsOf(currentAction())) {
            const ParameterDescription& first = row.first();
            EXPECT_TRUE(first.besideKey.empty()) << first.key;
            for (const ParameterDescription* parameter : row.parameters) {
                SCOPED_TRACE(parameter->key);
                shown.insert(parameter->key);
                if (parameter->kind == ParameterKind::file || parameter->kind == ParameterKind::status)
                    continue;
                if (!first.shownWhenKey.empty())
                    currentAction().setValue(first.shownWhenValue, std::string(first.shownWhenKey));
                const std::string key(parameter->key);
                auto* control = find(key.c_str());
                EXPECT_TRUE(control->isVisible());
                EXPECT_FALSE(control->accessibleName().isEmpty());
                const QMetaProperty content = control->metaObject()->userProperty();
                const QVariant shownFirst = content.read(control);
                const PropertyValue wanted = change(control, *parameter);
                EXPECT_EQ(currentAction().valueForKey(key), wanted);
                currentAction().setValue(propertyValue(parameter->whenNew), key);
                EXPECT_EQ(content.read(find(key.c_str())), shownFirst);
            }
        }
        for (const ParameterDescription& parameter : currentAction().parameters())
            EXPECT_EQ(shown.count(parameter.key), parameter.isHidden ? 0U : 1U) << parameter.key;
    }
}

TEST_F(Panels, AreReachedByTheTabKeyInTheOrderOfReading) {
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

TEST_F(Panels, ApplyToEachPartOfAName) {
    start({makeFile("Ab.Cd")});
    chooseAction("Make uppercase");
    const std::pair<const char*, const char*> cases[] = {
        {"fragment0", "AB.CD"}, {"fragment2", "Ab.CD"}, {"fragment1", "AB.Cd"}};
    for (const auto& [button, expected] : cases) {
        click(button);
        waitForNames({expected});
    }
}

TEST_F(Panels, FindActionsAsPeopleCallThem) {
    start();
    const std::pair<const char*, const char*> cases[] = {
        {"regex", "Replace"}, {"counter", "Number"},       {"strip", "Remove"},
        {"title", "Case"},    {"diacritics", "Case"},      {"id3", "Music"},
        {"taken", "Date"},    {"roman", "Roman numerals"}, {"windows", "Length & systems"},
        {"csv", "List file"}, {"Replace text", "Replace"}, {"capital", "Case"},
        {"zzzz", "Case"}};
    for (const auto& [typed, category] : cases) {
        type("findAction", typed);
        QTest::keyClick(find("findAction"), Qt::Key_Return);
        EXPECT_EQ(find<QComboBox>("categoryPopUpButton")->currentText(), category) << typed;
    }
}

TEST_F(Panels, TakeTagsByTypingAndByKeyAndMouse) {
    start();
    chooseAction("Rename from tag");
    type("patternField", "a<Year>b");
    EXPECT_EQ(currentAction().getParamString("pattern"), u"a<Year>b");
    auto* edit = find<QTextEdit>("patternField");
    EXPECT_EQ(edit->toPlainText(), QString("a%1b").arg(QChar(QChar::ObjectReplacementCharacter)));
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClick(edit, Qt::Key_Backspace);
    EXPECT_EQ(currentAction().getParamString("pattern"), u"a");
    auto* list = find<QTreeWidget>("tagList");
    list->setCurrentItem(list->topLevelItem(0));
    const QString tag = list->currentItem()->data(0, Qt::UserRole).toString();
    QTest::keyClick(list, Qt::Key_Return);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {},
                       list->visualItemRect(list->currentItem()).center());
    EXPECT_EQ(currentAction().getParamString("pattern"), ("a" + tag + tag).toStdU16String());
}

TEST_F(Panels, HaveWordsForWhatTheyMean) {
    start();
    const struct {
        const char* action;
        PropertyDictionary parameters;
        const char* words;
    } cases[] = {
        {"Add number to end", {{"startValue", 9}, {"stepValue", -1}, {"padding", 3}}, "009, 008, 007 …"},
        {"Add alphabetical sequence to end", {{"startValue", u"Y"}}, "Y, Z, BA …"},
        {"Reg Ex Replacement",
         {{"searchPattern", u"(a"}},
         "U_REGEX_MISMATCHED_PAREN at character 2 of the pattern"},
        {"Reg Ex Replacement", {{"searchPattern", u"(a)"}}, ""},
        {"Insert at position", {{"position", 0}, {"mode", 1}}, "at the end"},
        {"Insert at position", {{"position", 2}, {"mode", 0}}, "after 2 characters"},
    };
    for (const auto& [action, parameters, words] : cases) {
        chooseAction(action);
        for (const auto& [key, value] : parameters)
            currentAction().setValue(value, key);
        QString told;
        (void)QTest::qWaitFor([&] {
            told.clear();
            for (const NoteLabel* note : application->window().findChildren<NoteLabel*>())
                told += note->isVisible() ? note->text() : "";
            return told == words;
        });
        EXPECT_EQ(told.toStdString(), words);
    }
}

} // namespace

} // namespace tavrin::test
