#include "actions/ActionFamilies.h"
#include "actions/ActionList.h"
#include "actions/BaseRenameAction.h"
#include "common/Testing.h"
#include "presentation/WindowFixture.h"
#include "presentation/preview/NameDifference.h"
#include "presentation/preview/ShownName.h"
#include "presentation/preview/ThumbnailLoader.h"
#include "presentation/settings/PanelRows.h"
#include "support/values/Crc32.h"

#include <QtTest>

namespace tavrin::test {
namespace {

class Panels : public WindowFixture {
  protected:
    /// What the Tab key leads to, in its order, from the search on.
    QList<QWidget*> tabStops() {
        QList<QWidget*> stops;
        QWidget* const first = find("findAction");
        QWidget* widget = first;
        do {
            if (widget->isVisible() && (widget->focusPolicy() & Qt::TabFocus) && !widget->focusProxy())
                stops.append(widget);
            widget = widget->nextInFocusChain();
        } while (widget != first);
        return stops;
    }

    /// Every stop has a name, and no access key is given twice.
    void expectNamesAndKeys() {
        for (const QWidget* stop : tabStops())
            EXPECT_FALSE(stop->accessibleName().isEmpty() && stop->property("text").toString().isEmpty())
                << stop->metaObject()->className() << ' ' << stop->objectName().toStdString();
        const QRegularExpression marked("(?<!&)&(\\w)");
        std::set<QString> keys;
        for (const QWidget* widget : application->window().findChildren<QWidget*>()) {
            const QString text = widget->property("text").toString();
            if (const auto match = marked.match(text); widget->isVisible() && match.hasMatch()) {
                EXPECT_TRUE(keys.insert(match.captured(1).toLower()).second) << text.toStdString();
            }
        }
    }

