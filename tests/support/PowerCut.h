#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <thread>

namespace orvane::test {

/// One change of the files below a folder, or one request to force some of it to the disk. Paths
/// are relative to that folder; a file is known by a number of its own, whatever it is called.
struct FileStep {
    enum class What : std::uint8_t {
        Written,      ///< `file` holds `bytes`
        Named,        ///< `from` is gone, `path` is a name of `file`; either may be empty
        FileForced,   ///< the system was asked for `file`
        FolderForced, ///< the system was asked for the names in `path`
        Settled,      ///< so much time has passed that the system has written everything
        Promised      ///< from here on `path` may not be lost
    };
    static constexpr int kFolder = -1; ///< in the place of a file's number
    What what;
    int file = 0;
    std::string path = {};
    std::string from = {};
    std::string bytes = {};
};

/// Records what the calling thread does to the files below a folder, from its construction to its
/// end; one at a time. Whoever calls the system is seen, libraries too: the test program puts
/// itself in front of the C library's functions that change files, and looks at the folder after
/// each call. What was there before counts as being on the disk.
class FileRecord {
  public:
    explicit FileRecord(std::filesystem::path root);
    FileRecord(const FileRecord&) = delete;
    FileRecord& operator=(const FileRecord&) = delete;
    ~FileRecord() { end(); }

    void end();
    void settle() { steps_.push_back({FileStep::What::Settled}); }
    void promise(const std::filesystem::path& file) {
        steps_.push_back({FileStep::What::Promised, 0, relative(file)});
    }
    const std::vector<FileStep>& steps() const { return steps_; }

    /// For the functions in front of the C library's: something may have changed, or
    /// `forcedDescriptor` was forced to the disk.
    static void changed(std::optional<int> forcedDescriptor = std::nullopt);

  private:
    using Names = std::map<std::string, int>; ///< numbers of files, by path

    void look();
    Names read();
    void compare(const Names& names);
    int numberOf(std::uint64_t inode);
    void noteBytes(int file, const std::string& bytes);
    void force(int descriptor);
    std::string relative(const std::filesystem::path& path) const {
        return path.lexically_relative(root_).string();
    }

    std::filesystem::path root_;
    std::thread::id thread_ = std::this_thread::get_id();
    bool looking_ = false; ///< its own calls are not looked at
    Names names_;
    std::map<std::uint64_t, int> numbers_; ///< by inode
    std::set<std::uint64_t> named_;        ///< inodes
    std::map<int, std::string> bytes_;
    int last_ = 0;
    std::vector<FileStep> steps_;
};

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
