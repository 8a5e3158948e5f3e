#include "tags/TagLibraryHelper.h"

#include "support/text/Text.h"
#include "tags/TagNotice.h"
#include "tags/TagTable.h"
#include "tags/TaggedFile.h"

#include <utility>

namespace tavrin {

namespace {

std::atomic<TagLibraryHelper*> registered = nullptr;

} // namespace

TagLibraryHelper::TagLibraryHelper(TagNotice* missingTagNotice)
    : notice(missingTagNotice), items(makeTagTable()) {
    for (const TagItem& item : items) {
        names.push_back(item.name);
        itemsByName.insert_or_assign(item.name, item);
    }
}

TagLibraryHelper::~TagLibraryHelper() {
    TagLibraryHelper* self = this;
    registered.compare_exchange_strong(self, nullptr);
}

TagLibraryHelper& TagLibraryHelper::sharedInstance() {
    static TagLibraryHelper unregistered;
    TagLibraryHelper* const helper = registered.load(std::memory_order_acquire);
    return helper != nullptr ? *helper : unregistered;
}

void TagLibraryHelper::setSharedInstance(TagLibraryHelper* helper) {
    registered.store(helper, std::memory_order_release);
}

std::vector<std::u16string> TagLibraryHelper::decomposeStringIntoTokenArray(std::u16string_view pattern) {
    std::vector<std::u16string> tokens;
    std::u16string literal;
    std::u16string tag;
    bool isInTag = false;
    for (const std::u16string_view sequence : text::composedSequences(pattern)) {
        if (sequence == u"<") {
            if (!literal.empty())
                tokens.push_back(std::exchange(literal, {}));
            isInTag = true;
        }
        (isInTag ? tag : literal) += sequence;
        if (sequence == u">") {
            tokens.push_back(std::exchange(tag, {}));
            isInTag = false;
        }
    }
    if (!literal.empty())
        tokens.push_back(std::move(literal));
    return tokens;
}

TagPattern TagLibraryHelper::compile(std::u16string_view pattern) const {
    TagPattern compiled;
    std::u16string literal;
    std::u16string tag;
    bool isInTag = false;
    for (const std::u16string_view sequence : text::composedSequences(pattern)) {
        isInTag = isInTag || sequence == u"<";
        (isInTag ? tag : literal) += sequence;
        if (sequence != u">")
            continue;
        if (const auto item = itemsByName.find(tag); item != itemsByName.end()) {
            compiled.pieces.push_back({std::exchange(literal, {}), nullptr});
            compiled.pieces.push_back({{}, item->second.transformValue});
        }
        tag.clear();
        isInTag = false;
    }
    compiled.pieces.push_back({std::move(literal), nullptr});
    return compiled;
}

TagText TagLibraryHelper::resolvePattern(const TagPattern& pattern, TaggedFile& file) {
    std::u16string result;
    for (const TagPattern::Piece& piece : pattern.pieces) {
        if (!piece.tag) {
            result += piece.text;
        } else if (const TagText value = piece.tag(file)) {
            result += *value;
        } else {
            if (file.failure().empty()) // else it may well have one
                informUser();
            return std::nullopt;
        }
    }
    return result;
}

TagText TagLibraryHelper::resolvePattern(std::u16string_view pattern, TaggedFile& file) {
    return resolvePattern(compile(pattern), file);
}

void TagLibraryHelper::informUser() {
    if (isUserInformed)
        return;
    if (notice)
        notice->tellThatTagIsNotPresent();
    isUserInformed = true;
}

} // namespace tavrin