    /// Gives a control a second value as a user would, and tells which value the parameter should then have.
    PropertyValue change(QWidget* control, const ParameterDescription& parameter) {
        QWidget* field = dynamic_cast<QLineEdit*>(control);
        if (!field)
            field = control->findChild<QTextEdit*>();
        if (field) {
            field->setFocus();
            QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
            const bool isOne = parameter.kind == ParameterKind::character;
            QTest::keyClicks(field, isOne ? "QX" : "Q");
            EXPECT_TRUE(!isOne || field->property("text") == "Q");
            return u"Q";
        }
        if (auto* spin = dynamic_cast<QSpinBox*>(control)) {
            const bool isUp = spin->value() < spin->maximum();
            const int wanted = spin->value() + (isUp ? 1 : -1);
            QTest::keyClick(spin, isUp ? Qt::Key_Up : Qt::Key_Down);
            return wanted - parameter.shownOffset;
        }
        if (auto* check = dynamic_cast<QCheckBox*>(control)) {
            const bool wasOn = check->isChecked();
            QTest::keyClick(check, Qt::Key_Space);
            return wasOn ? 0 : 1;
        }
        if (auto* box = dynamic_cast<QComboBox*>(control)) {
            const bool isDown = box->currentIndex() == 0;
            const int row = box->currentIndex() + (isDown ? 1 : -1);
            QTest::keyClick(box, isDown ? Qt::Key_Down : Qt::Key_Up);
            return box->itemData(row).toInt();
        }
        if (auto* order = control->findChild<QComboBox*>("separatorModeOrder")) {
            QTest::keyClick(order, Qt::Key_Down);
            return 6;
        }
        ADD_FAILURE() << "no way to change " << parameter.key;
        return 0;
    }
};

// Every control of every panel: what is entered is stored, and what changes elsewhere shows at once. A
// parameter whose row was misspelt is seen here, too.
TEST_F(Panels, ShowAndStoreEveryParameterOnce) {
    start({makeFile("a.txt")});
    set("discloseAdvancedOptions", 1);
    for (const ActionEntry& entry : allActions()) {
        SCOPED_TRACE(entry.name);
        chooseAction(std::string(entry.name));
        expectNamesAndKeys();
        std::multiset<std::string_view> shown;
        for (const PanelRow& row : panelRowsOf(currentAction())) {
            const ParameterDescription& first = row.first();
            EXPECT_TRUE(first.besideKey.empty()) << first.key;
            for (const ParameterDescription* parameter : row.parameters) {
                SCOPED_TRACE(parameter->key);
                shown.insert(parameter->key);
                if (parameter->kind == ParameterKind::file || parameter->kind == ParameterKind::status)
                    continue;
                if (!first.shownWhenKey.empty())
                    currentAction().setValue(first.shownWhenValue, std::string(first.shownWhenKey));
                const std::string key(parameter->key);
                auto* control = find(key.c_str());
                EXPECT_TRUE(control->isVisible());
                EXPECT_FALSE(control->accessibleName().isEmpty());
                const QMetaProperty content = control->metaObject()->userProperty();
                const QVariant shownFirst = content.read(control);
                const auto storedFirst = currentAction().valueForKey(key);
                const PropertyValue wanted = change(control, *parameter);
                EXPECT_EQ(currentAction().valueForKey(key), wanted);
                currentAction().setValue(storedFirst, key);
                EXPECT_EQ(content.read(find(key.c_str())), shownFirst);
            }
        }
        for (const ParameterDescription& parameter : currentAction().parameters())
            EXPECT_EQ(shown.count(parameter.key), parameter.isHidden ? 0U : 1U) << parameter.key;
    }
}

TEST_F(Panels, AreReachedByTheTabKeyInTheOrderOfReading) {
    start({makeFile("a.txt")});
    chooseAction("Rename from list"); // the panel is not the first
    chooseAction("Insert number at position");
    const QList<QWidget*> stops = tabStops();
    qsizetype last = -1;
    for (const char* name :
         {"findAction", "categoryPopUpButton", "actionPopUpButton", "startValue", "padding", "position",
          "mode", "sortingMode", "sortEachFolderSeparately", "fragment3", "discloseAdvancedOptions",
          "addButton", "showButton", "previewTableView", "manualButton", "okButton"}) {
        const qsizetype place = stops.indexOf(find(name));
        EXPECT_GT(place, last) << name;
        last = place;
    }
}

TEST_F(Panels, BoxesAreLabelledForReaders) {
    start();
    for (const auto& [name, words] :
         {std::pair("categoryPopUpButton", "Category"), {"actionPopUpButton", "Action"}}) {
        const auto relations =
            QAccessible::queryAccessibleInterface(find(name))->relations(QAccessible::Label);
        ASSERT_EQ(relations.size(), 1) << name;
        EXPECT_EQ(relations.front().first->text(QAccessible::Name), words);
    }
}

TEST_F(Panels, ApplyToEachPartOfAName) {
    start({makeFile("Ab.Cd")});
    chooseAction("Make uppercase");
    const std::pair<const char*, const char*> cases[] = {
        {"fragment0", "AB.CD"}, {"fragment2", "Ab.CD"}, {"fragment1", "AB.Cd"}};
    for (const auto& [button, expected] : cases) {
        click(button);
        waitForNames({expected});
    }
}

TEST_F(Panels, FindActionsAsPeopleCallThem) {
    start();
    const std::pair<const char*, const char*> cases[] = {
        {"regex", "Replace"}, {"counter", "Number"},       {"strip", "Remove"},
        {"title", "Case"},    {"diacritics", "Case"},      {"id3", "Music"},
        {"taken", "Date"},    {"roman", "Roman numerals"}, {"windows", "Length & systems"},
        {"csv", "List file"}, {"Replace text", "Replace"}, {"capital", "Case"},
        {"zzzz", "Case"}};
    for (const auto& [typed, category] : cases) {
        type("findAction", typed);
        QTest::keyClick(find("findAction"), Qt::Key_Return);
        EXPECT_EQ(find<QComboBox>("categoryPopUpButton")->currentText(), category) << typed;
    }
}

TEST_F(Panels, TakeTagsByTypingAndByKeyAndMouse) {
    start();
    chooseAction("Rename from tag");
    type("patternField", "a<Year>b");
    EXPECT_EQ(currentAction().getParamString("pattern"), u"a<Year>b");
    auto* edit = find<QTextEdit>("patternField");
    EXPECT_EQ(edit->toPlainText(), QString("a%1b").arg(QChar(QChar::ObjectReplacementCharacter)));
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClick(edit, Qt::Key_Backspace);
    EXPECT_EQ(currentAction().getParamString("pattern"), u"a");
    auto* list = find<QTreeWidget>("tagList");
    list->setCurrentItem(list->topLevelItem(0));
    const QString tag = list->currentItem()->data(0, Qt::UserRole).toString();
    QTest::keyClick(list, Qt::Key_Return);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {},
                       list->visualItemRect(list->currentItem()).center());
    EXPECT_EQ(currentAction().getParamString("pattern"), ("a" + tag + tag).toStdU16String());
}

TEST_F(Panels, HaveWordsForWhatTheyMean) {
    start();
    const struct {
        const char* action;
        PropertyDictionary parameters;
        const char* words;
    } cases[] = {
        {"Add number to end", {{"startValue", 9}, {"stepValue", -1}, {"padding", 3}}, "009, 008, 007 …"},
        {"Add alphabetical sequence to end", {{"startValue", u"Y"}}, "Y, Z, BA …"},
        {"Reg Ex Replacement",
         {{"searchPattern", u"(a"}},
         "U_REGEX_MISMATCHED_PAREN at character 2 of the pattern"},
        {"Reg Ex Replacement", {{"searchPattern", u"(a)"}}, ""},
        {"Insert at position", {{"position", 0}, {"mode", 1}}, "at the end"},
        {"Insert at position", {{"position", 2}, {"mode", 0}}, "after 2 characters"},
    };
    for (const auto& [action, parameters, words] : cases) {
        chooseAction(action);
        for (const auto& [key, value] : parameters)
            currentAction().setValue(value, key);
        QString told;
        (void)QTest::qWaitFor([&] {
            told.clear();
            for (const NoteLabel* note : application->window().findChildren<NoteLabel*>())
                told += note->isVisible() ? note->text() : "";
            return told == words;
        });
        EXPECT_EQ(told.toStdString(), words);
    }
}

// What the rows of the list show.

/// The name with each span between brackets.
std::u16string marked(std::u16string_view name, const std::vector<NameDifference::Span>& spans) {
    std::u16string result;
    std::size_t place = 0;
    for (const auto& span : spans) {
        result.append(name.substr(place, span.start - place));
        result.append(u"[").append(name.substr(span.start, span.length)).append(u"]");
        place = span.start + span.length;
    }
    return result.append(name.substr(place));
}

TEST(NameDifference, TellsWhatWentAndWhatCame) {
    const std::u16string cases[][4] = {
        {u"IMG_4021.JPG", u"Lofoten 4021.jpg", u"[IMG_]4021.[JPG]", u"[Lofoten ]4021.[jpg]"},
        {u"a.txt", u"a.txt", u"a.txt", u"a.txt"},
        {u"report.txt", u"2024 report.txt", u"report.txt", u"[2024 ]report.txt"},
        // Nothing of the name itself stays: no colours at all.
        {u"abc.txt", u"xyz.txt", u"abc.txt", u"xyz.txt"},
        // Half a word or half a number tells nothing.
        {u"holiday 1.txt", u"hotel 1.txt", u"[holiday] 1.txt", u"[hotel] 1.txt"},
        {u"x 1234.txt", u"x 1299.txt", u"x 12[34].txt", u"x 12[99].txt"},
        // What was only put in, or only taken out, is all that is tinted, in one of the names.
        {u"holiday.txt", u"holidays at sea.txt", u"holiday.txt", u"holiday[s at sea].txt"},
        {u"a12345.txt", u"a1.txt", u"a1[2345].txt", u"a1.txt"},
        {u"ab1.txt", u"abcdef1.md", u"ab1.[txt]", u"ab[cdef]1.[md]"},
        // A composed character is never cut.
        {u"cafe\u0301 a", u"cafe a", u"caf[e\u0301] a", u"caf[e] a"},
        {u"", u"a", u"", u"a"},
    };
    for (const auto& [before, after, removed, added] : cases) {
        const NameDifference difference = NameDifference::between(before, after);
        EXPECT_EQ(marked(before, difference.removed), removed);
        EXPECT_EQ(marked(after, difference.added), added);
    }
    const std::u16string endless(3000, u'a');
    EXPECT_EQ(NameDifference::between(endless + u"b c", endless + u"d c").added.size(), 1U);
}

TEST(NameDifference, ShowsNamesSafely) {
    EXPECT_EQ(ShownName::of(u"a\u202Eb\nc", false), QString::fromUtf16(u"a\u2023b\u2023c"));
    EXPECT_EQ(ShownName::of(u"a b\t\u0001", true), QString::fromUtf16(u"a\u00B7b\u2192\u2023"));
    const std::u16string bytes{u'a', 0xDCE9, u'b'};
    EXPECT_EQ(ShownName::of(bytes, false), QString::fromUtf16(u"a\uFFFDb"));
    EXPECT_EQ(ShownName::bytesNote(bytes), "Bytes that are not UTF-8: E9");
    EXPECT_EQ(ShownName::of(u"\U0001F600", false), QString::fromUtf16(u"\U0001F600"));
}

QByteArray picture(const char* format, int width = 400, int height = 200) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    EXPECT_TRUE(image.save(&buffer, format));
    return bytes;
}

