#pragma once

#include "tests/support/FileRecord.h"

#include <functional>
#include <optional>

namespace orvane::test {

/// What lies below a folder: the files' bytes by their relative paths; nothing: a folder.
using Tree = std::map<std::string, std::optional<std::string>>;

/// What is left below a folder when the power is cut at some point of a record.
struct Left {
    Tree tree;
    std::set<std::string> promised; ///< paths that may not be lost
    std::string where;              ///< the point and what was lost, for a reader
};

/// Calls `look` with everything that a power cut can leave, at every point of the record, each
/// once; ends early when it answers false. What was not forced to the disk may be lost, each on its
/// own: a name that was given, changed or removed may not have been, and what was written since may
/// be missing, full of zeros in whole or in part, or cut. Answers how many there were.
int forEachCut(const std::vector<FileStep>& record, const std::function<bool(const Left&)>& look);

/// Makes what lies there, below a folder that exists.
void restore(const Tree& tree, const std::filesystem::path& root);

} // namespace orvane::test
