#pragma once

#include <QAbstractButton>

class QMenu;

namespace tavrin {

enum class Glyph;

/// A small round button that tells of something out of the ordinary, and leads to it or ends it.
class Chip final : public QAbstractButton {
    Q_OBJECT

  public:
    /// What a row of chips has room for: the sign with its words, the sign alone, or neither.
    enum class Form { whole, wordless, folded };

    Chip(const char* name, Glyph glyph);

    /// Whether there is something to tell. It may be folded away all the same.
    void setWanted(bool wanted);
    [[nodiscard]] bool isWanted() const { return isTelling; }
    void setForm(Form wanted);
    /// Opens with a click. It becomes the chip's.
    void setMenu(QMenu* newMenu);
    /// Null where a click has an effect of its own.
    [[nodiscard]] QMenu* menu() const { return ownMenu; }
    [[nodiscard]] QSize sizeIn(Form which) const;
    [[nodiscard]] QSize sizeHint() const override { return sizeIn(form); }

  signals:
    void wantedChanged();

  protected:
    /// Without its words it tells them where the pointer rests.
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    Glyph glyph;
    Form form = Form::whole;
    bool isTelling = false;
    QMenu* ownMenu = nullptr;
};

} // namespace tavrin
