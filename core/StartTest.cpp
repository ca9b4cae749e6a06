#include "core/StartTest.h"

namespace orvane {

namespace {

constexpr Ticks kTurn = 10ms; ///< between two looks whether a transfer has ended

std::string sentence(const CameraAnswer& answer) {
    if (answer.isPicture()) return "The camera answers: " + answer.picture();
    const char* what =
        answer.answered ? "The camera sends no picture: " : "The camera does not answer: ";
    return what + answer.fault + ". Recording goes on trying.";
}

} // namespace

void StartTest::follow(bool isDue) {
    const bool mayTest = parts_.module.RecordFlg && !parts_.store.running();
    if (!mayTest) standBack();
    const int starts = parts_.recording.starts();
    if (std::exchange(seen_, starts) == starts) return;
    standBack(); // of the start before
    isTaken_ = false;
    if (isDue || !mayTest) return;
    testing_ = parts_.faults.run("StartTest", test());
    testing_.start();
}

void StartTest::standBack() {
    if (testing_.done()) return;
    testing_.reset();
    tell({});
}

Task<> StartTest::test() {
    tell("Asking the camera...");
    while (parts_.inetFileGet.running()) // a test fetch or the live view, 60 s at most
        co_await parts_.clock.sleep(kTurn);
    CameraRequest asked = parts_.camera.request();
    std::string url = asked.camera + kLatestImagePath;
    Task<HttpReply> get = parts_.inetFileGet.get(std::move(url));
    const HttpReply reply = co_await get;
    Task<CameraAnswer> judging = parts_.camera.judge(reply, std::move(asked));
    const CameraAnswer answer = co_await judging;
    if (parts_.module.RecordFlg) tell(sentence(answer));
}

/// From the second picture on the station shows by itself that it works.
void StartTest::note(const Captured& captured) {
    if (captured.filed || !captured.fault.empty()) {
        CameraAnswer answer;
        answer.answered = captured.filed;
        answer.fault = shortReason(captured.fault);
        parts_.camera.noteAnswer(cameraBaseUrl(parts_.panel), std::move(answer));
    }
    if (!parts_.module.RecordFlg) return;
    if (isTaken_) return tell({});
    isTaken_ = captured.filed;
    const WallTime now = captured.filed ? captured.copyTime : parts_.clock.now();
    tell(captured.filed ? "First picture taken at " + hourMinute(now)
                        : "No picture at " + hourMinute(now) + ": " +
                              shortReason(captured.notFiled) + ". Recording goes on trying.");
}

} // namespace orvane
