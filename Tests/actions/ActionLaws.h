#pragma once

#include "actions/CatalogueFixture.h"

#include <vector>

namespace tavrin::test {

/// What every action of the catalogue `list` keeps to: names and labels are unique, the parameters make
/// sense, and survive being stored and loaded.
void expectLaws(ActionList& list, const std::vector<ActionEntry>& entries);
/// That the action does what its examples promise.
void expectExamples(const ActionEntry& entry);

} // namespace tavrin::test
