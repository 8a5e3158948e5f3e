#include "actions/CatalogueFixture.h"
#include "actions/list/RenameFromListAction.h"
#include "common/FailingFileSystem.h"
#include "common/TemporaryFolder.h"
#include "support/text/Text.h"

#include <filesystem>
#include <sys/stat.h>

namespace tavrin::test {

namespace {

constexpr const char* missing = "File does not exist. Nothing loaded.";
constexpr const char* empty = "0 \"file path, new name\" pairs loaded.";
constexpr const char* noText = "File is not text in UTF-8. Nothing loaded.";
constexpr const char* noFile = "This is no file. Nothing loaded.";

std::string repeated(std::string_view text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

class RenameFromList : public CatalogueFixture {
  protected:
    static std::string statusOf(const RenameFromListAction& action) {
        return text::toUtf8(action.getParamString("status"));
    }
    std::string load(RenameFromListAction& action, const std::string& path) {
        action.load(text::fromBytes(path));
        EXPECT_EQ(action.getParamString("listFilePath"), text::fromBytes(path));
        return statusOf(action);
    }
    std::string load(RenameFromListAction& action, const std::string& name, std::string_view content) {
        return load(action, folder.write(name, content));
    }

    TemporaryFolder folder;
};

TEST_F(RenameFromList, TellsWhatCameOfAFile) {
    const std::string path1024 = "/" + std::string(1023, 'p');
    const std::string name256 = repeated("\xC3\xA9", 254) + "\xF0\x9F\x98\x80"; // 256 units in 512 bytes
    const struct {
        std::string content;
        std::string status;
    } cases[] = {
        {"", empty},
        {" \n\t\r\n", empty},
        {"/a\tb\n/c\td\n", "2 \"file path, new name\" pairs loaded."},
        {"a\tb\n", "1 \"current name, new name\" pairs loaded."},
        {"a\tb\nc\td", "2 \"current name, new name\" pairs loaded."},
        {"a\nb\n", "2 new names loaded."},
        {"one", "1 new names loaded."},
        // Of another kind than the first line; the quotes do not count.
        {"/a/b.txt\tc.txt\nd.txt\te.txt", "Error on line 2. Nothing loaded."},
        {"a\tb\n\"/c\"\td", "Error on line 2. Nothing loaded."},
        // Blank lines are no lines.
        {"\n\na\tb\n\n\nc\n", "Error on line 2. Nothing loaded."},
        {"a\tb\nc", "Error on line 2. Nothing loaded."},
        {"a\tb\nc\t\n \n", "Error on line 2. Nothing loaded."},
        {"a\tb\tc", "Error on line 1. Nothing loaded."},
        {"a\t\nb\tc", "Error on line 1. Nothing loaded."},
        {"a\tb/c", "Error on line 1. Nothing loaded."},
        {"a\tb\nc\td/e", "Error on line 2. Nothing loaded."},
        // The line of the form that was tried last.
        {"a\nb\nc/d\n", "Error on line 3. Nothing loaded."},
        {"a\nb\tc\n", "Error on line 2. Nothing loaded."},
        // Lengths in code units: of the first field with its quotes, of the second without.
        {path1024 + "\tb", "1 \"file path, new name\" pairs loaded."},
        {"x\ty\n" + path1024.substr(1) + "zz\tb", "Error on line 2. Nothing loaded."},
        {"\"" + path1024.substr(2) + "\"\tb", "1 \"current name, new name\" pairs loaded."},
        {"x\ty\n\"" + path1024.substr(1) + "\"\tb", "Error on line 2. Nothing loaded."},
        {"a\t\"" + name256 + "\"", "1 \"current name, new name\" pairs loaded."},
        {"x\ty\na\t" + name256 + "b", "Error on line 2. Nothing loaded."},
        {name256, "1 new names loaded."},
        {"a\n" + name256 + "b", "Error on line 2. Nothing loaded."},
        // Not UTF-8, wherever it begins; overlong; a surrogate.
        {"a\tb\nc\td\xE9\n", noText},
        {"a\nb\n\xC0\xAF", noText},
        {"\xED\xB2\x80\n", noText},
        {"\xEF\xBB\xBF/a\tb", "1 \"file path, new name\" pairs loaded."},
    };
    int number = 0;
    for (const auto& each : cases) {
        RenameFromListAction action;
        EXPECT_EQ(load(action, std::to_string(++number), each.content), each.status)
            << each.content.substr(0, 40);
        action.prepare();
        const std::string path = text::toUtf8(action.getParamString("listFilePath"));
        EXPECT_EQ(action.failure(),
                  each.status.ends_with("Nothing loaded.") ? path + ": " + each.status : "");
    }
}

TEST_F(RenameFromList, HasALastLine) {
    RenameFromListAction action;
    for (const std::string line : {"a\tb\n", "a\n"}) {
        const auto most = repeated(line, 500000);
        const auto status = load(action, "most", most);
        EXPECT_TRUE(status.starts_with("500000 ")) << status;
        EXPECT_EQ(load(action, "more", most + line), "Error on line 500001. Nothing loaded.");
        EXPECT_EQ(load(action, "blank lines", most + "\n\n"), status);
    }
}

TEST_F(RenameFromList, OpensNothingButFiles) {
    RenameFromListAction action;
    const FailingFileSystem fileSystem;
    const auto pipe = folder.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(load(action, pipe), noFile);
    EXPECT_EQ(load(action, "/dev/zero"), noFile);
    EXPECT_EQ(load(action, folder.makeFolder("folder")), noFile);
    EXPECT_EQ(fileSystem.callCount(FileCall::read), 0U);
    EXPECT_EQ(load(action, folder.link("link", folder.write("target", "x\n"))), "1 new names loaded.");
    EXPECT_EQ(load(action, folder.link("dangling", "nowhere")), missing);
    EXPECT_EQ(load(action, folder.path("none")), missing);
    EXPECT_EQ(load(action, std::string(folder.path("target") + '\0')), missing);
    EXPECT_EQ(load(action, folder.write("\xE9", "x\n")), "1 new names loaded.");
    // Of a size that no list has, without its blocks on the disk.
    const auto huge = folder.write("huge");
    std::filesystem::resize_file(huge, std::uintmax_t{1} << 40);
    EXPECT_EQ(load(action, huge), "File is too large. Nothing loaded.");
}

TEST_F(RenameFromList, FailsWhicheverLookAtItsFileFails) {
    const auto path = folder.write("list", "a.jpg\tx\n");
    FailingFileSystem files;
    for (std::size_t call = 1;; ++call) {
        files.reset();
        files.failCall(call, EIO);
        RenameFromListAction action;
        const std::string status = load(action, path);
        if (files.failureCount() == 0)
            break;
        action.prepare();
        EXPECT_EQ(action.failure().empty(), run(action, u"a.jpg") == u"x.jpg") << call << ": " << status;
    }
}

TEST_F(RenameFromList, KeepsAListUntilAnotherIsLoaded) {
    RenameFromListAction action;
    EXPECT_EQ(statusOf(action), "Nothing loaded.");
    load(action, "good", "a.jpg\tx\n");
    EXPECT_EQ(run(action, u"a.jpg"), u"x.jpg");
    EXPECT_EQ(load(action, "bad", "a.jpg\ty\nc\n"), "Error on line 2. Nothing loaded.");
    EXPECT_EQ(run(action, u"a.jpg"), u"x.jpg");
    EXPECT_EQ(load(action, "names", "z\n"), "1 new names loaded.");
    EXPECT_EQ(run(action, u"a.jpg"), u"z.jpg");
    folder.write("names", "y\n");
    EXPECT_EQ(run(action, u"a.jpg"), u"z.jpg");
    action.reload();
    EXPECT_EQ(run(action, u"a.jpg"), u"y.jpg");
    folder.remove("names");
    action.reload();
    EXPECT_EQ(statusOf(action), missing);
    EXPECT_EQ(run(action, u"a.jpg"), u"a.jpg");
    load(action, "names", "z\n");
    action.clear();
    EXPECT_EQ(statusOf(action), missing);
    EXPECT_EQ(action.getParamString("listFilePath"), u"<no file>");
    EXPECT_EQ(run(action, u"a.jpg"), u"a.jpg");
}

// A run works on a copy that is made from the stored parameters: it has the list of the moment.
TEST_F(RenameFromList, ComesBackFromItsFileWithTheParameters) {
    RenameFromListAction edited;
    const auto path = folder.write("list", "A.jpg\tx\n");
    const auto hourAgo = std::filesystem::last_write_time(path) - std::chrono::hours(1);
    const auto newNameOfACopy = [&] {
        RenameFromListAction copy;
        copy.setParameterList(edited.parameterList());
        return text::toUtf8(run(copy, u"a.jpg"));
    };
    // While a file is that young, a change may not show in its time.
    const auto young = std::filesystem::last_write_time(path) + std::chrono::minutes(1);
    std::filesystem::last_write_time(path, young);
    load(edited, path);
    folder.write("list", "A.jpg\tw\n");
    std::filesystem::last_write_time(path, young);
    EXPECT_EQ(newNameOfACopy(), "w.jpg");

    folder.write("list", "A.jpg\tx\n");
    std::filesystem::last_write_time(path, hourAgo);
    const FailingFileSystem fileSystem;
    load(edited, path);
    EXPECT_EQ(newNameOfACopy(), "x.jpg");
    EXPECT_EQ(fileSystem.callCount(FileCall::read), 1U) << "the copy need not read what has not changed";
    // Read anew for another way of comparing, for other content, and for content of the same length.
    edited.setValue(0, "ignoreCase");
    EXPECT_EQ(newNameOfACopy(), "a.jpg");
    edited.setValue(1, "ignoreCase");
    folder.write("list", "A.jpg\tlong\n");
    EXPECT_EQ(newNameOfACopy(), "long.jpg");
    folder.write("list", "A.jpg\ty\n");
    std::filesystem::last_write_time(path, hourAgo + std::chrono::seconds(1));
    EXPECT_EQ(newNameOfACopy(), "y.jpg");
    folder.remove("list");
    EXPECT_EQ(newNameOfACopy(), "a.jpg");
}

} // namespace

} // namespace tavrin::test
