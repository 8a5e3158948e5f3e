#include "actions/CompositeRenameAction.h"

#include "actions/ActionError.h"
#include "actions/CatalogueFixture.h"

namespace tavrin::test {

namespace {

using Change = RecordingObserver::Change;

PropertyDictionary step(const char16_t* name, PropertyDictionary parameters = {}) {
    return {{"action name", name}, {"action parameter list", std::move(parameters)}};
}

PropertyDictionary flatList(PropertyArray steps, int current = 0) {
    return {{"currentActionIndex", current}, {"composite actions array", std::move(steps)}};
}

class Composite : public CatalogueFixture {
  protected:
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const auto& each : composite.getActionDictionaryList())
            result.push_back(each->actionName());
        return result;
    }
    void makeThree(int current) {
        composite.setFlatParameterList(
            flatList({step(u"Add to end", {{"string", u"1"}}), step(u"Make uppercase", {{"active", 0}}),
                      step(u"Replace text", {{"searchTerm", u"a"}, {"replacementTerm", u"b"}})},
                     current));
    }

    CompositeRenameAction composite;
};

TEST_F(Composite, StartsWithOneStep) {
    EXPECT_EQ(names(), std::vector<std::string>{"Add to front"});
    EXPECT_EQ(composite.getCurrentActionIndexAsInt(), 0);
    composite.loadFromPreferences(); // nothing stored yet
    EXPECT_EQ(names(), std::vector<std::string>{"Produce numbered list"});
}

TEST_F(Composite, TravelsAsAFlatList) {
    makeThree(2);
    composite.saveToPreferences();
    const auto flat = composite.getFlatParameterList();
    const auto read = PropertyList::fromBytes(PropertyList::toXml(PropertyValue(flat)));
    ASSERT_TRUE(std::holds_alternative<PropertyValue>(read));

    CompositeRenameAction other;
    other.setFlatParameterList(*std::get<PropertyValue>(read).asDictionary());
    EXPECT_EQ(other.getFlatParameterList(), flat);
    EXPECT_EQ(other.actionAtIndex(1).getParamInt("active", 9), 0);
    EXPECT_EQ(other.getCurrentAction().actionName(), "Replace text");
    CompositeRenameAction third;
    third.loadFromPreferences();
    EXPECT_EQ(third.getFlatParameterList(), flat);
    // The copy is a copy.
    other.actionAtIndex(0).setValue(u"2", "string");
    EXPECT_EQ(composite.getFlatParameterList(), flat);
}

TEST_F(Composite, TakesOverWhatAFlatListHolds) {
    makeThree(99);
    EXPECT_EQ(composite.getCurrentActionIndexAsInt(), 2);
    EXPECT_EQ(composite.parameterList().at("currentActionIndex"), PropertyValue(99));
    makeThree(-3);
    EXPECT_EQ(composite.getCurrentActionIndexAsInt(), 0);

    const PropertyDictionary withoutSteps[] = {
        {}, {{"currentActionIndex", 1}}, flatList({}), {{"composite actions array", u"text"}}};
    for (const auto& list : withoutSteps) {
        makeThree(2);
        composite.setFlatParameterList(list);
        EXPECT_EQ(names(), std::vector<std::string>{"Produce numbered list"});
        EXPECT_EQ(composite.getCurrentActionIndexAsInt(), 0);
    }
}

TEST_F(Composite, KeepsItsStepsWhenAFlatListIsBad) {
    makeThree(1);
    const auto before = composite.getFlatParameterList();
    for (const PropertyValue& bad :
         {PropertyValue(step(u"no such action")), PropertyValue(7), PropertyValue(PropertyDictionary{})}) {
        EXPECT_THROW(composite.setFlatParameterList(flatList({step(u"Add to end"), bad})),
                     UnknownActionError);
        EXPECT_EQ(composite.getFlatParameterList(), before);
    }
    composite.setFlatParameterList(
        flatList({PropertyDictionary{{"action name", u"Add to end"}, {"action parameter list", 7}}}));
    EXPECT_EQ(names(), std::vector<std::string>{"Add to end"});
}

