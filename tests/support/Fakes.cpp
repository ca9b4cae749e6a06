#include "tests/support/Fakes.h"

#include "tests/support/FakeProcess.h"
#include "tests/support/FakeTracker.h"

// One virtual function of each fake, so that the others are compiled here only, not in each test.

namespace orvane::test {

std::string FakeStore::GetSetting(const std::string& section, const std::string& key,
                                  const std::string& fallback) const {
    const auto found = values.find(section + "/" + key);
    return fault || found == values.end() ? fallback : found->second;
}

Task<HttpReply> FakeHttp::get(std::string url, Wanted) {
    note(urls, url);
    ++requests;
    cancel();
    const auto transfer = std::make_shared<Transfer>(clock_);
    running_ = transfer;
    Task<> answering = endAfter(clock_, latency, transfer->ended);
    answering.start();
    Signal& ended = transfer->ended;
    co_await ended;
    HttpReply reply = transfer->cancelled ? failed(kCancelled) : answer(url);
    co_return reply;
}

Task<> FakeHttp::endAfter(Clock& clock, Ticks time, Signal& ended) {
    co_await clock.sleep(time);
    ended.fire();
}

Task<> FakeOperator::tell(std::string text) {
    note(told, std::move(text));
    co_await clock_.sleep(patience);
}

Task<Fault> FakeImageControl::load(std::filesystem::path file) {
    if (!failure.empty()) co_return failure;
    co_return readWholeFile(file, bytes_);
}

Fault FailingFileWriter::open(const std::filesystem::path& file) {
    if (failing == "open") return kFull;
    return did("open", FileWriter::open(file));
}

void FakeViews::refreshThumbnails(const ThumbnailHistory& history) {
    newest = history[0];
    if (shown != nullptr) shown->refreshThumbnails(history);
}

std::string FakeSystemInfo::GetKeyValue(const std::string& key, const std::string& value) const {
    asked.push_back(key + " " + value);
    const auto found = registry.find(asked.back());
    return found == registry.end() ? std::string() : found->second;
}

void FakeProcess::start(const std::filesystem::path& program,
                        const std::vector<std::string>& given) {
    kill();
    running = true;
    programs.push_back(program);
    arguments = given;
    fed.clear();
    fault_ = failing == "start" ? Fault("it cannot be started: no") : std::nullopt;
    if (!isQuery() && !fault_) writeToFile();
}

bool FakeTracker::open(int portNumber, const std::string& lineSettings) {
    ++opened;
    lastPort = portNumber;
    settings = lineSettings;
    input_.clear();
    isOpen_ = openable && portNumber >= 1 && portNumber <= 4;
    if (!isOpen_) fault_ = "No such file or directory";
    return isOpen_;
}

} // namespace orvane::test
