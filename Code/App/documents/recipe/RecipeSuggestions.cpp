#include "documents/recipe/RecipeSuggestions.h"

#include "support/text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

namespace tavrin::recipe {

namespace {

using Kind = RecipeSynonym::Kind;

struct Answer {
    std::string_view word;
    std::string_view hint;
};

/// Verbs that seem near and would do something else.
constexpr std::array<Answer, 5> nearVerbs{{
    {"all", "whole is the whole name, every stands for all occurrences"},
    {"tr", "replace-chars AB C puts C in the place of each A and B"},
    {"pad", "renumber digits=3 fills up numbers, number end digits=3 adds one"},
    {"strip", "trim end takes blanks away, remove TEXT and cut take others"},
    {"camel", "split-camel parts the words of CamelCase"},
}};

/// Kept for what may come; no text that means something else today will ever hold them.
constexpr std::array<std::string_view, 9> reservedWords{"if",   "unless", "with",      "into", "tidy",
                                                        "swap", "ascii",  "normalize", "lua"};

constexpr std::string_view newerVersion = "it may come from a newer version of tvrn";

/// The nearest of the words and of the synonyms that stand for one of them; empty if none is near.
std::string nearest(std::string_view word, const std::vector<RecipeCandidate>& allowed, bool areVerbs) {
    std::vector<std::string> known;
    for (const auto& each : allowed)
        known.push_back(each.word);
    for (const auto& synonym : recipeSynonyms()) {
        const std::string_view sign = synonym.kind == Kind::option ? "=" : "";
        const auto meaning = std::string(synonym.meaning).append(sign);
        if (areVerbs == (synonym.kind == Kind::verb) &&
            std::ranges::find(allowed, meaning, &RecipeCandidate::word) != allowed.end())
            known.push_back(std::string(synonym.synonym).append(sign));
    }
    const std::vector<std::string_view> views(known.begin(), known.end());
    return std::string(nearestWord(word, views));
}

std::string didYouMean(std::string_view word) { return fmt::format("did you mean \"{}\"?", word); }

} // namespace

std::string shown(const RecipeToken& token) { return text::toUtf8(token.text); }

void fail(const RecipeToken& token, std::string message, std::string hint) {
    throw RecipeMistake{token.place, std::move(message), std::move(hint)};
}

std::string suggestion(std::string_view word, const std::vector<RecipeCandidate>& allowed) {
    if (const auto near = nearest(word, allowed, false); !near.empty())
        return didYouMean(near);
    std::vector<std::string_view> words;
    for (const auto& each : allowed)
        words.push_back(each.word);
    return words.empty() ? std::string()
                         : fmt::format("here may stand {}; {}", fmt::join(words, ", "), newerVersion);
}

void failVerb(const RecipeToken& token, const std::vector<RecipeCandidate>& verbs) {
    const std::string word = shown(token);
    if (std::ranges::find(reservedWords, word) != reservedWords.end())
        fail(token, fmt::format("\"{}\" has no meaning yet", word), std::string(newerVersion));
    std::string hint = fmt::format("\"tvrn actions\" lists them; {}", newerVersion);
    const auto answer = std::ranges::find(nearVerbs, word, &Answer::word);
    if (answer != nearVerbs.end())
        hint = answer->hint;
    else if (const auto near = nearest(word, verbs, true); !near.empty())
        hint = didYouMean(near);
    fail(token, fmt::format("there is no verb \"{}\"", word), std::move(hint));
}

std::string_view hintOnAll() { return nearVerbs.front().hint; }

} // namespace tavrin::recipe
