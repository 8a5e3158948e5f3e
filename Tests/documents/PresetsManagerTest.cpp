#include "documents/PresetsManager.h"

#include "actions/CatalogueFixture.h"
#include "actions/CompositeRenameAction.h"
#include "common/FailingFileSystem.h"
#include "common/TemporaryFolder.h"
#include "platform/propertylists/PropertyList.h"

#include <cerrno>

namespace tavrin::test {
namespace {

class PresetsManagerTest : public CatalogueFixture {
  protected:
    PresetsManagerTest()
        : manager(folder.path("Presets"), folder.path("Global/Presets/"),
                  [this]() -> CompositeRenameAction& { return composite; }) {
        manager.startup();
        composite.setFlatParameterList(chain({u"Add to end", u"Replace text"}));
    }

    static PropertyDictionary chain(const std::vector<std::u16string>& names) {
        PropertyArray steps;
        for (const std::u16string& name : names)
            steps.emplace_back(
                PropertyDictionary{{"action name", name}, {"action parameter list", PropertyDictionary()}});
        return {{"currentActionIndex", 1}, {"composite actions array", std::move(steps)}};
    }
    std::vector<std::string> stepNames() const {
        std::vector<std::string> names;
        for (const auto& step : composite.getActionDictionaryList())
            names.push_back(step->actionName());
        return names;
    }
    void write(const std::string& name, const PropertyValue& root) {
        (void)folder.write("Presets/" + name, PropertyList::toXml(root));
        manager.loadPresets();
    }
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& [name, content] : folder.tree())
            names.push_back(name);
        return names;
    }

    TemporaryFolder folder;
    CompositeRenameAction composite;
    PresetsManager manager;
};

TEST_F(PresetsManagerTest, MakesBothFoldersAndReadsOnlyTheUsersOwn) {
    EXPECT_EQ(files(), (std::vector<std::string>{"Global/", "Global/Presets/", "Presets/"}));
    (void)folder.write("Global/Presets/x.tvrn8preset.plist", PropertyList::toXml(PropertyDictionary()));
    manager.loadPresets();
    EXPECT_EQ(manager.count(), 0u);
}

TEST_F(PresetsManagerTest, NamesAreCleanedForFilesAndShownCleaned) {
    ASSERT_TRUE(manager.createPresetFromCurrentActionsWithName(u"2012/03.raw", u"from the camera"));
    manager.loadPresets();
    EXPECT_EQ(files().back(), "Presets/2012:03_raw.tvrn8preset.plist");
    EXPECT_EQ(manager.getPresetTitles(), std::vector<std::u16string>{u"2012:03_raw"});
    EXPECT_EQ(manager.descriptionAtIndex(0), u"from the camera");
    EXPECT_FALSE(manager.isNameIsStillAvailable(u"2012:03_raw"));
    EXPECT_FALSE(manager.isNameIsStillAvailable(u"2012/03.raw"));
    EXPECT_TRUE(manager.isNameIsStillAvailable(u"2012"));
    EXPECT_FALSE(manager.isNameIsStillAvailable(std::nullopt));
}

TEST_F(PresetsManagerTest, WritesTheThreeKeys) {
    ASSERT_TRUE(manager.createPresetFromCurrentActionsWithName(u"x", std::nullopt));
    const auto content = PresetsManager::enclosureAtPath(folder.path("Presets/x.tvrn8preset.plist"));
    EXPECT_EQ(content, (PropertyDictionary{{"compositeAction", composite.getFlatParameterList()},
                                           {"minimumVersion", u"8.0.0.0"},
                                           {"description", u""}}));
}