TEST_F(Composite, ClampsTheCurrentIndex) {
    makeThree(0);
    for (const auto& [set, expected] : {std::pair(1, 1), {-1, 0}, {3, 2}, {2147483647, 2}}) {
        composite.setValue(set, "currentActionIndex");
        EXPECT_EQ(composite.getCurrentActionIndexAsInt(), expected);
        EXPECT_EQ(composite.parameterList().at("currentActionIndex"), PropertyValue(expected));
    }
    EXPECT_THROW(composite.setValue(std::nullopt, "currentActionIndex"), ActionError);
    EXPECT_THROW((void)composite.actionAtIndex(3), ActionError);
}

TEST_F(Composite, ReplacesTheActionOfAStep) {
    makeThree(0);
    composite.getCurrentAction().setParameterList(
        {{"string", u"mine"}, {"fragmentSelection", 3}, {"active", 0}});
    const auto menuIndex = catalogue.popUpMenuIndexForName("Add to front").value();
    composite.setTransientActionIndex(menuIndex);
    EXPECT_EQ(names().front(), "Add to front");
    EXPECT_EQ(composite.transientActionIndex(), menuIndex);
    const auto& action = composite.getCurrentAction();
    EXPECT_EQ(action.getParamInt("fragmentSelection", 9), 3);
    EXPECT_EQ(action.getParamInt("active", 9), 0);
    EXPECT_EQ(action.getParamString("string"), u"");
    // Coming back finds the parameters again.
    composite.setTransientActionIndex(catalogue.popUpMenuIndexForName("Add to end").value());
    EXPECT_EQ(composite.getCurrentAction().getParamString("string"), u"mine");

    EXPECT_THROW(composite.setTransientActionIndex(100000), UnknownActionError);
    EXPECT_EQ(names().front(), "Add to end");
}

TEST_F(Composite, ChoosesWithinACategory) {
    makeThree(2);
    EXPECT_EQ(composite.categoryItem(), 0);
    composite.setCategoryItem(2);
    EXPECT_EQ(composite.getCurrentAction().actionName(), "Replace at front");
    EXPECT_EQ(composite.categoryItem(), 2);
    composite.setValue(1, "categoryItem");
    EXPECT_EQ(composite.getCurrentAction().actionName(), "Replace characters");
}

TEST_F(Composite, TellsOfWhatFollowsFromAChange) {
    makeThree(0);
    RecordingObserver observer;
    std::vector<ActionObservation> observations;
    for (const auto* key :
         {"currentActionIndex", "actionList", "transientActionIndex", "categoryItem", "fragmentSelection"})
        observations.push_back(composite.registerObserver(observer, key));

    composite.actionAtIndex(1).setValue(2, "fragmentSelection");
    EXPECT_TRUE(observer.changes.empty());
    composite.setCurrentActionIndex(1);
    const auto end = catalogue.popUpMenuIndexForName("Add to end").value();
    const auto upper = catalogue.popUpMenuIndexForName("Make uppercase").value();
    EXPECT_THAT(observer.changes, ::testing::UnorderedElementsAre(Change{"currentActionIndex", 0, 1},
                                                                  Change{"transientActionIndex", end, upper},
                                                                  Change{"categoryItem", 1, 1},
                                                                  Change{"fragmentSelection", 1, 2}));
    observer.changes.clear();
    composite.setTransientActionIndex(end);
    EXPECT_THAT(observer.keys(), ::testing::UnorderedElementsAre("actionList", "transientActionIndex",
                                                                 "categoryItem", "fragmentSelection"));
    observer.changes.clear();
    composite.setFragmentSelection(3);
    EXPECT_EQ(observer.changes, (std::vector<Change>{{"fragmentSelection", 2, 3}}));
    EXPECT_EQ(composite.getFragmentSelectionModeAsInt(), 3);
    EXPECT_EQ(composite.parameterList().at("fragmentSelection"), PropertyValue(1));

    observer.changes.clear();
    composite.nudgeDown();
    EXPECT_THAT(observer.keys(), ::testing::Not(::testing::Contains("actionList")));
    EXPECT_THAT(observer.keys(), ::testing::Contains("currentActionIndex"));
    observer.changes.clear();
    makeThree(0);
    EXPECT_THAT(observer.keys(), ::testing::IsSupersetOf({"actionList", "currentActionIndex"}));
    observer.changes.clear();
    composite.setFlatParameterList(std::nullopt);
    EXPECT_TRUE(observer.changes.empty());
}

