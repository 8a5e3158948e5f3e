#include "StageTest.h"
#include "engine/asking/ErrorReportManager.h"
#include "platform/files/SandboxHelper.h"
#include "store/paging/StoreError.h"

namespace tavrin::test {
namespace {

class ErrorReportTest : public StageTest {
  protected:
    void SetUp() override { SandboxHelper::setApplicationSupportFolderPath(folder.path("data/Tavrin 9")); }
    void TearDown() override { SandboxHelper::setApplicationSupportFolderPath(std::nullopt); }

    /// The parts must follow each other in this order, from the front.
    void expectReport(const std::vector<std::string>& parts) const {
        const std::string text = folder.read("data/Tavrin 9/TVRN_error_report.txt");
        EXPECT_TRUE(text.starts_with(parts.front()));
        std::size_t at = 0;
        for (const std::string& part : parts) {
            const std::size_t found = text.find(part, at);
            ASSERT_NE(found, std::string::npos) << part;
            at = found + part.size();
        }
    }
};

TEST_F(ErrorReportTest, HoldsItsPartsInOrder) {
    host.add({folder.write("a/x"), folder.write("b/y")});
    host.preview();
    folder.write("data/Tavrin 9/TVRN_error_report.txt", "an earlier report");
    host.onWorker(
        [&] { ErrorReportManager(host).writeErrorReportWithString("the body\n\n", "the title\n\n"); });
    expectReport({"the title\n\nVersion: ", " Time: ", "\n\nthe body\n\n",
                  "----- Database Dump ---------\n\nEngineControl: 0\nsourceItems:\n" + folder.path("a/x") +
                      "\n" + folder.path("b/y") + "\n\nNodes:\n",
                  "File at " + folder.path("a/x") + "\n", "File at " + folder.path("b/y") + "\n",
                  "\n----- System Survey ---------\n", "Linux", "----- Folders ---------"});
    EXPECT_EQ(host.events.back(), "revealReport " + ErrorReportManager::reportPath());
    ErrorReportManager(host).writeErrorReport();
    expectReport({"This report contains information designed to", "make Tavrin 9 an even better product",
                  "GhostNode at " + folder.path("a") + "\n"});
    BrokenHost broken(folder.path());
    ErrorReportManager(broken.host).writeErrorReportWithException(StoreError("it broke"));
    expectReport({"This is an error report that", "support@tavrin.example.", "Version: ",
                  "Exception caught:\nStoreError: it broke\n", "database dump failed.\n", "System Survey"});
}

TEST_F(ErrorReportTest, CommandsAreReadInTheirOldEncoding) {
    const std::pair<const char*, const char*> cases[] = {
        {"echo plain; exit 3", "plain\n"},
        {R"(printf '\241\263\351\377')", "\u0104\u0142\u00e9\u02d9"},
        {"echo seen; echo unseen >/dev/null", "seen\n"},
        {"no-such-command-at-all", ""},
    };
    for (const auto& [command, output] : cases)
        EXPECT_EQ(ErrorReportManager::runWithCommand(command), output) << command;
    EXPECT_EQ(ErrorReportManager::runWithCommand("head -c 3000000 /dev/zero | tr '\\0' x").size(), 1U << 20);
}

} // namespace
} // namespace tavrin::test
