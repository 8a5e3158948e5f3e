#include "support/text/RegularExpression.h"

#include "support/text/TextIcu.h"

#include <fmt/core.h>
#include <unicode/uregex.h>

#include <algorithm>
#include <ctime>
#include <vector>

namespace tavrin {

namespace {

// ICU calls back after every 10,000 places that it may have to come back to, which take about 0.15 ms.
constexpr std::int32_t mostStepsAtFirst = 400;
// A step takes longer where a place is costly, such as a back reference far into a long text.
constexpr double mostSecondsBehindFirstStep = 0.05;
constexpr std::int32_t mostBytesToComeBackTo = 8'000'000;

/// ICU takes no null, which is what an empty view may have.
const char16_t* address(std::u16string_view text) { return text.empty() ? u"" : text.data(); }

struct CloseExpression {
    void operator()(URegularExpression* expression) const { uregex_close(expression); }
};

/// Unlike the clock on the wall it stands still while others have the processor.
double secondsOfThread() {
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

} // namespace

struct RegularExpression::Impl {
    Impl(std::u16string_view pattern, CaseSensitivity sensitivity);

    [[nodiscard]] bool begin(std::u16string_view subject);
    [[nodiscard]] bool end();
    [[nodiscard]] bool find();
    void readGroups(std::u16string_view subject);
    template <typename IsMeant> void replace(std::u16string_view replacement, IsMeant isMeant);
    bool endReplacement(std::u16string& result);
    TextRange rangeOfMatch();
    [[nodiscard]] std::int64_t countMatches();

    static UBool U_CALLCONV mayGoOn(const void* context, std::int32_t steps);

