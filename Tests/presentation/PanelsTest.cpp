#include "actions/ActionFamilies.h"
#include "actions/ActionList.h"
#include "actions/BaseRenameAction.h"
#include "presentation/WindowFixture.h"
#include "presentation/settings/PanelRows.h"
#include "support/text/Text.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QTest>
#include <QTextEdit>
#include <QTreeWidget>
#include <algorithm>
#include <set>

namespace tavrin::test {

namespace {

std::unique_ptr<BaseRenameAction> makeAction(std::string_view name) {
    const auto entries = allActions();
    return std::ranges::find(entries, name, &ActionEntry::name)->make();
}

class Panels : public WindowFixture {
  protected:
    /// Gives a control a second value as a user would, and tells which value the parameter should then have.
    PropertyValue change(QWidget* control, const ParameterDescription& parameter) {
        if (auto* line = dynamic_cast<QLineEdit*>(control)) {
            line->setFocus();
            line->selectAll();
            QTest::keyClicks(line, "Q");
            return u"Q";
        }
        if (auto* spin = dynamic_cast<QSpinBox*>(control)) {
            const int wanted = spin->value() == spin->maximum() ? spin->value() - 1 : spin->value() + 1;
            QTest::keyClick(spin, wanted > spin->value() ? Qt::Key_Up : Qt::Key_Down);
            return wanted - parameter.shownOffset;
        }
        if (auto* check = dynamic_cast<QCheckBox*>(control)) {
            const bool wasOn = check->isChecked();
            QTest::keyClick(check, Qt::Key_Space);
            return wasOn ? 0 : 1;
        }
        if (auto* box = dynamic_cast<QComboBox*>(control)) {
            const int row =
                box->currentIndex() == box->count() - 1 ? box->currentIndex() - 1 : box->currentIndex() + 1;
            QTest::keyClick(box, row > box->currentIndex() ? Qt::Key_Down : Qt::Key_Up);
            return box->itemData(row).toInt();
        }
        if (auto* edit = control->findChild<QTextEdit*>()) {
            edit->setFocus();
            QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClicks(edit, "Q<Year>");
            return u"Q<Year>";
        }
        if (auto* order = control->findChild<QComboBox*>("separatorModeOrder")) {
            QTest::keyClick(order, Qt::Key_Down);
            return 6;
        }
        ADD_FAILURE() << "no way to change " << parameter.key;
        return 0;
    }