/// A picture of so many pixels by its header, that has far fewer.
QByteArray lyingPng(const char* side) {
    QByteArray bytes = picture("PNG");
    bytes.replace(16, 8, QByteArray::fromHex(side).repeated(2));
    const quint32 checksum = qToBigEndian(crc32(std::string_view(bytes.constData() + 12, 17)));
    return bytes.replace(29, 4, QByteArray::fromRawData(reinterpret_cast<const char*>(&checksum), 4));
}

TEST(Thumbnail, IsReadFromPlainPicturesAlone) {
    const TemporaryFolder folder;
    const auto write = [&](const char* name, const QByteArray& bytes) {
        return folder.write(name, bytes.toStdString());
    };
    ASSERT_EQ(::mkfifo(folder.path("fifo.jpg").c_str(), 0600), 0);
    const QSize none(0, 0);
    const std::pair<std::string, QSize> cases[] = {
        {write("good.png", picture("PNG")), {28, 14}},
        {write("good.jpg", picture("JPG")), {28, 14}},
        {write("narrow.jpg", picture("JPG", 1, 4000)), {1, 28}},
        {write("other name.jpg", picture("PNG")), {28, 14}},
        {write("empty.jpg", ""), none},
        {write("cut.png", picture("PNG").left(60)), none},
        {write("large.png", lyingPng("0000ea60")), none},
        {write("large.bmp", picture("BMP").replace(18, 8, QByteArray::fromHex("60ea000060ea0000"))), none},
        {write("large.gif",
               "GIF89a" + QByteArray::fromHex("ffffffff8000000000000000002c00000000ffffffff000200")),
         none},
        {write("drawing.jpg", R"(<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9">
                                 <rect width="9" height="9"/></svg>)"),
         none},
        {folder.path("fifo.jpg"), none},
        {folder.link("device.jpg", "/dev/zero"), none},
        {folder.makeFolder("folder.jpg"), none},
        {folder.path("nothing.jpg"), none}};
    const ThumbnailLoader loader; // sets the limits
    for (const auto& [path, size] : cases) {
        const QImage image = ThumbnailLoader::read(path, 28);
        EXPECT_TRUE(image.size() == size) << path << ": " << image.width() << " x " << image.height();
    }
}

