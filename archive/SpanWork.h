#pragma once

#include "platform/Fault.h"
#include "station/Busy.h"
#include "station/Faults.h"
#include "station/OperationPanel.h"

namespace orvane {

/// Calendar days, both ends included.
struct DaySpan {
    std::chrono::local_days first{};
    std::chrono::local_days last{};
};

/// Work that the operator has done over the dated folders of some days, of the data folder that is
/// in use when it begins. It goes on beside the recording, a day after the other and in slices. All
/// else goes first: it waits while the station is busy, and does not make it busy, so it never
/// holds up a capture for more than the picture it is at, nor the program's end.
class SpanWork {
  public:
    /// What it works with; all of it outlives the work.
    struct Parts {
        const OperationPanel& panel;
        const Busy& busy;
        ErrorLog& log;
        Faults& faults;
        Clock& clock;
    };

    SpanWork(const SpanWork&) = delete;
    SpanWork& operator=(const SpanWork&) = delete;

    Value<bool> running;
    Value<int> progress;     ///< 0 to `kWhole`
    Value<std::string> text; ///< how far it is, then how it ended; empty before the first time
    static constexpr int kWhole = 1000;

    /// Ends the work at once. What has been done stays.
    void cancel();

  protected:
    /// `name` begins its lines in the log; a literal.
    SpanWork(const char* name, Parts parts) : name_(name), parts_(parts) {}
    virtual ~SpanWork() = default;

    /// Not while it is running. `span` has a first day that is not after its last.
    void begin(DaySpan span);

    /// What is to be done for one day. A fault ends the work.
    virtual Task<Fault> workOn(std::chrono::local_days day) = 0;
    /// What is to be done when all days have been worked on.
    virtual Task<Fault> finish();
    /// Lets go of what it holds; called when it ends, in whatever way.
    virtual void close() {}
    /// What has been done so far, as sentences; empty: nothing that is worth telling.
    virtual std::string outcome() const = 0;

    /// Lets all others go first; to be awaited between two slices.
    Task<> takeTurn();
    /// Shows that `done` of a day's `count` steps are done.
    void show(std::size_t done, std::size_t count);
    const std::filesystem::path& dataFolder() const { return dataFolder_; }
    std::filesystem::path folderOf(std::chrono::local_days day) const;
    const Parts& parts() const { return parts_; }
    void log(const std::string& line) const;
    /// "1 picture", "2 pictures".
    static std::string counted(int count, const std::string& one, const std::string& many);

  private:
    Task<> run(DaySpan span);
    Task<> days(DaySpan span);
    void end(const std::string& how);

    const char* name_;
    Parts parts_;
    std::filesystem::path dataFolder_;
    DaySpan span_;
    std::chrono::local_days day_{}; ///< that is worked on
    Task<> task_;
};

} // namespace orvane
