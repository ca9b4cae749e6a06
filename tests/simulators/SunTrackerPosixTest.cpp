#include "simulators/sun-tracker/CommandLine.h"
#include "simulators/sun-tracker/Console.h"
#include "simulators/sun-tracker/SunTracker.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

using namespace suntracker;

constexpr int kPatienceMs = 5000;
/// Long enough for a byte too many to arrive.
constexpr int kSilenceMs = 10;

constexpr auto kClockSet = "02 02 48 31 32 AB 03";
constexpr auto kReadOrigin = "02 01 85 30 B5 03";

/// The PC's end of the line, byte by byte.
class Pc {
  public:
    explicit Pc(const QString& port)
        : descriptor_(::open(port.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK)) {}
    ~Pc() { ::close(descriptor_); }
    Pc(const Pc&) = delete;
    Pc& operator=(const Pc&) = delete;

    void send(const char* hex) const {
        const QByteArray bytes = QByteArray::fromHex(hex);
        ASSERT_EQ(::write(descriptor_, bytes.constData(), static_cast<size_t>(bytes.size())),
                  bytes.size());
    }
    int waiting() const {
        int count = 0;
        ::ioctl(descriptor_, FIONREAD, &count);
        return count;
    }
    QByteArray read(int size) const {
        QByteArray bytes(size, '\0');
        const ssize_t count = ::read(descriptor_, bytes.data(), static_cast<size_t>(size));
        return count < 0 ? QByteArray() : bytes.left(count);
    }
    /// What has come when `size` bytes have, and nothing follows.
    QString receive(int size) const {
        EXPECT_TRUE(QTest::qWaitFor([&] { return waiting() >= size; }, kPatienceMs));
        QTest::qWait(kSilenceMs);
        return hexText(read(waiting()));
    }
    /// A pseudo-terminal hangs up in two steps: the other end is gone, then every open one is dead.
    bool hungUp() const {
        char byte = 0;
        const ssize_t count = ::read(descriptor_, &byte, 1);
        return count == 0 || (count < 0 && errno == EIO);
    }

  private:
    int descriptor_;
};

class SunTrackerTest : public testing::Test {
  protected:
    void SetUp() override { begin({}); }
    void begin(SunTrackerOptions options) {
        pc_.reset();
        options.values.serial = "AB12";
        options.values.latitude = -35.5;
        options.values.origin = 359.99;
        tracker_ = std::make_unique<SunTracker>(options);
        QObject::connect(tracker_.get(), &SunTracker::logged,
                         [this](const QString& line) { log_ << line; });
        ASSERT_TRUE(tracker_->start()) << qPrintable(tracker_->errorString());
        pc_ = std::make_unique<Pc>(tracker_->portPath());
    }
    QString ask(const char* command, int answerSize) const {
        pc_->send(command);
        return pc_->receive(answerSize);
    }
    bool logged(const QString& text) const { return !log_.filter(text).isEmpty(); }

    QStringList log_;
    std::unique_ptr<SunTracker> tracker_;
    std::unique_ptr<Pc> pc_;
};

struct Exchange {
    const char* name;
    const char* command;
    const char* answer;

    int answerSize() const { return static_cast<int>(QByteArray::fromHex(answer).size()); }
};

