#include "presentation/tags/TagValues.h"

#include "tags/TagLibraryHelper.h"
#include "tags/TaggedFile.h"

#include <QApplication>
#include <QPointer>
#include <QThreadPool>

namespace tavrin {

namespace {

TagValues::Texts textsOf(const std::string& path) {
    TagValues::Texts texts;
    TaggedPath file(path);
    for (const TagItem& tag : TagLibraryHelper::sharedInstance().availableTags())
        if (auto text = tag.extractStringFromFile(file))
            texts.insert_or_assign(tag.name, std::move(*text));
    return texts;
}

} // namespace

TagValues::~TagValues() = default;

void TagValues::read(const std::string& path, std::function<void(const Texts&)> then) {
    const std::uint64_t mine = ++asked;
    if (path.empty()) {
        then({});
        return;
    }
    const QPointer<TagValues> self(this);
    QThreadPool::globalInstance()->start([self, mine, path, then = std::move(then)] {
        Texts texts = textsOf(path);
        QMetaObject::invokeMethod(
            qApp,
            [self, mine, then, texts = std::move(texts)] {
                if (self && self->asked == mine)
                    then(texts);
            },
            Qt::QueuedConnection);
    });
}

} // namespace tavrin
