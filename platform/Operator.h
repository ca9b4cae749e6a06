#pragma once

#include "platform/Task.h"

#include <string>

namespace orvane {

/// The person at the screen. Boxes are titled "Orvane" and never block the program; the caller
/// waits for the answer.
class Operator {
  public:
    virtual ~Operator() = default;
    /// Message with an OK button only; `Task` ends when it is closed.
    virtual Task<> tell(std::string text) = 0;
    /// Question with OK, Cancel and an exclamation icon; true for OK.
    virtual Task<bool> ask(std::string text) = 0;
    /// Question with Yes, No and an exclamation icon; true for Yes. Enter and Escape answer No.
    virtual Task<bool> confirm(std::string text) = 0;
    virtual void beep() = 0;
};

} // namespace orvane