    [[nodiscard]] static bool isShown(const ParameterDescription& parameter, const BaseRenameAction& action) {
        return parameter.shownWhenKey.empty() ||
               action.getParamInt(parameter.shownWhenKey, 0) == parameter.shownWhenValue;
    }
};

// Every control of every panel: what it shows is what the action has, what is entered is stored and shown
// again by a panel that is built anew, and what changes elsewhere shows at once.
TEST_F(Panels, ShowAndStoreEveryParameter) {
    start();
    for (const ActionEntry& entry : allActions()) {
        SCOPED_TRACE(entry.name);
        chooseAction(std::string(entry.name));
        for (const PanelRow& row : panelRowsOf(currentAction())) {
            for (const ParameterDescription* parameter : row.parameters) {
                if (parameter->kind == ParameterKind::file || parameter->kind == ParameterKind::status)
                    continue;
                SCOPED_TRACE(parameter->key);
                if (!isShown(row.first(), currentAction()))
                    currentAction().setValue(row.first().shownWhenValue,
                                             std::string(row.first().shownWhenKey));
                const std::string key(parameter->key);
                auto* control = find(key.c_str());
                ASSERT_NE(control, nullptr);
                EXPECT_TRUE(control->isVisible());
                EXPECT_FALSE(control->accessibleName().isEmpty());
                const PropertyValue wanted = change(control, *parameter);
                ASSERT_TRUE(currentAction().valueForKey(key));
                EXPECT_EQ(*currentAction().valueForKey(key), wanted);
                currentAction().setValue(propertyValue(parameter->whenNew), key);
                EXPECT_EQ(*currentAction().valueForKey(key), propertyValue(parameter->whenNew));
            }
        }
    }
}

TEST_F(Panels, LimitACharacterToOne) {
    start();
    chooseAction("Expand camel case");
    type("separator", "_-");
    EXPECT_EQ(currentAction().getParamString("separator"), u"_");
    EXPECT_EQ(find<QLineEdit>("separator")->text(), "_");
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

TEST_F(Panels, FindActionsByWords) {
    start();
    type("findAction", "capital");
    QTest::keyClick(find("findAction"), Qt::Key_Return);
    EXPECT_NE(currentAction().actionName(), "Produce numbered list");
    EXPECT_EQ(find<QComboBox>("categoryPopUpButton")->currentText(), "Case");
}

TEST_F(Panels, RecognizeTagsWhileTyping) {
    start();
    chooseAction("Rename from tag");
    type("patternField", "a<Year>b");
    EXPECT_EQ(currentAction().getParamString("pattern"), u"a<Year>b");
    auto* edit = find<QTextEdit>("patternField");
    EXPECT_EQ(edit->toPlainText(), QString("a%1b").arg(QChar(QChar::ObjectReplacementCharacter)));
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClick(edit, Qt::Key_Backspace);
    EXPECT_EQ(currentAction().getParamString("pattern"), u"a");
}

TEST_F(Panels, PutATagIntoThePatternByKeyAndMouse) {
    start();
    chooseAction("Rename from tag");
    type("patternField", "a");
    auto* list = find<QTreeWidget>("tagList");
    list->setCurrentItem(list->topLevelItem(0));
    const QString tag = list->currentItem()->data(0, Qt::UserRole).toString();
    QTest::keyClick(list, Qt::Key_Return);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {},
                       list->visualItemRect(list->currentItem()).center());
    EXPECT_EQ(currentAction().getParamString("pattern"), ("a" + tag + tag).toStdU16String());
}

// A parameter whose row was misspelt is seen here.
TEST(PanelRows, ShowEveryParameterOnce) {
    for (const ActionEntry& entry : allActions()) {
        const auto action = entry.make();
        std::multiset<std::string_view> shown;
        for (const PanelRow& row : panelRowsOf(*action)) {
            for (const ParameterDescription* parameter : row.parameters)
                shown.insert(parameter->key);
            EXPECT_TRUE(row.first().besideKey.empty()) << entry.name << ": " << row.first().key;
        }
        for (const ParameterDescription& parameter : action->parameters())
            EXPECT_EQ(shown.count(parameter.key), parameter.isHidden ? 0U : 1U)
                << entry.name << ": " << parameter.key;
    }
}

TEST(PanelRows, HaveWordsForWhatTheyMean) {
    const auto numbers = makeAction("Add number to end");
    numbers->setParameterList({{"startValue", 9}, {"stepValue", -1}, {"padding", 3}});
    numbers->prepare();
    EXPECT_EQ(numbers->firstValues(), (std::vector<std::u16string>{u"009", u"008", u"007"}));
    const auto letters = makeAction("Add alphabetical sequence to end");
    letters->setParameterList({{"startValue", u"Y"}});
    letters->prepare();
    EXPECT_EQ(letters->firstValues(), (std::vector<std::u16string>{u"Y", u"Z", u"BA"}));
    const auto removal = makeAction("Remove text");
    EXPECT_EQ(removal->explanation(), u"");
    removal->setParameterList({{"searchTerm", u"x"}, {"replacementMode", 8}, {"ignoreCase", 0}});
    EXPECT_EQ(removal->explanation(), u"Remove only the second to last occurence of “x”.");
    const auto expression = makeAction("Reg Ex Replacement");
    for (const auto& [pattern, fails] : {std::pair{u"", false}, {u"(a", true}, {u"(a)", false}}) {
        expression->setParameterList({{"searchPattern", std::u16string(pattern)}});
        expression->prepare();
        EXPECT_EQ(!expression->failure().empty(), fails) << text::toUtf8(pattern);
    }
}

} // namespace

} // namespace tavrin::test