/// -35.5 is C0 41 C0 .., 359.99 is 40 76 7F D7 0A 3D 70 A4 in IEEE 754.
TEST_F(SunTrackerTest, AnswersEachCommand) {
    const std::array exchanges{
        Exchange{"SunRunning", "02 01 A8 31 D9 03", "06 02 00 A8 A8 03"},
        Exchange{"clock", kClockSet, "06 02 00 48 48 03"},
        Exchange{"set serial", "02 02 46 31 36 AD 03", "06 02 00 46 46 03"},
        Exchange{"set site", "02 02 80 31 38 E9 03", "06 02 00 80 80 03"},
        Exchange{"set origin", "02 01 84 38 BC 03", "06 02 00 84 84 03"},
        Exchange{"serial", "02 01 47 30 77 03",
                 "06 02 10 47 41 42 31 32 00 00 00 00 00 00 00 00 00 00 00 00 2D 03"},
        Exchange{"site", "02 01 81 30 B1 03",
                 "06 02 12 81 02 1C 40 61 78 00 00 00 00 00 C0 41 C0 00 00 00 00 00 79 03"},
        Exchange{"origin", kReadOrigin, "06 02 08 85 40 76 7F D7 0A 3D 70 A4 EC 03"},
        Exchange{"unknown", "02 00 11 11 03", "15"},
    };
    QList<QByteArray> sent;
    for (const Exchange& exchange : exchanges) {
        EXPECT_EQ(ask(exchange.command, exchange.answerSize()), QString(exchange.answer))
            << exchange.name;
        sent << QByteArray::fromHex(exchange.command);
    }
    EXPECT_EQ(tracker_->received(), sent);
    EXPECT_EQ(tracker_->counts().clockSettings, 1);
    EXPECT_TRUE(logged("CLOCK SET, 12 parameters announced"));
    EXPECT_FALSE(logged("is usual"));
}

TEST_F(SunTrackerTest, BadFramesGetNakAndAreNoCommands) {
    const std::array bad{"02 02 48 31 32 AC 03", "02 02 48 31 32 AB 04", "02 FD"};
    for (const char* frame : bad)
        EXPECT_EQ(ask(frame, 1), "15") << frame;
    EXPECT_TRUE(tracker_->received().isEmpty());
    EXPECT_EQ(tracker_->counts().badFrames, 3);
    EXPECT_EQ(ask(kClockSet, 6), "06 02 00 48 48 03");
}

TEST_F(SunTrackerTest, InputMayComeInAnyPortions) {
    for (const char* part : {"02", "02 48 31", "32 AB", "03"}) {
        pc_->send(part);
        QTest::qWait(2);
    }
    EXPECT_EQ(pc_->receive(6), "06 02 00 48 48 03");
    pc_->send("06 FF 02 02 48 31 32 AB 03 02 00 11 11 03 15");
    EXPECT_EQ(pc_->receive(7), "06 02 00 48 48 03 15");
    EXPECT_EQ(tracker_->counts().acks, 1);
    EXPECT_EQ(tracker_->counts().naks, 1);
    EXPECT_TRUE(logged("CLOCK SET acknowledged by the PC"));
    EXPECT_TRUE(logged("not a frame: FF"));
}

TEST_F(SunTrackerTest, HalfAFrameIsForgotten) {
    begin({.frameTimeoutMs = 10});
    pc_->send("02 02 48");
    EXPECT_TRUE(QTest::qWaitFor([&] { return logged("02 02 48 given up"); }, kPatienceMs));
    EXPECT_EQ(ask(kClockSet, 6), "06 02 00 48 48 03");
}

/// A PC may look once how many bytes are there and read those.
TEST_F(SunTrackerTest, EchoArrivesInOnePiece) {
    for (const int baud : {0, 38400}) {
        begin({.baud = baud});
        for (int round = 0; round < 5; ++round) {
            pc_->send(kClockSet);
            ASSERT_TRUE(QTest::qWaitFor([&] { return pc_->waiting() > 0; }, kPatienceMs));
            ASSERT_EQ(pc_->read(1), QByteArray(1, 0x06));
            ASSERT_TRUE(QTest::qWaitFor([&] { return pc_->waiting() > 0; }, kPatienceMs));
            ASSERT_EQ(pc_->waiting(), 5) << baud;
            pc_->read(5);
        }
    }
}

TEST_F(SunTrackerTest, SunTrackingIsSwitchedByWhatIsAcknowledged) {
    const auto sunRunning = "02 01 A8 31 D9 03";
    tracker_->setFault("none,nak,none");
    for (const bool running : {false, false, true}) {
        ask(sunRunning, 1);
        EXPECT_EQ(tracker_->values().running, running);
    }
}

