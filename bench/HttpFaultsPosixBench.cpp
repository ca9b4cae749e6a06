#include "platform/Page.h"
#include "platform/curl/CurlTransfer.h"
#include "platform/qt/QtClock.h"
#include "tests/support/RawServer.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <fstream>

namespace {

using namespace orvane;
using namespace orvane::test;

/// What a hostile server sends without an end, as fast as it is taken.
struct Flood {
    const char* name;
    std::string start;
    std::string part;
    Wanted wanted;
};

std::string many(const std::string& part) {
    std::string all;
    while (all.size() < 500'000)
        all += part;
    return all;
}

const std::string kOk = "HTTP/1.1 200 OK\r\n";

const Flood kFloods[] = {
    {"body", kOk + "\r\n", many("x"), Wanted::Picture},
    {"chunks", kOk + "Transfer-Encoding: chunked\r\n\r\n", many("1\r\nx\r\n"), Wanted::Picture},
    {"headers", kOk, many("X-Filler: xxxxxxxxxxxxxxxxxxxxxxxx\r\n"), Wanted::Picture},
    {"continue", "", many("HTTP/1.1 100 Continue\r\n\r\n"), Wanted::Picture},
    {"tags", kOk + "\r\n<html>", many("<div><table>"), Wanted::Page},
    {"commas", kOk + "\r\n", many(","), Wanted::Page}};

/// The server has a thread, so that its turns are none of the client's.
class ServerThread : public QThread {
  public:
    explicit ServerThread(const Flood& flood) : flood_(flood) {}
    ~ServerThread() override {
        quit();
        wait();
    }
    std::string url() {
        start();
        while (url_.empty())
            msleep(1);
        return url_;
    }

  private:
    void run() override {
        RawServer server;
        server.answer = [this](const std::string&) { return flood_.start + flood_.part; };
        server.flood = flood_.part;
        url_ = server.url();
        exec();
    }

    const Flood& flood_;
    std::string url_;
};

/// The peak of this process's memory since `restart`, MB.
struct PeakMemory {
    static void restart() { std::ofstream("/proc/self/clear_refs") << "5"; }
    static double megabytes() {
        std::ifstream status("/proc/self/status");
        for (std::string line; std::getline(status, line);)
            if (line.starts_with("VmHWM:")) return std::stod(line.substr(6)) / 1024;
        return 0;
    }
};

double milliseconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - since)
        .count();
}

/// Until the transfer has given up: how long a turn of the event loop took at most, and the memory.
void httpFlood(benchmark::State& state, const Flood& flood) {
    for ([[maybe_unused]] auto _ : state) {
        ServerThread server(flood);
        const std::string url = server.url();
        QtClock clock;
        CurlLoop loop;
        CurlTransfer transfer(loop, clock);
        PeakMemory::restart();
        Task<HttpReply> get =
            flood.wanted == Wanted::Page ? getPage(transfer, url) : transfer.get(url, flood.wanted);
        get.start();
        double longest = 0;
        while (!get.done()) {
            const auto turn = std::chrono::steady_clock::now();
            QCoreApplication::processEvents();
            longest = std::max(longest, milliseconds(turn));
        }
        state.SetLabel(get.result().fault);
        state.counters["longest_turn_ms"] = longest;
        state.counters["peak_MB"] = PeakMemory::megabytes();
    }
}

const bool registered = [] {
    for (const Flood& flood : kFloods)
        benchmark::RegisterBenchmark((std::string("httpFlood/") + flood.name).c_str(),
                                     [&flood](benchmark::State& state) { httpFlood(state, flood); })
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    return true;
}();

} // namespace
