#include "tests/support/FakeCameraStore.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

constexpr const char* kBase = "http://192.168.0.10:80";

/// A station at 14:37:09 whose camera holds a picture a minute from 14:00 on.
class ImageStoreTest : public testing::Test {
  protected:
    ImageStoreTest() {
        camera.record("20060305", 14, 24);
        s.settings.initOperation();
        s.status.initStatus();
        s.browser1.answer = [this](const std::string& url) { return camera.search(url); };
        s.browser2.answer = s.browser1.answer;
        s.http.answer = [this](const std::string& url) { return camera.picture(url); };
    }
    void run(Task<> (ImageStore::*start)() = &ImageStore::Test_DL) {
        s.tasks.spawn((s.imageStore.*start)());
        EXPECT_TRUE(s.clock.runUntil([this] { return !s.imageStore.running(); }, 5min));
    }
    /// The same while the camera answers each search so, and sends whatever is asked for.
    void runWith(const std::string& reply) {
        s.browser1.answer = [&](const std::string&) { return reply; };
        s.http.answer = [](const std::string& url) { return FakeHttp::picture(url); };
        run();
    }
    static std::string queryAt(const std::string& hour, const std::string& minute) {
        return std::string(kBase) +
               "/cgi/srch.cgi?srch_type=0&s_mode=0&dl=1&ar0=on&from_year=6&from_mon=2&from_day=4"
               "&from_hour=" +
               hour + "&from_min=" + minute + "&from_sec=9&from_frame=0&maxnum=2";
    }
    std::vector<std::string> images() const { return s.imagesOf("20060305"); }
    std::filesystem::path file(const std::string& name) const {
        return s.dataFolder() / "20060305" / name;
    }
    const std::string& label() const { return s.panel.Label7.caption; }
    const std::string& downloaded() const { return s.panel.lbl_dlcnt.caption; }

    TestStation s{at(2006, 3, 5, 14, 37, 9)};
    FakeCameraStore camera;
    const std::vector<std::string> first{"20060305_140807_00.jpg", "20060305_140907_00.jpg"};
};

TEST_F(ImageStoreTest, SearchDownloadsTheFirstPageThatHoldsPictures) {
    run();
    EXPECT_EQ(s.browser1.pages(), std::vector{queryAt("14", "7")});
    EXPECT_EQ(images(), first);
    EXPECT_EQ(s.imagesOf("20060305", "Edit"), first);
    EXPECT_EQ(s.http.urls, (std::vector<std::string>{kBase + ("/record/" + first[0]),
                                                     kBase + ("/record/" + first[1])}));
    EXPECT_EQ(downloaded(), "2");
    EXPECT_EQ(label(), "DownLoad File : " + first[1] + " ...");
    EXPECT_EQ(s.views.newest.filename(), first[1]);
    EXPECT_FALSE(s.panel.Command2.enabled); // nothing is being recorded
    EXPECT_TRUE(s.panel.Command4.enabled);
    EXPECT_FALSE(s.panel.Command6.enabled);
    EXPECT_FALSE(s.busy.active());
    s.tasks.spawn([](TestStation& station) -> Task<> {
        std::string name = "20060305_140807_00.jpg";
        EXPECT_FALSE(co_await station.imageStore.Sync_file(name));
    }(s));
    writeFile(file(first[0]), std::string(5000, 'x')); // longer than ours
    run();
    EXPECT_EQ(contentsOf(file(first[0])), jpegLike("stored " + first[0])) << "fetched again";
    EXPECT_EQ(std::ranges::count(s.module.thumbnails, file(first[0])), 1);
}

TEST_F(ImageStoreTest, NoDataEndsTheRun) {
    camera.names.clear();
    for (const auto start : {&ImageStore::Test_DL, &ImageStore::cmd_Download}) {
        s.panel.Label7.caption = std::string();
        run(start);
        EXPECT_EQ(label(), "ダウンロードするファイルがありません");
    }
    EXPECT_EQ(s.browser1.urls.size(), 1U);
    EXPECT_EQ(s.browser2.urls, std::vector{std::string(kBase) + "/cgi/srch.cgi"});
    EXPECT_EQ(s.http.requests, 0);
}

