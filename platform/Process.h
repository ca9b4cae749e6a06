#pragma once

#include "platform/Clock.h"
#include "platform/Fault.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// How a program ended.
struct ProcessEnd {
    Fault fault;      ///< what `write` told, or: it did not start, crashed, was or had to be killed
    int code = 0;     ///< its exit code, where there is no fault
    std::string said; ///< the last 64 kB of what it wrote to its output and its error output
};

/// Another program, run beside this one: fed through its standard input, one at a time. It gives
/// way to this program where the two want the processor, and is killed with this object.
class Process {
  public:
    virtual ~Process() = default;

    /// The program of that name, without ".exe", on the system's search path, else beside this
    /// program; empty: nowhere.
    virtual std::filesystem::path find(const std::string& name) const = 0;

    /// Starts `program` with `arguments` (UTF-8), no shell between. Kills the one before. What goes
    /// wrong is told by `write` and `end`.
    virtual void start(const std::filesystem::path& program,
                       const std::vector<std::string>& arguments) = 0;
    /// Hands `bytes` to its input; done when no more than a few MB of them wait to be read. They
    /// outlive the task. It is a fault when the program does not read: it has ended, has closed
    /// its input, or has not taken a byte for `patience`.
    virtual Task<Fault> write(std::string_view bytes, Ticks patience) = 0;
    /// Closes its input once that has been read, and waits for the program's end; kills it after
    /// `patience`.
    virtual Task<ProcessEnd> end(Ticks patience) = 0;
    /// Ends it at once, if it runs. Where open files cannot be removed, its files can be a moment
    /// later.
    virtual void kill() = 0;
    /// For the end of this program, when nothing can be awaited: returns once what was killed is
    /// gone, after two seconds at most.
    virtual void bury() = 0;
};

} // namespace orvane
