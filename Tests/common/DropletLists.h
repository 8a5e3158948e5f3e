#pragma once

#include "support/values/PropertyValue.h"

namespace tavrin::test {

/// The settings list of a droplet with one step, which adds a text to names.
inline PropertyDictionary dropletThatAdds(std::u16string text, PropertyDictionary globalSettings) {
    const PropertyDictionary step{{"action name", u"Add to end"},
                                  {"action parameter list", PropertyDictionary{{"string", std::move(text)}}}};
    return {{"Droplet Settings", PropertyDictionary()},
            {"Host Application Settings",
             PropertyDictionary{
                 {"composite action", PropertyDictionary{{"composite actions array", PropertyArray{step}}}},
                 {"global settings", std::move(globalSettings)}}}};
}

} // namespace tavrin::test