    std::unique_ptr<URegularExpression, CloseExpression> expression; ///< null where the pattern is refused
    UErrorCode refusal = U_ZERO_ERROR;
    UParseError place{};
    UErrorCode status = U_ZERO_ERROR; ///< of the last operation
    std::int32_t mostSteps = mostStepsAtFirst;
    double firstStepEnded = 0;
    std::vector<std::u16string_view> groups;
    std::u16string replaced; ///< has all the room that a result may take, once one was made
};

RegularExpression::Impl::Impl(std::u16string_view pattern, CaseSensitivity sensitivity) {
    if (pattern.size() > mostUnits) {
        refusal = U_REGEX_PATTERN_TOO_BIG;
    } else {
        const std::uint32_t flags = sensitivity == CaseSensitivity::insensitive ? UREGEX_CASE_INSENSITIVE : 0;
        expression.reset(uregex_open(address(pattern), text::icu::length(pattern), flags, &place, &refusal));
        uregex_setStackLimit(expression.get(), mostBytesToComeBackTo, &refusal);
        uregex_setMatchCallback(expression.get(), mayGoOn, this, &refusal);
    }
    status = refusal;
}

UBool RegularExpression::Impl::mayGoOn(const void* context, std::int32_t steps) {
    auto& self = *static_cast<Impl*>(const_cast<void*>(context));
    const double now = secondsOfThread();
    if (steps == 1)
        self.firstStepEnded = now;
    return steps < self.mostSteps && now - self.firstStepEnded < mostSecondsBehindFirstStep;
}

/// The subject must live until the end.
bool RegularExpression::Impl::begin(std::u16string_view subject) {
    status = refusal;
    if (subject.size() > mostUnits && U_SUCCESS(status))
        status = U_BUFFER_OVERFLOW_ERROR;
    uregex_setText(expression.get(), address(subject), text::icu::length(subject), &status);
    return U_SUCCESS(status);
}

bool RegularExpression::Impl::end() {
    if (status == U_REGEX_STOPPED_BY_CALLER)
        mostSteps = std::max(mostSteps / 2, 1);
    return U_SUCCESS(status);
}

bool RegularExpression::Impl::endReplacement(std::u16string& result) {
    if (!end())
        return false;
    result += replaced;
    return true;
}

TextRange RegularExpression::Impl::rangeOfMatch() {
    const auto start = static_cast<std::size_t>(uregex_start(expression.get(), 0, &status));
    return {start, static_cast<std::size_t>(uregex_end(expression.get(), 0, &status)) - start};
}

bool RegularExpression::Impl::find() {
    return uregex_findNext(expression.get(), &status) && U_SUCCESS(status);
}

void RegularExpression::Impl::readGroups(std::u16string_view subject) {
    const std::int32_t count = uregex_groupCount(expression.get(), &status);
    for (std::int32_t i = 0; i <= count; ++i) {
        const std::int32_t start = uregex_start(expression.get(), i, &status);
        const std::int32_t end = uregex_end(expression.get(), i, &status);
        groups.push_back(start < 0 ? std::u16string_view()
                                   : subject.substr(static_cast<std::size_t>(start),
                                                    static_cast<std::size_t>(end - start)));
    }
}

std::int64_t RegularExpression::Impl::countMatches() {
    std::int64_t count = 0;
    while (find())
        ++count;
    uregex_reset(expression.get(), 0, &status);
    return count;
}

template <typename IsMeant>
void RegularExpression::Impl::replace(std::u16string_view replacement, IsMeant isMeant) {
    replaced.resize(mostUnits);
    if (replacement.size() > mostUnits)
        status = U_BUFFER_OVERFLOW_ERROR;
    char16_t* at = replaced.data();
    auto room = text::icu::length(replaced);
    for (std::int64_t index = 0; find(); ++index) {
        // ICU goes on from the last match, so others are to be copied.
        const auto text = isMeant(index) ? replacement : u"$0";
        uregex_appendReplacement(expression.get(), address(text), text::icu::length(text), &at, &room,
                                 &status);
    }
    uregex_appendTail(expression.get(), &at, &room, &status);
    replaced.resize(static_cast<std::size_t>(at - replaced.data()));
}

RegularExpression::RegularExpression() : RegularExpression(u"", CaseSensitivity::sensitive) {}

RegularExpression::RegularExpression(std::u16string_view pattern, CaseSensitivity sensitivity)
    : impl(std::make_unique<Impl>(pattern, sensitivity)) {}

RegularExpression::RegularExpression(RegularExpression&&) noexcept = default;
RegularExpression& RegularExpression::operator=(RegularExpression&&) noexcept = default;
RegularExpression::~RegularExpression() = default;

std::span<const std::u16string_view>
RegularExpression::captureComponentsMatched(std::u16string_view subject) {
    impl->groups.clear();
    if (impl->begin(subject) && impl->find())
        impl->readGroups(subject);
    if (!impl->end())
        impl->groups.clear();
    return impl->groups;
}

bool RegularExpression::replaceOccurrences(std::u16string_view subject, std::u16string_view replacement,
                                           std::u16string& result, std::int32_t mode) {
    if (impl->begin(subject)) {
        const std::int64_t count = mode > 6 ? impl->countMatches() : 0; // the others count from the start
        impl->replace(replacement, [=](std::int64_t index) { return isOccurrenceMeant(mode, index, count); });
    }
    return impl->endReplacement(result);
}

bool RegularExpression::replaceMatch(std::u16string_view subject, std::u16string_view replacement,
                                     std::int64_t index, std::u16string& result) {
    if (impl->begin(subject))
        impl->replace(replacement, [=](std::int64_t each) { return each == index; });
    return impl->endReplacement(result);
}

std::vector<TextRange> RegularExpression::matches(std::u16string_view subject) {
    std::vector<TextRange> found;
    if (impl->begin(subject))
        while (impl->find())
            found.push_back(impl->rangeOfMatch());
    return impl->end() ? found : std::vector<TextRange>();
}

std::string RegularExpression::failure() const {
    if (U_SUCCESS(impl->status))
        return {};
    const char* const name = u_errorName(impl->status);
    if (impl->status == U_REGEX_STOPPED_BY_CALLER)
        return fmt::format("{}, the name took too long", name);
    if (impl->expression || impl->place.offset <= 0)
        return name;
    return fmt::format("{} at character {} of the pattern", name, impl->place.offset);
}

} // namespace tavrin
