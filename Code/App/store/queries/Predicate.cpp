#include "store/queries/Predicate.h"

#include <utility>

namespace tavrin {

Predicate Predicate::never() {
    Predicate predicate;
    predicate.impossible = true;
    return predicate;
}

Predicate Predicate::test(Test test) {
    Predicate predicate;
    predicate.conditions.push_back(std::move(test));
    return predicate;
}

Predicate Predicate::with(const Predicate& other) const {
    Predicate both = *this;
    both.conditions.insert(both.conditions.end(), other.conditions.begin(), other.conditions.end());
    both.impossible = impossible || other.impossible;
    return both;
}

} // namespace tavrin
