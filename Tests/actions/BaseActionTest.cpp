#include "actions/ActionError.h"
#include "actions/CatalogueFixture.h"
#include "actions/CompositeRenameAction.h"
#include "actions/SortBasedAction.h"
#include "common/Recipes.h"

namespace tavrin::test {
namespace {

using Actions = CatalogueFixture;
using Change = RecordingObserver::Change;

TEST_F(Actions, TranslateOldKeys) {
    const std::pair<const char*, const char*> keys[] = {{"fragment selection", "fragmentSelection"},
                                                        {"plain", "plain"},
                                                        {"with  two", "withTwo"},
                                                        {"ignore case 0", "ignoreCase0"},
                                                        {"trailing ", "trailing"},
                                                        {" first", "First"}};
    for (const auto& [old, present] : keys)
        EXPECT_EQ(BaseAction::internalKeyToExternalKey(old), present);
    for (const auto& [old, present] : {keys[0], {"regex 1", "regex1"}, {"as it Is", "as it Is"}})
        EXPECT_EQ(BaseAction::externalKeyToInternalKey(present), old);
}

TEST_F(Actions, LoadParametersOverPresentOnes) {
    const auto action = make("Add to front", {{"string", u"kept"}});
    action->setParameterList({{"fragment selection", 2}, {"unknown", 7}});
    EXPECT_EQ(action->parameterList(), (PropertyDictionary{{"active", 1},
                                                           {"string", u"kept"},
                                                           {"fragmentSelection", 2},
                                                           {"fragment selection", 2},
                                                           {"unknown", 7}}));
    action->setParameterList({{"fragment selection", 3}, {"fragmentSelection", 0}});
    EXPECT_EQ(action->getParamInt("fragmentSelection", 9), 0);
    // A text that XML cannot hold comes back from a property list as data.
    const auto loaded = make("Add to front", storedAndRead({{"string", u"\x0001"}}));
    EXPECT_EQ(run(*loaded, u"."), u"\x0001.");
}

TEST_F(Actions, ReadValuesLooselyAndKeepTheirType) {
    const auto action =
        make("Add to front", {{"string", 12}, {"number", u" -7x"}, {"list", PropertyArray{1}}});
    EXPECT_EQ(action->getParamString("string"), u"12");
    EXPECT_EQ(action->getParamInt("number", 0), -7);
    EXPECT_EQ(action->getParamString("absent"), u"");
    EXPECT_EQ(action->getParamInt("absent", 5), 5);
    EXPECT_EQ(run(*action, u"a.txt"), u"12a.txt");
    const std::pair<const char*, std::optional<PropertyValue>> emptied[] = {
        {"number", u""}, {"fragmentSelection", 0}, {"absent", std::nullopt}, {"list", PropertyArray{1}}};
    for (const auto& [key, value] : emptied) {
        action->setValue(std::nullopt, key);
        EXPECT_EQ(action->valueForKey(key), value);
    }
}

TEST_F(Actions, TellObserversOfEveryValueTheyHad) {
    const auto action = make("Add to front");
    RecordingObserver observer;
    auto observation = action->registerObserverForAllValues(observer);
    action->setValue(u"a", "string");
    action->setValue(1, "entersLater");
    EXPECT_EQ(observer.changes, (std::vector<Change>{{"string", u"", u"a"}}));
    observer.changes.clear();
    action->setParameterList({{"string", u"b"}});
    EXPECT_EQ(observer.changes,
              (std::vector<Change>{{"active", 1, 1}, {"fragmentSelection", 1, 1}, {"string", u"a", u"b"}}));
}

TEST_F(Actions, SurviveAnObserverThatStopsWhileToldOfAChange) {
    const auto action = make("Add to front");
    RecordingObserver leaving, other;
    auto own = action->registerObserverForAllValues(leaving);
    auto others = action->registerObserverForAllValues(other);
    leaving.then = [&] {
        own.reset();
        others.reset();
    };
    action->setValue(u"a", "string");
    action->setValue(u"b", "string");
    EXPECT_EQ(leaving.changes.size(), 1U);
    EXPECT_TRUE(other.changes.empty());
}

TEST_F(Actions, CutACharacterParameterInTheParametersToo) {
    const auto action = make("Expand camel case", {{"separator", u"_\u0301-"}});
    RecordingObserver observer;
    auto observation = action->registerObserverForAllValues(observer);
    for (int use = 0; use < 2; ++use) {
        EXPECT_EQ(run(*action, u"fooBar"), u"foo_\u0301Bar");
        EXPECT_EQ(observer.changes, (std::vector<Change>{{"separator", u"_\u0301-", u"_\u0301"}}));
    }
}

TEST_F(Actions, CheckTypedValues) {
    const struct {
        const char* action;
        const char* key;
        PropertyValue typed, stored;
    } cases[] = {
        {"Replace characters", "with0", u"abc", u"a"},
        {"Replace characters", "with3", u"e\u0301x", u"e\u0301"},
        {"Replace characters", "with1", u"\xD83D\xDE00", u"\xD83D\xDE00"},
        {"Replace characters", "with0", 12, 12},
        {"Replace characters", "replaceCharacters0", u"abc", u"abc"},
        {"Add alphabetical sequence to end", "startValue", u"aa", u"A"},
        {"Add alphabetical sequence to end", "startValue", u"", u"A"},
        {"Add alphabetical sequence to end", "startValue", u"b~", u"BZ"},
        {"Add alphabetical sequence to end", "startValue", u"abcdefg", u"BCDEF"},
        {"Add alphabetical sequence to end", "startValue", 12, u"A"},
        {"Add alphabetical sequence to end", "startValue", u"\u00df", u"SS"},
        {"Add alphabetical sequence to end", "startValue", u"zzzzzzz", u"ZZZZZZ"},
        {"Add alphabetical sequence to end", "suffix", u"aa", u"aa"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(make(each.action)->validatedValue(each.typed, each.key), each.stored) << each.key;
}

TEST_F(Actions, HideParametersOfTheirFamilyThatAreOfNoUse) {
    for (const auto& [name, key] : {std::pair("Remove text", "replacementTerm"),
                                    {"Remove characters", "with3"},
                                    {"Remove text at end", "with"},
                                    {"Convert to Mac OS 9", "smart"}}) {
        const auto action = make(name);
        const auto rows = action->parameters();
        const auto row = std::ranges::find(rows, key, &ParameterDescription::key);
        EXPECT_TRUE(row != rows.end() && row->isHidden) << name;
    }
}

TEST_F(Actions, TellWhatTheyDo) {
    const auto action = make("Replace text");
    EXPECT_EQ(action->explanation(), u"");
    const std::pair<PropertyDictionary, const char*> cases[] = {
        {{{"searchTerm", u"a"}}, "Replace all occurences of “a” while ignoring case."},
        {{{"replacementMode", 10}, {"ignoreCase", 2}}, "Replace only the forth to last occurence of “a”."},
        {{{"replacementMode", 13}}, "Replace “a”."}};
    for (const auto& [parameters, expected] : cases) {
        action->setParameterList(parameters);
        EXPECT_EQ(text::toUtf8(action->explanation()), expected);
    }
    EXPECT_EQ(make("Remove vowels")->explanation(), u"Removes a, e, i, o, u and y.");
}

TEST_F(Actions, GiveUpAStoredManualOrderUnlessItIsKeptByHand) {
    const auto made = make("Produce numbered list");
    auto& action = dynamic_cast<SortBasedAction&>(*made);
    EXPECT_EQ(action.getSortingMode(), 10);
    RecordingObserver observer;
    auto observation = action.registerObserver(observer, "usingManualSorting");
    action.setParameterList({{"sortingMode", 13}, {"sortingMode2", 2}});
    EXPECT_EQ(action.getSortingMode(), 10);
    EXPECT_EQ(action.getSortingMode2(), 2);

    catalogue.setAutomaticSorting(false);
    action.setParameterList({{"sortingMode", 13}});
    ASSERT_FALSE(observer.changes.empty());
    EXPECT_EQ(observer.changes.back(), (Change{"usingManualSorting", false, true}));
    action.deactivateManualSortingIfNecessary();
    EXPECT_EQ(action.getSortingMode(), 10);
    action.setValue(4, "sortingMode");
    action.deactivateManualSortingIfNecessary();
    EXPECT_EQ(action.getSortingMode(), 4);
    action.activateManualSorting();
    EXPECT_EQ(action.valueForKey("usingManualSorting"), PropertyValue(true));
    for (const auto& [value, isGlobal] : {std::pair(0, true), {1, false}, {2, true}}) {
        made->setValue(value, "sortEachFolderSeparately");
        EXPECT_EQ(action.shouldUseGlobalSorting(), isGlobal) << value;
    }
}

using Change = RecordingObserver::Change;

PropertyDictionary flatList(PropertyArray steps) { return {{"composite actions array", std::move(steps)}}; }

class Composite : public CatalogueFixture {
  protected:
    /// The names of the steps, the current one in brackets.
    [[nodiscard]] std::string steps() {
        std::string result;
        for (std::int32_t i = 0; i < composite.count(); ++i) {
            const auto& name = composite.actionAtIndex(i).actionName();
            result += i == composite.getCurrentActionIndexAsInt() ? "[" + name + "]" : name;
            result += i + 1 < composite.count() ? ", " : "";
        }
        return result;
    }
    void makeThree(int current) {
        auto list = chain({{"Add to end", {{"string", u"1"}}},
                           {"Make uppercase", {{"active", 0}}},
                           {"Replace text", {{"searchTerm", u"a"}, {"replacementTerm", u"b"}}}});
        list.insert_or_assign("currentActionIndex", current);
        composite.setFlatParameterList(list);
    }
    [[nodiscard]] std::int32_t inMenu(const std::string& name) const {
        return catalogue.popUpMenuIndexForName(name).value();
    }

    CompositeRenameAction composite;
};

TEST_F(Composite, TravelsAsAFlatList) {
    EXPECT_EQ(steps(), "[Add to front]");
    composite.loadFromPreferences(); // nothing stored yet
    EXPECT_EQ(steps(), "[Produce numbered list]");
    makeThree(2);
    composite.saveToPreferences();
    const auto flat = composite.getFlatParameterList();
    CompositeRenameAction copy, stored;
    copy.setFlatParameterList(storedAndRead(flat));
    stored.loadFromPreferences();
    EXPECT_EQ(stored.getFlatParameterList(), flat);
    EXPECT_EQ(copy.getFlatParameterList(), flat);
    EXPECT_EQ(copy.actionAtIndex(1).getParamInt("active", 9), 0);
    EXPECT_EQ(copy.getCurrentAction().actionName(), "Replace text");
    copy.actionAtIndex(0).setValue(u"2", "string");
    EXPECT_EQ(composite.getFlatParameterList(), flat);
}

TEST_F(Composite, TakesOverWhatAFlatListHolds) {
    for (const PropertyDictionary& withoutSteps :
         {{}, {{"currentActionIndex", 1}}, flatList({}), {{"composite actions array", u"text"}}}) {
        makeThree(2);
        composite.setFlatParameterList(withoutSteps);
        EXPECT_EQ(steps(), "[Produce numbered list]");
    }
    makeThree(1);
    const auto before = composite.getFlatParameterList();
    const PropertyDictionary good{{"action name", u"Add to end"}, {"action parameter list", 7}};
    const PropertyDictionary unknown{{"action name", u"no such action"}};
    for (const PropertyValue& bad :
         {PropertyValue(unknown), PropertyValue(7), PropertyValue(PropertyDictionary{})}) {
        EXPECT_THROW(composite.setFlatParameterList(flatList({good, bad})), UnknownActionError);
        EXPECT_EQ(composite.getFlatParameterList(), before);
    }
    composite.setFlatParameterList(flatList({good}));
    EXPECT_EQ(steps(), "[Add to end]");
}

TEST_F(Composite, ClampsTheCurrentIndex) {
    for (const auto& [set, expected] : {std::pair(1, 1), {-1, 0}, {3, 2}, {2147483647, 2}}) {
        makeThree(set);
        EXPECT_EQ(composite.getCurrentActionIndexAsInt(), expected);
        EXPECT_EQ(composite.parameterList().at("currentActionIndex"), PropertyValue(set));
        makeThree(0);
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
    composite.setTransientActionIndex(inMenu("Add to front"));
    EXPECT_EQ(steps(), "[Add to front], Make uppercase, Replace text");
    EXPECT_EQ(composite.transientActionIndex(), inMenu("Add to front"));
    const PropertyDictionary kept{{"string", u""}, {"fragmentSelection", 3}, {"active", 0}};
    EXPECT_EQ(composite.getCurrentAction().parameterList(), kept);
    // Coming back finds the parameters again.
    composite.setTransientActionIndex(inMenu("Add to end"));
    EXPECT_EQ(composite.getCurrentAction().getParamString("string"), u"mine");
    EXPECT_THROW(composite.setTransientActionIndex(100000), UnknownActionError);
    EXPECT_EQ(steps(), "[Add to end], Make uppercase, Replace text");

    makeThree(2);
    EXPECT_EQ(composite.categoryItem(), 0);
    composite.setCategoryItem(2);
    EXPECT_EQ(steps(), "Add to end, Make uppercase, [Replace at front]");
    EXPECT_EQ(composite.categoryItem(), 2);
    composite.setValue(1, "categoryItem");
    EXPECT_EQ(steps(), "Add to end, Make uppercase, [Replace characters]");
}

TEST_F(Composite, TellsOfWhatFollowsFromAChange) {
    using namespace ::testing;
    makeThree(0);
    RecordingObserver observer;
    std::vector<ActionObservation> observations;
    for (const auto* key :
         {"currentActionIndex", "actionList", "transientActionIndex", "categoryItem", "fragmentSelection"})
        observations.push_back(composite.registerObserver(observer, key));
    const auto keysAfter = [&](auto change) {
        observer.changes.clear();
        change();
        return observer.keys();
    };

    EXPECT_THAT(keysAfter([&] { composite.actionAtIndex(1).setValue(2, "fragmentSelection"); }), IsEmpty());
    composite.setCurrentActionIndex(1);
    const auto end = inMenu("Add to end");
    EXPECT_THAT(observer.changes,
                UnorderedElementsAre(Change{"currentActionIndex", 0, 1},
                                     Change{"transientActionIndex", end, inMenu("Make uppercase")},
                                     Change{"categoryItem", 1, 1}, Change{"fragmentSelection", 1, 2}));
    EXPECT_THAT(
        keysAfter([&] { composite.setTransientActionIndex(end); }),
        UnorderedElementsAre("actionList", "transientActionIndex", "categoryItem", "fragmentSelection"));
    observer.changes.clear();
    composite.setFragmentSelection(3);
    EXPECT_EQ(observer.changes, (std::vector<Change>{{"fragmentSelection", 2, 3}}));
    EXPECT_EQ(composite.getFragmentSelectionModeAsInt(), 3);
    EXPECT_EQ(composite.parameterList().at("fragmentSelection"), PropertyValue(1));
    EXPECT_THAT(keysAfter([&] { composite.nudgeDown(); }),
                AllOf(Contains("currentActionIndex"), Not(Contains("actionList"))));
    EXPECT_THAT(keysAfter([&] { makeThree(0); }), IsSupersetOf({"actionList", "currentActionIndex"}));
    EXPECT_THAT(keysAfter([&] { composite.setFlatParameterList(std::nullopt); }), IsEmpty());
}

TEST_F(Composite, MovesInsertsAndRemovesSteps) {
    makeThree(1);
    for (const auto* expected :
         {"[Make uppercase], Add to end, Replace text", "[Make uppercase], Add to end, Replace text"}) {
        composite.nudgeUp();
        EXPECT_EQ(steps(), expected);
    }
    for (const auto* expected :
         {"Add to end, [Make uppercase], Replace text", "Add to end, Replace text, [Make uppercase]",
          "Add to end, Replace text, [Make uppercase]"}) {
        composite.nudgeDown();
        EXPECT_EQ(steps(), expected);
    }
    composite.insertActionAtIndex(make("Remove text"), 3);
    EXPECT_EQ(steps(), "Add to end, Replace text, [Make uppercase], Remove text");
    EXPECT_EQ(composite.removeActionAtIndex(0)->actionName(), "Add to end");
    EXPECT_FALSE(composite.canClose());
    (void)composite.removeActionAtIndex(2);
    (void)composite.removeActionAtIndex(0);
    EXPECT_EQ(steps(), "[Make uppercase]");
    EXPECT_FALSE(composite.canClose()); // not active
    composite.getCurrentAction().setValue(2, "active");
    EXPECT_TRUE(composite.canClose());
    EXPECT_THROW((void)composite.removeActionAtIndex(0), ActionError);
    EXPECT_THROW(composite.insertActionAtIndex(nullptr, 0), ActionError);
    EXPECT_EQ(steps(), "[Make uppercase]");
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
