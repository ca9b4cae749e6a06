#pragma once

#include <optional>
#include <string>

namespace orvane {

/// What a call that may fail answers: why it did, a text for the log or the operator, or nothing
/// when it worked. So `if (fault)` is the failure.
using Fault = std::optional<std::string>;

} // namespace orvane
