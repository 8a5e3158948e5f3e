#include "shell/start/UpdateCheck.h"

#include "documents/UpdateFeed.h"
#include "platform/processes/RunLoop.h"
#include "platform/propertylists/PropertyList.h"
#include "platform/propertylists/UserDefaults.h"
#include "shell/asking/FrontEnd.h"
#include "support/application/DebugLog.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace tavrin {

namespace {

constexpr const char* intervalKey = "SUScheduledCheckInterval";
constexpr const char* lastCheckKey = "SULastCheckTime";
constexpr const char* skippedKey = "SUSkippedVersion";

constexpr double shortestInterval = 3600;
constexpr double longestInterval = 1e9;
constexpr double shortestWait = 10;     // the start has enough to do
constexpr double longestWait = 86400;   // the clock may be set meanwhile
constexpr double waitForRun = 600;      // a message would be in the way of its questions
constexpr std::size_t shownLength = 40; // of a version in a message

/// A text of the feed as a message may show it.
std::string shown(std::string_view utf8) {
    std::u16string result;
    for (const char16_t unit : text::fromUtf8(utf8)) {
        if (!text::isControl(unit) && result.size() < shownLength)
            result += unit;
    }
    return text::toUtf8(result);
}

std::string shownVersion(const UpdateFeedItem& item) {
    return shown(item.shortVersion.empty() ? item.version : item.shortVersion);
}

} // namespace

UpdateCheck::UpdateCheck(ShellServices& shared, Options newOptions)
    : services(shared), options(std::move(newOptions)) {}

UpdateCheck::~UpdateCheck() = default;

bool UpdateCheck::isOn() const {
    return UpdateFeed::ofDefaults(services.defaults).place != UpdateFeed::Place::none;
}

// ---- from time to time

void UpdateCheck::start() {
    isStarted = true;
    setUpdateCheckInterval(services.defaults.floatForKey(intervalKey));
}

void UpdateCheck::setUpdateCheckInterval(double seconds) {
    interval = seconds > 0 ? std::clamp(seconds, shortestInterval, longestInterval) : 0;
    schedule();
}

double UpdateCheck::secondsToNextCheck() const {
    const auto stored = services.defaults.objectForKey(lastCheckKey);
    const PropertyDate* last = stored ? stored->asDate() : nullptr;
    const double passed = last ? options.now() - last->secondsSince2001 : interval;
    // A last check in the future tells of a clock that was wrong.
    return passed >= 0 ? interval - passed : 0;
}

void UpdateCheck::schedule() {
    timer.reset();
    if (!isStarted || interval == 0 || !isOn())
        return;
    const double wait = std::clamp(secondsToNextCheck(), shortestWait, longestWait);
    timer = services.runLoop.startTimer(std::chrono::milliseconds(std::llround(wait * 1000)), false,
                                        [this] { timeHasCome(); });
}

void UpdateCheck::timeHasCome() {
    if (secondsToNextCheck() > 0) {
        schedule();
        return;
    }
    if (options.mayInterrupt()) {
        check(Asker::timer);
        schedule();
        return;
    }
    timer = services.runLoop.startTimer(std::chrono::milliseconds(std::llround(waitForRun * 1000)), false,
                                        [this] { timeHasCome(); });
}

// ---- one check

void UpdateCheck::checkForUpdatesNow() { check(Asker::user); }

void UpdateCheck::check(Asker asker) {
    isUserWaiting = isUserWaiting || asker == Asker::user;
    if (isUnderWay)
        return;
    const UpdateFeed feed = UpdateFeed::ofDefaults(services.defaults);
    if (asker == Asker::timer)
        services.defaults.setObject(lastCheckKey, PropertyDate{options.now()});
    switch (feed.place) {
    case UpdateFeed::Place::none:
        fail("no address is set", asker);
        return;
    case UpdateFeed::Place::unknown:
        fail("this is no address of a feed", asker);
        return;
    case UpdateFeed::Place::file: {
        const auto read = UpdateFeed::readFile(feed.location);
        if (const auto* error = std::get_if<UpdateFeedError>(&read))
            fail(error->message, asker);
        else
            readFeed(std::get<std::string>(read), asker);
        return;
    }
    case UpdateFeed::Place::web:
        isUnderWay = true;
        services.frontEnd.fetchAddress(
            feed.location, UpdateFeedReader::sizeLimit,
            [this, asker, alive = std::weak_ptr(lifetime)](const FetchedAddress& answer) {
                if (alive.lock())
                    received(answer, asker);
            });
        return;
    }
}

void UpdateCheck::received(const FetchedAddress& answer, Asker asker) {
    isUnderWay = false;
    if (isUserWaiting)
        asker = Asker::user;
    if (!answer.bytes)
        fail(answer.error, asker);
    else
        readFeed(*answer.bytes, asker);
}

void UpdateCheck::readFeed(const std::string& bytes, Asker asker) {
    const UpdateFeedReader::Result feed = UpdateFeedReader::read(bytes);
    if (const auto* error = std::get_if<UpdateFeedError>(&feed)) {
        fail(error->message, asker);
        return;
    }
    isUserWaiting = false;
    const SoftwareUpdater updater(options.version);
    const auto& items = std::get<std::vector<UpdateFeedItem>>(feed);
    const UpdateFeedItem* best = updater.bestValidUpdateInAppcast(items);
    const bool isNews = best && updater.isNewer(*best);
    if (isNews && (asker == Asker::user || (!isSkipped(*best) && options.mayInterrupt())))
        offer(*best);
    else if (asker == Asker::user)
        tellThatThereIsNone();
}

void UpdateCheck::fail(const std::string& reason, Asker asker) {
    isUserWaiting = false;
    debugLog("updates: {}", reason);
    if (asker == Asker::user)
        services.frontEnd.presentError(fmt::format("The feed of updates can't be read. Reason: {}.", reason));
}

bool UpdateCheck::isSkipped(const UpdateFeedItem& item) const {
    const auto skipped = services.defaults.objectForKey(skippedKey);
    return skipped && textOrData(*skipped) == text::fromUtf8(item.version);
}

void UpdateCheck::offer(const UpdateFeedItem& item) {
    const std::optional<std::string> page = UpdateFeed::pageOf(item);
    Alert alert{
        .kind = AlertKind::updateAvailable,
        .style = AlertStyle::informational,
        .title = fmt::format("Tavrin {} is available.", shownVersion(item)),
        .text = fmt::format("You have Tavrin {}. Nothing is loaded or installed by itself.", options.version),
        .buttons = {"OK"}};
    if (page)
        alert.buttons = {"Show Page", "Skip This Version", "Later"};
    services.frontEnd.showAlert(alert,
                                [this, page, version = text::fromUtf8(item.version)](AlertAnswer answer) {
                                    if (!page)
                                        return;
                                    if (answer.button == 0)
                                        services.frontEnd.openAddress(*page);
                                    else if (answer.button == 1)
                                        services.defaults.setObject(skippedKey, version);
                                });
}

void UpdateCheck::tellThatThereIsNone() {
    services.frontEnd.showAlert({.kind = AlertKind::noUpdate,
                                 .style = AlertStyle::informational,
                                 .title = "There is no newer version.",
                                 .text = fmt::format("You have Tavrin {}.", options.version),
                                 .buttons = {"OK"}},
                                [](AlertAnswer) {});
}

} // namespace tavrin
