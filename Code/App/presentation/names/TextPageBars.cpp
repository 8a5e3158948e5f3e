#include "presentation/names/TextPageBars.h"

#include "shell/names/NameLines.h"

namespace tavrin {

namespace {

constexpr const char* tooManyLines = "tooManyLines";
constexpr const char* tooLongLines = "tooLongLines";
constexpr const char* cutLines = "cutLines";
constexpr const char* editorBar = "textEditorBar";

} // namespace

void TextPageBars::askAboutTooMany(std::size_t lines, int room, std::function<void()> paste) {
    bars.present({.objectName = tooManyLines,
                  .kind = BarMessage::Kind::warning,
                  .bold = tr("The text has %L1 lines, %L2 fit from here.").arg(lines).arg(room),
                  .buttons = {{"pasteFitting", tr("Paste %L1").arg(room), std::move(paste)},
                              {"cancelPaste", tr("Cancel"), [this] { endTooMany(); }}}});
}

void TextPageBars::tellOtherThanBlock(std::size_t lines, int linesOfBlock) {
    bars.present({.objectName = tooManyLines,
                  .kind = BarMessage::Kind::warning,
                  .bold = tr("The text has %L1 lines, the block has %L2.").arg(lines).arg(linesOfBlock)});
}

void TextPageBars::endTooMany() { bars.dismiss(tooManyLines); }

void TextPageBars::tellTooLong(std::size_t lines) {
    if (lines == 0)
        bars.dismiss(tooLongLines);
    else
        bars.present({.objectName = tooLongLines,
                      .kind = BarMessage::Kind::warning,
                      .bold = tr("1 line stayed as it was.||%Ln lines stayed as they were.", nullptr,
                                 static_cast<int>(lines)),
                      .plain = tr("No line may have more than %L1 characters.").arg(nameLines::longestLine)});
}

void TextPageBars::tellLeftAway(std::size_t lines) {
    if (lines == 0)
        bars.dismiss(cutLines);
    else
        bars.present({.objectName = cutLines,
                      .bold = tr("Control characters and marks that reorder letters were left away from 1 "
                                 "line.||Control characters and marks that reorder letters were left away "
                                 "from %Ln lines.",
                                 nullptr, static_cast<int>(lines))});
}

void TextPageBars::tellEditorOpened() {
    tellOfEditor(BarMessage::Kind::hint, tr("The names are open in a text editor."),
                 tr("Whenever it saves, the lines changed there are taken over."));
}

void TextPageBars::tellEditorFailed(const QString& what, const QString& detail) {
    tellOfEditor(BarMessage::Kind::failure, what, detail);
}

void TextPageBars::tellTaken(const Taken& taken) {
    QStringList remarks;
    const auto remark = [&remarks](std::size_t count, const char* text) {
        if (count > 0)
            remarks.append(tr(text, nullptr, static_cast<int>(count)));
    };
    remark(taken.locked, QT_TR_NOOP("1 line that cannot be edited as text stayed as it was.||%Ln lines that "
                                    "cannot be edited as text stayed as they were."));
    remark(taken.tooLong, QT_TR_NOOP("1 line is longer than any name.||%Ln lines are longer than any name."));
    remark(taken.lost, QT_TR_NOOP("1 line is about an item that is no longer in the list.||%Ln lines are "
                                  "about items that are no longer in the list."));
    remark(taken.cut, QT_TR_NOOP("1 line held characters that were left away.||%Ln lines held characters "
                                 "that were left away."));
    tellOfEditor(remarks.isEmpty() ? BarMessage::Kind::done : BarMessage::Kind::warning,
                 taken.lines == 0
                     ? tr("Nothing was taken over from the text editor.")
                     : tr("1 line was taken over from the text editor.||%Ln lines were taken over from "
                          "the text editor.",
                          nullptr, static_cast<int>(taken.lines)),
                 remarks.join(' '));
}

void TextPageBars::tellTooManyRows(const QString& words) {
    bars.present({.objectName = "tooLongForText", .bold = words});
}

void TextPageBars::dismissAll() {
    for (const char* bar : {tooManyLines, tooLongLines, cutLines, editorBar})
        bars.dismiss(bar);
}

void TextPageBars::tellOfEditor(BarMessage::Kind kind, const QString& bold, const QString& plain) {
    bars.present({.objectName = editorBar, .kind = kind, .bold = bold, .plain = plain});
}

} // namespace tavrin
