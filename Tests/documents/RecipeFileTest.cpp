#include "documents/RecipeFile.h"

#include "actions/CatalogueFixture.h"
#include "common/TemporaryFolder.h"

namespace tavrin::test {
namespace {

class RecipeFileTest : public CatalogueFixture {
  protected:
    static std::string errorOf(const RecipeFile::Result& result) {
        const auto* error = std::get_if<RecipeError>(&result);
        return error ? error->message : "no error";
    }
    static PropertyDictionary step(const PropertyValue& name,
                                   const PropertyValue& parameters = PropertyDictionary()) {
        return {{"action name", name}, {"action parameter list", parameters}};
    }
    static PropertyDictionary chain(PropertyArray steps) {
        return {{"currentActionIndex", 0}, {"composite actions array", std::move(steps)}};
    }
};

TEST_F(RecipeFileTest, TakesAllThreeForms) {
    const PropertyDictionary list =
        chain({step(u"Replace text", PropertyDictionary{{"searchTerm", u"a"}, {"active", 1}}),
               step(u"Add to end")});
    PropertyDictionary bare = list; // a step without parameters has its defaults
    bare.insert_or_assign("composite actions array",
                          PropertyArray{list.at("composite actions array").asArray()->front(),
                                        PropertyDictionary{{"action name", u"Add to end"}}});
    const PropertyDictionary global{
        {"processSubfolders", 1}, {"lockedDroplet", true}, {"lastAddDirectory", u"/"}};
    const std::vector<std::pair<PropertyDictionary, std::optional<PropertyDictionary>>> cases{
        {{{"compositeAction", list}, {"minimumVersion", u"8.0.0.0"}, {"description", u""}}, std::nullopt},
        {list, std::nullopt},
        {bare, std::nullopt},
        {{{"Host Application Settings",
           PropertyDictionary{{"composite action", list}, {"global settings", global}}},
          {"Droplet Settings", PropertyDictionary()}},
         global},
        {{{"Host Application Settings", PropertyDictionary{{"composite action", list}}}}, std::nullopt},
    };
    for (const auto& [root, settings] : cases) {
        const RecipeFile::Result result = RecipeFile::fromPropertyList(root);
        ASSERT_TRUE(std::holds_alternative<Recipe>(result)) << errorOf(result);
        EXPECT_EQ(std::get<Recipe>(result).flatParameterList, list);
        EXPECT_EQ(std::get<Recipe>(result).globalSettings, settings);
    }
}

TEST_F(RecipeFileTest, RefusesWithTheWayToTheCulprit) {
    const PropertyDictionary good = step(u"Add to end");
    const auto droplet = [](PropertyDictionary settings) {
        return PropertyDictionary{{"Host Application Settings", std::move(settings)}};
    };
    const std::vector<std::pair<PropertyValue, std::string>> cases{
        {PropertyArray(), "expected a dictionary at the root"},
        {PropertyDictionary(),
         "there is no recipe in it: expected \"compositeAction\", \"composite actions array\" or "
         "\"Host Application Settings\" at the root"},
        {PropertyDictionary{{"compositeAction", u"x"}}, "compositeAction: expected a dictionary"},
        {PropertyDictionary{{"compositeAction", PropertyDictionary()}},
         "compositeAction.composite actions array: expected at least one step"},
        {chain({}), "composite actions array: expected at least one step"},
        {PropertyDictionary{{"composite actions array", 3}}, "composite actions array: expected an array"},
        {chain({good, good, u"x"}), "composite actions array[2]: expected a dictionary"},
        {chain({good, good, step(7)}), "composite actions array[2].action name: expected a text"},
        {chain({step(u"Add to ennd")}),
         "composite actions array[0].action name: there is no action \"Add to ennd\""},
        {chain({step(u"TVRN global settings")}),
         "composite actions array[0].action name: there is no action \"TVRN global settings\""},
        {chain({step(u"Add to end", PropertyArray())}),
         "composite actions array[0].action parameter list: expected a dictionary"},
        {chain({step(u"Add to end", PropertyDictionary{{"text", PropertyArray()}})}),
         "composite actions array[0].action parameter list.text: expected a text or a number"},
        {PropertyDictionary{{"currentActionIndex", u"0"}, {"composite actions array", PropertyArray{good}}},
         "currentActionIndex: expected a number"},
        {droplet({}), "Host Application Settings.composite action: expected a dictionary"},
        {droplet({{"composite action", chain({good})}, {"global settings", u""}}),
         "Host Application Settings.global settings: expected a dictionary"},
        {droplet({{"composite action", chain({good})},
                  {"global settings", PropertyDictionary{{"a", PropertyArray()}}}}),
         "Host Application Settings.global settings.a: expected a text or a number"},
    };
    for (const auto& [root, message] : cases)
        EXPECT_EQ(errorOf(RecipeFile::fromPropertyList(root)), message) << description(root);
}

TEST_F(RecipeFileTest, TextThatXmlCannotHoldComesBackAsText) {
    const TemporaryFolder folder;
    const std::u16string odd{u'a', 0xDCFF, u'\x01'};
    const PropertyDictionary list = chain({step(u"Add to end", PropertyDictionary{{"text", odd}})});
    const std::string path = folder.path("odd.plist");
    ASSERT_TRUE(std::holds_alternative<std::monostate>(PropertyList::writeAtomically(list, path)));
    const auto result = RecipeFile::read(path);
    ASSERT_TRUE(std::holds_alternative<Recipe>(result)) << errorOf(result);
    EXPECT_EQ(std::get<Recipe>(result).flatParameterList, list);
}

} // namespace
} // namespace tavrin::test
