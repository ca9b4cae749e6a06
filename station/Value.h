#pragma once

#include <functional>
#include <utility>

namespace orvane {

/// One observable property of a control. The observer (the window) hears of every change, never of
/// a set to the same value.
template <class T>
class Value {
  public:
    Value() = default;
    Value(T initial) : value_(std::move(initial)) {} // NOLINT(google-explicit-constructor)
    Value(const Value&) = delete;

    const T& get() const { return value_; }
    operator const T&() const { return value_; } // NOLINT(google-explicit-constructor)
    template <class U>
    Value& operator=(U&& value) {
        if (value_ == value) return *this;
        value_ = std::forward<U>(value);
        if (observer_) observer_(value_);
        return *this;
    }
    Value& operator=(const Value& other) { return *this = other.value_; }

    /// Replaces the observer and tells it the present value at once.
    void observe(std::function<void(const T&)> observer) {
        observer_ = std::move(observer);
        if (observer_) observer_(value_);
    }

  private:
    T value_{};
    std::function<void(const T&)> observer_;
};

} // namespace orvane