/// The from-date stays where each page has moved it to.
TEST_F(ImageStoreTest, FruitlessPagesReachBackFurtherAndEnd) {
    camera.broken = true;
    run();
    const std::vector<std::string> pages = s.browser1.pages();
    ASSERT_EQ(pages.size(), 10U);
    EXPECT_EQ(pages[0], queryAt("14", "7"));
    EXPECT_EQ(pages[1], queryAt("13", "37"));
    EXPECT_EQ(pages[2], queryAt("13", "7"));
    EXPECT_EQ(s.http.requests, 20);
    EXPECT_EQ(label(), "DownLoad Error ?");
    EXPECT_TRUE(images().empty());
    camera.perPage = 50;
    run();
    EXPECT_EQ(s.http.requests, 40) << "twenty failures in a row are enough";
    s.browser1.urls.clear();
    runWith("Busy"); // a page without any record is fruitless as well
    EXPECT_EQ(s.browser1.pages().size(), 10U);
    EXPECT_EQ(label(), "DownLoad Error ?");
}

TEST_F(ImageStoreTest, APictureLaterThanTheStartCompletesTheRun) {
    camera.names = {"20060305_143709_00.jpg", "20060305_143709_01.jpg"};
    run();
    EXPECT_EQ(images(), std::vector<std::string>{"20060305_143709_00.jpg"});
    EXPECT_EQ(label(), "ダウンロードを完了しました");
    // a name of another length takes the previous stamp
    runWith("1,2,r/short.jpg,1,2,r/20060305_150000_00.jpg,1,2,r/never.jpg,");
    EXPECT_EQ(images().back(), "short.jpg");
    EXPECT_EQ(images().size(), 2U);
    EXPECT_EQ(label(), "ダウンロードを完了しました");
}

