#include "actions/CatalogueFixture.h"
#include "actions/CompositeRenameAction.h"
#include "common/FailingFileSystem.h"
#include "common/Recipes.h"
#include "documents/PresetsManager.h"
#include "documents/RecipeFile.h"

namespace tavrin::test {
namespace {

const PropertyDictionary recipe{{"compositeAction", chain({{"Remove text", {}}})}};

class PresetsManagerTest : public CatalogueFixture {
  protected:
    PresetsManagerTest() {
        manager.startup();
        composite.setFlatParameterList(chain({{"Add to end", {}}, {"Replace text", {}}}));
    }
    /// Writes a preset and reads them all; its path.
    std::string write(const std::string& name, const PropertyValue& root) {
        const std::string path = folder.write("Presets/" + name, PropertyList::toXml(root));
        manager.loadPresets();
        return path;
    }

    TemporaryFolder folder;
    CompositeRenameAction composite;
    PresetsManager manager{folder.path("Presets"), folder.path("Global/Presets/"),
                           [this]() -> CompositeRenameAction& { return composite; }};
};

TEST_F(PresetsManagerTest, WritesTheChainUnderACleanedName) {
    ASSERT_TRUE(manager.createPresetFromCurrentActionsWithName(u"2012/03.raw", u"from the camera"));
    ASSERT_TRUE(manager.createPresetFromCurrentActionsWithName(u"x", std::nullopt));
    manager.loadPresets();
    EXPECT_EQ(manager.getPresetTitles(), (std::vector<std::u16string>{u"2012:03_raw", u"x"}));
    EXPECT_EQ(manager.pathAtIndex(0), folder.path("Presets/2012:03_raw.tvrn8preset.plist"));
    EXPECT_EQ(manager.descriptionAtIndex(0), u"from the camera");
    EXPECT_FALSE(manager.isNameIsStillAvailable(u"2012/03.raw"));
    EXPECT_TRUE(manager.isNameIsStillAvailable(u"2012"));
    EXPECT_FALSE(manager.isNameIsStillAvailable(std::nullopt));
    EXPECT_EQ(PresetsManager::enclosureAtPath(manager.pathAtIndex(1)),
              (PropertyDictionary{{"compositeAction", composite.getFlatParameterList()},
                                  {"minimumVersion", u"8.0.0.0"},
                                  {"description", u""}}));
}

TEST_F(PresetsManagerTest, FindsTheUsersOwnOfBothEditionsInSubfoldersButFollowsNoLink) {
    EXPECT_EQ(folder.tree(), (std::map<std::string, std::string>{
                                 {"Global/", ""}, {"Global/Presets/", ""}, {"Presets/", ""}}));
    for (const char* path :
         {"Presets/a/b/deep.tvrn8preset.plist", "Presets/other.mv8preset.plist", "Presets/no preset.plist",
          "Elsewhere/linked.tvrn8preset.plist", "Global/Presets/global.tvrn8preset.plist"})
        (void)folder.write(path, PropertyList::toXml(recipe));
    (void)folder.link("Presets/link", folder.path("Elsewhere"));
    (void)folder.link("Presets/loop", folder.path("Presets"));
    manager.loadPresets();
    EXPECT_THAT(manager.getPresetTitles(), ::testing::UnorderedElementsAre(u"deep", u"other"));
    EXPECT_TRUE(manager.isNameIsStillAvailable(u"other"));
}

TEST_F(PresetsManagerTest, AppliesAPresetAndABadOneIsListedAndChangesNothing) {
    const PropertyDictionary before = composite.getFlatParameterList();
    write("x.mv8preset.plist",
          PropertyDictionary{{"compositeAction", chain({{"Remove text", {}}, {"Fly", {}}})}});
    ASSERT_EQ(manager.count(), 1u);
    EXPECT_EQ(manager.applyPresetAtIndex(0).error,
              "compositeAction.composite actions array[1].action name: there is no action \"Fly\"");
    EXPECT_EQ(composite.getFlatParameterList(), before);
    (void)folder.write("Presets/x.mv8preset.plist", "no list");
    EXPECT_FALSE(manager.applyPresetAtIndex(0) || manager.applyPresetAtIndex(1));
    EXPECT_EQ(composite.getFlatParameterList(), before);
    EXPECT_EQ(manager.nameAtIndex(1), u"");
    EXPECT_EQ(manager.descriptionAtIndex(0), u"");
    write("x.mv8preset.plist", recipe);
    EXPECT_TRUE(manager.applyPresetAtIndex(0));
    EXPECT_EQ(composite.getCurrentAction().actionName(), "Remove text");
    // Without a step the chain falls back.
    write("x.mv8preset.plist", PropertyDictionary{{"compositeAction", PropertyDictionary()}});
    EXPECT_TRUE(manager.applyPresetAtIndex(0));
    EXPECT_EQ(composite.getCurrentAction().actionName(), "Produce numbered list");
}

/// Whichever call fails, the recipe is there, whole, under the old or the new name, and what is said is true.
TEST_F(PresetsManagerTest, AFailedChangeLosesNothing) {
    PropertyDictionary changed = recipe;
    changed.emplace("description", u"d");
    for (const std::u16string name : {u"x", u"y", u"X.x"}) {
        const std::string newPath = *manager.computePathForName(name);
        bool hasSucceeded = false;
        for (std::size_t number = 1; !hasSucceeded; ++number) {
            SCOPED_TRACE(number);
            // A new name moves it to the top and to the main suffix.
            const std::string oldPath =
                write(name == u"x" ? "x.tvrn8preset.plist" : "sub/x.mv8preset.plist", recipe);
            FailingFileSystem failing;
            failing.failCall(number, ENOSPC);
            const PresetOutcome outcome = oldPath == newPath ? manager.changeDescription(u"d", oldPath)
                                                             : manager.changeNameAtPath(oldPath, name, u"d");
            hasSucceeded = failing.failureCount() == 0;
            failing.reset();
            EXPECT_EQ(bool(outcome), hasSucceeded);
            const bool saysBoth = outcome.error && outcome.error->find("as well") != std::string::npos;
            EXPECT_EQ(PresetsManager::enclosureAtPath(newPath) == changed, hasSucceeded || saysBoth);
            if (oldPath != newPath) {
                EXPECT_EQ(PresetsManager::enclosureAtPath(oldPath),
                          hasSucceeded ? std::nullopt : std::optional(recipe));
            }
            (void)manager.deletePreset(name);
        }
    }
    const std::string unreadable = folder.write("Presets/x.tvrn8preset.plist", "no list");
    const auto tree = folder.tree();
    EXPECT_FALSE(manager.changeDescription(u"d", unreadable));
    EXPECT_FALSE(manager.changeNameAtPath(unreadable, u"y", u"d"));
    EXPECT_EQ(folder.tree(), tree);
}

TEST_F(PresetsManagerTest, ANameThatNoFileCanHaveOrAnotherHasChangesNothing) {
    write("taken.tvrn8preset.plist", PropertyDictionary());
    const char* const odd = "A file can't have this name.";
    const char* const tooLong = "This name is too long for a file: 256 of 255 bytes.";
    const struct {
        std::u16string name;
        std::string reason;
    } cases[] = {
        {std::u16string(237, u'a'), ""},           {std::u16string(238, u'a'), tooLong},
        {std::u16string(119, u'\u00e4'), tooLong}, {std::u16string(1, u'\xD800'), odd},
        {std::u16string(u"a\0b", 3), odd},         {u"taken", "File exists"},
    };
    for (const auto& [name, reason] : cases) {
        const std::string path = write("x.tvrn8preset.plist", recipe);
        const auto tree = folder.tree();
        const PresetOutcome outcome = manager.changeNameAtPath(path, name, u"d");
        EXPECT_EQ(bool(outcome), reason.empty());
        EXPECT_THAT(outcome.error.value_or(""), ::testing::HasSubstr(reason));
        EXPECT_EQ(folder.tree() == tree, !reason.empty());
        if (reason.empty())
            EXPECT_TRUE(manager.deletePreset(name));
        else
            EXPECT_FALSE(manager.isNameIsStillAvailable(name));
    }
}

TEST_F(PresetsManagerTest, DeletesByIndexAndByName) {
    write("a.tvrn8preset.plist", PropertyDictionary());
    write("b_c.tvrn8preset.plist", PropertyDictionary());
    FailingFileSystem failing;
    failing.failKind(FileCall::removeFile, EACCES);
    EXPECT_FALSE(manager.deletePreset(u"b.c"));
    failing.reset();
    EXPECT_TRUE(manager.deletePreset(u"b.c"));
    EXPECT_FALSE(manager.deletePreset(u"b.c"));
    EXPECT_TRUE(manager.deletePresetAtIndex(0));
    EXPECT_FALSE(manager.deletePresetAtIndex(0));
}

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
        const auto read = std::get<Recipe>(RecipeFile::fromPropertyList(root));
        EXPECT_EQ(read.flatParameterList, list);
        EXPECT_EQ(read.globalSettings, settings);
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
