#include "actions/CatalogueFixture.h"
#include "actions/list/RenameFromListAction.h"
#include "common/FailingFileSystem.h"

namespace tavrin::test {

namespace {

constexpr const char* missing = "File does not exist. Nothing loaded.";
constexpr const char* empty = "0 \"file path, new name\" pairs loaded.";
constexpr const char* noText = "File is not text in UTF-8. Nothing loaded.";
constexpr const char* noFile = "This is no file. Nothing loaded.";

std::string repeated(std::string_view text, int count) {
    return fmt::format("{}", fmt::join(std::vector(count, text), ""));
}

class RenameFromList : public CatalogueFixture {
  protected:
    static std::string load(RenameFromListAction& action, const std::string& path) {
        action.load(text::fromBytes(path));
        EXPECT_EQ(action.getParamString("listFilePath"), text::fromBytes(path));
        return text::toUtf8(action.getParamString("status"));
    }
    std::string load(RenameFromListAction& action, const std::string& name, std::string_view content) {
        return load(action, folder.write(name, content));
    }

    TemporaryFolder folder;
};

TEST_F(RenameFromList, TellsWhatCameOfAFile) {
    const std::string path1024 = "/" + std::string(1023, 'p');
    const std::string name256 = repeated("\xC3\xA9", 254) + "\xF0\x9F\x98\x80"; // 256 units in 512 bytes
    const std::pair<std::string, std::string> cases[] = {
        {"", empty},
        {" \n\t\r\n", empty},
        {"/a\tb\n/c\td\n", "2 \"file path, new name\" pairs loaded."},
        {"a\tb\nc\td", "2 \"current name, new name\" pairs loaded."},
        {"one", "1 new names loaded."},
        // Of another kind than the first line; the quotes do not count.
        {"/a/b.txt\tc.txt\nd.txt\te.txt", "Error on line 2. Nothing loaded."},
        {"a\tb\n\"/c\"\td", "Error on line 2. Nothing loaded."},
        // Blank lines are no lines.
        {"\n\na\tb\n\n\nc\n", "Error on line 2. Nothing loaded."},
        {"a\tb\nc\t\n \n", "Error on line 2. Nothing loaded."},
        {"a\tb\tc", "Error on line 1. Nothing loaded."},
        {"a\t\nb\tc", "Error on line 1. Nothing loaded."},
        {"a\tb\nc\td/e", "Error on line 2. Nothing loaded."},
        // The line of the form that was tried last.
        {"a\nb\nc/d\n", "Error on line 3. Nothing loaded."},
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
    };
    for (const auto& [content, status] : cases) {
        RenameFromListAction action;
        EXPECT_EQ(load(action, "list", content), status) << content.substr(0, 40);
        action.prepare();
        EXPECT_EQ(action.failure(),
                  status.ends_with("Nothing loaded.") ? folder.path("list") + ": " + status : "");
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
    action.load(u"/\xD800"); // no bytes of any file
    EXPECT_EQ(text::toUtf8(action.getParamString("status")), missing);
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
    EXPECT_EQ(action.getParamString("status"), u"Nothing loaded.");
    const std::tuple<std::function<void()>, const char16_t*> steps[] = {
        {[&] { load(action, "good", "a.jpg\tx\n"); }, u"x.jpg"},
        {[&] { load(action, "bad", "a.jpg\ty\nc\n"); }, u"x.jpg"},
        {[&] { load(action, "names", "z\n"); }, u"z.jpg"},
        {[&] { folder.write("names", "y\n"); }, u"z.jpg"},
        {[&] { action.reload(); }, u"y.jpg"},
        {[&] { folder.remove("names"); }, u"y.jpg"},
        {[&] { action.reload(); }, u"a.jpg"},
        {[&] { load(action, "names", "z\n"); }, u"z.jpg"},
        {[&] { action.clear(); }, u"a.jpg"},
    };
    for (const auto& [change, newName] : steps) {
        change();
        EXPECT_EQ(run(action, u"a.jpg"), newName);
    }
    EXPECT_EQ(text::toUtf8(action.getParamString("status")), missing);
    EXPECT_EQ(action.getParamString("listFilePath"), u"<no file>");
}

// A run works on a copy that is made from the stored parameters: it has the list of the moment.
TEST_F(RenameFromList, IsReadOncePerChangeAndNotPerRunOrItem) {
    using namespace std::chrono_literals;
    const auto now = std::filesystem::file_time_type::clock::now();
    const struct {
        const char* content;
        std::chrono::seconds age;
        std::int32_t ignoreCase;
        const char* newName;
        std::size_t reads;
    } runs[] = {
        {"A.jpg\tx\n", 3600s, 1, "x.jpg", 1},
        {"A.jpg\tx\n", 3600s, 1, "x.jpg", 0},
        {"A.jpg\tx\n", 3600s, 0, "a.jpg", 1},
        {"A.jpg\tlong\n", 3600s, 0, "a.jpg", 1},
        {"A.jpg\tlong\n", 3600s, 1, "long.jpg", 1},
        {"A.jpg\tlast\n", 3599s, 1, "last.jpg", 1},
        // While a file is that young, a change may not show in its time.
        {"A.jpg\tlast\n", -60s, 1, "last.jpg", 1},
        {"A.jpg\tpast\n", -60s, 1, "past.jpg", 1},
    };
    RenameFromListAction edited;
    FailingFileSystem fileSystem;
    for (const auto& each : runs) {
        const auto path = folder.write("list", each.content);
        std::filesystem::last_write_time(path, now - each.age);
        edited.setValue(text::fromBytes(path), "listFilePath");
        edited.setValue(each.ignoreCase, "ignoreCase");
        fileSystem.reset();
        RenameFromListAction copy;
        copy.setParameterList(edited.parameterList());
        run(copy, u"b.jpg");
        EXPECT_EQ(text::toUtf8(run(copy, u"a.jpg")), each.newName);
        EXPECT_EQ(fileSystem.callCount(FileCall::read), each.reads) << each.content;
        edited.load(text::fromBytes(path)); // as the window does, which holds the list
    }
    std::filesystem::last_write_time(folder.path("list"), now - 3600s);
    edited.load(text::fromBytes(folder.path("list")));
    fileSystem.reset();
    edited.reload();
    EXPECT_EQ(fileSystem.callCount(FileCall::read), 1U) << "the user knows better than the time of the file";
}

} // namespace

} // namespace tavrin::test
