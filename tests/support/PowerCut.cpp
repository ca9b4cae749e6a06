#include "tests/support/PowerCut.h"

#include "tests/support/TestPictures.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orvane::test {

namespace {

using What = FileStep::What;
using Mask = std::uint64_t;

/// Up to so many names not yet forced are lost in every combination; more of them in the order in
/// which they were given, one by one, and all but one.
constexpr std::size_t kCombined = 4;
constexpr int kFolder = -1;

constexpr std::array<const char*, 6> kLosses{"nothing",  "all of it",     "to zeros",
                                             "its half", "its last byte", "a hole of zeros"};

/// What becomes of a file that holds `now`, of which `safe` is on the disk.
std::string lose(std::size_t loss, const std::string& safe, const std::string& now) {
    const std::size_t kept = now.starts_with(safe) ? safe.size() : 0;
    const std::size_t half = kept + (now.size() - kept) / 2;
    switch (loss) {
    case 0:
        return now;
    case 1:
        return safe;
    case 2:
        return now.substr(0, kept) + std::string(now.size() - kept, '\0');
    case 3:
        return now.substr(0, half);
    case 4:
        return now.substr(0, std::max(kept, now.empty() ? 0 : now.size() - 1));
    default:
        return now.substr(0, kept) + std::string(half - kept, '\0') + now.substr(half);
    }
}

std::string folderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash);
}

/// What is on the disk, and what is not yet.
class Disk {
  public:
    void follow(const FileStep& step);
    /// All that may be left now.
    std::vector<std::pair<Tree, std::string>> left() const;

  private:
    struct File {
        std::string safe;
        std::string now;
    };
    struct Change {
        std::string gone; ///< a path, or empty
        std::string path; ///< one that is a name of `file` from now on, or empty
        int file;
    };
    using Names = std::map<std::string, int>;

    static std::string folderOfChange(const Change& change) {
        return folderOf(change.path.empty() ? change.gone : change.path);
    }
    static void apply(const Change& change, Names& names);
    void forceFolder(const std::string& folder);
    void settle();
    std::vector<Mask> masks() const;
    Names namesOf(Mask mask) const;
    Tree treeOf(const Names& names, std::size_t loss) const;
    std::string describe(Mask mask, std::size_t loss) const;

    Names names_; ///< on the disk
    std::vector<Change> changes_;
    std::map<int, File> files_;
};

void Disk::follow(const FileStep& step) {
    switch (step.what) {
    case What::Written:
        files_[step.file].now = step.bytes;
        break;
    case What::Named:
        changes_.push_back({"", step.path, step.file});
        break;
    case What::Made:
        changes_.push_back({"", step.path, kFolder});
        break;
    case What::Renamed:
        changes_.push_back({step.from, step.path, step.file});
        break;
    case What::Removed:
        changes_.push_back({step.path, "", 0});
        break;
    case What::FileForced:
        files_[step.file].safe = step.bytes;
        break;
    case What::FolderForced:
        forceFolder(step.path);
        break;
    case What::Settled:
        settle();
        break;
    case What::Promised:
        break;
    }
}

void Disk::apply(const Change& change, Names& names) {
    names.erase(change.gone);
    if (!change.path.empty()) names[change.path] = change.file;
}

void Disk::forceFolder(const std::string& folder) {
    std::erase_if(changes_, [&](const Change& change) {
        if (folderOfChange(change) != folder) return false;
        apply(change, names_);
        return true;
    });
}

void Disk::settle() {
    for (const Change& change : std::exchange(changes_, {}))
        apply(change, names_);
    for (auto& [number, file] : files_)
        file.safe = file.now;
}

