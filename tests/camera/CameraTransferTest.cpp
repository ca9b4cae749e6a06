#include "camera/CameraPanel.h"
#include "imaging/JpegMarkers.h"
#include "platform/Page.h"
#include "platform/curl/CurlTransfer.h"
#include "platform/qt/LibjpegImageControl.h"
#include "platform/qt/QtClock.h"
#include "simulators/sky-camera/SkyCamera.h"
#include "tests/support/Fakes.h"
#include "tests/support/Finish.h"
#include "tests/support/Patience.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <QTest>

#include <fstream>

namespace orvane::test {
namespace {

/// The station's camera operations against the simulated camera, over real connections.
struct CameraTransfer : testing::Test {
    CameraTransfer() {
        skycamera::SkyCameraOptions options;
        options.size = {320, 240};
        simulator = std::make_unique<skycamera::SkyCamera>(options);
        EXPECT_TRUE(simulator->start());
        module.programFolder = folder.path();
        panel.txtIp.text = "127.0.0.1";
        panel.txtPort.text = std::to_string(simulator->port());
    }

    template <class T>
    T run(Task<T> task) {
        task.start();
        return finish(task);
    }
    bool download(const std::string& path = kLatestImagePath) {
        reason =
            run(camera.DownloadFile(cameraBaseUrl(panel) + path, folder.path() / "", "picture.jpg"))
                .fault;
        return reason.empty();
    }
    std::string picture() const {
        std::string bytes;
        readWholeFile(folder.path() / "picture.jpg", bytes);
        return bytes;
    }
    void writePicture(const std::string& bytes) const {
        std::ofstream(folder.path() / "picture.jpg", std::ios::binary) << bytes;
    }

