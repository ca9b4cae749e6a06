#pragma once

#include "station/Faults.h"

#include <list>

namespace orvane {

/// Owns the tasks that event handlers start and nobody awaits. A task that ends with an exception
/// is reported once through the fault handler; the rest go on.
class TaskGroup {
  public:
    explicit TaskGroup(FaultHandler onFault) : onFault_(std::move(onFault)) {}

    /// Runs `task` up to its first wait and keeps it until it is done.
    void spawn(Task<> task) {
        prune();
        tasks_.push_back(watch(std::move(task), onFault_));
        tasks_.back().start();
    }
    /// Destroys every task where it waits.
    void clear() { tasks_.clear(); }
    std::size_t running() const {
        std::size_t count = 0;
        for (const Task<>& task : tasks_)
            count += task.done() ? 0 : 1;
        return count;
    }

  private:
    static Task<> watch(Task<> task, FaultHandler onFault) {
        try {
            co_await task;
        } catch (...) {
            onFault(std::current_exception());
        }
    }
    void prune() {
        tasks_.remove_if([](const Task<>& task) { return task.done(); });
    }

    FaultHandler onFault_;
    std::list<Task<>> tasks_;
};

} // namespace orvane
