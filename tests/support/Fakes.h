#pragma once

#include "platform/Files.h"
#include "platform/HttpTransfer.h"
#include "platform/ImageControl.h"
#include "platform/Operator.h"
#include "platform/SettingsStore.h"
#include "platform/SystemInfo.h"
#include "station/ImageViews.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>

namespace orvane::test {

/// A small byte sequence with the marker structure of a JPEG picture; `content` tells two apart.
inline std::string jpegLike(const std::string& content) {
    const std::string comment = "picture " + content;
    std::string bytes = "\xFF\xD8\xFF\xFE";
    bytes += static_cast<char>((comment.size() + 2) >> 8);
    bytes += static_cast<char>((comment.size() + 2) & 0xFF);
    bytes += comment;
    bytes += std::string("\xFF\xDA\x00\x08\x01\x01\x00\x00\x3F\x00", 10);
    return bytes + "scan data\xFF\xD9";
}

/// Puts `entry` into a trace of the newest hundred: a trace must not look like the station's own
/// growth when it runs for a year.
inline void note(std::vector<std::string>& trace, std::string entry) {
    constexpr std::size_t kKept = 100;
    if (trace.size() == kKept) trace.erase(trace.begin());
    trace.push_back(std::move(entry));
}

/// For what must not fail in an unforeseen way: ends the test with the fault.
inline void noFault(const std::exception_ptr& fault) noexcept {
    std::rethrow_exception(fault);
}

class FakeStore final : public SettingsStore {
  public:
    std::string GetSetting(const std::string& section, const std::string& key,
                           const std::string& fallback) const override {
        const auto found = values.find(section + "/" + key);
        return fault || found == values.end() ? fallback : found->second;
    }
    bool SaveSetting(const std::string& section, const std::string& key,
                     const std::string& value) override {
        if (readOnly || fault) return false;
        values[section + "/" + key] = value;
        return true;
    }
    Fault unreadable() const override { return fault; }

    bool readOnly = false;
    Fault fault; ///< why nothing can be read
    std::map<std::string, std::string> values;
};

/// Answers after `latency` whatever `answer` gives; a cancelled one within a tenth of a second.
class FakeHttp : public HttpTransfer {
  public:
    explicit FakeHttp(Clock& clock) : clock_(clock) {}

    using HttpTransfer::get;
    Task<HttpReply> get(std::string url, Wanted) override {
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
    void cancel() override {
        const auto transfer = running_.lock();
        if (!transfer) return;
        transfer->cancelled = true;
        ++cancelled;
        transfer->ended.fire();
        running_.reset();
    }
    bool running() const override { return !running_.expired(); }

    static HttpReply failed(const std::string& fault) { return {false, 0, "", fault}; }
    static HttpReply picture(const std::string& content) {
        return {true, 200, jpegLike(content), ""};
    }

    std::function<HttpReply(const std::string&)> answer = [this](const std::string&) {
        return picture(std::to_string(++served_));
    };
    std::chrono::milliseconds latency{50};
    std::vector<std::string> urls;
    std::int64_t requests = 0;
    int cancelled = 0; ///< of them

  private:
    struct Transfer {
        explicit Transfer(Clock& clock) : ended(clock) {}
        Signal ended;
        bool cancelled = false;
    };
    static Task<> endAfter(Clock& clock, Ticks time, Signal& ended) {
        co_await clock.sleep(time);
        ended.fire();
    }

    Clock& clock_;
    std::weak_ptr<Transfer> running_; ///< lives in the frame of the running get()
    int served_ = 0;
};

/// Answers with the text that `answer` gives; empty is a failure.
class FakePages final : public FakeHttp {
  public:
    explicit FakePages(Clock& clock) : FakeHttp(clock) {
        latency = 20ms;
        FakeHttp::answer = [this](const std::string& url) {
            const std::string text = answer ? answer(url) : std::string();
            return text.empty() ? failed("no answer") : HttpReply{true, 200, text, ""};
        };
    }
    const std::vector<std::string>& pages() const { return urls; }

    std::function<std::string(const std::string&)> answer;
};

/// An operator who reads every message for `patience` and answers every question with `answer`.
class FakeOperator final : public Operator {
  public:
    explicit FakeOperator(Clock& clock) : clock_(clock) {}

    Task<> tell(std::string text) override {
        note(told, std::move(text));
        co_await clock_.sleep(patience);
    }
    Task<bool> ask(std::string text) override {
        note(asked, std::move(text));
        co_await clock_.sleep(patience);
        co_return answer;
    }
    Task<bool> confirm(std::string text) override { return ask(std::move(text)); }
    void beep() override { ++beeps; }

