#include "presentation/preview/EmptyListPage.h"

#include "actions/ActionList.h"
#include "actions/BaseRenameAction.h"
#include "actions/CompositeRenameAction.h"
#include "presentation/Buttons.h"
#include "presentation/WindowColours.h"
#include "presentation/WindowCommands.h"
#include "shell/MainController.h"

#include <QEvent>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <ranges>

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

// Of the page, in points.
constexpr int margin = 24;
constexpr int leastHeightForPicture = 330;
constexpr int leastHeightForTiles = 250;
constexpr int leastHeightForPromise = 150;

constexpr int leastTileWidth = 176;
constexpr int mostTileWidth = 224;
constexpr int betweenTiles = 12;

} // namespace

/// What one may begin with, and an example of it.
class EmptyListPage::Tile final : public QAbstractButton {
  public:
    explicit Tile(const Beginning& shown) : beginning(shown) {
        setObjectName(shown.name);
        setText(EmptyListPage::tr(shown.label));
        setAccessibleName(text());
        setAccessibleDescription(EmptyListPage::tr("%1 becomes %2").arg(shown.before, shown.after));
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_Hover);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    /// How wide its words are; only the result may be shortened.
    [[nodiscard]] int wantedWidth() const {
        const int all = std::max(labelWidth(), fontMetrics().horizontalAdvance(result())) + 2 * tilePadding;
        return std::max(labelWidth() + 2 * tilePadding, std::clamp(all, leastTileWidth, mostTileWidth));
    }
    void setWidth(int width) {
        setFixedSize(width, 3 * fontMetrics().lineSpacing() + 2 * tileGap + 2 * tilePadding);
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
                             painter.fontMetrics().elidedText(string, Qt::ElideMiddle, place.width()));
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

    [[nodiscard]] int labelWidth() const { return QFontMetrics(headFont()).horizontalAdvance(text()); }
    [[nodiscard]] QString result() const { return QString("→ ") + beginning.after; }
    [[nodiscard]] QFont headFont() const {
        QFont bold = font();
        bold.setWeight(QFont::DemiBold);
        return bold;
    }

    const Beginning& beginning;
};

EmptyListPage::EmptyListPage(const WindowServices& shared, WindowCommands& commands)
    : services(shared), picture(new QLabel),
      promise(centred(tr("Nothing is renamed until you click Rename."))), beginning(new QWidget),
      grid(new QGridLayout) {
    setObjectName("emptyListPage");
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* content = new QWidget;
    content->setAutoFillBackground(true);
    content->setBackgroundRole(QPalette::Base);
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(8);
    layout->addStretch(2);
    addWords(*layout);
    addButtons(*layout, commands);
    addTiles(*layout);
    layout->addStretch(3);
    setWidget(content);
}

void EmptyListPage::addWords(QBoxLayout& layout) {
    picture->setObjectName("DragHere");
    picture->setPixmap(QIcon(":/icons/drag-here.svg").pixmap(160, 110));
    picture->setAlignment(Qt::AlignHCenter);
    layout.addWidget(picture);
    QLabel* head = centred(tr("Drag files or folders here"));
    QFont large = head->font();
    large.setPointSizeF(large.pointSizeF() * 1.4);
    large.setWeight(QFont::DemiBold);
    head->setFont(large);
    layout.addWidget(head);
    promise->setObjectName("emptyListPromise");
    promise->setForegroundRole(QPalette::PlaceholderText);
    layout.addWidget(promise);
    layout.addSpacing(8);
}

void EmptyListPage::addButtons(QBoxLayout& layout, WindowCommands& commands) {
    auto* addFiles = new QPushButton(tr("Add Files…"));
    addFiles->setObjectName("emptyAddFiles");
    performs(*addFiles, *commands.addFiles);
    auto* addFolder = new QPushButton(tr("Add Folder…"));
    addFolder->setObjectName("emptyAddFolder");
    performs(*addFolder, *commands.addFolder);
    auto* row = new QWidget;
    buttons = new QBoxLayout(QBoxLayout::LeftToRight, row);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->addWidget(addFiles);
    buttons->addWidget(addFolder);
    layout.addWidget(row, 0, Qt::AlignHCenter);
}

void EmptyListPage::addTiles(QBoxLayout& layout) {
    auto* column = new QVBoxLayout(beginning);
    column->setContentsMargins(0, 20, 0, 0);
    QLabel* invitation = centred(tr("Or begin with what you want to do"));
    invitation->setForegroundRole(QPalette::PlaceholderText);
    column->addWidget(invitation);
    for (const Beginning& each : beginnings) {
        auto* tile = new Tile(each);
        connect(tile, &QAbstractButton::clicked, this, [this, &each] {
            begin(each.action, each.key ? PropertyDictionary{{each.key, each.value}} : PropertyDictionary{});
        });
        tiles.push_back(tile);
    }
    grid->setSpacing(betweenTiles);
    column->addLayout(grid);
    layout.addWidget(beginning);
}

void EmptyListPage::arrange() {
    const int height = viewport()->height();
    picture->setVisible(height >= leastHeightForPicture);
    beginning->setVisible(height >= leastHeightForTiles);
    promise->setVisible(height >= leastHeightForPromise);
    const int room = viewport()->width() - 2 * margin;
    int beside = buttons->spacing();
    for (int i = 0; i < buttons->count(); ++i)
        beside += buttons->itemAt(i)->sizeHint().width();
    buttons->setDirection(beside <= room ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    buttons->parentWidget()->updateGeometry();
    arrangeTiles(room);
}

/// All as wide as the widest, beside each other if they fit, else below each other.
void EmptyListPage::arrangeTiles(int room) {
    const auto count = static_cast<int>(tiles.size());
    const int widest =
        std::ranges::max(tiles | std::views::transform([](const Tile* tile) { return tile->wantedWidth(); }));
    const bool fits = count * widest + (count - 1) * betweenTiles <= room;
    for (int i = 0; i < count; ++i) {
        Tile* tile = tiles[static_cast<std::size_t>(i)];
        tile->setWidth(widest);
        grid->addWidget(tile, fits ? 0 : i, fits ? i + 1 : 1);
    }
    grid->setColumnStretch(0, 1);
    for (int column = 1; column <= count + 1; ++column)
        grid->setColumnStretch(column, column == (fits ? count + 1 : 2) ? 1 : 0);
}

void EmptyListPage::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    arrange();
}

void EmptyListPage::changeEvent(QEvent* event) {
    QScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        arrange();
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
