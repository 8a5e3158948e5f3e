#include "store/queries/RowMatcher.h"

namespace tavrin {

namespace {

std::uint8_t summaryBit(NodeKey key) {
    if (key == NodeKey::treatAsFolder)
        return rowSummary::treatAsFolder;
    if (key == NodeKey::root)
        return rowSummary::root;
    if (key == NodeKey::diff)
        return rowSummary::diff;
    if (key == NodeKey::sortingInformationLoaded)
        return rowSummary::sortingInformationLoaded;
    return 0;
}

std::uint8_t entityBits(FetchEntity entity) {
    switch (entity) {
    case FetchEntity::node:
        return rowSummary::isFile | rowSummary::isGhostNode;
    case FetchEntity::file:
        return rowSummary::isFile;
    case FetchEntity::ghostNode:
        return rowSummary::isGhostNode;
    }
    return 0;
}

} // namespace

RowMatcher::RowMatcher(FetchEntity entity, const Predicate& predicate)
    : entityMask(entityBits(entity)), impossible(predicate.matchesNothing()) {
    if (impossible)
        unmarkedPredicate = Predicate::never();
    for (const Predicate::Test& test : predicate.tests())
        addTest(test);
}

void RowMatcher::addTest(const Predicate::Test& test) {
    if (addMarkerTest(test))
        return;
    unmarkedPredicate = unmarkedPredicate.with(Predicate::test(test));
    if (addSummaryTest(test))
        return;
    const RowId* row = std::get_if<RowId>(&test.operand);
    if (test.key == NodeKey::parent && test.operation == Predicate::Operation::equals && row && !wantedParent)
        wantedParent = *row;
    else
        others.push_back(test);
}

bool RowMatcher::addSummaryTest(const Predicate::Test& test) {
    const std::uint8_t bit = summaryBit(test.key);
    const bool* operand = std::get_if<bool>(&test.operand);
    if (bit == 0 || operand == nullptr || test.operation == Predicate::Operation::beginsWith)
        return false;
    const bool value = *operand == (test.operation == Predicate::Operation::equals);
    if ((mask & bit) != 0 && ((wanted & bit) != 0) != value)
        impossible = true;
    mask |= bit;
    wanted = static_cast<std::uint8_t>(value ? wanted | bit : wanted & ~bit);
    return true;
}

bool RowMatcher::addMarkerTest(const Predicate::Test& test) {
    const std::int64_t* operand = std::get_if<std::int64_t>(&test.operand);
    if (operand == nullptr || test.operation == Predicate::Operation::beginsWith)
        return false;
    const bool differs = test.operation == Predicate::Operation::differs;
    const auto marker = static_cast<PassMarker>(*operand);
    if (test.key == NodeKey::stageFlag && differs && !notStageFlag)
        notStageFlag = marker;
    else if (test.key == NodeKey::stageFlag && !differs && !isStageFlag)
        isStageFlag = marker;
    else if (test.key == NodeKey::secondaryStageFlag && differs && !notSecondaryStageFlag)
        notSecondaryStageFlag = marker;
    else
        return false;
    return true;
}

} // namespace tavrin
