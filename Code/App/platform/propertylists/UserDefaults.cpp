#include "platform/propertylists/UserDefaults.h"

#include "platform/desktop/UserFolders.h"
#include "platform/propertylists/DefaultsFile.h"
#include "support/text/Text.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <mutex>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

namespace tavrin {

namespace {

std::atomic<UserDefaults*> shared = nullptr;

/// One observation. Its lock keeps the handle from dying while the observer runs on another thread.
struct Observation {
    std::string key;
    std::function<void()> observer;
    std::recursive_mutex mutex;
    bool ended = false;

    void call() {
        const std::lock_guard lock(mutex);
        if (!ended)
            observer();
    }
    void end() {
        const std::lock_guard lock(mutex);
        ended = true;
    }
};

using Keys = std::set<std::string, std::less<>>;

void addKeys(const PropertyDictionary& values, Keys& into) {
    for (const auto& [key, value] : values)
        into.insert(key);
}

/// The number at the start of a text, 0 where there is none.
double realValue(const PropertyValue& value) {
    if (const double* real = value.asReal())
        return *real;
    if (const auto* integer = value.asInteger())
        return static_cast<double>(*integer);
    const auto* text = value.asText();
    if (text == nullptr)
        return intValue(value);
    const std::string digits = text::toUtf8(*text);
    const std::size_t start = std::min(digits.find_first_not_of(" \t\r\n"), digits.size());
    double number = 0;
    std::from_chars(digits.data() + start, digits.data() + digits.size(), number);
    return number;
}

} // namespace

struct UserDefaults::Impl {
    std::optional<DefaultsFile> file; ///< guarded by fileMutex
    mutable std::mutex fileMutex;     ///< taken before `mutex`
    std::chrono::milliseconds lockPatience{0};

    mutable std::mutex mutex; ///< guards what follows
    PropertyDictionary process;
    PropertyDictionary persistent;
    PropertyDictionary registered;
    Keys changedKeys;        ///< since the file was last read or written
    bool wasEmptied = false; ///< the file's own values are to be forgotten
    std::vector<std::weak_ptr<Observation>> observations;

    const PropertyValue* lookUp(std::string_view key) const {
        for (const PropertyDictionary* layer : {&process, &persistent, &registered})
            if (const PropertyValue* value = find(*layer, key))
                return value;
        return nullptr;
    }

    template <typename Result>
    Result with(std::string_view key, Result (*convert)(const PropertyValue&)) const {
        const std::lock_guard lock(mutex);
        const PropertyValue* value = lookUp(key);
        return value != nullptr ? convert(*value) : Result();
    }

    /// Calls the observers of the keys; no lock may be held.
    void notify(const Keys& keys) {
        std::vector<std::shared_ptr<Observation>> concerned;
        {
            const std::lock_guard lock(mutex);
            std::erase_if(observations, [](const auto& observation) { return observation.expired(); });
            for (const auto& weak : observations)
                if (auto observation = weak.lock(); observation && keys.contains(observation->key))
                    concerned.push_back(std::move(observation));
        }
        for (const auto& observation : concerned)
            observation->call();
    }

    /// `stored` with this process's changes on top; for all other keys the file is right.
    PropertyDictionary merged(PropertyDictionary stored, const Keys& changed, bool emptied) const {
        if (emptied)
            stored.clear();
        for (const std::string& key : changed) {
            stored.erase(key);
            if (const PropertyValue* value = find(persistent, key))
                stored.emplace(key, *value);
        }
        return stored;
    }

