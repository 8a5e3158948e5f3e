#include "actions/ActionList.h"
#include "platform/desktop/ResourceFolder.h"
#include "support/text/Text.h"

#include <algorithm>

namespace tavrin {

// How ActionList gets its menus.

namespace {

using Texts = std::vector<std::u16string>;

std::variant<Texts, PropertyListError> readTexts(const std::string& folder, const std::string& resource) {
    const auto file = resource + ".plist";
    const auto path = folder.empty() ? resourcePath(file) : folder + "/" + file;
    auto read = PropertyList::read(path);
    if (auto* error = std::get_if<PropertyListError>(&read))
        return PropertyListError{path + ": " + error->message};
    const auto* array = std::get<PropertyValue>(read).asArray();
    if (!array)
        return PropertyListError{path + ": expected an array"};
    Texts texts;
    for (const auto& item : *array) {
        const auto* text = item.asText();
        if (!text)
            return PropertyListError{path + ": [" + std::to_string(texts.size()) + "]: expected a text"};
        texts.push_back(*text);
    }
    return texts;
}

} // namespace

std::variant<ActionList::Resources, PropertyListError> ActionList::readResources(const std::string& folder) {
    Texts lists[3];
    const char* const files[] = {"popUpIndexToNameMapping", "actionPopUpMenuItems", "categoryPopUpMenuItems"};
    for (std::size_t i = 0; i < 3; ++i) {
        auto read = readTexts(folder, files[i]);
        if (auto* error = std::get_if<PropertyListError>(&read))
            return *error;
        lists[i] = std::get<Texts>(std::move(read));
    }
    if (lists[0].size() != lists[1].size())
        return PropertyListError{"popUpIndexToNameMapping and actionPopUpMenuItems differ in length"};
    Resources resources;
    for (const auto& name : lists[0])
        resources.names.push_back(text::toUtf8(name));
    resources.labels = std::move(lists[1]);
    resources.categories = std::move(lists[2]);
    return resources;
}

void ActionList::keepKnownActions(Resources resources) {
    resources.labels.resize(resources.names.size());
    auto category = resources.categories.begin();
    const auto isSeparator = [](const std::u16string& label) { return label.empty(); };
    std::size_t index = 0;
    while (index < resources.names.size()) {
        const auto firstOfCategory = names.size() + (names.empty() ? 0 : 1);
        for (; index < resources.names.size() && !resources.names[index].empty(); ++index) {
            if (!hasAction(resources.names[index]))
                continue;
            if (!names.empty() && names.size() < firstOfCategory) {
                names.emplace_back();
                labels.emplace_back();
            }
            names.push_back(std::move(resources.names[index]));
            labels.push_back(std::move(resources.labels[index]));
        }
        ++index;
        const bool isSeparated = category != resources.categories.end() && isSeparator(*category);
        category = std::find_if_not(category, resources.categories.end(), isSeparator);
        if (category == resources.categories.end())
            continue;
        if (names.size() > firstOfCategory) {
            if (isSeparated && !categories.empty())
                categories.emplace_back();
            categories.push_back(std::move(*category));
        }
        ++category;
    }
}

} // namespace tavrin
