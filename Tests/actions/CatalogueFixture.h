#pragma once

#include "actions/ActionList.h"
#include "common/Testing.h"
#include "platform/propertylists/PropertyList.h"
#include "platform/propertylists/UserDefaults.h"

namespace tavrin::test {

/// The new name that an action gives to one.
inline std::u16string run(BaseRenameAction& action, std::u16string name, std::int32_t rank = 1,
                          const std::string& path = "/photos/trip/a.jpg", std::int32_t lastRank = 1) {
    InputContext input;
    input.path = path;
    input.currentName = std::move(name);
    input.rank = rank;
    input.lastRank = lastRank;
    OutputContext output;
    action.executeWithInputContext(input, output);
    return output.newName;
}

/// Sets when a file was last changed: local time as "2024-06-14 07:31:05".
inline void setModificationTime(const std::string& path, const std::string& localTime) {
    std::tm fields{};
    EXPECT_NE(::strptime(localTime.c_str(), "%Y-%m-%d %H:%M:%S", &fields), nullptr) << localTime;
    fields.tm_isdst = -1;
    const timespec times[2] = {{0, UTIME_OMIT}, {std::mktime(&fields), 0}};
    EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0) << path;
}

/// What comes back of parameters that are stored in a property list; throws where that fails.
inline PropertyDictionary storedAndRead(const PropertyDictionary& parameters) {
    const auto read = PropertyList::fromBytes(PropertyList::toXml(PropertyValue(parameters)));
    return *std::get<PropertyValue>(read).asDictionary();
}

/// The catalogue with the menus of the program, and user defaults that nobody else has.
class CatalogueFixture : public ::testing::Test {
  protected:
    CatalogueFixture() {
        UserDefaults::setSharedInstance(&defaults);
        ActionList::setSharedActionList(&catalogue);
    }
    ~CatalogueFixture() override {
        ActionList::setSharedActionList(nullptr);
        UserDefaults::setSharedInstance(nullptr);
    }

    [[nodiscard]] std::unique_ptr<BaseRenameAction> make(const std::string& name,
                                                         const PropertyDictionary& parameters = {}) {
        auto action = catalogue.newActionForName(name);
        if (!parameters.empty())
            action->setParameterList(parameters);
        return action;
    }

    UserDefaults defaults;
    ActionList catalogue;
};

/// Writes down what it is told.
class RecordingObserver : public ActionObserver {
  public:
    struct Change {
        std::string key;
        std::optional<PropertyValue> oldValue;
        std::optional<PropertyValue> newValue;
        bool operator==(const Change&) const = default;
    };
    void observeValueForKeyPath(const std::string& keyPath, BaseAction&,
                                const std::optional<PropertyValue>& oldValue,
                                const std::optional<PropertyValue>& newValue) override {
        changes.push_back({keyPath, oldValue, newValue});
        then();
    }
    [[nodiscard]] std::vector<std::string> keys() const {
        std::vector<std::string> keys;
        for (const auto& change : changes)
            keys.push_back(change.key);
        return keys;
    }
    std::vector<Change> changes;
    std::function<void()> then = [] {};
};

} // namespace tavrin::test