    bool synchronizeFile(Keys& changedByOthers);
    bool exchangeWithFile(const Keys& changed, bool emptied, PropertyDictionary& current);
    void adopt(PropertyDictionary current, Keys& changedByOthers);
};

/// Reads the file, writes it where it differs, and tells in `current` what it holds now.
bool UserDefaults::Impl::exchangeWithFile(const Keys& changed, bool emptied, PropertyDictionary& current) {
    const bool hasChanges = emptied || !changed.empty();
    const auto fileLock = file->makeFolder() ? FileLock::take(file->lockPath(), lockPatience) : std::nullopt;
    if (!fileLock && hasChanges)
        return false;
    auto stored = file->load();
    {
        const std::lock_guard lock(mutex);
        // Without a file to read, what this process knows is all there is.
        current = stored ? merged(*stored, changed, emptied) : persistent;
    }
    if (stored ? current == *stored : current.empty())
        return true;
    return fileLock && file->mayBeReplaced() && file->store(current);
}

bool UserDefaults::Impl::synchronizeFile(Keys& changedByOthers) {
    Keys changed;
    bool emptied = false;
    {
        const std::lock_guard lock(mutex);
        changed.swap(changedKeys);
        emptied = std::exchange(wasEmptied, false);
    }
    PropertyDictionary current;
    const bool succeeded = exchangeWithFile(changed, emptied, current);
    const std::lock_guard lock(mutex);
    if (succeeded) {
        adopt(merged(std::move(current), changedKeys, wasEmptied), changedByOthers);
    } else {
        changedKeys.merge(changed);
        wasEmptied = wasEmptied || emptied;
    }
    return succeeded;
}

void UserDefaults::Impl::adopt(PropertyDictionary current, Keys& changedByOthers) {
    for (const auto& [key, value] : current)
        if (const PropertyValue* former = find(persistent, key); former == nullptr || !(*former == value))
            changedByOthers.insert(key);
    for (const auto& [key, value] : persistent)
        if (!current.contains(key))
            changedByOthers.insert(key);
    persistent = std::move(current);
}

UserDefaults::UserDefaults() : impl(std::make_unique<Impl>()) {}

UserDefaults::UserDefaults(std::string path, std::chrono::milliseconds lockPatience)
    : impl(std::make_unique<Impl>()) {
    impl->lockPatience = lockPatience;
    impl->file.emplace(std::move(path));
    if (auto stored = impl->file->load())
        impl->persistent = std::move(*stored);
}

UserDefaults::~UserDefaults() {
    UserDefaults* self = this;
    shared.compare_exchange_strong(self, nullptr);
}

std::string UserDefaults::defaultPath() {
    return UserFolders::configuration() + "/net.calderwick.tvrn9.plist";
}

UserDefaults& UserDefaults::sharedInstance() {
    UserDefaults* const instance = shared.load();
    if (instance == nullptr)
        throw std::logic_error("no user defaults are registered");
    return *instance;
}

void UserDefaults::setSharedInstance(UserDefaults* instance) { shared = instance; }

void UserDefaults::registerDefaults(const PropertyDictionary& values) {
    Keys keys;
    {
        const std::lock_guard lock(impl->mutex);
        for (const auto& [key, value] : values)
            impl->registered.insert_or_assign(key, value);
    }
    addKeys(values, keys);
    impl->notify(keys);
}

std::optional<PropertyValue> UserDefaults::objectForKey(std::string_view key) const {
    const std::lock_guard lock(impl->mutex);
    const PropertyValue* value = impl->lookUp(key);
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

int UserDefaults::integerForKey(std::string_view key) const { return impl->with(key, intValue); }

bool UserDefaults::boolForKey(std::string_view key) const { return impl->with(key, boolValue); }

double UserDefaults::floatForKey(std::string_view key) const { return impl->with(key, realValue); }

void UserDefaults::setObject(std::string_view key, PropertyValue value) {
    {
        const std::lock_guard lock(impl->mutex);
        impl->persistent.insert_or_assign(std::string(key), std::move(value));
        impl->changedKeys.emplace(key);
    }
    impl->notify({std::string(key)});
}

void UserDefaults::removeObject(std::string_view key) {
    {
        const std::lock_guard lock(impl->mutex);
        if (const auto place = impl->persistent.find(key); place != impl->persistent.end())
            impl->persistent.erase(place);
        impl->changedKeys.emplace(key);
    }
    impl->notify({std::string(key)});
}

void UserDefaults::setProcessObject(std::string_view key, PropertyValue value) {
    {
        const std::lock_guard lock(impl->mutex);
        impl->process.insert_or_assign(std::string(key), std::move(value));
    }
    impl->notify({std::string(key)});
}

void UserDefaults::removePersistentDomain() {
    Keys keys;
    {
        const std::lock_guard lock(impl->mutex);
        addKeys(impl->persistent, keys);
        impl->persistent.clear();
        impl->changedKeys.clear();
        impl->wasEmptied = true;
    }
    impl->notify(keys);
}

bool UserDefaults::synchronize() {
    Keys changedByOthers;
    bool succeeded = true;
    {
        const std::lock_guard lock(impl->fileMutex);
        if (impl->file)
            succeeded = impl->synchronizeFile(changedByOthers);
    }
    impl->notify(changedByOthers);
    return succeeded;
}

UserDefaults::Copy UserDefaults::copyFileAside(std::string_view label) const {
    const std::lock_guard lock(impl->fileMutex);
    if (!impl->file)
        return {};
    auto copied = impl->file->copyAside(label);
    if (const int* error = std::get_if<int>(&copied))
        return {{}, std::generic_category().message(*error)};
    return {std::get<std::string>(std::move(copied)), std::nullopt};
}

void UserDefaults::leaveFileAlone() {
    const std::lock_guard lock(impl->fileMutex);
    impl->file.reset();
}

std::shared_ptr<void> UserDefaults::observe(std::string key, std::function<void()> observer) {
    auto observation = std::make_shared<Observation>();
    observation->key = std::move(key);
    observation->observer = std::move(observer);
    const std::lock_guard lock(impl->mutex);
    impl->observations.emplace_back(observation);
    Observation* const watched = observation.get();
    return {watched, [kept = std::move(observation)](Observation*) { kept->end(); }};
}

} // namespace tavrin
