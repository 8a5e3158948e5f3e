#include "common/QuestionWords.h"

namespace tavrin::test {

namespace {

struct InWords {
    std::string operator()(const RenameQuestion& q) const {
        return "rename " + q.oldName + " -> " + q.newName;
    }
    std::string operator()(const SwapQuestion& q) const { return "swap " + q.oldName + " -> " + q.newName; }
    std::string operator()(const NameCycleQuestion& q) const { return "cycle " + q.fullPath; }
    std::string operator()(const ProblemReport& q) const { return "problem " + q.title + ": " + q.fullPath; }
    std::string operator()(const LibraryWarning& q) const {
        return q.library == LibraryWarning::Library::iTunes ? "iTunes" : "iPhoto";
    }
    std::string operator()(const NoRecordQuestion& q) const { return "no record: " + q.reason; }
    std::string operator()(const PipelineFailure& q) const { return "failed " + q.title; }
};

} // namespace

std::string inWords(const RunQuestion& question) { return std::visit(InWords(), question); }

} // namespace tavrin::test
