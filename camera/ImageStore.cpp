#include "camera/ImageStore.h"

#include "archive/SchFile.h"
#include "platform/Conversions.h"
#include "platform/Page.h"
#include "platform/Paths.h"

namespace orvane {

namespace {

constexpr int kFruitlessPages = 10;
constexpr int kLoggedSkips = 10;
constexpr int kSkipsPerTurn = 1000;
constexpr const char* kNothingUsable = "No answer or nothing usable in it";
constexpr std::int16_t kReplyTicks = 10;
constexpr double kPendingMinutes = 30;

constexpr const char* kInvalidStart = "開始時刻が不正です";
constexpr const char* kNoFile = "ダウンロードするファイルがありません";
constexpr const char* kInterrupted = "ダウンロードを中断しました";
constexpr const char* kComplete = "ダウンロードを完了しました";
constexpr const char* kError = "DownLoad Error ?";

} // namespace

Task<> ImageStore::Test_DL() {
    return run(Chain::Search, {});
}

Task<> ImageStore::Download_proc() {
    return run(Chain::Search, {.lockStop = true, .editFolders = true, .tellSilence = true});
}

Task<> ImageStore::cmd_Download() {
    return run(Chain::Synchronise, {.tellSilence = true});
}

void ImageStore::Command6_Click() {
    if (!running_) return;
    download_.stop();
    parts_.WbBrowser1.cancel();
    parts_.WbBrowser2.cancel();
}

/// What nobody foresaw ends the run, not the program.
Task<> ImageStore::run(Chain chain, Start start) {
    if (running_) co_return;
    const Busy::Hold busy(parts_.busy);
    const Scope running([this](bool on) { setRunning(on); });
    fault_.clear();
    Task<bool> pages = parts_.faults.run("ImageStore", runPages(chain, start));
    if (!co_await pages) {
        parts_.panel.Label7.caption = kError;
        fault_ = "something unforeseen, see ERROR.LOG";
    }
    parts_.module.lastRunFault.reset();
    if (!fault_.empty()) parts_.module.lastRunFault = RunFault{parts_.clock.now(), fault_};
    parts_.archive.flush(); // of a page that ended so
}

/// A run in progress, as the panel and the rest of the station see it.
void ImageStore::setRunning(bool running) {
    OperationPanel& panel = parts_.panel;
    running_ = running;
    panel.Command4.enabled = !running;
    panel.cmd_Download.enabled = !running;
    panel.Command6.enabled = running;
    panel.pgb_run.maximum = 0;
    panel.pgb_run.visible = running;
    if (running) return;
    // a run may end with the button locked, and recording must always be stoppable
    panel.Command2.enabled = parts_.module.RecordFlg && !parts_.module.capturing;
}

Task<> ImageStore::runPages(Chain chain, Start start) {
    begin(start);
    if (!navigate(chain)) co_return;
    if (start.tellSilence) {
        Task<> waiting = waitForReply();
        co_await waiting;
    }
    for (int page = 1;; ++page) {
        HttpReply reply = co_await page_;
        Task<PageEnd> reading = readPage(chain, std::move(reply));
        const PageEnd ended = co_await reading;
        parts_.archive.flush();
        if (ended == PageEnd::Completed) complete();
        if (ended != PageEnd::NextPage) co_return;
        if (page == kFruitlessPages) {
            end(PageEnd::Failed, kError, kNothingUsable);
            co_return;
        }
        if (!navigate(chain)) co_return;
        if (chain == Chain::Search) {
            parts_.panel.Command2.enabled = true;
        } else {
            parts_.module.syncPending = false;
        }
    }
}

void ImageStore::begin(const Start& start) {
    skipped_ = 0;
    if (start.lockStop) parts_.panel.Command2.enabled = false;
    fromDate_ = parts_.clock.now();
    endStamp_ = stamp_ = stampOf(fromDate_);
    makeFolders(start);
    download_.begin(datedFolder_);
}

void ImageStore::makeFolders(const Start& start) {
    const std::filesystem::path& data = parts_.panel.Dir1[0].path;
    const std::string day = dateDigits(fromDate_);
    datedFolder_ = data / day / "";
    std::error_code error; // a folder that cannot be made fails each of its files, told there
    if (data != parts_.module.defaultDataFolder && !std::filesystem::is_directory(data, error))
        return;
    std::filesystem::create_directories(datedFolder_, error);
    if (start.editFolders) std::filesystem::create_directories(data / "Edit" / day, error);
}

/// Asks for the next page. The synchronisation leaves its query in `Label7`: the camera answers the
/// bare search with its newest pictures.
bool ImageStore::navigate(Chain chain) {
    std::string url = cameraBaseUrl(parts_.panel) + kSearchPath;
    if (!(chain == Chain::Search ? BuildSearchQuery() : BuildSyncQuery())) return false;
    const std::string& query = parts_.panel.Label7.caption;
    if (chain == Chain::Search && !query.empty()) url += "?" + query;
    parts_.panel.pgb_run.maximum = 0;
    page_ = getPage(chain == Chain::Search ? parts_.WbBrowser1 : parts_.WbBrowser2, std::move(url));
    page_.start();
    return true;
}

bool ImageStore::BuildSearchQuery() {
    double extra = 0;
    if (parts_.module.syncPending) {
        parts_.op.beep();
        parts_.panel.Label7.caption = "File synchronization ...";
        extra = kPendingMinutes;
        parts_.module.syncPending = false;
    }
    return buildQuery(movedBack(fromDate_, parts_.panel.Text1[5].text, extra));
}

bool ImageStore::BuildSyncQuery() {
    return buildQuery(movedBack(fromDate_, parts_.panel.lbl_sync.caption));
}

/// The from-date stays where it was moved to: each further page of a run reaches back further.
bool ImageStore::buildQuery(WallTime from) {
    fromDate_ = from;
    const ImageStamp start = stampOf(from);
    if (!CheckStartTime(start.hour, start.minute, start.second)) {
        parts_.panel.Label7.caption = kInvalidStart;
        return false;
    }
    parts_.panel.Label7.caption = searchQuery(start);
    return true;
}

Task<> ImageStore::waitForReply() {
    co_await parts_.clock.sleep(24ms);
    parts_.module.searchTicks = 0;
    do {
        co_await parts_.clock.sleep(10ms);
        if (parts_.module.searchTicks > kReplyTicks) {
            parts_.panel.Label7.caption = kError;
            co_return;
        }
    } while (!page_.done());
}

Task<ImageStore::PageEnd> ImageStore::readPage(Chain chain, HttpReply reply) {
    if (chain == Chain::Search) parts_.panel.Command2.enabled = false;
    if (download_.stopped()) co_return end(PageEnd::Failed, kInterrupted);
    if (!reply.ok) co_return end(PageEnd::Failed, kError, reply.fault);
    if (reply.body.empty()) co_return end(PageEnd::Failed, kError, kNothingUsable);
    if (isNoData(reply.body)) co_return end(PageEnd::Completed, kNoFile);
    Task<PageEnd> reading = readRecords(std::move(reply.body));
    const PageEnd ended = co_await reading;
    co_return ended;
}

Task<ImageStore::PageEnd> ImageStore::readRecords(std::string reply) {
    OperationPanel& panel = parts_.panel;
    std::string_view rest = reply;
    int handled = 0;
    panel.pgb_run.value = 0;
    panel.pgb_run.maximum = static_cast<int>(recordCount(reply));
    bool pageDownloaded = false;
    while (true) {
        if (download_.stopped()) co_return end(PageEnd::Failed, kInterrupted);
        const auto path = nextPicturePath(rest);
        if (!path) co_return pageDownloaded ? PageEnd::Completed : PageEnd::NextPage;
        const std::string_view name = FileNameOfPath(*path);
        panel.pgb_run.value = handled++;
        if (!isPlainName(name)) {
            skip(name);
            if (skipped_ % kSkipsPerTurn == 0) co_await parts_.clock.yield();
            continue;
        }
        panel.Label7.caption = "DownLoad File : " + std::string(name) + " ...";
        ParseImageName(name, stamp_);
        if (CompareStamp(stamp_, endStamp_) == 1) co_return end(PageEnd::Completed, kComplete);
        Task<bool> looking = Sync_file(std::string(name));
        if (co_await looking) continue;
        Task<bool> fetching = download_.fetch(std::string(*path), std::string(name));
        if (co_await fetching) pageDownloaded = true;
        if (download_.hopeless()) co_return end(PageEnd::Failed, kError, kNothingUsable);
    }
}

Task<bool> ImageStore::Sync_file(std::string name) {
    co_await parts_.clock.yield();
    std::vector<std::filesystem::path> names;
    const bool listed = SchFile(datedFolder_ / pathFromUtf8(name), "", names);
    if (!listed) {
        parts_.log.write("SchFile:ファイル同期処理　ファイル名バッファオーバー");
        parts_.panel.Label7.caption = "ファイル同期処理エラー";
    }
    co_return false;
}

/// Names come from a device: one that could lead out of the folder is never used.
void ImageStore::skip(std::string_view name) {
    if (++skipped_ > kLoggedSkips) return;
    std::string shown(name.substr(0, 60));
    for (char& c : shown)
        if (static_cast<unsigned char>(c) < ' ') c = '?';
    parts_.log.write("ImageStore:Name of a stored image not usable: " + shown);
    if (skipped_ == kLoggedSkips) parts_.log.write("ImageStore:Further names are not logged");
}

void ImageStore::complete() {
    parts_.module.lastRunEnd = parts_.clock.ticks();
    parts_.panel.lbl_sync.caption = "30";
}

/// A failure has a reason, for the log and the operator.
ImageStore::PageEnd ImageStore::end(PageEnd end, const char* message, const std::string& reason) {
    parts_.panel.Label7.caption = message;
    fault_ = reason;
    if (!reason.empty()) parts_.log.write("ImageStore:" + reason);
    return end;
}

} // namespace orvane
