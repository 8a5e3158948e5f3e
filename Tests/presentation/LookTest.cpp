#include "actions/BaseRenameAction.h"
#include "presentation/Buttons.h"
#include "presentation/WindowFixture.h"
#include "presentation/WindowPlace.h"

namespace tavrin::test {
namespace {

TEST(WindowPlace, IsOnAScreenThatIsThere) {
    const QRect small(0, 0, 1366, 728);
    const QRect large(1366, 0, 1920, 1053);
    const struct {
        QRect available, expected;
        bool fills;
    } firsts[] = {
        {large, {1736, 147, 1180, 760}, false},
        {small, {93, 32, 1180, 664}, false},
        {{0, 0, 910, 480}, {16, 30, 878, 420}, true}, // no lower than it can be used
        {{0, 40, 1024, 600}, {16, 72, 992, 536}, false},
    };
    for (const auto& [available, expected, fills] : firsts) {
        EXPECT_EQ(WindowPlace::first(available), expected);
        EXPECT_EQ(WindowPlace::fills(available), fills);
    }
    const std::tuple<QRect, QList<QRect>, QRect> cuts[] = {
        {{1500, 100, 800, 600}, {small, large}, {1500, 100, 800, 600}},
        {{1500, 100, 800, 600}, {small}, {566, 100, 800, 600}},
        {{1300, 900, 2500, 700}, {small, large}, {1366, 353, 1920, 700}},
        {{-4000, -4000, 3000, 3000}, {small, large}, small},
    };
    for (const auto& [place, screens, expected] : cuts)
        EXPECT_EQ(WindowPlace::cut(place, screens), expected);
}

/// Makes every text longer by two fifths, with marks at its ends; what programs put in, and markup, stays.
class LongLanguage final : public QTranslator {
  public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char*, const char* source, const char*, int) const override {
        QString text = QString::fromUtf8(source);
        QString words = text;
        const auto length = words.remove(QRegularExpression("<[^>]*>|%L?\\d|&")).size();
        if (!text.contains('<'))
            text.replace('a', QChar(0xc4)).replace('e', QChar(0xea));
        return "[" + text + QString(length * 4 / 10, '~') + "]";
    }
};

class Look : public WindowFixture {
  protected:
    ~Look() override {
        application.reset();
        QApplication::setFont(usual);
    }

    /// What of the visible words has less room than it needs.
    QStringList clipped() {
        QStringList found;
        const auto note = [&found](const QWidget& widget, int wanted, int given) {
            if (wanted > given)
                found += QString("%1 (%2) “%3”: %4 in %5")
                             .arg(widget.objectName(), widget.metaObject()->className(),
                                  widget.property("text").toString())
                             .arg(wanted)
                             .arg(given);
        };
        for (const QWidget* widget : application->window().findChildren<QWidget*>()) {
            if (!widget->isVisible() || widget->visibleRegion().isEmpty())
                continue;
            if (const auto* label = qobject_cast<const QLabel*>(widget); label && !label->text().isEmpty()) {
                if (label->wordWrap())
                    note(*label, label->heightForWidth(label->width()), label->height());
                else if (label->toolTip().isEmpty()) // what may be of any length has a tip that tells it all
                    note(*label, label->sizeHint().width(), label->width());
            } else if (const auto* button = qobject_cast<const QAbstractButton*>(widget);
                       button && !button->text().isEmpty()) {
                // These leave their captions out as a whole.
                const bool mayShrink = dynamic_cast<const ToggleButton*>(widget);
                note(*widget, (mayShrink ? widget->minimumSizeHint() : widget->sizeHint()).width(),
                     widget->width());
            } else if (const auto* header = qobject_cast<const QHeaderView*>(widget)) {
                for (int section = 0; section < header->count(); ++section)
                    if (!header->isSectionHidden(section) && header->orientation() == Qt::Horizontal)
                        note(*header, header->sectionSizeHint(section), header->sectionSize(section));
            }
        }
        return found;
    }

