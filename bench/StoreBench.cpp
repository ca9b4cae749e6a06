#include "camera/ImageStore.h"
#include "platform/curl/CurlTransfer.h"
#include "platform/qt/QtClock.h"
#include "tests/support/Fakes.h"
#include "tests/support/TempFolder.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <chrono>

namespace {

using namespace orvane;
using namespace orvane::test;

constexpr int kPictures = 500;

std::string freePort() {
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return std::to_string(server.serverPort());
}

/// The simulated camera in a process of its own, with 500 pictures of 100 kB that it lists on one
/// page.
class CameraProcess {
  public:
    CameraProcess() {
        process_.setStandardOutputFile(QProcess::nullDevice());
        process_.start(QCoreApplication::applicationDirPath() + "/sky-camera",
                       {"--port", QString::fromStdString(port), "--stored",
                        QString::number(kPictures), "--list-all", "--stored-size", "100000",
                        "--stored-once"});
        QTcpSocket probe;
        for (int attempt = 0; attempt < 100; ++attempt) {
            probe.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(std::stoi(port)));
            if (probe.waitForConnected(1000)) return;
            QThread::msleep(50);
        }
    }
    ~CameraProcess() {
        process_.kill();
        process_.waitForFinished();
    }

    const std::string port = freePort();

  private:
    QProcess process_;
};

struct Station {
    explicit Station(const std::string& port) {
        panel.Dir1[0].path = folder.path();
        panel.txtIp.text = "127.0.0.1";
        panel.txtPort.text = port;
        panel.Text1[5].text = std::to_string(kPictures + 60);
        module.imageProcessing = false; // the transfer is what curl does too
    }
    TempFolder folder;
    QtClock clock;
    CurlLoop curl;
    CurlTransfer transfer{curl, clock};
    CurlTransfer pages1{curl, clock};
    CurlTransfer pages2{curl, clock};
    FakeOperator op{clock};
    FakeViews views;
    FakeImageControl imageControl;
    Busy busy;
    Module1 module;
    OperationPanel panel;
    ErrorLog log{folder.path(), clock};
    Faults faults{log, clock, op};
    Warnings warnings{clock};
    DaySchedules schedules{module, panel, clock, [](auto) { return 9h; }};
    DayWatch days{module, panel, schedules, clock};
    DiskWatch disk;
    FileWriter files{FileWriter::Force::No};
    PictureArchive archive{{module, days, disk, files, imageControl, views, warnings, log, clock}};
    ImageStore store{
        {module, panel, archive, transfer, pages1, pages2, log, faults, op, clock, busy}};
};

double seconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

Task<> runAndQuit(ImageStore& store) {
    Task<> run = store.Test_DL();
    co_await run;
    QCoreApplication::quit();
}

/// The same pictures fetched one by one and written whole, which is what curl does.
Task<> fetchAll(CurlTransfer& transfer, std::vector<std::string> urls, std::filesystem::path target,
                int& fetched) {
    FileWriter files(FileWriter::Force::No);
    for (const std::string& url : urls) {
        Task<HttpReply> get = transfer.get(url, Wanted::Picture);
        const HttpReply reply = co_await get;
        fetched += reply.ok && !files.put(reply.body, target / url.substr(url.rfind('/') + 1));
    }
    QCoreApplication::quit();
}

/// Seconds; negative when it failed.
double transferSeconds(const std::string& port, const std::filesystem::path& files) {
    QtClock clock;
    CurlLoop loop;
    CurlTransfer transfer(loop, clock);
    std::vector<std::string> urls;
    for (const auto& entry : std::filesystem::directory_iterator(files)) {
        const std::string name = entry.path().filename().string();
        urls.push_back("http://127.0.0.1:" + port + "/record/" + name.substr(0, 8) + "/" + name);
    }
    const TempFolder target;
    int fetched = 0;
    const auto start = std::chrono::steady_clock::now();
    Task<> fetching = fetchAll(transfer, std::move(urls), target.path(), fetched);
    fetching.start();
    QCoreApplication::exec();
    return fetched == kPictures ? seconds(start) : -1;
}

/// curl over one connection: the same files into another folder. Negative when it failed.
double curlSeconds(const std::string& port, const std::filesystem::path& files,
                   const std::filesystem::path& target) {
    std::string config = "silent\nfail\n";
    for (const auto& entry : std::filesystem::directory_iterator(files)) {
        const std::string name = entry.path().filename().string();
        config += "url = \"http://127.0.0.1:" + port + "/record/" + name.substr(0, 8) + "/" + name +
                  "\"\noutput = \"" + (target / name).string() + "\"\n";
    }
    const auto list = target / "list";
    if (writeToFinalName(config, list)) return -1;
    QProcess curl;
    const auto start = std::chrono::steady_clock::now();
    curl.start("curl", {"-K", QString::fromStdString(list.string())});
    if (!curl.waitForFinished(120'000) || curl.exitCode() != 0) return -1;
    return seconds(start);
}

/// A search that brings 500 pictures of 100 kB on one page and, taking turns with it, curl fetching
/// the same list. The time shown is the station's, with filing; "ratio" is that over curl's, and
/// "transfer_ratio" that of fetching and writing alone.
void bulkDownload(benchmark::State& state) {
    const CameraProcess process;
    double ours = 0;
    double curl = 0;
    double transfers = 0;
    for ([[maybe_unused]] auto _ : state) {
        Station station(process.port);
        const auto start = std::chrono::steady_clock::now();
        Task<> run = runAndQuit(station.store);
        run.start();
        QCoreApplication::exec();
        const double took = seconds(start);
        state.SetIterationTime(took);
        if (station.panel.lbl_dlcnt.caption.get() != std::to_string(kPictures)) {
            state.SkipWithError("not everything was downloaded");
            return;
        }
        const TempFolder target;
        const std::filesystem::path files = station.module.thumbnails[0].parent_path();
        const double theirs = curlSeconds(process.port, files, target.path());
        const double alone = transferSeconds(process.port, files);
        if (theirs < 0 || alone < 0) {
            state.SkipWithError("curl is missing or failed");
            return;
        }
        ours += took;
        curl += theirs;
        transfers += alone;
    }
    state.counters["ratio"] = ours / curl;
    state.counters["transfer_ratio"] = transfers / curl;
    state.counters["curl_s"] = curl / static_cast<double>(state.iterations());
}
BENCHMARK(bulkDownload)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace
