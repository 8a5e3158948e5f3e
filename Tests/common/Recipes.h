#pragma once

#include "common/Testing.h"
#include "support/values/PropertyValue.h"

namespace tavrin::test {

/// One action of a chain, and the parameters that differ from its defaults.
struct Step {
    std::string action;
    PropertyDictionary parameters;
};

/// The list of parameters of a chain with these steps.
inline PropertyDictionary chain(const std::vector<Step>& steps) {
    PropertyArray entries;
    for (const Step& step : steps)
        entries.emplace_back(PropertyDictionary{{"action name", text::fromUtf8(step.action)},
                                                {"action parameter list", step.parameters}});
    return {{"composite actions array", std::move(entries)}, {"currentActionIndex", 0}};
}

/// The settings list of a droplet with this chain.
inline PropertyDictionary dropletList(PropertyDictionary composite, PropertyDictionary globalSettings) {
    return {
        {"Droplet Settings", PropertyDictionary()},
        {"Host Application Settings", PropertyDictionary{{"composite action", std::move(composite)},
                                                         {"global settings", std::move(globalSettings)}}}};
}

/// The one of a droplet that adds a text to names.
inline PropertyDictionary dropletThatAdds(std::u16string text, PropertyDictionary globalSettings) {
    return dropletList(chain({{"Add to end", {{"string", std::move(text)}}}}), std::move(globalSettings));
}

} // namespace tavrin::test
