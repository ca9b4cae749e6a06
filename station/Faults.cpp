#include "station/Faults.h"

namespace orvane {

std::string textOf(const std::exception_ptr& fault) {
    try {
        std::rethrow_exception(fault);
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "unknown fault";
    }
}

/// A report that cannot be made, as without memory, is left out: the program goes on.
void Faults::report(const std::string& where, const std::exception_ptr& fault) noexcept {
    try {
        note(where + ":" + textOf(fault));
    } catch (...) {
    }
}

void Faults::tell(const std::string& where, const std::exception_ptr& fault) noexcept {
    try {
        const std::string text = textOf(fault);
        Known& known = note(where + ":" + text);
        if (!known.box.done()) return;
        known.box = op_.tell("A fault occurred: " + text +
                             "\nThe program goes on. Please note this text and tell whoever "
                             "maintains the program.");
        known.box.start();
    } catch (...) {
    }
}

Faults::Known& Faults::note(const std::string& line) {
    std::erase_if(known_, [&](const auto& entry) {
        return entry.first != line && entry.second.line.idle() && entry.second.box.done();
    });
    Known& known = known_.try_emplace(line, log_, clock_).first->second;
    known.line.write(line);
    return known;
}

FaultHandler Faults::reporter(std::string where) {
    return [this, where = std::move(where)](const auto& fault) { report(where, fault); };
}

FaultHandler Faults::teller(std::string where) {
    return [this, where = std::move(where)](const auto& fault) { tell(where, fault); };
}

Task<bool> Faults::run(std::string where, Task<> task) {
    try {
        co_await task;
        co_return true;
    } catch (...) {
        report(where, std::current_exception());
    }
    co_return false;
}

} // namespace orvane
