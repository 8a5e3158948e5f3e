#pragma once

#include "actions/CatalogueFixture.h"
#include "common/TemporaryFolder.h"

#include <vector>

namespace tavrin::test {

/// What an action is to make of a name.
struct ActionCase {
    PropertyDictionary parameters;    ///< beside the defaults
    PropertyDictionary circumstances; ///< as the README of the case tables tells them
    std::u16string name, expected;
};
/// Runs the case, twice; files that it needs go into the folder.
void expectCase(BaseRenameAction& action, const ActionCase& each, const TemporaryFolder& folder);

/// What every action of the catalogue `list` keeps to: names and labels are unique, the parameters make
/// sense, and survive being stored and loaded.
void expectLaws(ActionList& list, const std::vector<ActionEntry>& entries);
/// That the action does what its examples promise.
void expectExamples(const ActionEntry& entry);

} // namespace tavrin::test
