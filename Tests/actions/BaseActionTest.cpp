#include "actions/CatalogueFixture.h"
#include "actions/SortBasedAction.h"
#include "support/text/Text.h"

namespace tavrin::test {

namespace {

using Actions = CatalogueFixture;
using Change = RecordingObserver::Change;

TEST_F(Actions, TranslateOldKeys) {
    const struct {
        const char* old;
        const char* present;
    } keys[] = {{"fragment selection", "fragmentSelection"},
                {"plain", "plain"},
                {"with  two", "withTwo"},
                {" first", "First"},
                {"trailing ", "trailing"},
                {"ignore case 0", "ignoreCase0"}};
    for (const auto& each : keys)
        EXPECT_EQ(BaseAction::internalKeyToExternalKey(each.old), each.present);
    EXPECT_EQ(BaseAction::externalKeyToInternalKey("fragmentSelection"), "fragment selection");
    EXPECT_EQ(BaseAction::externalKeyToInternalKey("regex1"), "regex 1");
    EXPECT_EQ(BaseAction::externalKeyToInternalKey("as it Is"), "as it Is");
}

TEST_F(Actions, LoadParametersOverPresentOnes) {
    const auto action = catalogue.newActionForName("Add to front");
    action->setValue(u"kept", "string");
    action->setParameterList({{"fragment selection", 2}, {"unknown", 7}});
    EXPECT_EQ(action->parameterList(), (PropertyDictionary{{"active", 1},
                                                           {"string", u"kept"},
                                                           {"fragmentSelection", 2},
                                                           {"fragment selection", 2},
                                                           {"unknown", 7}}));
    action->setParameterList({{"fragment selection", 3}, {"fragmentSelection", 0}});
    EXPECT_EQ(action->getParamInt("fragmentSelection", 9), 0);
}

TEST_F(Actions, ReadValuesLoosely) {
    const auto action = catalogue.newActionForName("Add to front");
    action->setParameterList({{"string", 12}, {"number", u" -7x"}});
    EXPECT_EQ(action->getParamString("string"), u"12");
    EXPECT_EQ(action->getParamInt("number", 0), -7);
    EXPECT_EQ(action->getParamString("absent"), u"");
    EXPECT_EQ(action->getParamInt("absent", 5), 5);
    EXPECT_EQ(run(*action, u"a.txt"), u"12a.txt");
    // A text that XML cannot hold comes back from a property list as data.
    action->setParameterList({{"string", u"\x0001"}});
    const auto xml = PropertyList::toXml(PropertyValue(action->parameterList()));
    const auto read = PropertyList::fromBytes(xml);
    ASSERT_TRUE(std::holds_alternative<PropertyValue>(read));
    const auto loaded = catalogue.newActionForName("Add to front");
    loaded->setParameterList(*std::get<PropertyValue>(read).asDictionary());
    EXPECT_EQ(run(*loaded, u"a"), u"\x0001"
                                  u"a");
}

TEST_F(Actions, KeepTheTypeOfAValueThatIsEmptied) {
    const auto action = catalogue.newActionForName("Add to front");
    action->setValue(u"text", "string");
    action->setParameterList({{"list", PropertyArray{1}}});
    action->setValue(std::nullopt, "string");
    action->setValue(std::nullopt, "fragmentSelection");
    action->setValue(std::nullopt, "absent");
    action->setValue(std::nullopt, "list");
    EXPECT_EQ(action->valueForKey("string"), PropertyValue(u""));
    EXPECT_EQ(action->valueForKey("fragmentSelection"), PropertyValue(0));
    EXPECT_EQ(action->valueForKey("absent"), std::nullopt);
    EXPECT_EQ(action->valueForKey("list"), PropertyValue(PropertyArray{1}));
}

TEST_F(Actions, TellObserversOfEveryValueTheyHad) {
    const auto action = catalogue.newActionForName("Add to front");
    RecordingObserver observer;
    auto observation = action->registerObserverForAllValues(observer);
    action->setValue(u"a", "string");
    action->setValue(1, "entersLater");
    EXPECT_EQ(observer.changes, (std::vector<Change>{{"string", u"", u"a"}}));

    observer.changes.clear();
    action->setParameterList({{"string", u"b"}});
    EXPECT_EQ(observer.changes,
              (std::vector<Change>{{"active", 1, 1}, {"fragmentSelection", 1, 1}, {"string", u"a", u"b"}}));
    observer.changes.clear();
    observation.reset();
    action->setValue(u"c", "string");
    EXPECT_TRUE(observer.changes.empty());
}

TEST_F(Actions, SurviveAnObserverThatStopsWhileToldOfAChange) {
    const auto action = catalogue.newActionForName("Add to front");
    struct Leaving : ActionObserver {
        void observeValueForKeyPath(const std::string&, BaseAction&, const std::optional<PropertyValue>&,
                                    const std::optional<PropertyValue>&) override {
            ++count;
            own.reset();
            others.reset();
        }
        ActionObservation own, others;
        int count = 0;
    } leaving;
    RecordingObserver other;
    leaving.own = action->registerObserverForAllValues(leaving);
    leaving.others = action->registerObserverForAllValues(other);
    action->setValue(u"a", "string");
    action->setValue(u"b", "string");
    EXPECT_EQ(leaving.count, 1);
    EXPECT_TRUE(other.changes.empty());
}

TEST_F(Actions, RefreshTheirCachesAfterEachChange) {
    const auto action = catalogue.newActionForName("Replace text");
    action->setParameterList({{"searchTerm", u"a"}, {"replacementTerm", u"o"}});
    EXPECT_EQ(run(*action, u"aA"), u"oo");
    action->setValue(0, "ignoreCase");
    EXPECT_EQ(run(*action, u"aA"), u"oA");
    action->setValue(u"A", "searchTerm");
    EXPECT_EQ(run(*action, u"aA"), u"ao");

    const auto characters = catalogue.newActionForName("Replace characters");
    characters->setParameterList({{"replaceCharacters0", u"\u00e9"}, {"with0", u"e"}});
    EXPECT_EQ(run(*characters, u"\u00e9t\u00e9"), u"ete");
    characters->setValue(u"x", "replaceCharacters0");
    EXPECT_EQ(run(*characters, u"\u00e9t\u00e9"), u"\u00e9t\u00e9");
}

TEST_F(Actions, CutACharacterParameterInTheParametersToo) {
    auto action = catalogue.newActionForName("Expand camel case");
    RecordingObserver observer;
    action->setValue(u"_\u0301-", "separator");
    auto observation = action->registerObserverForAllValues(observer);
    EXPECT_EQ(run(*action, u"fooBar"), u"foo_\u0301Bar");
    EXPECT_EQ(observer.changes, (std::vector<Change>{{"separator", u"_\u0301-", u"_\u0301"}}));
    EXPECT_EQ(run(*action, u"fooBar"), u"foo_\u0301Bar");
    EXPECT_EQ(observer.changes.size(), 1U);
}

TEST_F(Actions, CheckTypedReplacementsOnly) {
    const auto action = catalogue.newActionForName("Replace characters");
    EXPECT_EQ(action->validatedValue(u"abc", "with0"), PropertyValue(u"a"));
    EXPECT_EQ(action->validatedValue(u"e\u0301x", "with3"), PropertyValue(u"e\u0301"));
    EXPECT_EQ(action->validatedValue(u"\xD83D\xDE00", "with1"), PropertyValue(u"\xD83D\xDE00"));
    EXPECT_EQ(action->validatedValue(u"", "with2"), PropertyValue(u""));
    EXPECT_EQ(action->validatedValue(12, "with0"), PropertyValue(12));
    EXPECT_EQ(action->validatedValue(u"abc", "replaceCharacters0"), PropertyValue(u"abc"));
}

TEST_F(Actions, TellWhatTheyDo) {
    const auto action = catalogue.newActionForName("Replace text");
    EXPECT_EQ(action->explanation(), u"");
    action->setParameterList({{"searchTerm", u"a"}});
    EXPECT_EQ(text::toUtf8(action->explanation()), "Replace all occurences of “a” while ignoring case.");
    action->setParameterList({{"replacementMode", 10}, {"ignoreCase", 2}});
    EXPECT_EQ(text::toUtf8(action->explanation()), "Replace only the forth to last occurence of “a”.");
    action->setParameterList({{"replacementMode", 13}});
    EXPECT_EQ(text::toUtf8(action->explanation()), "Replace “a”.");
    EXPECT_EQ(catalogue.newActionForName("Remove vowels")->explanation(), u"Removes a, e, i, o, u and y.");
    EXPECT_TRUE(action->description().starts_with("Action: Replace text param: "));
}

// ---- the order of items

TEST_F(Actions, GiveUpAStoredManualOrderUnlessItIsKeptByHand) {
    auto made = catalogue.newActionForName("Produce numbered list");
    auto& action = dynamic_cast<SortBasedAction&>(*made);
    EXPECT_EQ(action.getSortingMode(), 10);
    RecordingObserver observer;
    auto observation = action.registerObserver(observer, "usingManualSorting");
    action.setParameterList({{"sortingMode", 13}, {"sortingMode2", 2}});
    EXPECT_EQ(action.getSortingMode(), 10);
    EXPECT_EQ(action.getSortingMode2(), 2);

    catalogue.setAutomaticSorting(false);
    observer.changes.clear();
    action.setParameterList({{"sortingMode", 13}});
    EXPECT_TRUE(action.usingManualSorting());
    ASSERT_FALSE(observer.changes.empty());
    EXPECT_EQ(observer.changes.back(), (Change{"usingManualSorting", false, true}));
    action.deactivateManualSortingIfNecessary();
    EXPECT_EQ(action.getSortingMode(), 10);
    action.setValue(4, "sortingMode");
    action.deactivateManualSortingIfNecessary();
    EXPECT_EQ(action.getSortingMode(), 4);
    action.activateManualSorting();
    EXPECT_EQ(action.valueForKey("usingManualSorting"), PropertyValue(true));
}

TEST_F(Actions, CountEachFolderByItselfOnlyForOne) {
    auto made = catalogue.newActionForName("Produce numbered list");
    const auto& action = dynamic_cast<SortBasedAction&>(*made);
    for (const auto& [value, isGlobal] : {std::pair(0, true), {1, false}, {2, true}}) {
        made->setValue(value, "sortEachFolderSeparately");
        EXPECT_EQ(action.shouldUseGlobalSorting(), isGlobal) << value;
    }
}

} // namespace

} // namespace tavrin::test
