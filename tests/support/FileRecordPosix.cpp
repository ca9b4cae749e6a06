#include "tests/support/PowerCut.h"
#include "tests/support/TempFolder.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace orvane::test {

namespace {

using What = FileStep::What;

std::atomic<FileRecord*> running = nullptr; ///< asked by every thread

} // namespace

FileRecord::FileRecord(std::filesystem::path root) : root_(std::move(root)) {
    look();
    settle();
    running = this;
}

void FileRecord::end() {
    running = nullptr;
}

void FileRecord::changed(std::optional<int> forcedDescriptor) {
    const int reason = errno;
    FileRecord* const record = running;
    if (record != nullptr && !record->looking_ && record->thread_ == std::this_thread::get_id()) {
        record->looking_ = true;
        forcedDescriptor ? record->force(*forcedDescriptor) : record->look();
        record->looking_ = false;
    }
    errno = reason;
}

void FileRecord::look() {
    const Names names = read();
    compare(names);
    names_ = names;
}

/// A file that has lost its last name is forgotten: its inode may be another one's next. One that
/// is still to get its first name is not.
FileRecord::Names FileRecord::read() {
    Names names;
    std::set<std::uint64_t> named;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root_)) {
        struct stat status {};
        if (::stat(entry.path().c_str(), &status) != 0) continue;
        int& file = names[relative(entry.path())] = FileStep::kFolder;
        if (S_ISDIR(status.st_mode)) continue;
        file = numberOf(status.st_ino);
        named.insert(status.st_ino);
        noteBytes(file, contentsOf(entry.path()));
    }
    for (const std::uint64_t inode : std::exchange(named_, named))
        if (!named.contains(inode)) numbers_.erase(inode);
    return names;
}

/// New names, also such of files whose name has gone, and then what has gone altogether.
void FileRecord::compare(const Names& names) {
    Names gone = names_;
    std::erase_if(gone, [&](const auto& name) { return names.contains(name.first); });
    for (const auto& [path, file] : names) {
        const auto before = names_.find(path);
        if (before != names_.end() && before->second == file) continue;
        const auto from = std::ranges::find_if(gone, [wanted = file](const auto& name) {
            return name.second == wanted && wanted != FileStep::kFolder;
        });
        steps_.push_back({What::Named, file, path, from == gone.end() ? "" : from->first});
        if (from != gone.end()) gone.erase(from);
    }
    for (const auto& [path, file] : gone)
        steps_.push_back({What::Named, file, "", path});
}

int FileRecord::numberOf(std::uint64_t inode) {
    const auto [found, isNew] = numbers_.try_emplace(inode, last_ + 1);
    if (isNew) ++last_;
    return found->second;
}

void FileRecord::noteBytes(int file, const std::string& bytes) {
    if (std::exchange(bytes_[file], bytes) != bytes)
        steps_.push_back({What::Written, file, "", "", bytes});
}

/// Also of a file that has no name yet.
void FileRecord::force(int descriptor) {
    const std::filesystem::path link = "/proc/self/fd/" + std::to_string(descriptor);
    std::error_code error;
    const auto target = std::filesystem::read_symlink(link, error);
    struct stat status {};
    if (error || ::fstat(descriptor, &status) != 0 || !target.native().starts_with(root_.native()))
        return;
    if (S_ISDIR(status.st_mode)) {
        steps_.push_back({What::FolderForced, 0, relative(target)});
    } else {
        const int file = numberOf(status.st_ino);
        noteBytes(file, contentsOf(link));
        steps_.push_back({What::FileForced, file});
    }
}

} // namespace orvane::test

// In front of the C library's functions, for the whole program: the program's own symbols come
// before those of its libraries.

namespace {

template <class Function, class... Arguments>
auto change(Function* function, Arguments... arguments) {
    const auto result = function(arguments...);
    orvane::test::FileRecord::changed();
    return result;
}

template <class Function>
int force(Function* function, int file) {
    const int result = function(file);
    if (result == 0) orvane::test::FileRecord::changed(file);
    return result;
}

mode_t modeOf(int flags, std::va_list list) {
    constexpr int kMaking = O_CREAT | O_TMPFILE;
    return (flags & kMaking) == 0 ? 0 : va_arg(list, mode_t);
}

} // namespace

/// The C library's own function of that name.
#define REAL(name) (reinterpret_cast<decltype(::name)*>(::dlsym(RTLD_NEXT, #name)))
/// Defines a function that calls the C library's own and hands what it changed to `watch`.
#define WATCHED(result, name, parameters, watch, ...)                                              \
    result name parameters {                                                                       \
        static auto* const real = REAL(name);                                                      \
        return watch(real, __VA_ARGS__);                                                           \
    }

extern "C" {

WATCHED(std::FILE*, fopen, (const char* path, const char* mode), change, path, mode)
WATCHED(std::FILE*, fopen64, (const char* path, const char* mode), change, path, mode)
WATCHED(std::size_t, fwrite, (const void* from, std::size_t size, std::size_t count, FILE* file),
        change, from, size, count, file)
WATCHED(int, fclose, (std::FILE * file), change, file)
WATCHED(ssize_t, write, (int file, const void* from, std::size_t size), change, file, from, size)
WATCHED(ssize_t, writev, (int file, const iovec* parts, int count), change, file, parts, count)
WATCHED(int, truncate, (const char* path, off_t size) noexcept, change, path, size)
WATCHED(int, rename, (const char* from, const char* to) noexcept, change, from, to)
WATCHED(int, linkat, (int at, const char* from, int in, const char* to, int flags) noexcept, change,
        at, from, in, to, flags)
WATCHED(int, unlink, (const char* path) noexcept, change, path)
WATCHED(int, remove, (const char* path) noexcept, change, path)
WATCHED(int, mkdir, (const char* path, mode_t mode) noexcept, change, path, mode)
WATCHED(int, fsync, (int file), force, file)
WATCHED(int, fdatasync, (int file), force, file)

int open(const char* path, int flags, ...) {
    static auto* const real = REAL(open);
    std::va_list list;
    va_start(list, flags);
    const mode_t mode = modeOf(flags, list);
    va_end(list);
    return change(real, path, flags, mode);
}
int open64(const char* path, int flags, ...) {
    std::va_list list;
    va_start(list, flags);
    const mode_t mode = modeOf(flags, list);
    va_end(list);
    return open(path, flags | O_LARGEFILE, mode);
}

} // extern "C"
