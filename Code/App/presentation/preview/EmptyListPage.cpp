#include "presentation/preview/EmptyListPage.h"

#include "actions/ActionList.h"
#include "actions/BaseRenameAction.h"
#include "actions/CompositeRenameAction.h"
#include "presentation/Buttons.h"
#include "presentation/WindowColours.h"
#include "presentation/WindowCommands.h"
#include "shell/MainController.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

namespace tavrin {

namespace {

struct Beginning {
    const char* name;
    const char* label;
    const char* before; ///< a name, and what becomes of it
    const char* after;
    const char* action;
    const char* key; ///< a parameter to set, or null
    int value;
};

constexpr std::array beginnings{
    Beginning{"beginWithNumber", QT_TRANSLATE_NOOP("tavrin::EmptyListPage", "Number my photos"),
              "IMG_4021.JPG", "Image_01.JPG", "Produce numbered list", nullptr, 0},
    Beginning{"beginWithDate", QT_TRANSLATE_NOOP("tavrin::EmptyListPage", "Name by date taken"),
              "IMG_4021.JPG", "2024-06-14 07-31-05.JPG", "Rename to date", "mode", 2},
    Beginning{"beginWithReplace", QT_TRANSLATE_NOOP("tavrin::EmptyListPage", "Find and replace"),
              "report draft.odt", "report final.odt", "Replace text", nullptr, 0},
};

QLabel* centred(const QString& text) {
    auto* label = new QLabel(text);
    label->setAlignment(Qt::AlignHCenter);
    label->setWordWrap(true);
    return label;
}

/// What one may begin with, and an example of it.
class Tile final : public QAbstractButton {
  public:
    explicit Tile(const Beginning& shown) : beginning(shown) {
        setObjectName(shown.name);
        setText(EmptyListPage::tr(shown.label));
        setAccessibleName(text());
        setAccessibleDescription(EmptyListPage::tr("%1 becomes %2").arg(shown.before, shown.after));
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_Hover);
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    }

    [[nodiscard]] QSize sizeHint() const override {
        const QFontMetrics metrics = fontMetrics();
        const int widest =
            std::max(QFontMetrics(headFont()).horizontalAdvance(text()), metrics.horizontalAdvance(result()));
        return {widest + 2 * tilePadding, 3 * metrics.lineSpacing() + 2 * tileGap + 2 * tilePadding};
    }
    [[nodiscard]] QSize minimumSizeHint() const override {
        return {QFontMetrics(headFont()).horizontalAdvance(text()) + 2 * tilePadding, sizeHint().height()};
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        ToggleButton::paintGround(painter, rect(), *this, isDown());
        const int line = fontMetrics().lineSpacing();
        QRect place = rect().adjusted(tilePadding, tilePadding, -tilePadding, 0);
        place.setHeight(line);
        const auto draw = [&](const QString& string, const QColor& colour) {
            painter.setPen(colour);
            painter.drawText(place, Qt::AlignLeading | Qt::AlignVCenter,
                             painter.fontMetrics().elidedText(string, Qt::ElideRight, place.width()));
            place.translate(0, line + tileGap);
        };
        painter.setFont(headFont());
        draw(text(), palette().color(QPalette::WindowText));
        painter.setFont(font());
        draw(beginning.before, palette().color(QPalette::PlaceholderText));
        draw(result(), WindowColours::of(palette()).addedText);
    }

  private:
    static constexpr int tilePadding = 10;
    static constexpr int tileGap = 3;

    [[nodiscard]] QString result() const { return QString("→ ") + beginning.after; }
    [[nodiscard]] QFont headFont() const {
        QFont bold = font();
        bold.setWeight(QFont::DemiBold);
        return bold;
    }

    const Beginning& beginning;
};

} // namespace

EmptyListPage::EmptyListPage(const WindowServices& shared, WindowCommands& commands) : services(shared) {
    setObjectName("emptyListPage");
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 24);
    layout->setSpacing(8);
    layout->addStretch(2);
    auto* picture = new QLabel;
    picture->setObjectName("DragHere");
    picture->setPixmap(QIcon(":/icons/drag-here.svg").pixmap(160, 110));
    picture->setAlignment(Qt::AlignHCenter);
    layout->addWidget(picture);
    QLabel* head = centred(tr("Drag files or folders here"));
    QFont large = head->font();
    large.setPointSizeF(large.pointSizeF() * 1.4);
    large.setWeight(QFont::DemiBold);
    head->setFont(large);
    layout->addWidget(head);
    QLabel* promise = centred(tr("Nothing is renamed until you click Rename."));
    promise->setObjectName("emptyListPromise");
    promise->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(promise);
    layout->addSpacing(8);
    addButtons(*layout, commands);
    layout->addSpacing(20);

    QLabel* or_ = centred(tr("Or begin with what you want to do"));
    or_->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(or_);
    addTiles(*layout);
    layout->addStretch(3);
}

void EmptyListPage::addButtons(QBoxLayout& layout, WindowCommands& commands) {
    auto* addFiles = new QPushButton(tr("Add Files…"));
    addFiles->setObjectName("emptyAddFiles");
    performs(*addFiles, *commands.addFiles);
    auto* addFolder = new QPushButton(tr("Add Folder…"));
    addFolder->setObjectName("emptyAddFolder");
    performs(*addFolder, *commands.addFolder);
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(addFiles);
    row->addWidget(addFolder);
    row->addStretch(1);
    layout.addLayout(row);
}

void EmptyListPage::addTiles(QBoxLayout& layout) {
    auto* tiles = new QHBoxLayout;
    tiles->setSpacing(8);
    tiles->addStretch(1);
    for (const Beginning& each : beginnings) {
        auto* tile = new Tile(each);
        connect(tile, &QAbstractButton::clicked, this, [this, &each] {
            begin(each.action, each.key ? PropertyDictionary{{each.key, each.value}} : PropertyDictionary{});
        });
        tiles->addWidget(tile);
    }
    tiles->addStretch(1);
    layout.addLayout(tiles);
}

void EmptyListPage::begin(const char* actionName, const PropertyDictionary& parameters) {
    const auto index = services.actionList.popUpMenuIndexForName(actionName);
    if (!index)
        return;
    services.controller.actionListCommands().chooseAction(*index);
    for (const auto& [key, value] : parameters)
        services.controller.compositeAction().getCurrentAction().setValue(value, key);
    emit begun();
}

} // namespace tavrin