  private:
    const QFont usual = QApplication::font();
};

TEST_F(Look, HasRoomForLongerWordsAndLargerLetters) {
    LongLanguage language;
    QCoreApplication::installTranslator(&language);
    for (const double scale : {1.0, 2.0}) {
        QFont font = QApplication::font();
        font.setPointSizeF(font.pointSizeF() * scale);
        QApplication::setFont(font);
        for (const bool isEmpty : {true, false}) {
            start(isEmpty ? Names() : Names{makeFile("a.txt"), makeFile("b.txt")});
            for (const char* action :
                 {"Produce numbered list", "Insert letters", "Insert number after existing text",
                  "Rename to date", "Remove anywhere", "Rename from tag"}) {
                if (ActionList::sharedActionList().popUpMenuIndexForName(action))
                    chooseAction(action);
                for (const int width : {1180, 860, 640}) {
                    application->window().resize(width, 760);
                    QTest::qWait(1);
                    EXPECT_EQ(clipped().join('\n').toStdString(), "")
                        << action << " at " << width << " x" << scale << (isEmpty ? " empty" : "");
                }
            }
        }
    }
    QCoreApplication::removeTranslator(&language);
}

// On each of these screens the button that all is about is in view, whatever else has to go.
TEST_F(Look, ShowsTheMainButtonHoweverSmallTheScreen) {
    for (const bool isEmpty : {true, false}) {
        start(isEmpty ? Names() : Names{makeFile("a.txt")});
        MainWindow& window = application->window();
        for (const QSize size : {WindowPlace::least, QSize(640, 480), QSize(910, 480), QSize(1180, 664)}) {
            window.resize(size);
            QTest::qWait(1);
            EXPECT_EQ(window.size(), size);
            const auto* button = find("okButton");
            const QRect place(button->mapTo(&window, QPoint()), button->size());
            EXPECT_TRUE(window.rect().contains(place)) << place.right() << ' ' << place.bottom();
            const QSize needed = window.centralWidget()->minimumSizeHint();
            EXPECT_LE(needed.width(), window.centralWidget()->width());
            EXPECT_LE(needed.height(), window.centralWidget()->height());
        }
        // What has left the row is in a menu.
        for (QAction* action : {&command("createDroplet"), &command("createFileList")}) {
            window.resize(640, 480);
            EXPECT_TRUE(find("okMenuButton")->actions().contains(action));
            window.resize(1180, 664);
            EXPECT_FALSE(find("okMenuButton")->actions().contains(action));
        }
    }
}

TEST_F(Look, OffersWhatIsInAFolder) {
    const Names inside{makeFile("text/a.txt"), makeFile("text/b.txt"), makeFile("text/.c")};
    for (const auto& [button, subfolders, folders] :
         {std::tuple("renameWithin", 1, 0), std::tuple("renameBoth", 1, 1)}) {
        start();
        set("processSubfolders", 0);
        set("processFolders", 1);
        controller().addFilePaths({makeFile("d.txt"), folder.path("text")}, true);
        const auto* bar = waitFor("folderOffer");
        QStringList words;
        for (const auto* label : bar->findChildren<QLabel*>())
            words += label->text();
        EXPECT_THAT(words.join(' ').toStdString(), testing::HasSubstr("“text” itself will be renamed."));
        EXPECT_THAT(words.join(' ').toStdString(), testing::HasSubstr("It holds 2 files."));
        click(button);
        waitUntilGone("folderOffer");
        EXPECT_EQ(controller().globalSettings().values().shouldProcessSubfolders, subfolders);
        EXPECT_EQ(controller().globalSettings().values().shouldProcessFolders, folders);
        controller().addFilePaths({folder.path("text")}, true);
        QThreadPool::globalInstance()->waitForDone();
        waitForPreview();
        EXPECT_FALSE(findWidget("folderOffer") && find("folderOffer")->isVisible());
    }
}

TEST_F(Look, NumbersAsWideAsTheLastOfThem) {
    Names paths;
    for (int i = 0; i < 120; ++i)
        paths.push_back(makeFile("a" + std::to_string(100 + i)));
    start(paths);
    EXPECT_EQ(newNames().front(), "Image_001");
    const auto note = [this] {
        for (const auto* label : find("parameterPanel")->findChildren<QLabel*>())
            if (label->isVisible() && label->text().contains("…"))
                return label->text().toStdString();
        return std::string();
    };
    (void)QTest::qWaitFor([&] { return note() == "001, 002, 003 … 120"; });
    EXPECT_EQ(note(), "001, 002, 003 … 120");
    click("paddingMode");
    waitForPreview();
    EXPECT_EQ(newNames().front(), "Image_01");
    // What somebody has chosen counts again at the next use; the defaults are those of a first one.
    chooseAction("Make uppercase");
    chooseAction("Produce numbered list");
    EXPECT_FALSE(find<QCheckBox>("paddingMode")->isChecked());
    trigger("resetToDefaults");
    EXPECT_TRUE(find<QCheckBox>("paddingMode")->isChecked());
}

} // namespace
} // namespace tavrin::test
