#include "presentation/run/RunReportText.h"

#include "presentation/QtText.h"
#include "presentation/preview/ShownName.h"
#include "support/text/Text.h"

#include <QClipboard>
#include <QGuiApplication>

namespace tavrin {

namespace {

QString tr(const char* text, const char* note = nullptr, int count = -1) {
    return RunReportText::tr(text, note, count);
}

BarMessage::Kind kindOf(const RunReport& report) {
    if (report.notRenamed > 0)
        return BarMessage::Kind::failure;
    if (report.wasStopped)
        return BarMessage::Kind::warning;
    return report.changed > 0 ? BarMessage::Kind::done : BarMessage::Kind::hint;
}

QString headOf(const RunReport& report) {
    if (report.what == RunKind::undo && report.changed > 0)
        return tr("1 file name is as before.||%Ln file names are as before.", nullptr,
                  static_cast<int>(report.changed));
    return toQString(report.summary);
}

/// What is left to be said behind the head; empty where all was done.
QString restOf(const RunReport& report) {
    QStringList sentences;
    if (report.notRenamed > 0 && report.what == RunKind::undo)
        sentences += tr("1 name could not be undone.||%Ln names could not be undone.", nullptr,
                        static_cast<int>(report.notRenamed));
    else if (report.notRenamed > 0)
        sentences += tr("1 item was not renamed.||%Ln items were not renamed.", nullptr,
                        static_cast<int>(report.notRenamed));
    if (report.wasStopped && report.untouched > 0 && !report.wasClosed)
        sentences +=
            tr("Stopped: 1 item still has its old name.||Stopped: %Ln items still have their old names.",
               nullptr, static_cast<int>(report.untouched));
    else if (report.wasStopped && report.untouched > 0)
        sentences += tr("1 item still has its old name.||%Ln items still have their old names.", nullptr,
                        static_cast<int>(report.untouched));
    return sentences.join(' ');
}

} // namespace

QString RunReportText::reasons(const RunReport& report) {
    QString lines;
    for (const ProcessingError& error : report.errors)
        lines += toQString(error.title) + ": " + toQString(error.message) + ": " +
                 ShownName::of(text::fromBytes(error.path), false) + '\n';
    return lines;
}

BarMessage RunReportText::barOf(const RunReport& report, const Effects& effects) {
    BarMessage bar{barName, kindOf(report), headOf(report), restOf(report)};
    const bool isRecorded = !report.run.empty() && report.changed > 0;
    const bool isUndo = report.what == RunKind::undo;
    const auto offer = [&bar](const char* name, const QString& label, std::function<void()> effect) {
        bar.buttons.push_back({name, label, std::move(effect)});
    };
    if (isRecorded && !isUndo)
        offer("undoRun", tr("&Undo"), effects.undo);
    if (isRecorded && isUndo)
        offer("redoRun", tr("&Redo"), effects.redo);
    if (!report.run.empty() && report.wasStopped && !isUndo)
        offer("finishRun", tr("F&inish"), effects.redo);
    if (isRecorded)
        offer("showHistory", tr("Show &What Changed"), effects.showHistory);
    if (report.notRenamed > 0 && effects.showNotRenamed)
        offer("showOnlyNotRenamed", tr("Sh&ow Only These"), effects.showNotRenamed);
    if (!report.errors.empty())
        offer("copyReasons", tr("&Copy Reasons"),
              [text = reasons(report)] { QGuiApplication::clipboard()->setText(text); });
    return bar;
}

RunReportText::Card RunReportText::cardOf(const RunReport& report) {
    Card card;
    CardContent& content = card.content;
    const QString rest = restOf(report);
    content.objectName = barName;
    content.isFailure = report.notRenamed > 0;
    content.head = report.wasClosed ? tr("The run was stopped.") : headOf(report);
    content.text = report.wasClosed ? headOf(report) + (rest.isEmpty() ? "" : '\n' + rest) : rest;
    if (!report.errors.empty())
        content.text += (content.text.isEmpty() ? "" : "\n\n") + reasons(report).trimmed();
    const auto offer = [&](const char* name, const QString& label, ReportAnswer answer, const QString& hint) {
        content.buttons.push_back({name, label, hint});
        card.answers.push_back(answer);
    };
    offer("keepOpen", tr("&Keep Open"), ReportAnswer::keepOpen, tr("%1 keeps it open"));
    if (!report.run.empty() && report.changed > 0)
        offer("undoAndQuit", tr("&Undo and Quit"), ReportAnswer::undoAndQuit, tr("%1 undoes"));
    offer("quit", tr("&Quit"), ReportAnswer::close, tr("%1 quits"));
    content.defaultButton = content.buttons.size() - 1;
    return card;
}

} // namespace tavrin
