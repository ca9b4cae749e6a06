#pragma once

#include <functional>
#include <utility>

namespace orvane {

/// Something that is so while this lives: switched on when it is made and off when it goes, in
/// whatever way the routine or the task that holds it ends. What it switches outlives it.
class [[nodiscard]] Scope {
  public:
    /// `change` is called with true now and with false at the end; it may not throw then.
    explicit Scope(std::function<void(bool)> change) : change_(std::move(change)) { change_(true); }
    /// Holds `flag` set.
    explicit Scope(bool& flag) : Scope([&flag](bool on) { flag = on; }) {}
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    ~Scope() { change_(false); }

  private:
    std::function<void(bool)> change_;
};

} // namespace orvane
