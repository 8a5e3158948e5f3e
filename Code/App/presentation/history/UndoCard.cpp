#include "presentation/history/UndoCard.h"

#include "presentation/QtText.h"
#include "presentation/history/RunWords.h"
#include "presentation/preview/ShownName.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <QLocale>
#include <QStringList>

namespace tavrin {

namespace {

QString tr(const char* text, const char* note = nullptr, int count = -1) {
    return UndoCard::tr(text, note, count);
}

enum class Verb { undo, redo, finish };

Verb verbOf(const UndoQuestion& question) {
    if (question.finishes)
        return Verb::finish;
    return question.what == RunKind::undo ? Verb::undo : Verb::redo;
}

/// "485 of 487 names can be undone."
QString extentOf(const UndoQuestion& question) {
    const QString possible = QLocale().toString(static_cast<qulonglong>(question.possible));
    const auto of = [&](const QString& one, const QString& all, const QString& some, const QString& none) {
        if (question.total == 1)
            return question.possible == 1 ? one : none;
        if (question.possible == 0)
            return none;
        const QString total = QLocale().toString(static_cast<qulonglong>(question.total));
        return question.possible == question.total ? all.arg(total) : some.arg(total, possible);
    };
    switch (verbOf(question)) {
    case Verb::undo:
        return of(tr("The name can be undone."), tr("All %1 names can be undone."),
                  tr("%2 of %1 names can be undone."), tr("No name can be undone."));
    case Verb::redo:
        return of(tr("The name can be given again."), tr("All %1 names can be given again."),
                  tr("%2 of %1 names can be given again."), tr("No name can be given again."));
    case Verb::finish:
        break;
    }
    return of(tr("The rename can be finished."), tr("The rename can be finished for all %1 names."),
              tr("The rename can be finished for %2 of %1 names."), tr("The rename can’t be finished."));
}

/// "Undo the rename of 9:40 from the terminal?"
QString headOf(const UndoQuestion& question) {
    const auto by = [&](const QString& terminal, const QString& droplet, const QString& other) {
        const QString& form = question.who == "tvrn" ? terminal : question.who == "droplet" ? droplet : other;
        return form.arg(RunWords::moment(question.began));
    };
    switch (verbOf(question)) {
    case Verb::undo:
        return by(tr("Undo the rename of %1 from the terminal?"), tr("Undo the rename of %1 by a droplet?"),
                  tr("Undo the rename of %1 from the window?"));
    case Verb::redo:
        return by(tr("Redo the rename of %1 from the terminal?"), tr("Redo the rename of %1 by a droplet?"),
                  tr("Redo the rename of %1 from the window?"));
    case Verb::finish:
        break;
    }
    return by(tr("Finish the rename of %1 from the terminal?"), tr("Finish the rename of %1 by a droplet?"),
              tr("Finish the rename of %1 from the window?"));
}

QString labelOf(const UndoQuestion& question) {
    switch (verbOf(question)) {
    case Verb::undo:
        return tr("&Undo 1 Name||&Undo %Ln Names", nullptr, static_cast<int>(question.possible));
    case Verb::redo:
        return tr("&Redo 1 Name||&Redo %Ln Names", nullptr, static_cast<int>(question.possible));
    case Verb::finish:
        break;
    }
    return tr("&Finish 1 Name||&Finish %Ln Names", nullptr, static_cast<int>(question.possible));
}

const char* objectNameOf(Verb verb) {
    return verb == Verb::undo ? "undoRun" : verb == Verb::redo ? "redoRun" : "finishRun";
}

} // namespace

CardContent UndoCard::contentOf(const UndoQuestion& question) {
    CardContent content{.objectName = "undoCard", .head = extentOf(question)};
    QStringList lines;
    if (!question.isOwn) {
        lines = {content.head, ShownName::of(text::fromBytes(question.folder), false)};
        content.head = headOf(question);
    }
    for (const ProcessingError& error : question.reasons)
        //: A reason why the name of an item can't be changed: name, then a sentence.
        lines += tr("%1: %2").arg(RunWords::folderName(error.path), toQString(error.message));
    content.text = lines.join('\n');
    content.buttons = {{"cancel", tr("&Cancel")}, {"showHistory", tr("&Show in History")}};
    if (question.possible > 0)
        content.buttons.push_back({objectNameOf(verbOf(question)), labelOf(question)});
    content.defaultButton = content.buttons.size() - 1;
    return content;
}

BarMessage UndoCard::barOf(const InterruptedRun& run, std::function<void(InterruptedRunAnswer)> answer) {
    const QString form = run.what == RunKind::undo ? tr("An undo of %1 in “%2” was interrupted.")
                                                   : tr("A rename of %1 in “%2” was interrupted.");
    const QLocale locale;
    QString changed = tr("1 name was to be changed.||%2 of %Ln names had been changed.", nullptr,
                         static_cast<int>(run.total));
    if (run.total > 1)
        changed = changed.arg(locale.toString(static_cast<qulonglong>(run.changed)));
    if (run.withTemporaryName > 0)
        changed += ' ' + tr("1 file has a temporary name.||%Ln files have a temporary name.", nullptr,
                            static_cast<int>(run.withTemporaryName));
    const auto gives = [answer](InterruptedRunAnswer given) { return [answer, given] { answer(given); }; };
    using enum InterruptedRunAnswer;
    const bool isUndo = run.what == RunKind::undo;
    return {.objectName = barName,
            .kind = BarMessage::Kind::warning,
            .bold = form.arg(RunWords::moment(run.began), RunWords::folderName(run.folder)),
            .plain = changed,
            .buttons = {{"finishRun", tr("&Finish"), gives(finish)},
                        {isUndo ? "redoRun" : "undoRun", isUndo ? tr("&Redo") : tr("&Undo"), gives(takeBack)},
                        {"showHistory", tr("&Show"), gives(show)}}};
}

} // namespace tavrin