TEST_F(PresetsManagerTest, FindsPresetsOfBothEditionsInSubfoldersButFollowsNoLink) {
    const std::string content = PropertyList::toXml(PropertyDictionary());
    (void)folder.write("Presets/a/b/deep.tvrn8preset.plist", content);
    (void)folder.write("Presets/other.mv8preset.plist", content);
    (void)folder.write("Presets/no preset.plist", content);
    (void)folder.write("Elsewhere/linked.tvrn8preset.plist", content);
    (void)folder.link("Presets/link", folder.path("Elsewhere"));
    (void)folder.link("Presets/loop", folder.path("Presets"));
    manager.loadPresets();
    std::vector<std::u16string> titles = manager.getPresetTitles();
    std::sort(titles.begin(), titles.end());
    EXPECT_EQ(titles, (std::vector<std::u16string>{u"deep", u"other"}));
    EXPECT_TRUE(manager.isNameIsStillAvailable(u"other"));
}

TEST_F(PresetsManagerTest, AppliesAPreset) {
    write("x.mv8preset.plist", PropertyDictionary{{"compositeAction", chain({u"Remove text"})}});
    EXPECT_TRUE(manager.applyPresetAtIndex(0));
    EXPECT_EQ(stepNames(), std::vector<std::string>{"Remove text"});
    // Without a step the chain falls back.
    write("x.mv8preset.plist", PropertyDictionary{{"compositeAction", PropertyDictionary()}});
    EXPECT_TRUE(manager.applyPresetAtIndex(0));
    EXPECT_EQ(stepNames(), std::vector<std::string>{"Produce numbered list"});
}

TEST_F(PresetsManagerTest, ABadPresetIsListedAndChangesNothing) {
    const std::vector<std::pair<PropertyValue, std::string>> cases{
        {PropertyDictionary{{"compositeAction", 1}}, "compositeAction: expected a dictionary"},
        {PropertyDictionary{{"compositeAction", chain({u"Add to end", u"Fly"})}},
         "compositeAction.composite actions array[1].action name: there is no action \"Fly\""},
    };
    for (const auto& [root, message] : cases) {
        write("x.tvrn8preset.plist", root);
        ASSERT_EQ(manager.count(), 1u);
        EXPECT_EQ(manager.applyPresetAtIndex(0).error, message);
        EXPECT_EQ(stepNames(), (std::vector<std::string>{"Add to end", "Replace text"}));
    }
    (void)folder.write("Presets/x.tvrn8preset.plist", "no list");
    EXPECT_FALSE(manager.applyPresetAtIndex(0));
    EXPECT_FALSE(manager.applyPresetAtIndex(1));
    EXPECT_EQ(stepNames(), (std::vector<std::string>{"Add to end", "Replace text"}));
    EXPECT_EQ(manager.nameAtIndex(1), u"");
    EXPECT_EQ(manager.descriptionAtIndex(0), u"");
}

TEST_F(PresetsManagerTest, ANewNameMovesToTheTopAndToTheMainSuffix) {
    (void)folder.write("Presets/sub/x.mv8preset.plist",
                       PropertyList::toXml(PropertyDictionary{{"compositeAction", chain({u"Remove text"})}}));
    ASSERT_TRUE(manager.changeNameAtPath(folder.path("Presets/sub/x.mv8preset.plist"), u"x2", u"new"));
    manager.loadPresets();
    EXPECT_EQ(manager.pathAtIndex(0), folder.path("Presets/x2.tvrn8preset.plist"));
    EXPECT_EQ(manager.count(), 1u);
    EXPECT_EQ(manager.descriptionAtIndex(0), u"new");
    EXPECT_TRUE(manager.applyPresetAtIndex(0));
}

