#pragma once

#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Process.h"

namespace orvane::test {

/// An ffmpeg that lists `encoders`, then writes what it is fed into the file that is its last
/// argument, as it comes.
class FakeProcess final : public Process {
  public:
    explicit FakeProcess(Clock& clock) : clock_(clock) {}

    std::filesystem::path find(const std::string& name) const override {
        return installed ? std::filesystem::path("/opt/" + name) : std::filesystem::path();
    }
    void start(const std::filesystem::path& program,
               const std::vector<std::string>& given) override {
        kill();
        running = true;
        programs.push_back(program);
        arguments = given;
        fed.clear();
        fault_ = failing == "start" ? Fault("it cannot be started: no") : std::nullopt;
        if (!isQuery() && !fault_) writeToFile();
    }
    Task<Fault> write(std::string_view bytes, Ticks patience) override {
        co_await clock_.sleep(20ms);
        if (fault_) co_return fault_;
        if (fed.size() >= soundBytes && failing == "die") {
            running = false;
            fault_ = "it stopped reading";
        } else if (fed.size() >= soundBytes && failing == "hang") {
            co_await clock_.sleep(patience);
            fault_ = "it stands still";
        } else {
            fed += bytes;
            writeToFile();
        }
        co_return fault_;
    }
    Task<ProcessEnd> end(Ticks patience) override {
        const bool hangs = failing == "hang at the end" && !isQuery();
        co_await clock_.sleep(hangs ? patience : 50ms);
        if (hangs) fault_ = "it does not end";
        running = false;
        ProcessEnd result{fault_, 0, isQuery() ? encoders : said};
        if (failing == "exit code" && !isQuery()) result.code = 1;
        co_return result;
    }
    void kill() override { running = false; }
    void bury() override {}

    bool installed = true;
    std::string encoders = "Encoders:\n V....D libx264              H.264\n";
    std::string failing; ///< "start", "die", "hang", "hang at the end", "exit code"; empty: nothing
    std::size_t soundBytes = 0; ///< before it dies or hangs
    std::string said;           ///< by the one that makes the film
    std::vector<std::filesystem::path> programs;
    std::vector<std::string> arguments; ///< of the last
    std::string fed;
    bool running = false;

  private:
    bool isQuery() const { return arguments.back() == "-encoders"; }
    void writeToFile() const {
        static_cast<void>(writeToFinalName("film of " + fed, pathFromUtf8(arguments.back())));
    }

    Clock& clock_;
    Fault fault_;
};

} // namespace orvane::test
