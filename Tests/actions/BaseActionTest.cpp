#include "actions/CatalogueFixture.h"
#include "actions/SortBasedAction.h"

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

} // namespace

} // namespace tavrin::test
