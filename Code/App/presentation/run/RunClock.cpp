#include "presentation/run/RunClock.h"

#include "presentation/QtText.h"

#include <algorithm>
#include <cmath>

namespace tavrin {

namespace {

constexpr std::chrono::seconds window(2);
constexpr std::chrono::seconds firstTold(3);
constexpr std::chrono::seconds wrongForLong(3);

} // namespace

void RunClock::start(Time now) {
    *this = RunClock();
    started = now;
    lastTold = now;
}

void RunClock::tell(Time now, std::int32_t done, std::int32_t total) {
    if (pausedAt)
        return;
    if (!samples.empty() && done < samples.back().done)
        samples.clear(); // another stage counts anew
    samples.push_back({now, done});
    while (samples.size() > 2 && now - samples[1].time >= window)
        samples.pop_front();
    const Seconds span = now - samples.front().time;
    if (span.count() > 0.4)
        perSecond = (done - samples.front().done) / span.count();
    if (perSecond && *perSecond > 0 && now - started >= firstTold)
        showLeft(now, Seconds((total - done) / *perSecond));
    lastTold = now;
}

void RunClock::showLeft(Time now, Seconds estimate) {
    if (shownLeft)
        shownLeft = std::max(Seconds(0), *shownLeft - Seconds(now - lastTold));
    if (!shownLeft || estimate <= *shownLeft) {
        shownLeft = estimate;
        wrongSince.reset();
        return;
    }
    if (!wrongSince)
        wrongSince = now;
    if (now - *wrongSince < wrongForLong)
        return;
    shownLeft = estimate;
    wrongSince.reset();
}

void RunClock::pause(Time now) {
    if (!pausedAt)
        pausedAt = now;
}

void RunClock::goOn(Time now) {
    if (!pausedAt)
        return;
    const auto pause = now - *pausedAt;
    started += pause;
    lastTold += pause;
    if (wrongSince)
        *wrongSince += pause;
    for (Sample& sample : samples)
        sample.time += pause;
    pausedAt.reset();
}

QString RunClock::text() const {
    QStringList parts{rateText(), timeLeftText()};
    parts.removeAll(QString());
    return parts.join(" · ");
}

QString RunClock::rateText() const {
    if (!perSecond || *perSecond <= 0)
        return {};
    if (*perSecond >= 1)
        //: Of items renamed
        return tr("%L1 a second").arg(std::lround(*perSecond));
    //: Of items renamed: one item in so many seconds
    return tr("1 every %L1 s").arg(std::lround(1 / *perSecond));
}

QString RunClock::timeLeftText() const {
    if (!shownLeft)
        return {};
    const double seconds = shownLeft->count();
    if (seconds < 1)
        return tr("less than 1 s left");
    if (seconds < 57.5) {
        const long step = seconds < 10 ? 1 : 5;
        return tr("about %L1 s left").arg(std::lround(seconds / static_cast<double>(step)) * step);
    }
    const long minutes = std::max(1L, std::lround(seconds / 60));
    if (minutes < 60)
        return tr("about %L1 min left").arg(minutes);
    const long tens = std::lround(static_cast<double>(minutes) / 10) * 10;
    return tens % 60 == 0 ? tr("about %L1 h left").arg(tens / 60)
                          : tr("about %L1 h %L2 min left").arg(tens / 60).arg(tens % 60);
}

} // namespace tavrin
