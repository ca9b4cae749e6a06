#include "platform/Page.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

TEST(Page, PlainTextStaysAsItIs) {
    for (const char* text : {"", "<", "1,2,record/a.jpg,", " NO_DATA\r\n", "a <b> &amp; c"})
        EXPECT_EQ(textOfPage(text), text);
}

TEST(Page, HtmlBecomesWhatAReaderSees) {
    const std::pair<const char*, const char*> cases[] = {
        {"<html><body>1,2,record/a.jpg,</body></html>", "1,2,record/a.jpg,\n"},
        {"\r\n<!DOCTYPE html><HTML><title>Search</title><BODY>NO_DATA</BODY>", "NO_DATA\n"},
        {"<p>one</p><p>two<br/>three", "one\ntwo\nthree"},
        {"<b>a</b>b <i> c</i>", "ab c"},
        {"<pre>1,2,a.jpg,\n1,2,b.jpg,\n</pre>", "1,2,a.jpg, 1,2,b.jpg,\n"},
        {"<script>if (a < b) '</p>'; </scripture> x</script>seen", "seen"},
        {"<style>p > a {}</style><!-- <p>hidden --> seen", "seen"},
        {"<a title='>' href=\"x>y\">seen</a>", "seen"},
        {"<p>&lt;&#65;&#x42;&amp;&nbsp;&quot;&eacute;&#233;&#0;&#xD800;&", "<AB& \"&eacute;é??&"},
        {"<p>1 < 2 <3 </p>", "1 < 2 <3\n"},
        {"<tr><td>a</td><td>b</td></tr>", "a b\n"},
    };
    for (const auto& [html, text] : cases)
        EXPECT_EQ(textOfPage(html), text) << html;
    for (const char* unfinished : {"<a", "<!--", "<script>", "<p title='"})
        EXPECT_EQ(textOfPage(unfinished), "") << unfinished;
}

/// What takes a document's builder minutes, and more than is ever read.
TEST(Page, NestingCostsNothing) {
    for (const char* part :
         {"<div>", "<table><tr><td>", "<script></", "<!--", "<!-- --", "&#", "<p '", "</"}) {
        std::string page = "<html>";
        while (page.size() < 2'000'000)
            page += part;
        EXPECT_LE(textOfPage(page).size(), 256U * 1024) << part;
    }
}

} // namespace
} // namespace orvane::test