/// Whichever call fails, the recipe is there, whole, under the old or the new name, and what is said is true.
TEST_F(PresetsManagerTest, AFailedChangeLosesNothing) {
    const PropertyDictionary recipe{{"compositeAction", chain({u"Remove text"})}};
    const std::string oldPath = folder.path("Presets/x.tvrn8preset.plist");
    for (const std::u16string name : {u"x", u"y", u"X.x"}) {
        const std::string newPath = *manager.computePathForName(name);
        bool hasSucceeded = false;
        for (std::size_t number = 1; !hasSucceeded; ++number) {
            write("x.tvrn8preset.plist", recipe);
            FailingFileSystem failing;
            failing.failCall(number, ENOSPC);
            const PresetOutcome outcome = oldPath == newPath ? manager.changeDescription(u"d", oldPath)
                                                             : manager.changeNameAtPath(oldPath, name, u"d");
            hasSucceeded = failing.failureCount() == 0;
            failing.reset();
            EXPECT_EQ(bool(outcome), hasSucceeded);
            const auto before = PresetsManager::enclosureAtPath(oldPath);
            const auto after = PresetsManager::enclosureAtPath(newPath);
            const bool saysBoth = outcome.error && outcome.error->find("as well") != std::string::npos;
            EXPECT_EQ(after == PropertyDictionary(
                                   {{"compositeAction", chain({u"Remove text"})}, {"description", u"d"}}),
                      hasSucceeded || saysBoth)
                << number;
            if (oldPath != newPath) {
                EXPECT_EQ(before, hasSucceeded ? std::nullopt : std::optional(recipe)) << number;
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
    write("x.tvrn8preset.plist", PropertyDictionary{{"compositeAction", chain({u"Remove text"})}});
    write("taken.tvrn8preset.plist", PropertyDictionary());
    const auto tree = folder.tree();
    struct Case {
        std::u16string name;
        const char* reason; ///< none: any other preset may have the name
    };
    const Case cases[] = {
        {std::u16string(237, u'a'), nullptr},
        {std::u16string(238, u'a'), "This name is too long for a file: 256 of 255 bytes."},
        {std::u16string(118, u'\u00e4') + u"a", nullptr},
        {std::u16string(119, u'\u00e4'), "This name is too long for a file: 256 of 255 bytes."},
        {std::u16string(60, u'\u3042') + std::u16string(100, u'\u00e9'),
         "This name is too long for a file: 398 of 255 bytes."},
        {std::u16string(1, u'\xD800'), "A file can't have this name."},
        {std::u16string(u"a\0b", 3), "A file can't have this name."},
        {u"taken", "File exists"},
    };
    for (const Case& each : cases) {
        const PresetOutcome outcome =
            manager.changeNameAtPath(folder.path("Presets/x.tvrn8preset.plist"), each.name, u"d");
        EXPECT_EQ(bool(outcome), each.reason == nullptr);
        if (each.reason) {
            EXPECT_NE(outcome.error.value_or("").find(each.reason), std::string::npos) << *outcome.error;
            EXPECT_FALSE(manager.isNameIsStillAvailable(each.name));
            EXPECT_EQ(folder.tree(), tree);
        } else {
            EXPECT_FALSE(folder.kind("Presets/x.tvrn8preset.plist"));
            EXPECT_TRUE(manager.changeNameAtPath(*manager.computePathForName(each.name), u"x", std::nullopt));
            write("x.tvrn8preset.plist", PropertyDictionary{{"compositeAction", chain({u"Remove text"})}});
        }
    }
}

TEST_F(PresetsManagerTest, DeletesByIndexAndByName) {
    write("a.tvrn8preset.plist", PropertyDictionary());
    write("b_c.tvrn8preset.plist", PropertyDictionary());
    {
        FailingFileSystem failing;
        failing.failKind(FileCall::removeFile, EACCES);
        EXPECT_FALSE(manager.deletePreset(u"b.c"));
    }
    EXPECT_TRUE(manager.deletePreset(u"b.c"));
    EXPECT_FALSE(manager.deletePreset(u"b.c"));
    manager.loadPresets();
    EXPECT_TRUE(manager.deletePresetAtIndex(0));
    EXPECT_FALSE(manager.deletePresetAtIndex(0));
    manager.loadPresets();
    EXPECT_EQ(manager.count(), 0u);
}

} // namespace
} // namespace tavrin::test
