#pragma once

#include "presentation/MessageBars.h"

#include <QCoreApplication>
#include <cstddef>
#include <functional>

namespace tavrin {

/// What the page of all names as a text says in the bars below it. Main thread.
class TextPageBars {
    Q_DECLARE_TR_FUNCTIONS(tavrin::TextPageBars)

  public:
    /// What has become of the lines that a text editor has saved.
    struct Taken {
        std::size_t lines = 0;   ///< names by hand now
        std::size_t locked = 0;  ///< can't be edited as text
        std::size_t tooLong = 0; ///< for any name
        std::size_t lost = 0;    ///< of items that have left the list
        std::size_t cut = 0;     ///< held characters that no line has
    };

    explicit TextPageBars(MessageBars& usedBars) : bars(usedBars) {}

    /// More was pasted than there is room for; `paste` is for what fits.
    void askAboutTooMany(std::size_t lines, int room, std::function<void()> paste);
    void tellOtherThanBlock(std::size_t lines, int linesOfBlock);
    void endTooMany();
    /// None are told by nothing; so below.
    void tellTooLong(std::size_t lines);
    void tellLeftAway(std::size_t lines);
    void tellEditorOpened();
    void tellEditorFailed(const QString& what, const QString& detail);
    void tellTaken(const Taken& taken);
    /// Stays when the page is left.
    void tellTooManyRows(const QString& words);
    void dismissAll();

  private:
    void tellOfEditor(BarMessage::Kind kind, const QString& bold, const QString& plain);

    MessageBars& bars;
};

} // namespace tavrin
