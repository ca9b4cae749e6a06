#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace orvane::test {

/// One change of the files below a folder, or one request to force some of it to the disk. Paths
/// are relative to that folder; a file is known by a number of its own, whatever it is called.
struct FileStep {
    enum class What : std::uint8_t {
        Written,      ///< `file` holds `bytes`
        Named,        ///< `path` is a name of `file`
        Made,         ///< `path` is a folder
        Renamed,      ///< `from` became `path`, a name of `file`
        Removed,      ///< `path` is gone
        FileForced,   ///< the system was asked for `file`, which held `bytes`
        FolderForced, ///< the system was asked for the names in `path`
        Settled,      ///< so much time has passed that the system has written everything
        Promised      ///< from here on `path` may not be lost
    };
    What what;
    int file = 0;
    std::string path;
    std::string from;
    std::string bytes;
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
    void settle() { add({FileStep::What::Settled, 0, {}, {}, {}}); }
    void promise(const std::filesystem::path& file);
    const std::vector<FileStep>& steps() const { return steps_; }

    /// For the functions in front of the C library's: something may have changed, or `descriptor`
    /// was forced to the disk.
    static void changed();
    static void forced(int descriptor);

  private:
    struct Entry {
        bool isFolder = false;
        int file = 0;
    };
    using Names = std::map<std::string, Entry>;

    bool sees() const;
    void look();
    Names read();
    void compare(const Names& names);
    void rename(std::set<std::string>& gone, const std::string& path, int file);
    int numberOf(std::uint64_t inode);
    void noteBytes(int file, const std::string& bytes);
    void force(int descriptor);
    void add(FileStep step) { steps_.push_back(std::move(step)); }

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

} // namespace orvane::test