TEST_F(ImageStoreTest, NothingLeavesTheDatedFolder) {
    runWith("1,2,record/..,1,2,r/..\\..\\evil.jpg,1,2,r/C:evil.jpg,1,2,evil.jpg,1,2,r/,"
            "1,2,r/con,1,2,r/good.jpg,");
    EXPECT_EQ(images(), std::vector<std::string>{"good.jpg"});
    EXPECT_EQ(s.http.requests, 1);
    ASSERT_EQ(s.logged().size(), 6U);
    for (const std::string& line : s.logged())
        EXPECT_TRUE(line.starts_with("ImageStore:Name of a stored image not usable: ")) << line;
    std::string reply; // of many thousand names, and of an endless one
    for (int i = 0; i < 30'000; ++i)
        reply += "1,2,r/..x,";
    runWith(reply);
    EXPECT_EQ(s.http.requests, 1);
    EXPECT_LT(s.logged().size(), 20U);
    runWith(std::string(1 << 20, 'x'));
    EXPECT_LT(label().size(), 1000U);
}

TEST_F(ImageStoreTest, StopsAtAnyMoment) {
    camera.perPage = 500;
    for (Ticks moment = 0ms; moment < 3s; moment += 70ms) {
        s.http.latency = 200ms;
        s.tasks.spawn(s.imageStore.Download_proc());
        s.clock.run(moment);
        s.imageStore.Command6_Click();
        s.clock.run(200ms);
        EXPECT_FALSE(s.imageStore.running()) << moment.count();
        EXPECT_EQ(label(), "ダウンロードを中断しました") << moment.count();
        EXPECT_FALSE(s.busy.active());
    }
}

TEST_F(ImageStoreTest, ASilentCameraIsTold) {
    s.browser1.latency = s.browser2.latency = 60s;
    s.browser1.answer = s.browser2.answer = nullptr;
    for (const auto start : {&ImageStore::Download_proc, &ImageStore::cmd_Download}) {
        s.tasks.spawn((s.imageStore.*start)());
        s.clock.run(10s);
        EXPECT_TRUE(label().starts_with("srch_type=0")) << label();
        s.clock.run(2s);
        EXPECT_EQ(label(), "DownLoad Error ?");
        s.clock.run(60s);
        EXPECT_FALSE(s.imageStore.running());
    }
}

TEST_F(ImageStoreTest, SynchronisationAsksWithoutItsQuery) {
    s.module.syncPending = true; // of no meaning to its query
    s.panel.lbl_sync.caption = "95";
    s.tasks.spawn(s.imageStore.cmd_Download());
    EXPECT_NE(label().find("&from_hour=13&from_min=2&from_sec=9"), std::string::npos) << label();
    s.clock.run(1min);
    EXPECT_FALSE(s.imageStore.running());
    EXPECT_EQ(s.browser2.pages(), std::vector{std::string(kBase) + "/cgi/srch.cgi"});
    EXPECT_TRUE(s.browser1.pages().empty());
    EXPECT_EQ(images().size(), 2U);
    EXPECT_EQ(s.panel.lbl_sync.caption.get(), "30"); // counts from this run on
    s.module.syncPending = true;                     // reaches back half an hour more
    run(&ImageStore::Download_proc);
    EXPECT_EQ(s.browser1.pages(), std::vector{queryAt("13", "38")});
    EXPECT_EQ(s.op.beeps, 1);
    EXPECT_FALSE(s.module.syncPending);
}

/// However a picture of the store fails to come in, whoever asked for it, nothing is left of it
/// anywhere.
TEST(StoreDownloads, ThatFailLeaveNeitherAPartNorATemporary) {
    const HttpReply whole = FakeHttp::picture("stored");
    const std::string half = whole.body.substr(0, whole.body.size() / 2);
    struct Case {
        const char* what;
        HttpReply reply;
        const char* failing = ""; ///< the step of writing it
    };
    const Case cases[] = {{"nothing fails", whole},
                          {"a cut picture", {true, 200, half, ""}},
                          {"a transfer that ends in its midst", {false, 200, half, "cut off"}},
                          {"a file that cannot be opened", whole, "open"},
                          {"a full disk", whole, "write"},
                          {"a full disk that is told late", whole, "close"},
                          {"a name that cannot be given", whole, "rename"}};
    const std::pair<const char*, Task<> (ImageStore::*)()> runs[] = {
        {"search", &ImageStore::Test_DL},
        {"synchronisation", &ImageStore::cmd_Download},
        {"gap filling", nullptr}};
    for (const auto& [asking, start] : runs)
        for (const auto& [what, reply, failing] : cases) {
            SCOPED_TRACE(asking + (": " + std::string(what)));
            TestStation s(at(2006, 3, 5, 9, 5));
            s.http.answer = s.gapHttp.answer = [&](const std::string& url) {
                return url.ends_with("full.jpg") ? FakeHttp::failed("refused") : reply;
            };
            s.browser1.answer = s.browser2.answer = s.gapBrowser.answer = [](const std::string&) {
                return "1,2,record/20060305_090007_00.jpg,";
            };
            s.store.values["Settings/FillGaps"] = start == nullptr ? "1" : "0";
            s.files.failing = failing;
            s.start(true);
            s.clock.run(1s);
            if (start != nullptr) s.tasks.spawn((s.imageStore.*start)());
            s.clock.run(10s);
            std::vector<std::string> left = listing(s.folder.path());
            std::erase_if(left, [](const std::string& name) { // folders have no dots
                return name.ends_with(".LOG") || name.find('.') == std::string::npos;
            });
            std::vector<std::string> expected{"data/Ledger/20060305.csv"};
            if (what == cases[0].what)
                expected = {"data/20060305/20060305_090007_00.jpg",
                            "data/Edit/20060305/20060305_090007_00.jpg", expected[0]};
            EXPECT_EQ(left, expected);
            EXPECT_TRUE(s.panel.Command2.enabled) << "recording can be stopped";
            if (start == nullptr) continue;
            EXPECT_EQ(s.panel.lbl_dlcnt.caption.get(), expected.size() > 1 ? "1" : "0");
        }
}

TEST(ImageStoreWithCaptures, SynchronisesEveryHalfHourWhileRecording) {
    TestStation s(at(2006, 3, 5, 8, 0));
    s.browser1.answer = [](const std::string&) { return "NO_DATA"; };
    s.start(true);
    s.clock.runUntil(at(2006, 3, 5, 12, 10));
    const std::vector<std::string> pages = s.browser1.pages();
    EXPECT_EQ(pages.size(), 8U); // 8:30 to 12:00
    // the interval's 30 minutes and 30 more, from the moment after the capture of 12:00
    EXPECT_NE(pages.back().find("&from_hour=11&from_min=0&"), std::string::npos) << pages.back();
    EXPECT_EQ(s.imagesOf("20060305").size(), 7U); // 9:00 to 12:00
    EXPECT_EQ(s.panel.lbl_sync.caption.get(), "30");
    s.recording.Command2_Click();
    s.clock.runUntil(at(2006, 3, 5, 14, 0));
    EXPECT_EQ(s.browser1.pages().size(), 8U);
}

} // namespace
} // namespace orvane::test
