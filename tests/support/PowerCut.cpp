#include "tests/support/PowerCut.h"

#include "tests/support/TempFolder.h"

#include <algorithm>
#include <array>

namespace orvane::test {

namespace {

using What = FileStep::What;
using Mask = std::uint64_t;

/// Up to so many names not yet forced are lost in every combination; more of them in the order in
/// which they were given, one by one, and all but one.
constexpr std::size_t kCombined = 4;

constexpr std::array<const char*, 6> kLosses{"nothing",  "all of it",     "to zeros",
                                             "its half", "its last byte", "a hole of zeros"};

/// What becomes of a file that holds `now`, of which `safe` is on the disk.
std::string lose(std::size_t loss, const std::string& safe, const std::string& now) {
    const std::size_t kept = now.starts_with(safe) ? safe.size() : 0;
    const std::size_t half = kept + (now.size() - kept) / 2;
    const std::string begin = now.substr(0, kept);
    const std::array<std::string, kLosses.size()> left{
        now,
        safe,
        begin + std::string(now.size() - kept, '\0'),
        now.substr(0, half),
        now.substr(0, std::max(kept, now.empty() ? 0 : now.size() - 1)),
        begin + std::string(half - kept, '\0') + now.substr(half)};
    return left[loss];
}

std::string folderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash);
}

/// What is on the disk, and what is not yet.
class Disk {
  public:
    void follow(const FileStep& step) {
        if (step.what == What::Written) files_[step.file].now = step.bytes;
        if (step.what == What::Named) changes_.push_back(step);
        if (step.what == What::FileForced) files_[step.file].safe = files_[step.file].now;
        if (step.what == What::FolderForced)
            force([&](const std::string& folder) { return folder == step.path; });
        if (step.what != What::Settled) return;
        force([](const std::string&) { return true; });
        for (auto& [number, file] : files_)
            file.safe = file.now;
    }
    /// All that may be left now.
    std::vector<std::pair<Tree, std::string>> left() const {
        std::vector<std::pair<Tree, std::string>> left;
        for (const Mask mask : masks()) {
            for (std::size_t loss = 0; loss < kLosses.size(); ++loss) {
                Tree tree = treeOf(mask, loss);
                const bool isNew = std::ranges::none_of(
                    left, [&](const auto& other) { return other.first == tree; });
                if (isNew) left.emplace_back(std::move(tree), describe(mask, loss));
            }
        }
        return left;
    }

  private:
    struct File {
        std::string safe, now;
    };
    using Names = std::map<std::string, int>;

    static void apply(const FileStep& change, Names& names) {
        names.erase(change.from);
        if (!change.path.empty()) names[change.path] = change.file;
    }
    /// Puts the changes of these names on the disk.
    template <class Condition>
    void force(Condition isForced) {
        std::erase_if(changes_, [&](const FileStep& change) {
            if (!isForced(folderOf(change.path.empty() ? change.from : change.path))) return false;
            apply(change, names_);
            return true;
        });
    }
    /// A bit for each change that has reached the disk.
    std::vector<Mask> masks() const {
        std::vector<Mask> masks;
        const Mask all = (Mask(1) << changes_.size()) - 1;
        if (changes_.size() <= kCombined) {
            for (Mask mask = 0; mask <= all; ++mask)
                masks.push_back(mask);
            return masks;
        }
        for (Mask bit = 1; bit <= all; bit <<= 1)
            masks.insert(masks.end(), {bit - 1, bit, all & ~bit});
        masks.push_back(all);
        return masks;
    }
    /// What lies in a folder that is lost is lost with it; folders come before what lies in them.
    Tree treeOf(Mask mask, std::size_t loss) const {
        Names names = names_;
        for (std::size_t i = 0; i < changes_.size(); ++i)
            if ((mask >> i & 1) != 0) apply(changes_[i], names);
        Tree tree;
        for (const auto& [path, file] : names) {
            const std::string folder = folderOf(path);
            if (folder != "." && !tree.contains(folder)) continue;
            auto& entry = tree[path];
            if (file == FileStep::kFolder) continue;
            const auto found = files_.find(file);
            entry = found == files_.end() ? "" : lose(loss, found->second.safe, found->second.now);
        }
        return tree;
    }
    std::string describe(Mask mask, std::size_t loss) const {
        std::string text = "; unforced data lost: " + std::string(kLosses[loss]) + "; names lost:";
        for (std::size_t i = 0; i < changes_.size(); ++i) {
            const FileStep& change = changes_[i];
            if ((mask >> i & 1) == 0) text += " [" + change.from + " -> " + change.path + "]";
        }
        return text;
    }

    Names names_; ///< on the disk
    std::vector<FileStep> changes_;
    std::map<int, File> files_;
};

/// What is forced takes possibilities away and adds none.
bool addsCuts(const FileStep& step) {
    return step.what == What::Written || step.what == What::Named || step.what == What::Promised;
}

} // namespace

int forEachCut(const std::vector<FileStep>& record, const std::function<bool(const Left&)>& look) {
    Disk disk;
    std::set<std::pair<Tree, std::set<std::string>>> seen;
    std::set<std::string> promised;
    bool isBegun = false; // what was there before is on the disk
    for (std::size_t i = 0; i < record.size(); ++i) {
        const FileStep& step = record[i];
        disk.follow(step);
        isBegun = isBegun || step.what == What::Settled;
        if (step.what == What::Promised) promised.insert(step.path);
        if (!isBegun || !addsCuts(step)) continue;
        for (auto& [tree, lost] : disk.left()) {
            if (!seen.emplace(tree, promised).second) continue;
            const std::string where = "behind step " + std::to_string(i) + ", file " +
                                      std::to_string(step.file) + " [" + step.from + " -> " +
                                      step.path + "]" + lost;
            if (!look({std::move(tree), promised, where})) return static_cast<int>(seen.size());
        }
    }
    return static_cast<int>(seen.size());
}

void restore(const Tree& tree, const std::filesystem::path& root) {
    for (const auto& [path, bytes] : tree) {
        if (bytes) writeFile(root / path, *bytes);
        if (!bytes) std::filesystem::create_directory(root / path);
    }
}

} // namespace orvane::test
