#pragma once

#include "platform/Operator.h"
#include "station/RepeatedLine.h"

#include <exception>
#include <functional>
#include <map>
#include <string>

namespace orvane {

/// Takes an exception that nobody foresaw. It does not throw.
using FaultHandler = std::function<void(const std::exception_ptr&)>;

/// The text of an exception.
std::string textOf(const std::exception_ptr& fault);

/// Where everything that nobody foresaw is reported: an exception that left a task, a timer's tick,
/// a pass of the main loop or an event handler. Each is logged as "where:what", the same one at
/// most twice a minute, and what reported it goes on. All it is made with outlives it.
class Faults {
  public:
    Faults(ErrorLog& log, Clock& clock, Operator& op) : log_(log), clock_(clock), op_(op) {}

    void report(const std::string& where, const std::exception_ptr& fault) noexcept;
    /// The same, and told in a box, unless the operator has it before him already.
    void tell(const std::string& where, const std::exception_ptr& fault) noexcept;

    FaultHandler reporter(std::string where);
    /// For what the operator has begun.
    FaultHandler teller(std::string where);

    /// Runs `task`, whose fault is reported. False: it ended with one.
    Task<bool> run(std::string where, Task<> task);
    /// The same for `work`, which does not wait.
    template <class Work>
    bool attempt(const char* where, const Work& work) {
        try {
            work();
            return true;
        } catch (...) {
            report(where, std::current_exception());
            return false;
        }
    }

  private:
    struct Known {
        Known(ErrorLog& log, Clock& clock) : line(log, clock) {}

        RepeatedLine line;
        Task<> box;
    };

    Known& note(const std::string& line);

    ErrorLog& log_;
    Clock& clock_;
    Operator& op_;
    std::map<std::string, Known> known_; ///< by their lines, while they are counted or told
};

} // namespace orvane
