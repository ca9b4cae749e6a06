#include "camera/CameraPanel.h"
#include "imaging/JpegMarkers.h"
#include "tests/camera/RealCamera.h"

namespace orvane::test {
namespace {

struct CameraTransfer : testing::Test, RealCamera {

    bool download(const std::string& path = kLatestImagePath) {
        Task<HttpReply> task =
            camera.DownloadFile(cameraBaseUrl(s.panel) + path, s.folder.path() / "", "picture.jpg");
        task.start();
        reason = finish(task).fault;
        return reason.empty();
    }
    std::string picture() const { return contentsOf(file); }

    std::string reason; ///< why the last download failed
    std::filesystem::path file = s.folder.path() / "picture.jpg";
    CurlTransfer switches{curl, clock, limits};
    CameraPanel camera{s.module, s.panel, transfer, switches,      s.views,
                       s.busy,   s.op,    clock,    s.imageControl};
};

/// What the camera can do wrong: either the download says so and leaves the file alone, or what it
/// brought is seen not to be a whole picture.
TEST_F(CameraTransfer, EveryFaultIsNoticedInBoundedTime) {
    const std::pair<const char*, bool> cases[] = {
        // whether it arrives as a file
        {"refuse", false},     {"silent", false}, {"reset", false},       {"stall", false},
        {"drip:200", false},   {"short", false},  {"nolength-cut", true}, {"status:404", false},
        {"status:503", false}, {"html", true},    {"empty", false},       {"cut", true},
    };
    const std::string old = "what stood here before";
    for (const auto& [fault, arrives] : cases) {
        SCOPED_TRACE(fault);
        writeFile(file, old);
        setFault(fault);
        EXPECT_EQ(download(), arrives) << reason;
        EXPECT_FALSE(isWholeJpeg(picture()));
        if (!arrives) {
            EXPECT_EQ(picture(), old);
        }
        setFault("none");
        EXPECT_TRUE(download()) << reason;
        EXPECT_TRUE(isWholeJpeg(picture()));
    }
}

TEST_F(CameraTransfer, AHugeAnswerIsCutOff) {
    setFault("list-big:5", 0, "/cgi/srch.cgi");
    for (const Wanted wanted : {Wanted::Page, Wanted::Nothing}) {
        Task<HttpReply> task = transfer.get(cameraBaseUrl(s.panel) + "/cgi/srch.cgi", wanted);
        task.start();
        EXPECT_EQ(finish(task).fault, "the answer is too large");
    }
}

/// The body goes over the start of the file; what stood behind it stays.
TEST_F(CameraTransfer, OverwritesInPlaceWithoutShortening) {
    ASSERT_TRUE(download("/"));
    const std::string page = picture();
    EXPECT_NE(page.find("<html"), std::string::npos);
    writeFile(file, std::string(page.size() + 2000, 'o'));
    ASSERT_TRUE(download("/"));
    const std::string bytes = picture();
    EXPECT_EQ(bytes.size(), page.size() + 2000);
    EXPECT_NE(bytes.find("<html"), std::string::npos);
    EXPECT_EQ(bytes.substr(bytes.size() - 1900), std::string(1900, 'o'));
}

TEST_F(CameraTransfer, AWriteThatFailsIsAFailure) {
    std::filesystem::create_directory(file);
    EXPECT_FALSE(download());
    EXPECT_NE(reason.find("cannot write picture.jpg"), std::string::npos);
}

/// Both requests arrive, in their order, however quickly they are made.
TEST_F(CameraTransfer, RecordingSwitch) {
    using Click = void (CameraPanel::*)();
    const std::pair<Click, Click> cases[] = {
        {&CameraPanel::Command5_Click, &CameraPanel::Command7_Click},
        {&CameraPanel::Command7_Click, &CameraPanel::Command5_Click}};
    for (quint64 served = 2; const auto& [first, second] : cases) {
        (camera.*first)();
        (camera.*second)();
        runEventLoopUntil(
            [&] { return simulator.status().requestsServed == served && !switches.running(); });
        EXPECT_EQ(simulator.recording(), second == &CameraPanel::Command5_Click);
        served += 2;
    }
}

} // namespace
} // namespace orvane::test