    std::string reason; ///< why the last download failed
    TempFolder folder;
    std::unique_ptr<skycamera::SkyCamera> simulator;
    QtClock clock;
    CurlLoop curl;
    HttpLimits limits = measuredLimits();
    CurlTransfer transfer{curl, clock, limits};
    CurlTransfer switches{curl, clock, limits};
    FakeOperator op{clock};
    FakeViews views;
    LibjpegImageControl control{clock};
    Busy busy;
    Module1 module;
    OperationPanel panel;
    CameraPanel camera{module, panel, transfer, switches, views, busy, op, clock, control};
};

TEST_F(CameraTransfer, FetchesAFreshWholePictureEachTime) {
    ASSERT_TRUE(download()) << reason;
    const std::string first = picture();
    EXPECT_TRUE(isWholeJpeg(first));
    ASSERT_TRUE(download());
    EXPECT_NE(picture(), first);
}

/// What the camera can do wrong: either the download says so and leaves the file alone, or what it
/// brought is seen not to be a whole picture.
TEST_F(CameraTransfer, EveryFaultIsNoticedInBoundedTime) {
    struct Case {
        const char* fault;
        bool arrives;
    };
    const Case cases[] = {
        {"refuse", false},     {"silent", false},     {"reset", false},       {"stall", false},
        {"drip:200", false},   {"short", false},      {"nolength-cut", true}, {"status:401", false},
        {"status:404", false}, {"status:500", false}, {"status:503", false},  {"html", true},
        {"empty", false},      {"cut", true},
    };
    const std::string old = "what stood here before";
    for (const auto& [fault, arrives] : cases) {
        writePicture(old);
        ASSERT_TRUE(simulator->setFault(QString(fault)));
        EXPECT_EQ(download(), arrives) << fault << ": " << reason;
        EXPECT_FALSE(isWholeJpeg(picture())) << fault;
        EXPECT_EQ(reason.empty(), arrives) << fault;
        if (!arrives) {
            EXPECT_EQ(picture(), old) << fault;
        }
        ASSERT_TRUE(simulator->setFault(QString("none")));
        EXPECT_TRUE(download()) << "after " << fault << ": " << reason;
        EXPECT_TRUE(isWholeJpeg(picture())) << "after " << fault;
    }
}

TEST_F(CameraTransfer, AHugeAnswerIsCutOff) {
    ASSERT_TRUE(simulator->setFault(QString("list-big:5"), 0, "/cgi/srch.cgi"));
    for (const Wanted wanted : {Wanted::Page, Wanted::Nothing}) {
        const HttpReply reply = run(transfer.get(cameraBaseUrl(panel) + "/cgi/srch.cgi", wanted));
        EXPECT_FALSE(reply.ok);
        EXPECT_EQ(reply.fault, "the answer is too large");
    }
}

/// The body goes over the start of the file; what stood behind it stays.
TEST_F(CameraTransfer, OverwritesInPlaceWithoutShortening) {
    ASSERT_TRUE(download("/"));
    const std::size_t page = picture().size();
    writePicture(std::string(page + 2000, 'o'));
    ASSERT_TRUE(download("/"));
    const std::string bytes = picture();
    EXPECT_EQ(bytes.size(), page + 2000);
    EXPECT_NE(bytes.find("<html"), std::string::npos);
    EXPECT_EQ(bytes.substr(bytes.size() - 1900), std::string(1900, 'o'));
}

TEST_F(CameraTransfer, AWriteThatFailsIsAFailure) {
    std::filesystem::create_directory(folder.path() / "picture.jpg");
    EXPECT_FALSE(download());
    EXPECT_NE(reason.find("cannot write picture.jpg"), std::string::npos);
}

TEST_F(CameraTransfer, MalformedAddressesFailWithAReason) {
    for (const char* ip : {"", "256.1.1.1.1", "a b", "[", "127.0.0.1:80:"}) {
        panel.txtIp.text = ip;
        EXPECT_FALSE(download()) << ip;
        EXPECT_FALSE(reason.empty()) << ip;
    }
}

TEST_F(CameraTransfer, ANewTransferTakesOverAndADroppedOneEnds) {
    ASSERT_TRUE(simulator->setFault(QString("silent"), 1));
    Task<HttpReply> hanging = transfer.get(cameraBaseUrl(panel) + kLatestImagePath);
    hanging.start();
    QTest::qWait(20);
    EXPECT_TRUE(download()) << reason;
    EXPECT_EQ(finish(hanging).fault, "cancelled");

    ASSERT_TRUE(simulator->setFault(QString("silent"), 1));
    Task<HttpReply> dropped = transfer.get(cameraBaseUrl(panel) + kLatestImagePath);
    dropped.start();
    QTest::qWait(20);
    dropped.reset();
    EXPECT_TRUE(download()) << reason;
}

/// Both requests arrive, in their order, however quickly they are made.
TEST_F(CameraTransfer, RecordingSwitch) {
    const auto served = [this] { return simulator->status().requestsServed; };
    camera.Command5_Click();
    camera.Command7_Click();
    runEventLoopUntil([&] { return served() == 2 && !switches.running(); });
    EXPECT_FALSE(simulator->recording());
    camera.Command7_Click();
    camera.Command5_Click();
    runEventLoopUntil([&] { return served() == 4 && !switches.running(); });
    EXPECT_TRUE(simulator->recording());
}

TEST_F(CameraTransfer, APageIsItsText) {
    const HttpReply page = run(getPage(transfer, cameraBaseUrl(panel) + "/"));
    EXPECT_TRUE(page.ok) << page.fault;
    EXPECT_FALSE(page.body.empty());
    EXPECT_EQ(page.body.find('<'), std::string::npos);
    const HttpReply missing = run(getPage(transfer, cameraBaseUrl(panel) + "/nothing"));
    EXPECT_EQ(missing.fault, "HTTP status 404");
}

TEST_F(CameraTransfer, TestFetchShowsThePictureOrTellsWhyNot) {
    op.patience = 0ms;
    run(camera.Command8_Click());
    EXPECT_EQ(views.latest, folder.path() / "full.jpg");
    ASSERT_TRUE(simulator->setFault(QString("status:404")));
    views.latest.clear();
    run(camera.Command8_Click());
    EXPECT_TRUE(views.latest.empty());
    ASSERT_EQ(op.told.size(), 1U);
    EXPECT_TRUE(
        op.told[0].starts_with("The camera sent no picture: HTTP status 404.\nCheck its power"));
    const Busy::Hold capturing(busy);
    run(camera.Command8_Click());
    EXPECT_EQ(op.told.size(), 1U);
}

} // namespace
} // namespace orvane::test
