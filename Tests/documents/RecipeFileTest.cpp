#include "documents/RecipeFile.h"

#include "actions/CatalogueFixture.h"
#include "common/Recipes.h"

namespace tavrin::test {
namespace {

class RecipeFileTest : public CatalogueFixture {
  protected:
    static std::string errorOf(const PropertyValue& root) {
        return std::get<RecipeError>(RecipeFile::fromPropertyList(root)).message;
    }
};

TEST_F(RecipeFileTest, TakesAllThreeForms) {
    const PropertyDictionary list =
        chain({{"Replace text", {{"searchTerm", u"a"}, {"active", 1}}}, {"Add to end", {}}});
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
        {dropletList(list, global), global},
        {{{"Host Application Settings", PropertyDictionary{{"composite action", list}}}}, std::nullopt},
    };
    for (const auto& [root, settings] : cases) {
        const auto recipe = std::get<Recipe>(RecipeFile::fromPropertyList(root));
        EXPECT_EQ(recipe.flatParameterList, list);
        EXPECT_EQ(recipe.globalSettings, settings);
    }
}

TEST_F(RecipeFileTest, RefusesWithTheWayToTheCulprit) {
    const PropertyDictionary good = chain({{"Add to end", {}}});
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
        {PropertyDictionary{{"currentActionIndex", u"0"}, {"composite actions array", PropertyArray()}},
         "currentActionIndex: expected a number"},
        {PropertyDictionary{{"Host Application Settings", PropertyDictionary()}},
         "Host Application Settings.composite action: expected a dictionary"},
        {PropertyDictionary{{"Host Application Settings",
                             PropertyDictionary{{"composite action", good}, {"global settings", u""}}}},
         "Host Application Settings.global settings: expected a dictionary"},
        {dropletList(good, {{"a", PropertyArray()}}),
         "Host Application Settings.global settings.a: expected a text or a number"},
    };
    for (const auto& [root, message] : cases)
        EXPECT_EQ(errorOf(root), message) << description(root);
    const auto step = [](const PropertyValue& name, const PropertyValue& parameters = 0) {
        return PropertyDictionary{{"action name", name}, {"action parameter list", parameters}};
    };
    const std::vector<std::pair<PropertyValue, std::string>> badSteps{
        {u"x", ": expected a dictionary"},
        {step(7), ".action name: expected a text"},
        {step(u"Add to ennd"), ".action name: there is no action \"Add to ennd\""},
        {step(u"TVRN global settings"), ".action name: there is no action \"TVRN global settings\""},
        {step(u"Add to end"), ".action parameter list: expected a dictionary"},
        {step(u"Add to end", PropertyDictionary{{"text", PropertyArray()}}),
         ".action parameter list.text: expected a text or a number"},
    };
    for (const auto& [bad, message] : badSteps) {
        PropertyArray steps = *good.at("composite actions array").asArray();
        steps.push_back(bad);
        EXPECT_EQ(errorOf(PropertyDictionary{{"composite actions array", steps}}),
                  "composite actions array[1]" + message);
    }
}

TEST_F(RecipeFileTest, TextThatXmlCannotHoldComesBackAsText) {
    const TemporaryFolder folder;
    const std::u16string odd{u'a', 0xDCFF, u'\x01'};
    const PropertyDictionary list = chain({{"Add to end", {{"text", odd}}}});
    const std::string path = folder.write("odd.plist", PropertyList::toXml(list));
    EXPECT_EQ(std::get<Recipe>(RecipeFile::read(path)).flatParameterList, list);
}

} // namespace
} // namespace tavrin::test
