#include "platform/desktop/UpdateFeedReader.h"

#include "platform/desktop/SystemVersion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tavrin::test {
namespace {

using ::testing::HasSubstr;
using Items = std::vector<UpdateFeedItem>;

std::string feed(const std::string& items) {
    return "<?xml version='1.0'?>\n<rss version='2.0' xmlns:s='urn:feed'><channel>\n"
           "<title>All releases</title><link>https://example.org</link>\n" +
           items + "</channel></rss>";
}

TEST(UpdateFeedReaderTest, ReadsWhatAReleaseTells) {
    const auto result = UpdateFeedReader::read(
        feed("<item><title> Tavrin &amp; <![CDATA[friends]]> </title><link>https://example.org/1</link>"
             "<description><title>within</title><s:version>7</s:version></description>"
             "<s:minimumSystemVersion>\n 5.10\n</s:minimumSystemVersion>"
             "<s:releaseNotesLink>https://example.org/notes</s:releaseNotesLink>"
             "<enclosure url='x' version='8' s:version='9.1' s:shortVersionString='9.1 (fine)'/></item>"
             "<item><s:version>9.2b1</s:version><s:shortVersionString>9.2</s:shortVersionString></item>"
             "<item/>"));
    const auto* items = std::get_if<Items>(&result);
    ASSERT_TRUE(items) << std::get<UpdateFeedError>(result).message;
    ASSERT_EQ(items->size(), 3u);
    const UpdateFeedItem& first = items->front();
    EXPECT_EQ(first.title, "Tavrin & friends");
    EXPECT_EQ(first.link, "https://example.org/1");
    EXPECT_EQ(first.version, "9.1");
    EXPECT_EQ(first.shortVersion, "9.1 (fine)");
    EXPECT_EQ(first.minimumSystemVersion, "5.10");
    EXPECT_EQ(first.releaseNotesLink, "https://example.org/notes");
    EXPECT_EQ((*items)[1].version, "9.2b1");
    EXPECT_EQ((*items)[1].shortVersion, "9.2");
    EXPECT_EQ((*items)[2].version, "");
}

TEST(UpdateFeedReaderTest, RefusesWhatIsNoFeedOrTooMuch) {
    const auto times = [](int count, const std::string& text) {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += text;
        return all;
    };
    const std::vector<std::pair<std::string, std::string>> cases{
        {"", "no element"},
        {"hello", "line 1"},
        {"<html/>", "line 1: this is no feed of updates"},
        {"<f:rss xmlns:f='urn:other'/>", "this is no feed of updates"},
        {"\n<rss>\n<channel>", "line 3"},
        {"<!DOCTYPE rss [<!ENTITY a 'aaaa'><!ENTITY b '&a;&a;'>]><rss>&b;</rss>",
         "line 1: a document type is not allowed"},
        {"<!DOCTYPE rss SYSTEM 'file:///etc/passwd'><rss/>", "a document type is not allowed"},
        {feed("<item><title>&unknown;</title></item>"), "line 4"},
        {feed("<item><x:version>9</x:version></item>"), "line 4"},
        {feed("<item><title>\xFF</title></item>"), "line 4"},
        {feed(times(1001, "<item/>")), "too many items"},
        {feed(times(70, "<a>") + times(70, "</a>")), "nested too deeply"},
        {feed("<item><title>" + std::string(16385, 'x') + "</title></item>"), "a text is too long"},
        {feed("<item><enclosure s:version='" + std::string(16385, '9') + "'/></item>"), "a text is too long"},
        {feed(std::string(UpdateFeedReader::sizeLimit, ' ')), "larger than 4 MiB"},
    };
    for (const auto& [bytes, reason] : cases) {
        const auto result = UpdateFeedReader::read(bytes);
        const auto* error = std::get_if<UpdateFeedError>(&result);
        ASSERT_TRUE(error) << reason;
        EXPECT_THAT(error->message, HasSubstr(reason));
    }
    EXPECT_TRUE(std::holds_alternative<Items>(UpdateFeedReader::read(feed(times(1000, "<item/>")))));
}

TEST(SystemVersionTest, ReadsThreeNumbers) {
    const std::vector<std::pair<const char*, const char*>> kernels{{"6.1.0-13-amd64", "6.1.0"},
                                                                   {"5.15", "5.15.0"},
                                                                   {"4", "4.0.0"},
                                                                   {"6.1.5.9", "6.1.5"},
                                                                   {"6.x", "6.0.0"},
                                                                   {"6..1", "6.0.0"},
                                                                   {"generic", ""},
                                                                   {"", ""}};
    for (const auto& [release, version] : kernels)
        EXPECT_EQ(SystemVersion::ofKernelRelease(release), version) << release;
    const std::vector<std::pair<const char*, const char*>> distributions{
        {"NAME=x\nVERSION_ID=\"12\"\n", "12"},
        {"VERSION_ID='22.04'", "22.04"},
        {"VERSION_ID=3.18\r\n", "3.18"},
        {"XVERSION_ID=1\n", ""},
        {"VERSION_ID=\n", ""},
        {"", ""}};
    for (const auto& [content, version] : distributions)
        EXPECT_EQ(SystemVersion::ofDistribution(content), version) << content;
    EXPECT_THAT(SystemVersion::asText(), ::testing::MatchesRegex("[0-9]+[.][0-9]+[.][0-9]+"));
}

} // namespace
} // namespace tavrin::test
