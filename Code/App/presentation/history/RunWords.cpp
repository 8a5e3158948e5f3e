#include "presentation/history/RunWords.h"

#include "presentation/preview/ShownName.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <QDateTime>
#include <QLocale>

namespace tavrin {

namespace {

constexpr double from1970To2001 = 978307200;

QDateTime timeOf(double moment) {
    return QDateTime::fromSecsSinceEpoch(static_cast<qint64>(moment + from1970To2001));
}

} // namespace

QDate RunWords::dayOf(double moment) { return timeOf(moment).date(); }

QString RunWords::day(QDate day) {
    const QDate today = QDate::currentDate();
    if (day == today)
        return tr("Today");
    if (day == today.addDays(-1))
        return tr("Yesterday");
    return QLocale().toString(day, QLocale::LongFormat);
}

QString RunWords::hour(double moment) {
    const QLocale locale;
    return locale.toString(timeOf(moment).time(), locale.timeFormat(QLocale::ShortFormat).remove(":ss"));
}

QString RunWords::moment(std::optional<double> moment) {
    if (!moment)
        return QStringLiteral("–");
    if (dayOf(*moment) == QDate::currentDate())
        return hour(*moment);
    //: A moment: date, then hour.
    return tr("%1, %2").arg(QLocale().toString(dayOf(*moment), QLocale::ShortFormat), hour(*moment));
}

QString RunWords::headline(const QString& what, double moment) {
    const QDate day = dayOf(moment);
    if (day == QDate::currentDate())
        return tr("%1, today %2").arg(what, hour(moment));
    if (day == QDate::currentDate().addDays(-1))
        return tr("%1, yesterday %2").arg(what, hour(moment));
    //: The head of a past run: how many names, the day, the hour.
    return tr("%1, %2, %3").arg(what, QLocale().toString(day, QLocale::LongFormat), hour(moment));
}

QString RunWords::origin(const std::string& who) {
    if (who == "tvrn")
        return tr("from the terminal");
    if (who == "droplet")
        return tr("by a droplet");
    return who == "window" ? tr("from the window") : ShownName::of(text::fromBytes(who), false);
}

QString RunWords::author(const std::string& who) {
    if (who == "tvrn")
        return tr("terminal");
    if (who == "droplet")
        return tr("droplet");
    return who == "window" ? tr("window") : ShownName::of(text::fromBytes(who), false);
}

std::optional<double> RunWords::momentOf(const std::string& run) {
    QDateTime began =
        QDateTime::fromString(QString::fromLatin1(run).left(15), QStringLiteral("yyyyMMdd'T'HHmmss"));
    if (!began.isValid())
        return std::nullopt;
    began.setTimeSpec(Qt::UTC);
    return static_cast<double>(began.toSecsSinceEpoch()) - from1970To2001;
}

QString RunWords::pathText(const std::string& path) { return ShownName::of(text::fromBytes(path), false); }

QString RunWords::folderName(const std::string& path) {
    const std::string_view name = lastComponent(path);
    return ShownName::of(text::fromBytes(name.empty() ? std::string_view(path) : name), false);
}

QString RunWords::place(const std::string& common, std::size_t folderCount) {
    if (folderCount < 2)
        return folderName(common);
    return tr("%1 folders in %2")
        .arg(QLocale().toString(static_cast<qulonglong>(folderCount)), folderName(common));
}

QString RunWords::shortened(const QString& text, qsizetype most) {
    if (text.size() <= most)
        return text;
    const qsizetype head = (most - 1) / 2;
    return text.left(head) + QStringLiteral("…") + text.right(most - 1 - head);
}

} // namespace tavrin