    std::chrono::milliseconds patience{1000};
    bool answer = true;
    int beeps = 0;
    std::vector<std::string> told;
    std::vector<std::string> asked;

  private:
    Clock& clock_;
};

/// Processes by copying the loaded bytes.
class FakeImageControl final : public ImageControl {
  public:
    Task<Fault> load(std::filesystem::path file) override {
        if (!failure.empty()) co_return failure;
        co_return readWholeFile(file, bytes_);
    }
    Task<Fault> loadReduced(std::filesystem::path file, int) override { return load(file); }
    Task<Fault> check(const std::string&) override {
        if (unsound.empty()) co_return std::nullopt;
        co_return unsound;
    }
    void mirror() override { bytes_ += "mirrored"; }
    void drawText(const std::string& text) override { bytes_ += text; }
    void fitInto(int, int) override { bytes_ += "fitted"; }
    Pixels pixels() const override {
        return {1, static_cast<int>(bytes_.size()), {bytes_.begin(), bytes_.end()}};
    }
    void take(Pixels pixels) override { bytes_.assign(pixels.data.begin(), pixels.data.end()); }
    Task<std::string> encode(int) override { co_return bytes_; }
    Task<Fault> save(std::filesystem::path file, std::int16_t, std::int16_t, std::string) override {
        co_return writeToFinalName(bytes_, file);
    }
    void clear() override { bytes_.clear(); }

    std::string failure; ///< not empty: loading fails with it
    std::string unsound; ///< not empty: what is checked is damaged so

  private:
    std::string bytes_;
};

/// Writes real files; the step named by `failing` fails. What a step of the real writer would have
/// done before it failed is done, so that there is something to clear away.
class FailingFileWriter final : public FileWriter {
  public:
    explicit FailingFileWriter(Force force = Force::No) : FileWriter(force) {}

    std::string failing; ///< "open", "write", "flush", "close", "rename", "folder"; empty: none
    std::vector<std::string> steps; ///< a trace

  protected:
    Fault open(const std::filesystem::path& file) override {
        if (failing == "open") return kFull;
        return did("open", FileWriter::open(file));
    }
    Fault write(std::string_view bytes) override {
        if (failing != "write") return did("write", FileWriter::write(bytes));
        FileWriter::write(bytes.substr(0, bytes.size() / 2));
        return kFull;
    }
    Fault flushFile() override { return did("flush", FileWriter::flushFile()); }
    Fault close() override { return did("close", FileWriter::close()); }
    Fault rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        if (failing == "rename") return kFull;
        return did("rename", FileWriter::rename(from, to));
    }
    Fault flushFolder(const std::filesystem::path& folder) override {
        return did("folder", FileWriter::flushFolder(folder));
    }

  private:
    static constexpr const char* kFull = "No space left on device";

    Fault did(const char* step, Fault fault) {
        note(steps, step);
        return failing == step ? Fault(kFull) : fault;
    }
};

class FakeViews final : public ImageViews {
  public:
    void refreshThumbnails(const ThumbnailHistory& history) override {
        newest = history[0];
        if (shown != nullptr) shown->refreshThumbnails(history);
    }
    void showLatest(const std::filesystem::path& file) override {
        latest = file;
        if (shown != nullptr) shown->showLatest(file);
    }
    void showLive(const std::string& jpeg) override {
        ++live;
        if (shown != nullptr) shown->showLive(jpeg);
    }
    void tellLive(const std::string& text) override {
        liveText = text;
        if (shown != nullptr) shown->tellLive(text);
    }

    ImageViews* shown = nullptr; ///< real views that show the pictures as well
    std::filesystem::path newest;
    std::filesystem::path latest;
    int live = 0;
    std::string liveText;
};

/// A registry and programs that are a test's to fill; `asked` traces the registry's questions.
class FakeSystemInfo final : public SystemInfo {
  public:
    std::string GetKeyValue(const std::string& key, const std::string& value) const override {
        asked.push_back(key + " " + value);
        const auto found = registry.find(asked.back());
        return found == registry.end() ? std::string() : found->second;
    }
    bool fileExists(const std::filesystem::path& file) const override {
        return files.contains(file.string());
    }
    bool start(const std::filesystem::path& program) override {
        started.push_back(program.string());
        return files.contains(started.back());
    }

    std::map<std::string, std::string> registry; ///< by key, blank, value
    std::set<std::string> files;
    mutable std::vector<std::string> asked;
    std::vector<std::string> started;
};

} // namespace orvane::test
