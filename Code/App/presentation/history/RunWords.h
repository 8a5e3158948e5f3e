#pragma once

#include <QCoreApplication>
#include <QDate>
#include <QString>
#include <cstddef>
#include <optional>
#include <string>

namespace tavrin {

/// Past runs in words: when, where, by whom. Moments are seconds since 2001, and shown as the user's locale
/// has them.
struct RunWords {
    Q_DECLARE_TR_FUNCTIONS(tavrin::RunWords)

  public:
    [[nodiscard]] static QDate dayOf(double moment);
    /// "Today", "Yesterday", or the date.
    [[nodiscard]] static QString day(QDate day);
    /// "14:22".
    [[nodiscard]] static QString hour(double moment);
    /// The hour, with its date where that is not today; a dash where nothing is known.
    [[nodiscard]] static QString moment(std::optional<double> moment);
    /// "487 names, today 14:22".
    [[nodiscard]] static QString headline(const QString& what, double moment);
    /// "from the terminal".
    [[nodiscard]] static QString origin(const std::string& who);
    /// "terminal", "window", "droplet".
    [[nodiscard]] static QString author(const std::string& who);
    /// When a run of this name began.
    [[nodiscard]] static std::optional<double> momentOf(const std::string& run);
    [[nodiscard]] static QString pathText(const std::string& path);
    /// The last component of a path.
    [[nodiscard]] static QString folderName(const std::string& path);
    /// The name of the one folder, or "12 folders in Archive". `common` holds all of them.
    [[nodiscard]] static QString place(const std::string& common, std::size_t folderCount);
    /// Cut in its middle to so many characters.
    [[nodiscard]] static QString shortened(const QString& text, qsizetype most);
};

} // namespace tavrin
