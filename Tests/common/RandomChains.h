#pragma once

#include "actions/ActionFamilies.h"
#include "common/Recipes.h"
#include "documents/recipe/RecipeWords.h"
#include "support/text/Text.h"

#include <cmath>
#include <random>

namespace tavrin::test {

/// Chains that words suffice for, and chains that they do not.
class RandomChains {
  public:
    explicit RandomChains(unsigned seed) : random(seed) {}

    PropertyDictionary next() {
        std::vector<Step> steps(1 + below(3));
        for (auto& step : steps)
            step = below(20) == 0 ? unknownStep() : knownStep();
        return chain(steps);
    }

    /// A step that there is.
    Step knownStep() {
        // These have forms of their own.
        static const std::vector<std::string> special{"Reg Ex Replacement",
                                                      "Reg Ex Substitution",
                                                      "Remove anywhere",
                                                      "Rename to date",
                                                      "Move text after existing text",
                                                      "Change numbers",
                                                      "MP3 rename",
                                                      "Replace characters"};
        const auto& entry = allActions()[below(allActions().size())];
        Step step{below(2) == 0 ? oneOf(special) : std::string(entry.name), {}};
        for (const auto& row : vocabulary.named(step.action)->rows())
            if (below(3) == 0)
                step.parameters.insert_or_assign(std::string(row.key), valueFor(row));
        if (below(10) == 0)
            step.parameters.insert_or_assign(key(), anyValue());
        if (below(20) == 0)
            step.parameters.insert_or_assign("search term", text());
        if (step.parameters.contains("datePatternIndex") || step.parameters.contains("timePatternIndex"))
            step.parameters.insert_or_assign("version", 1);
        return step;
    }

    std::size_t below(std::size_t count) { return random() % count; }

    std::u16string text() {
        // What has a meaning, and what must not get one.
        static const std::vector<std::u16string> pieces{
            u"a",      u"B",      u"/",      u",",    u":",      u"!",      u"@",          u"~",
            u"%",      u"\\",     u"\\\\",   u"\"",   u"'",      u" ",      u"|",          u";",
            u"#",      u"=",      u":=",     u"\n",   u"\t",     u"\x1b",   u"\u00e9",     u"\u0301",
            u"\u00a0", u"\u200b", u"\u2028", u"“",    u"\xDC80", u"\xD83D", u"\U0001F600", u"\ufeff",
            u"$1",     u"(.+)",   u"start",  u"case", u"last",   u"off",    u"whole",      u"every",
            u"<Song>", u"1",      u"-",      u"IMG_"};
        std::u16string text;
        for (auto count = below(5); count > 0; --count)
            text += pieces[below(below(3) == 0 ? pieces.size() : 12)];
        return text;
    }

  private:
    template <typename Values> typename Values::value_type oneOf(const Values& values) {
        return values[below(values.size())];
    }

    PropertyValue anyValue(int depth = 0) {
        switch (below(depth < 3 ? 9 : 7)) {
        case 0:
            return static_cast<std::int64_t>(random()) - std::int64_t{0x80000000};
        case 1:
            return below(2) == 0;
        case 2:
            return oneOf(std::vector{0.5, 1.0, -0.0, 1e300, 1e-9, HUGE_VAL, -HUGE_VAL, std::nan("")});
        case 3:
            return PropertyDate{static_cast<double>(below(1000)) / 4};
        case 4:
            return PropertyData{std::vector<std::uint8_t>(below(3), 0xA0)};
        case 5:
            return std::int64_t{1} << below(63);
        case 6:
            return text();
        case 7: {
            PropertyArray values;
            for (auto count = below(3); count > 0; --count)
                values.push_back(anyValue(depth + 1));
            return values;
        }
        }
        PropertyDictionary values;
        for (auto count = below(3); count > 0; --count)
            values.insert_or_assign(key(), anyValue(depth + 1));
        return values;
    }

    std::string key() { return oneOf(std::vector<std::string>{"x", "a1_", "Not used", "ü", "\"", ""}); }

    PropertyValue valueFor(const ParameterDescription& row) {
        if (below(12) == 0)
            return anyValue();
        if (row.isText())
            return text();
        if (!row.choices.empty() && below(8) != 0)
            return oneOf(row.choices).value;
        return static_cast<int>(below(12)) - 2;
    }

    Step unknownStep() {
        Step step{"Of tomorrow " + text::toUtf8(text::precomposed(u"\u00e9")), {}};
        for (auto count = below(4); count > 0; --count)
            step.parameters.insert_or_assign(below(4) == 0 ? "active" : key(), anyValue());
        return step;
    }

    std::mt19937 random;
    RecipeVocabulary vocabulary;
};

} // namespace tavrin::test
