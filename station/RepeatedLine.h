#pragma once

#include "station/ErrorLog.h"

#include <string>

namespace orvane {

/// A line of ERROR.LOG that may come again many times a second for days: the first one of a minute
/// is written, the others are counted. "text (37 times)" follows when that minute is over, when
/// another text comes, or at `settle`. `log` and `clock` outlive it.
class RepeatedLine {
  public:
    RepeatedLine(ErrorLog& log, Clock& clock) : log_(log), clock_(clock) {}
    RepeatedLine(const RepeatedLine&) = delete;

    void write(const std::string& text);
    /// What was repeated has come to its end.
    void settle();
    /// Whether nothing is being counted.
    bool idle() const { return count_ == 0; }

  private:
    Task<> settleLater();

    ErrorLog& log_;
    Clock& clock_;
    std::string text_;
    int count_ = 0; ///< of `text_` in its minute; 0: none has come, or it is settled
    Task<> settling_;
};

} // namespace orvane
