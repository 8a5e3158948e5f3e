#include "documents/recipe/RecipeText.h"

#include "actions/ActionList.h"
#include "actions/CompositeRenameAction.h"
#include "common/Recipes.h"
#include "documents/RecipeFile.h"
#include "documents/recipe/RecipeTokens.h"

namespace tavrin::test {

namespace {

/// The canonical form, or the first mistake: column, length and sentence.
std::string answerTo(std::u16string_view recipe) {
    const auto result = RecipeText::read(recipe);
    if (const auto* reading = std::get_if<RecipeText::Reading>(&result))
        return text::toUtf8(RecipeText::write(reading->flatParameterList));
    const auto& remark = std::get<RecipeText::Remark>(result);
    return fmt::format("{}+{}: {}", remark.column, remark.length, remark.sentence());
}

TEST(RecipeTextTest, ReadsWhatPeopleWrite) {
    const std::vector<std::pair<std::u16string, std::string>> cases{
        // Synonyms, and words in any order.
        {u"sub a b first", R"(replace "a" "b" 1st)"},
        {u"insert - before plan second case", R"(add "-" before "plan" 2nd case)"},
        {u"prefix x whole off", R"(add "x" start whole off)"},
        {u"num pad=3 sort=newest front each-folder", "number start order=-modified digits=3 per-folder"},
        {u"list n.txt order=-exif case", R"(list "n.txt" case order=-taken)"},
        {u"remove x disabled back", R"(remove "x" end off)"},
        {u"path front depth=2 sep=-", R"(path start levels=2 between="-")"},
        {u"8.3; lc extension", "dos | lower ext"},
        // A word belongs to the phrase behind which it stands, or else to the step.
        {u"move a case before b last case", R"(move "a" case before "b" last case)"},
        {u"move a before b last case", R"(move "a" before "b" last case)"},
        {u"cut from after ( to before ) 2nd whole", R"-(cut from after "(" to before ")" 2nd whole)-"},
        {u"cut from start to end", "cut to -0"},
        {u"cut from -3 for -2", "cut from -3 for -2"},
        {u"add x at -0", R"(add "x" at -0)"},
        // Texts come first; a quoted one may come later, where there is one to come.
        {u"add end start", R"(add "end" start)"},
        {u"add \"end\" start", R"(add "end" start)"},
        {u"tag start \"<Song>\"", R"(tag "<Song>" start)"},
        {u"IMG_\" x\"'y\\'z", "1+13: there is no verb"},
        {u"replace IMG_\" x\"'y\\' z#1", R"(replace "IMG_ xy\\" "z#1")"},
        {u"replace \"\\x41\\xe9\\u{1f600}\\u00e9\\n\\/\" ''", "replace \"A\\xe9\U0001F600\u00e9\\n/\" \"\""},
        {u"keep \"\u0301a\"", "keep \"\\u{301}a\""},
        {u"\ufefflower # small\n;| upper", "lower | upper"},
        // As in sed.
        {u"s/a/b/", "s/a/b/"},
        {u"s/a/b/gi last", "10+4: \"last\" contradicts \"gi\""},
        {u"s/a/b/ last", "s/a/b/ last"},
        {u"s|\\d+\\|x|\\|\\\\|2", R"(s/\d+\|x/|\\/2)"},
        {u"s/\\//\\//g", R"(s,\/,/,g)"},
        {u"regex a b", "s/a/b/gi"},
        {u"regex a b case 1st", "s/a/b/"},
        {u"regex a\\ b", R"(regex "a\\" "b")"},
        {u"m:a:b:i", "m/a/b/i"},
        // Numbers and dates.
        {u"renumber -5", "renumber -5"},
        {u"renumber 5 first", "renumber +5 1st"},
        {u"shorten keep-ext 8", "shorten keep-ext"},
        {u"date %H%M_%Y%m%d now", R"(date "HHmm_YYYYMMDD" now)"},
        {u"date \"YYYY-MM-DD HH-mm-ss\" exif", "date taken"},
        {u"date \"\" end", R"(date "" end)"},
        // What words cannot say.
        {u"number digits=2 padding:=99", "number padding:=99"},
        {u"\"Make lowercase\" active:=0", "lower off"},
        {u"lower active:=true x:=[1, {\"a\": -0.5}] y:=data(00fF) z:=date(1)",
         "lower active:=true x:=[1, {\"a\": -0.5}] y:=data(00ff) z:=date(1.0)"},
        {u"replace a b \"search term\":=\"c\"", R"(replace "c" "b")"},
        {u"\"Of tomorrow\" b:=1 a:=nan off", R"("Of tomorrow" a:=nan b:=1 off)"},
    };
    for (const auto& [recipe, expected] : cases)
        EXPECT_THAT(answerTo(recipe), StartsWith(expected)) << text::toUtf8(recipe);
}

TEST(RecipeTextTest, TellsWhatIsWrongAndWhere) {
    const std::vector<std::pair<std::u16string, std::string>> cases{
        {u"replace a b frist | lower", "13+5: \"replace\" does not know \"frist\"; did you mean \"first\"?"},
        {u"lowre", "1+5: there is no verb \"lowre\"; did you mean \"lower\"?"},
        {u"number digit=3", "8+7: \"number\" does not know \"digit=3\"; did you mean \"digits=\"?"},
        {u"number order=tkaen", "8+11: \"order=\" does not know \"tkaen\"; did you mean \"taken\"?"},
        {u"date modifed", "6+7: \"modifed\" is no pattern of a date; did you mean \"modified\"?"},
        {u"remove-vowels x", "15+1: \"remove-vowels\" does not know \"x\"; here may stand .ext, ext, name, "
                             "off, whole; it may come from a newer version of tvrn"},
        {u"add start \"x\"", "11+3: the text stands before the place; add TEXT start"},
        {u"add x", "1+3: \"add\" needs a place; it is one of start, end, at NUMBER, before TEXT, after TEXT"},
        {u"trim", "1+4: \"trim\" needs a place; it is end"},
        {u"cut from 3", "1+3: \"cut\" needs an end; to NUMBER, to before TEXT, to after TEXT or for NUMBER"},
        {u"cut to 3 for 2", "10+3: the end of \"to\" is told twice"},
        {u"lower all", "7+3: \"lower\" does not know \"all\"; whole is the whole name, every stands for all "
                       "occurrences"},
        {u"add x end start", "11+5: \"add\" has a place already"},
        {u"lower ext ext", "11+3: \"ext\" comes twice"},
        {u"lower ext name", "11+4: \"name\" contradicts \"ext\""},
        {u"lower a:=1 a:=2", "12+3: \"a\" comes twice"},
        {u"tr a b", "1+2: there is no verb \"tr\"; replace-chars AB C puts C in the place of each A and B"},
        {u"swap", "1+4: \"swap\" has no meaning yet; it may come from a newer version of tvrn"},
        {u"replace a", "1+7: \"replace\" needs 2 texts; an empty text is \"\""},
        {u"drop 300 start", "6+3: 300 is out of range; a number from 0 to 255"},
        {u"path start levels=0", "12+8: 0 is out of range; a number from 1 to 99"},
        {u"add x at -1e3", "10+4: behind \"at\" comes a number"},
        {u"replace \"a", "9+1: the quote has no end"},
        {u"keep \"\\d\"", "7+2: \"\\d\" is no escape; a backslash is \\\\; patterns go into s/…/…/"},
        {u"s/a/b", "1+2: the second or third \"/\" is missing; it is written s/…/…/"},
        {u"s/a/b/gx", "8+1: \"x\" is no flag here; flags are i, and g or one of 1 to 6"},
        {u"s/a/b/ case", "8+4: \"s\" does not know \"case\""},
        {u"add “x” end", "5+1: a typographic quote; quotes of recipes are \" and '"},
        {u"add x\u00a0y end", "6+1: the invisible character U+00A0; within quotes it is \\u{a0}"},
        {u"add \x1b[31m end", "5+4: the invisible character U+001B"},
        {u"x:=1", "1+4: there is no verb"},
        {u"lower x:=", "10+1: a value is missing"},
        {u"\"Nothing\" 3", "11+1: behind a stored name comes KEY:=VALUE, not \"3\""},
        {u" # nothing\n;", "1+10: there is no step in it"},
    };
    for (const auto& [recipe, expected] : cases)
        EXPECT_THAT(answerTo(recipe), StartsWith(expected)) << text::toUtf8(recipe);
}

// A text must not cost more than it says.
TEST(RecipeTextTest, HasLimits) {
    const auto repeated = [](std::u16string_view part, std::size_t count) {
        std::u16string text;
        while (count-- > 0)
            text += part;
        return text;
    };
    EXPECT_EQ(answerTo(repeated(u"\"", RecipeText::mostUnits)), "\"\"");
    EXPECT_THAT(answerTo(repeated(u"'", RecipeText::mostUnits - 1)), HasSubstr("no end"));
    EXPECT_THAT(answerTo(repeated(u"\"", RecipeText::mostUnits + 1)), HasSubstr("at most 1048576"));
    EXPECT_THAT(answerTo(repeated(u"lower|", RecipeText::mostSteps)), StartsWith("lower | lower"));
    EXPECT_THAT(answerTo(repeated(u"lower|", RecipeText::mostSteps + 1)), HasSubstr("at most 10000 steps"));
    EXPECT_THAT(answerTo(u"lower x:=" + repeated(u"[", 64) + u"1" + repeated(u"]", 64)),
                StartsWith("lower x:="));
    EXPECT_THAT(answerTo(u"lower x:=" + repeated(u"[", 65) + u"1"), HasSubstr("more than 64 levels"));
}

/// The steps without those parameters that came later and are 0, which is what they mean where they are
/// absent.
PropertyValue asKnownThen(const PropertyValue& steps, std::string_view told) {
    PropertyArray known;
    for (const auto& step : *steps.asArray()) {
        PropertyDictionary entry = *step.asDictionary();
        PropertyDictionary parameters = *find(entry, "action parameter list")->asDictionary();
        std::erase_if(parameters, [told](const auto& parameter) {
            return parameter.second == PropertyValue(0) &&
                   told.find('"' + parameter.first + "\": ") == told.npos;
        });
        entry.insert_or_assign("action parameter list", std::move(parameters));
        known.emplace_back(std::move(entry));
    }
    return known;
}

// What was written once is read as it was meant then, whatever is added to the language. Lines are only
// ever added to the file: a text, a tab, the chain.
TEST(RecipeTextTest, TextsOfOlderVersionsMeanWhatTheyMeant) {
    std::ifstream golden(TAVRIN_TEST_DATA "/golden-recipes.txt");
    std::string line;
    int count = 0;
    while (std::getline(golden, line)) {
        const auto tab = line.find('\t');
        const auto result = RecipeText::read(text::fromUtf8(line.substr(0, tab)));
        const auto* reading = std::get_if<RecipeText::Reading>(&result);
        ASSERT_TRUE(reading) << line;
        const auto& steps = *find(reading->flatParameterList, "composite actions array");
        const auto chain = line.substr(tab + 1);
        EXPECT_EQ(text::toUtf8(recipe::literal(asKnownThen(steps, chain))), chain);
        ++count;
    }
    EXPECT_GE(count, 43);
}

} // namespace

} // namespace tavrin::test
