#pragma once

#include "actions/ActionObserver.h"
#include "actions/InputContext.h"
#include "actions/ParameterDescription.h"
#include "support/values/PropertyValue.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tavrin {

/// A named set of parameters that interface, presets and preferences reach by key, and the work that they
/// control. An object belongs to one thread: the main thread where the interface edits it, the worker where
/// it is a run's own copy.
///
/// A class tells its parameters in its constructor, each with the field that caches it; the caches are
/// refreshed before an execution whenever a value has changed since the last.
class BaseAction {
  public:
    BaseAction();
    virtual ~BaseAction();
    BaseAction(const BaseAction&) = delete;
    BaseAction& operator=(const BaseAction&) = delete;

    /// The stable identifier, under which parameters are stored; empty for what is in no catalogue.
    [[nodiscard]] virtual std::string actionName() const { return std::string(identity); }
    /// The parameter table, those of the bases first.
    [[nodiscard]] virtual std::span<const ParameterDescription> parameters() const;
    [[nodiscard]] virtual PropertyDictionary defaultParameters() const;

    [[nodiscard]] const PropertyDictionary& parameterList() const { return dic; }
    /// Merges the list, old key forms brought to their present one. Keys that are missing keep their value,
    /// unknown ones are kept too.
    virtual void setParameterList(const PropertyDictionary& list);
    /// A stored list in today's form, old keys beside their present ones.
    [[nodiscard]] virtual PropertyDictionary presentForm(const PropertyDictionary& list) const;

    /// Empty for an absent key; a number in decimal.
    [[nodiscard]] std::u16string getParamString(std::string_view key) const;
    [[nodiscard]] std::int32_t getParamInt(std::string_view key, std::int32_t defaultTo) const;

    /// Whether a run uses it.
    [[nodiscard]] bool isActive() const { return getParamInt("active", 0) == 1; }

    /// Values by key, as observers and the interface see them. An absent value set empties a text, makes a
    /// number 0, and is nothing for a key without a value.
    [[nodiscard]] virtual std::optional<PropertyValue> valueForKey(std::string_view key) const;
    virtual void setValue(const std::optional<PropertyValue>& value, const std::string& key);
    /// The check of a value that the user typed, to be asked before it is stored: the value as it may be
    /// stored under the key.
    [[nodiscard]] virtual PropertyValue validatedValue(const PropertyValue& value,
                                                       std::string_view key) const;

    /// Counts the changes of values.
    [[nodiscard]] std::uint64_t revision() const { return currentRevision; }
    /// Refreshes the caches if a value has changed since the last time.
    void prepare() {
        if (preparedRevision != currentRevision)
            refreshCaches();
    }

    /// The menu text of the action.
    [[nodiscard]] std::u16string userDescription() const;
    [[nodiscard]] std::string description() const;

    /// Observes every key that has a value at this moment. The observer must outlive the observation.
    [[nodiscard]] ActionObservation registerObserverForAllValues(ActionObserver& observer);
    /// The same, for as long as `lifetime` lives.
    void registerObserverForAllValues(ActionObserver& observer, std::weak_ptr<void> lifetime);
    [[nodiscard]] ActionObservation registerObserver(ActionObserver& observer, const std::string& key);

    /// From the phrase of early versions ("fragment selection") to the present key, and back.
    [[nodiscard]] static std::string internalKeyToExternalKey(std::string_view key);
    [[nodiscard]] static std::string externalKeyToInternalKey(std::string_view key);
    /// A copy in which old keys have their present form beside them.
    [[nodiscard]] static PropertyDictionary
    cleanUpPotentiallyOldParameterList(const PropertyDictionary& list);

    /// Adds a row with its value for a new action; a row of the same key is replaced. The field must live as
    /// long as the action. For constructors, and for parts of an action that have fields of their own.
    void addParameter(const ParameterDescription& row);
    void addParameter(const ParameterDescription& row, std::int32_t& field);
    void addParameter(const ParameterDescription& row, std::u16string& field);

  protected:
    /// A constant of the program.
    void setActionName(std::string_view constant) { identity = constant; }
    /// Another default for a new action than that of the row added by the base.
    void setDefault(std::string_view key, ParameterDefault whenNew);
    /// Takes the row of a parameter of the base, which is of no use here, out of the panel.
    void hideParameter(std::string_view key);
    /// The same of one that has no effect here.
    void retireParameter(std::string_view key);

    /// Brings the values into the cached fields. Overrides call their base first, then derive what they need;
    /// no file access and no interface work.
    virtual void prepareParameters();
    /// The first composed character sequence of the text under the key, written back if it was longer.
    std::u16string limitTextFieldInputTo1Character(const std::string& key);

    /// Called when new values are in place, before any observer is told.
    virtual void valuesHaveChanged() {}

    /// The keys on which the observable value `key` depends.
    [[nodiscard]] virtual std::vector<std::string_view>
    keyPathsForValuesAffectingValueForKey(std::string_view key) const;
    /// Announce a change of a value that is about to happen, and its end, to the observers of the key and of
    /// all that depends on it.
    void willChangeValueForKey(const std::string& key);
    void didChangeValueForKey(const std::string& key);
    /// Stores without telling anyone.
    void store(PropertyValue value, std::string_view key);

  private:
    using Field = std::variant<std::monostate, std::int32_t*, std::u16string*>;
    struct Observation {
        std::weak_ptr<void> lifetime;
        ActionObserver* observer;
        std::vector<std::string> keys;
    };

    void refreshCaches();
    void addRow(const ParameterDescription& row, Field field);
    void setUndefinedValue(const std::optional<PropertyValue>& value, const std::string& key);
    [[nodiscard]] std::vector<std::string> observedKeysChangingWith(const std::string& key) const;

    std::string_view identity; ///< the action name
    PropertyDictionary dic;
    std::vector<ParameterDescription> rows;
    std::vector<Field> fields; ///< parallel to `rows`
    std::uint64_t currentRevision = 1;
    std::uint64_t preparedRevision = 0;
    std::vector<Observation> observations;
    std::map<std::string, std::optional<PropertyValue>> valuesBeforeChange;
};

} // namespace tavrin