TEST_F(SunTrackerTest, FaultsSpoilTheAnswer) {
    const std::array faults{
        Exchange{"silence", kClockSet, ""},
        Exchange{"silence-after:3", kClockSet, "06 02 00"},
        Exchange{"nak", kClockSet, "15"},
        Exchange{"wrong-echo", kClockSet, "06 02 00 49 49 03"},
        Exchange{"wrong-reply", kReadOrigin, "06 02 08 86 40 76 7F D7 0A 3D 70 A4 ED 03"},
        Exchange{"wrong-sum", kReadOrigin, "06 02 08 85 40 76 7F D7 0A 3D 70 A4 ED 03"},
        Exchange{"wrong-end", kClockSet, "06 02 00 48 48 0D"},
        Exchange{"slow:4", kClockSet, "06 02 00 48 48 03"},
        Exchange{"twice", kClockSet, "06 02 00 48 48 03 02 00 48 48 03"},
        Exchange{"long", kReadOrigin, "06 02 08 85 40 76 7F D7 0A 3D 70 A4 55 55 55 55 40 03"},
    };
    for (const Exchange& fault : faults) {
        ASSERT_TRUE(tracker_->setFault(fault.name, 1)) << fault.name;
        EXPECT_EQ(ask(fault.command, fault.answerSize()), fault.answer) << fault.name;
        EXPECT_EQ(ask(kClockSet, 6), "06 02 00 48 48 03") << "after " << fault.name;
    }
    EXPECT_EQ(tracker_->counts().faults, 10);
}

TEST_F(SunTrackerTest, SlowLinesAndSlowBytes) {
    begin({.baud = 4800});
    QElapsedTimer timer;
    timer.start();
    ask("02 01 81 30 B1 03", 24);
    EXPECT_GE(timer.restart(), 50); // 24 bytes of 10 bits
    tracker_->setFault("slow:10");
    pc_->send(kClockSet);
    for (int count = 0; count < 6; ++count) {
        ASSERT_TRUE(QTest::qWaitFor([&] { return pc_->waiting() > 0; }, kPatienceMs));
        EXPECT_GE(timer.elapsed(), 10 * (count + 1) - 1);
        pc_->read(1);
    }
}

TEST_F(SunTrackerTest, GarbageLooksLikeNoAnswer) {
    tracker_->setFault("garbage:2000,garbage-frame:7");
    const QString before = ask(kClockSet, 2006);
    EXPECT_TRUE(before.endsWith(" 06 02 00 48 48 03"));
    EXPECT_EQ(before.size(), 2006 * 3 - 1);
    EXPECT_FALSE(before.chopped(18).split(' ').contains("06"));
    EXPECT_FALSE(before.chopped(18).split(' ').contains("02"));
    const QString between = ask(kClockSet, 13);
    EXPECT_TRUE(between.startsWith("06 "));
    EXPECT_TRUE(between.endsWith(" 02 00 48 48 03"));
}

TEST_F(SunTrackerTest, FaultsTakeTurnsAndWaitForTheirKindOfCommand) {
    tracker_->setFault("wrong-reply,nak", 2);
    EXPECT_EQ(ask(kClockSet, 6), "06 02 00 48 48 03");
    EXPECT_TRUE(ask(kReadOrigin, 14).startsWith("06 02 08 86"));
    EXPECT_EQ(ask(kReadOrigin, 1), "15");
    EXPECT_TRUE(ask(kReadOrigin, 14).startsWith("06 02 08 85"));
    for (const char* wrong : {"", "no-such", "silence:3", "slow:0", "slow:x", "nak,,nak"})
        EXPECT_FALSE(tracker_->setFault(wrong)) << wrong;
}

