#include "presentation/settings/AccessKeys.h"

namespace tavrin {

namespace {

/// Of the menus, the row at the bottom of the window, and the advanced options.
constexpr QStringView reserved = u"fesvphdlrocukqi";

} // namespace

QString AccessKeys::mark(const QString& label) {
    const auto isFree = [&](qsizetype place) {
        const QChar letter = label.at(place).toLower();
        return letter.unicode() < 0x80 && letter.isLetter() && !reserved.contains(letter) &&
               !taken.contains(letter);
    };
    qsizetype best = -1;
    for (qsizetype place = label.size() - 1; place >= 0; --place) {
        const bool beginsWord = place == 0 || label.at(place - 1) == ' ';
        const bool isBetter = best < 0 || beginsWord || label.at(best - 1) != ' ';
        if (isFree(place) && isBetter)
            best = place;
    }
    QString marked = label;
    if (best >= 0) {
        taken.insert(label.at(best).toLower());
        marked.insert(best, u'\1');
    }
    return marked.replace('&', "&&").replace(u'\1', '&');
}

} // namespace tavrin
