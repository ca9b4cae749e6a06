#pragma once

#include <cassert>
#include <coroutine>
#include <exception>
#include <optional>
#include <utility>

namespace orvane {

class Wake;

/// Something that holds pending wake-ups: a clock or a signal.
class WakeSource {
  public:
    /// Drops `wake`; called when the waiting coroutine is destroyed.
    virtual void forget(Wake& wake) noexcept = 0;

  protected:
    ~WakeSource() = default;
};

/// The pending wake-up of one coroutine. It lives in the coroutine's own frame and takes itself
/// out of its source when that frame is destroyed, so nothing wakes up into a dead object and no
/// awaiter needs a destructor.
class Wake {
  public:
    Wake() = default;
    Wake(const Wake&) = delete;
    Wake& operator=(const Wake&) = delete;
    ~Wake() { drop(); }

    void hold(WakeSource& source, std::coroutine_handle<> waiting) {
        source_ = &source;
        waiting_ = waiting;
    }
    void moveTo(WakeSource& source) { source_ = &source; }
    /// Continues the coroutine. The source has already taken the wake-up out of its own list.
    void fire() {
        source_ = nullptr;
        waiting_.resume();
    }
    /// Told by a source that ends while the coroutine still waits.
    void release() noexcept { source_ = nullptr; }
    void drop() noexcept {
        if (source_ != nullptr) std::exchange(source_, nullptr)->forget(*this);
    }

  private:
    WakeSource* source_ = nullptr;
    std::coroutine_handle<> waiting_;
};

namespace detail {

struct PromiseBase {
    Wake wake;
    std::coroutine_handle<> continuation;
    std::exception_ptr fault;
    /// Set while the awaiting coroutine is still on the stack below: a task that ends before its
    /// first real wait hands back by returning, so loops over such tasks do not grow the stack.
    bool startedInline = false;
    bool started = false;

    struct FinalAwaiter {
        bool await_ready() const noexcept { return false; }
        template <class Promise>
        std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> self) noexcept {
            const PromiseBase& promise = self.promise();
            if (promise.startedInline || !promise.continuation) return std::noop_coroutine();
            return promise.continuation;
        }
        void await_resume() const noexcept {}
    };

    std::suspend_always initial_suspend() const noexcept { return {}; }
    FinalAwaiter final_suspend() const noexcept { return {}; }
    void unhandled_exception() noexcept { fault = std::current_exception(); }
};

template <class T>
struct Promise : PromiseBase {
    std::optional<T> value;
    void return_value(T result) { value.emplace(std::move(result)); }
    T take() { return std::move(*value); }
};

template <>
struct Promise<void> : PromiseBase {
    void return_void() const noexcept {}
    void take() const noexcept {}
};

} // namespace detail

/// A routine that waits. It starts when it is awaited (or by `start`, to be awaited later, by one
/// coroutine, or never), belongs to whoever holds the Task, and is destroyed with it, wherever it
/// is suspended.
template <class T = void>
class [[nodiscard]] Task {
  public:
    struct promise_type : detail::Promise<T> {
        Task get_return_object() {
            return Task(std::coroutine_handle<promise_type>::from_promise(*this));
        }
    };

    Task() = default;
    Task(Task&& other) noexcept : handle_(std::exchange(other.handle_, {})) {}
    Task& operator=(Task&& other) noexcept {
        if (this != &other) {
            reset();
            handle_ = std::exchange(other.handle_, {});
        }
        return *this;
    }
    ~Task() { reset(); }

    /// Runs up to the first wait, once.
    void start() {
        assert(!handle_.promise().started);
        handle_.promise().started = true;
        handle_.resume();
    }
    bool done() const { return !handle_ || handle_.done(); }
    /// The result of a task that is done; throws what the task threw.
    T result() {
        if (handle_.promise().fault) std::rethrow_exception(handle_.promise().fault);
        return handle_.promise().take();
    }
    void reset() {
        if (handle_) std::exchange(handle_, {}).destroy();
    }

    bool await_ready() const noexcept { return handle_.done(); }
    bool await_suspend(std::coroutine_handle<> awaiting) {
        promise_type& promise = handle_.promise();
        assert(!promise.continuation);
        promise.continuation = awaiting;
        if (std::exchange(promise.started, true)) return true;
        promise.startedInline = true;
        handle_.resume();
        promise.startedInline = false;
        return !handle_.done();
    }
    T await_resume() { return result(); }

  private:
    explicit Task(std::coroutine_handle<promise_type> handle) : handle_(handle) {}

    std::coroutine_handle<promise_type> handle_;
};

} // namespace orvane
