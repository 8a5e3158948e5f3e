#include "documents/RecipeInCommand.h"
#include "platform/desktop/Quoting.h"
#include "platform/processes/ChildProcess.h"
#include "shell/ShellFixture.h"

namespace tavrin::test {

class RecipesInTheShell : public ShellFixture {
  protected:
    RecipeCommands& recipes() { return controller().recipeCommands(); }
    std::string line() { return text::toUtf8(recipes().line()); }
};

TEST_F(RecipesInTheShell, CopiedLinesComeBackAsTheSameSteps) {
    start();
    setSteps(
        {{"Make lowercase", {}}, {"Replace text", {{"searchTerm", u"it's"}, {"replacementTerm", u"$x"}}}});
    const std::string steps = line();
    EXPECT_TRUE(text::toUtf8(recipes().command()).ends_with(" PATH..."));
    const auto path = add({"caf\xE9\x1B 'x'\n"}).front();
    const std::string command = text::toUtf8(recipes().command());
    const auto words = shellCommands(command);
    ASSERT_TRUE(words && words->size() == 1);
    EXPECT_EQ(words->front()[2], steps);
    ChildProcess::Request shell;
    shell.arguments = {"/bin/sh", "-c", "set -- " + command + "; printf %s \"$4\""};
    EXPECT_EQ(ChildProcess::run(shell).output, path);
    controller().compositeAction().setCurrentActionIndex(1);
    EXPECT_EQ(recipes().paste(recipes().command()).steps, 2U);
    EXPECT_EQ(line(), steps + " | " + steps);
}

TEST_F(RecipesInTheShell, PastedStepsAreOneChangeWhateverHappensToThem) {
    start();
    setSteps({{"Add to end", {{"string", u"!"}}}, {"Make uppercase", {}}});
    controller().compositeAction().setCurrentActionIndex(0);
    const std::string before = line();
    ASSERT_EQ(recipes().paste(u"lower; title\n unaccent # all three").steps, 3U);
    const std::string after = line();
    EXPECT_EQ(after, "add \"!\" end | lower | title | unaccent | upper");
    EXPECT_EQ(controller().compositeAction().getCurrentActionIndexAsInt(), 3);
    EXPECT_TRUE(settings().shouldShowMultistepDrawer);
    recipes().undo();
    EXPECT_EQ(line(), before);
    recipes().redo();
    EXPECT_EQ(line(), after);
    // Steps that were moved go too, those that were changed elsewhere stay.
    controller().actionListCommands().moveAction(1, 4);
    controller().compositeAction().actionAtIndex(0).setValue(u"?", "string");
    controller().actionListCommands().removeAction(); // the one that was moved
    controller().actionListCommands().addAction();
    recipes().undo();
    EXPECT_EQ(line(), "add \"?\" end | upper | upper");
    controller().actionListCommands().clearActions();
    recipes().redo();
    EXPECT_EQ(controller().compositeAction().count(), 3);
    controller().compositeAction().setCurrentActionIndex(1);
    controller().actionListCommands().clearActions();
    recipes().undo();
    EXPECT_EQ(stepNames(), std::vector<std::string>{"Add to front"}) << "there is always a step";
}

TEST_F(RecipesInTheShell, WhatIsNoRecipeChangesNothingAndSaysWhere) {
    start();
    const std::string before = line();
    const auto problem = [&](std::u16string_view text) {
        const auto outcome = recipes().paste(text);
        EXPECT_EQ(outcome.steps, 0U);
        return outcome.title + "|" + outcome.text;
    };
    EXPECT_EQ(problem(u"lower | repalce a b"),
              "Column 9: there is no verb \"repalce\".|Did you mean \"replace\"?");
    EXPECT_TRUE(problem(u"lower\nadd x frist").starts_with("Line 2, column "));
    EXPECT_EQ(problem(u"$ tvrn rename -p Photos *"),
              "The line takes its steps from a preset: choose it in the menu Presets.|");
    EXPECT_EQ(problem(u"tvrn edit ."), "There is no recipe in the line.|");
    EXPECT_NE(problem(u"<?xml version='1.0'?><plist version='1.0'><dict/></plist>"), "|");
    EXPECT_NE(problem(u""), "|");
    EXPECT_NE(problem(std::u16string(50 << 20, u'x')), "|");
    EXPECT_FALSE(recipes().open(files.path("none")).title.empty());
    EXPECT_EQ(line(), before);
    EXPECT_FALSE(recipes().canUndo());
}

TEST_F(RecipesInTheShell, AFileTakesThePlaceOfAllSteps) {
    start();
    const std::string before = line();
    const std::string path = files.write("mine.recipe", "#!/usr/bin/tvrn -xf\nlower\nupper ext\n");
    EXPECT_EQ(recipes().open(path).steps, 2U);
    EXPECT_EQ(line(), "lower | upper ext");
    recipes().undo();
    EXPECT_EQ(line(), before);
    recipes().redo();
    EXPECT_EQ(line(), "lower | upper ext");
}

TEST(RecipeInCommand, IsWhereTheCommandWouldTakeItFrom) {
    const std::initializer_list<std::pair<const char*, const char*>> lines{
        {"tvrn 's/ /_/g' *", "s/ /_/g"},
        {"tvrn -x lower a b", "lower"},
        {"/usr/bin/tvrn rename --format=1 --depth 3 -T list \"replace a \\\"b\\\" \"'c d' *",
         "replace a \"b\" c d"},
        {"find . -print0 | tvrn -x0T- upper", "upper"},
        {"sudo tvrn -xre lower -e 'title ext' *", "lower\ntitle ext"},
        {"cd /tmp && tvrn \\\n  rename -- -lower *", "-lower"},
        {"tvrn edit -e lower *; tvrn upper *", "lower"},
    };
    for (const auto& [line, recipe] : lines) {
        const auto found = RecipeInCommand::find(line);
        ASSERT_TRUE(found) << line;
        EXPECT_EQ(found->recipe, recipe) << line << found->problem;
    }
    for (const char* line : {"lower | upper", "tvrnx lower", "echo tvrn lower", "tvrn 'lower"})
        EXPECT_FALSE(RecipeInCommand::find(line)) << line;
}

} // namespace tavrin::test