TEST_F(SunTrackerTest, HangsUpInTheMiddleAndComesBack) {
    QTemporaryDir folder;
    const QString link = folder.filePath("tracker");
    begin({.link = link});
    EXPECT_EQ(QFileInfo(link).symLinkTarget(), tracker_->portPath());
    tracker_->setFault("hangup:40", 1);
    QByteArray answer; // read when it is announced: the hang-up itself discards what is not
    QObject::connect(&*tracker_, &SunTracker::logged, [&](const QString& line) {
        if (line.contains("unplugged")) answer = pc_->read(10);
    });
    pc_->send(kClockSet);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !answer.isEmpty(); }, kPatienceMs));
    EXPECT_EQ(answer, QByteArray::fromHex("06 02 00"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return pc_->hungUp(); }, kPatienceMs));
    EXPECT_FALSE(QFileInfo(link).isSymLink());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !tracker_->portPath().isEmpty(); }, kPatienceMs));
    EXPECT_EQ(QFileInfo(link).symLinkTarget(), tracker_->portPath());
    for (int round = 0; round < 2; ++round) { // closing the port is no hang-up
        pc_ = std::make_unique<Pc>(link);
        EXPECT_EQ(ask(kClockSet, 6), "06 02 00 48 48 03");
    }
    tracker_.reset();
    EXPECT_FALSE(QFileInfo(link).isSymLink());
}

TEST_F(SunTrackerTest, ConsoleCommands) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    Console console(*tracker_, pipe[0]);
    int answers = 0;
    QObject::connect(&console, &Console::answered, [&] { ++answers; });
    const QByteArray lines = "set serial X Y\nset timezone -1\nfault nak 1\nset origin x\nfau";
    EXPECT_EQ(::write(pipe[1], lines.constData(), static_cast<size_t>(lines.size())), lines.size());
    ::close(pipe[1]);
    EXPECT_TRUE(QTest::qWaitFor([&] { return answers == 4; }, kPatienceMs));
    EXPECT_EQ(tracker_->values().origin, 359.99);
    EXPECT_EQ(ask("02 01 81 30 B1 03", 1), "15");
    EXPECT_TRUE(ask("02 01 81 30 B1 03", 24).startsWith("06 02 12 81 FF FF 40 61 78"));
    EXPECT_TRUE(ask("02 01 47 30 77 03", 22).startsWith("06 02 10 47 58 20 59 00"));
    EXPECT_TRUE(console.execute("status").contains("3 commands, 0 bad frames, 1 faults"));
    ::close(pipe[0]);
}

TEST(SunTrackerFaults, RandomFaultsRepeatWithTheirSeed) {
    auto draw = [](const QString& seed) {
        FaultSource source;
        source.setRule({parseFaults("random:" + seed).faults, 0});
        QStringList drawn;
        for (int turn = 0; turn < 400; ++turn)
            drawn << textOf(source.next(turn % 2 == 0));
        return drawn;
    };
    EXPECT_EQ(draw("7"), draw("7"));
    EXPECT_NE(draw("7"), draw("8"));
    for (const char* name : {"none", "hangup", "wrong-echo", "wrong-reply", "long", "silence"})
        EXPECT_FALSE(draw("7").filter(name).isEmpty()) << name;
}

TEST(SunTrackerLink, ReplacesAnOlderLinkButNoFile) {
    QTemporaryDir folder;
    const QString path = folder.filePath("tracker");
    ASSERT_TRUE(QFile::link("/dev/gone", path));
    EXPECT_TRUE(SunTracker({.link = path}).start());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    SunTracker refused({.link = path});
    EXPECT_FALSE(refused.start());
    EXPECT_TRUE(refused.errorString().contains(path));
    EXPECT_TRUE(file.exists());
}

TEST(SunTrackerCommandLine, RefusesWhatItDoesNotUnderstand) {
    for (const char* wrong :
         {"--nonsense", "--baud=-1", "--timezone=1.5", "--longitude=east", "--running=yes",
          "--serial=12345678901234567", "--fault=no-such", "--link=", "argument"})
        EXPECT_FALSE(parseCommandLine({"sun-tracker", wrong}).error.isEmpty()) << wrong;
    const CommandLine line = parseCommandLine(
        {"sun-tracker", "--timezone", "-210", "--latitude", "-35.5", "--running", "off"});
    EXPECT_EQ(line.error, "");
    EXPECT_EQ(line.options.values.timeZone, -210);
    EXPECT_EQ(line.options.values.latitude, -35.5);
    EXPECT_FALSE(line.options.values.running);
}

} // namespace
