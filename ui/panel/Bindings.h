#pragma once

#include "station/Value.h"

#include <functional>
#include <vector>

namespace orvane {

/// The values that a window follows. It stops following them when it is destroyed, since the values
/// outlive the windows. A value has one observer: whoever follows it takes it from the one before.
class Bindings {
  public:
    Bindings() = default;
    Bindings(const Bindings&) = delete;
    Bindings& operator=(const Bindings&) = delete;
    ~Bindings() {
        for (const auto& release : releases_)
            release();
    }

    /// Calls `observer` now and on every change.
    template <class T, class Observer>
    void follow(Value<T>& value, Observer observer) {
        value.observe(std::move(observer));
        releases_.push_back([&value] { value.observe({}); });
    }

  private:
    std::vector<std::function<void()>> releases_;
};

} // namespace orvane