TEST(Thumbnail, IsNotReadWhileTheListScrolls) {
    const TemporaryFolder folder;
    PreviewList::Row row;
    row.id = 7;
    row.fullPath = folder.write("a.jpg", picture("JPG").toStdString());
    std::vector<RowId> changed;
    ThumbnailLoader loader;
    QObject::connect(&loader, &ThumbnailLoader::changed, [&](RowId id) { changed.push_back(id); });
    loader.setPaused(true);
    EXPECT_EQ(loader.imageFor(row, true).typeId(), QMetaType::QIcon);
    EXPECT_FALSE(loader.isReading());
    loader.setPaused(false);
    static_cast<void>(loader.imageFor(row, true));
    EXPECT_TRUE(loader.isReading());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !changed.empty(); }, 10000));
    EXPECT_EQ(changed, std::vector<RowId>{7});
    EXPECT_EQ(loader.imageFor(row, true).typeId(), QMetaType::QImage);
    // What was asked for before the scrolling is dropped, and comes when it is asked for again.
    loader.clear();
    static_cast<void>(loader.imageFor(row, true));
    loader.setPaused(true);
    EXPECT_FALSE(loader.isReading());
    loader.setPaused(false);
    static_cast<void>(loader.imageFor(row, true));
    EXPECT_TRUE(QTest::qWaitFor([&] { return changed.size() == 2; }, 10000));
    EXPECT_FALSE(loader.isReading());
}

} // namespace
} // namespace tavrin::test