/// A bit for each change that has reached the disk.
std::vector<Mask> Disk::masks() const {
    std::vector<Mask> masks;
    const Mask all = (Mask(1) << changes_.size()) - 1;
    if (changes_.size() <= kCombined) {
        for (Mask mask = 0; mask <= all; ++mask)
            masks.push_back(mask);
        return masks;
    }
    for (Mask bit = 1; bit <= all; bit <<= 1) {
        for (const Mask mask : {bit - 1, bit, all & ~bit})
            masks.push_back(mask);
    }
    masks.push_back(all);
    return masks;
}

Disk::Names Disk::namesOf(Mask mask) const {
    Names names = names_;
    for (std::size_t i = 0; i < changes_.size(); ++i)
        if ((mask >> i & 1) != 0) apply(changes_[i], names);
    return names;
}

/// What lies in a folder that is lost is lost with it; folders come before what lies in them.
Tree Disk::treeOf(const Names& names, std::size_t loss) const {
    Tree tree;
    for (const auto& [path, file] : names) {
        const std::string folder = folderOf(path);
        if (folder != "." && !tree.contains(folder)) continue;
        auto& entry = tree[path];
        if (file == kFolder) continue;
        const auto found = files_.find(file);
        entry = found == files_.end() ? "" : lose(loss, found->second.safe, found->second.now);
    }
    return tree;
}

std::string Disk::describe(Mask mask, std::size_t loss) const {
    std::string text = "; unforced data lost: " + std::string(kLosses[loss]) + "; names lost:";
    for (std::size_t i = 0; i < changes_.size(); ++i) {
        const Change& change = changes_[i];
        if ((mask >> i & 1) == 0) text += " [" + change.gone + " -> " + change.path + "]";
    }
    return text;
}

std::vector<std::pair<Tree, std::string>> Disk::left() const {
    std::vector<std::pair<Tree, std::string>> left;
    for (const Mask mask : masks()) {
        const Names names = namesOf(mask);
        for (std::size_t loss = 0; loss < kLosses.size(); ++loss) {
            Tree tree = treeOf(names, loss);
            const bool isNew =
                std::ranges::none_of(left, [&](const auto& other) { return other.first == tree; });
            if (isNew) left.emplace_back(std::move(tree), describe(mask, loss));
        }
    }
    return left;
}

std::string textOf(const FileStep& step) {
    static constexpr std::array<const char*, 9> kTexts{"written",       "named",   "made",
                                                       "renamed",       "removed", "file forced",
                                                       "folder forced", "settled", "promised"};
    return std::string(kTexts[static_cast<std::size_t>(step.what)]) + " " + step.from + " " +
           step.path + " (file " + std::to_string(step.file) + ")";
}

/// What is forced takes possibilities away and adds none.
bool addsCuts(const FileStep& step) {
    return step.what != What::FileForced && step.what != What::FolderForced &&
           step.what != What::Settled;
}

} // namespace

int forEachCut(const std::vector<FileStep>& record, const std::function<bool(const Left&)>& look) {
    Disk disk;
    std::set<std::pair<Tree, std::set<std::string>>> seen;
    std::set<std::string> promised;
    const auto settled = [](const FileStep& step) { return step.what == What::Settled; };
    const auto begin = std::ranges::find_if(record, settled); // what was there before
    for (auto step = record.begin(); step != record.end(); ++step) {
        disk.follow(*step);
        if (step->what == What::Promised) promised.insert(step->path);
        if (step < begin || !addsCuts(*step)) continue;
        for (auto& [tree, lost] : disk.left()) {
            if (!seen.emplace(tree, promised).second) continue;
            const std::string where =
                "step " + std::to_string(step - record.begin()) + ", " + textOf(*step) + lost;
            if (!look({std::move(tree), promised, where})) return static_cast<int>(seen.size());
        }
    }
    return static_cast<int>(seen.size());
}

void restore(const Tree& tree, const std::filesystem::path& root) {
    for (const auto& [path, bytes] : tree) {
        if (bytes) {
            writeFile(root / path, *bytes);
        } else {
            std::filesystem::create_directory(root / path);
        }
    }
}

} // namespace orvane::test
