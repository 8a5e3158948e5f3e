#include "presentation/MessageBars.h"

#include "presentation/Spoken.h"
#include "presentation/WindowFixture.h"

namespace tavrin::test {

TEST(MessageBars, TheNewestStandsAndTheOneBeforeComesAgain) {
    QWidget window;
    Spoken spoken(&window);
    MessageBars bars;
    int closings = 0;
    const auto message = [&](const char* name) {
        return BarMessage{.objectName = name,
                          .kind = BarMessage::Kind::done,
                          .bold = QString("487 file names were changed, says %1.").arg(name),
                          .buttons = {{"undoRun", "&Undo", [&, name] { bars.dismiss(name); }},
                                      {"showHistory", "Show What Changed", [] {}}},
                          .closed = [&] { ++closings; }};
    };
    bars.show();
    bars.present(message("first"));
    const auto button = [&] { return bars.findChild<QPushButton*>("undoRun"); };
    const auto heightAt = [&](int width) {
        bars.resize(width, 60);
        QApplication::processEvents();
        return bars.heightForWidth(width);
    };
    const int oneLine = heightAt(900);
    EXPECT_EQ(Spoken::lastSaid(), "487 file names were changed, says first.");
    bars.present(message("second"));
    EXPECT_TRUE(bars.isShowing("second"));
    button()->click();
    EXPECT_TRUE(bars.isShowing("first"));
    EXPECT_GT(heightAt(380), oneLine + button()->height()) << "the buttons do not fit beside the words";
    EXPECT_GE(button()->width(), button()->sizeHint().width());
    EXPECT_EQ(heightAt(900), oneLine);
    bars.findChild<QToolButton*>("closeMessage")->click();
    EXPECT_FALSE(bars.isShowing("first"));
    EXPECT_EQ(closings, 1);
}

} // namespace tavrin::test