TEST_F(Composite, MovesInsertsAndRemovesSteps) {
    makeThree(1);
    composite.nudgeUp();
    EXPECT_EQ(names(), (std::vector<std::string>{"Make uppercase", "Add to end", "Replace text"}));
    EXPECT_EQ(composite.getCurrentActionIndexAsInt(), 0);
    composite.nudgeUp();
    EXPECT_EQ(names().front(), "Make uppercase");
    composite.nudgeDown();
    composite.nudgeDown();
    composite.nudgeDown();
    EXPECT_EQ(names(), (std::vector<std::string>{"Add to end", "Replace text", "Make uppercase"}));
    EXPECT_EQ(composite.getCurrentActionIndexAsInt(), 2);

    composite.insertActionAtIndex(catalogue.newActionForName("Remove text"), 3);
    EXPECT_EQ(names().back(), "Remove text");
    EXPECT_EQ(composite.removeActionAtIndex(0)->actionName(), "Add to end");
    EXPECT_FALSE(composite.canClose());
    (void)composite.removeActionAtIndex(2);
    (void)composite.removeActionAtIndex(0);
    EXPECT_EQ(names(), std::vector<std::string>{"Make uppercase"});
    EXPECT_FALSE(composite.canClose()); // not active
    composite.getCurrentAction().setValue(2, "active");
    EXPECT_TRUE(composite.canClose());
    EXPECT_THROW((void)composite.removeActionAtIndex(0), ActionError);
    EXPECT_THROW(composite.insertActionAtIndex(nullptr, 0), ActionError);
    EXPECT_EQ(composite.count(), 1);
}

TEST_F(Composite, RunsItsActiveStepsInOrder) {
    makeThree(0);
    EXPECT_EQ(run(composite, u"banana.txt"), u"bbnbnb1.txt");
    composite.actionAtIndex(1).setValue(1, "active");
    EXPECT_EQ(run(composite, u"banana.txt"), u"BbNbNb1.txt");
    for (std::int32_t i = 0; i < composite.count(); ++i)
        composite.actionAtIndex(i).setValue(2, "active"); // only 1 is active
    EXPECT_EQ(run(composite, u"banana.txt"), u"banana.txt");
}

TEST_F(Composite, PreviewsOneItem) {
    struct Probe : BaseRenameAction {
        void processName(std::u16string_view fragment, std::u16string& result) override {
            if (item().preview)
                answer().regex.emplace()[5] = u"six"; // columns of any step stay
            result.append(fragment).append(u"!");
        }
    };
    for (const auto& [path, folder] : {std::pair("/folder/a:b", u"/folder"), {"/a", u"/"}}) {
        makeThree(0);
        composite.insertActionAtIndex(std::make_unique<Probe>(), 1);
        composite.setCurrentActionIndex(1);
        InputContext input;
        input.currentName = u"a.txt";
        PropertyDictionary preview;
        composite.addPreviewDataFor(path, preview, input);
        EXPECT_EQ(preview.at("oldName"), PropertyValue(u"a.txt"));
        EXPECT_EQ(preview.at("newName"), PropertyValue(u"b1!.txt"));
        EXPECT_EQ(preview.at("path"), PropertyValue(folder));
        EXPECT_EQ(preview.at("regex6"), PropertyValue(u"six"));
        EXPECT_FALSE(input.preview);
    }
}

} // namespace

} // namespace tavrin::test
