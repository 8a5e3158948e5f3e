#pragma once

#include "engine/asking/RunQuestion.h"

#include <string>

namespace tavrin::test {

/// A question of a run in a few words: "rename old -> new", "swap old -> new", "cycle path",
/// "problem title: path", "iTunes", "iPhoto", "no record: reason", "failed title".
[[nodiscard]] std::string inWords(const RunQuestion& question);

} // namespace tavrin::test
