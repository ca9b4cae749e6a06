#include "tests/support/FileRecord.h"

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <system_error>
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

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::filesystem::path linkOf(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

} // namespace

FileRecord::FileRecord(std::filesystem::path root) : root_(std::move(root)) {
    look();
    settle();
    running = this;
}

void FileRecord::end() {
    running = nullptr;
}

void FileRecord::promise(const std::filesystem::path& file) {
    add({What::Promised, 0, file.lexically_relative(root_).native(), {}, {}});
}

void FileRecord::changed() {
    const int reason = errno;
    FileRecord* const record = running;
    if (record != nullptr && record->sees()) record->look();
    errno = reason;
}

void FileRecord::forced(int descriptor) {
    const int reason = errno;
    FileRecord* const record = running;
    if (record != nullptr && record->sees()) record->force(descriptor);
    errno = reason;
}

bool FileRecord::sees() const {
    return !looking_ && thread_ == std::this_thread::get_id();
}

void FileRecord::look() {
    looking_ = true;
    const Names names = read();
    compare(names);
    names_ = names;
    looking_ = false;
}

/// A file that has lost its last name is forgotten: its inode may be another one's next. One that
/// is still to get its first name is not.
FileRecord::Names FileRecord::read() {
    Names names;
    std::set<std::uint64_t> named;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root_)) {
        struct stat status {};
        if (::stat(entry.path().c_str(), &status) != 0) continue;
        const bool isFolder = S_ISDIR(status.st_mode);
        const int file = isFolder ? 0 : numberOf(status.st_ino);
        names[entry.path().lexically_relative(root_).native()] = {isFolder, file};
        if (isFolder) continue;
        named.insert(status.st_ino);
        noteBytes(file, contentOf(entry.path()));
    }
    for (const std::uint64_t inode : std::exchange(named_, named))
        if (!named.contains(inode)) numbers_.erase(inode);
    return names;
}

void FileRecord::compare(const Names& names) {
    std::set<std::string> gone;
    for (const auto& [path, entry] : names_)
        if (!names.contains(path)) gone.insert(path);
    for (const auto& [path, entry] : names) {
        const auto before = names_.find(path);
        if (before != names_.end() && before->second.file == entry.file) continue;
        if (entry.isFolder) {
            add({What::Made, 0, path, {}, {}});
        } else {
            rename(gone, path, entry.file);
        }
    }
    for (const std::string& path : gone)
        add({What::Removed, 0, path, {}, {}});
}

/// A new name, or another one of a file whose name has gone.
void FileRecord::rename(std::set<std::string>& gone, const std::string& path, int file) {
    for (const std::string& from : gone) {
        if (names_[from].file != file) continue;
        add({What::Renamed, file, path, from, {}});
        gone.erase(from);
        return;
    }
    add({What::Named, file, path, {}, {}});
}

int FileRecord::numberOf(std::uint64_t inode) {
    const auto [found, isNew] = numbers_.try_emplace(inode, last_ + 1);
    if (isNew) ++last_;
    return found->second;
}

void FileRecord::noteBytes(int file, const std::string& bytes) {
    std::string& known = bytes_[file];
    if (known == bytes) return;
    known = bytes;
    add({What::Written, file, {}, {}, bytes});
}

/// Also of a file that has no name yet.
void FileRecord::force(int descriptor) {
    looking_ = true;
    struct stat status {};
    std::error_code error;
    const auto target = std::filesystem::read_symlink(linkOf(descriptor), error);
    if (!error && ::fstat(descriptor, &status) == 0 &&
        target.native().starts_with(root_.native())) {
        if (S_ISDIR(status.st_mode)) {
            add({What::FolderForced, 0, target.lexically_relative(root_).native(), {}, {}});
        } else {
            const int file = numberOf(status.st_ino);
            noteBytes(file, contentOf(linkOf(descriptor)));
            add({What::FileForced, file, {}, {}, bytes_[file]});
        }
    }
    looking_ = false;
}

} // namespace orvane::test

// In front of the C library's functions, for the whole program: the program's own symbols come
// before those of its libraries.

namespace {

template <class Function>
Function* behind(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

template <class Function, class... Arguments>
auto change(Function* function, Arguments... arguments) {
    const auto result = function(arguments...);
    orvane::test::FileRecord::changed();
    return result;
}

mode_t modeOf(int flags, std::va_list list) {
    constexpr int kMaking = O_CREAT | O_TMPFILE;
    return (flags & kMaking) == 0 ? 0 : va_arg(list, mode_t);
}

} // namespace

extern "C" {

std::FILE* fopen(const char* path, const char* mode) {
    static auto* const real = behind<decltype(::fopen)>("fopen");
    return change(real, path, mode);
}

std::FILE* fopen64(const char* path, const char* mode) {
    static auto* const real = behind<decltype(::fopen)>("fopen64");
    return change(real, path, mode);
}

std::size_t fwrite(const void* bytes, std::size_t size, std::size_t count, std::FILE* file) {
    static auto* const real = behind<decltype(::fwrite)>("fwrite");
    return change(real, bytes, size, count, file);
}

int fclose(std::FILE* file) {
    static auto* const real = behind<decltype(::fclose)>("fclose");
    return change(real, file);
}

int open(const char* path, int flags, ...) {
    static auto* const real = behind<decltype(::open)>("open");
    std::va_list list;
    va_start(list, flags);
    const mode_t mode = modeOf(flags, list);
    va_end(list);
    return change(real, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    static auto* const real = behind<decltype(::open)>("open64");
    std::va_list list;
    va_start(list, flags);
    const mode_t mode = modeOf(flags, list);
    va_end(list);
    return change(real, path, flags, mode);
}

ssize_t write(int file, const void* bytes, std::size_t size) {
    static auto* const real = behind<decltype(::write)>("write");
    return change(real, file, bytes, size);
}

ssize_t writev(int file, const iovec* parts, int count) {
    static auto* const real = behind<decltype(::writev)>("writev");
    return change(real, file, parts, count);
}

int truncate(const char* path, off_t size) noexcept {
    static auto* const real = behind<decltype(::truncate)>("truncate");
    return change(real, path, size);
}

int rename(const char* from, const char* to) noexcept {
    static auto* const real = behind<decltype(::rename)>("rename");
    return change(real, from, to);
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    static auto* const real = behind<decltype(::linkat)>("linkat");
    return change(real, fromFolder, from, toFolder, to, flags);
}

int unlink(const char* path) noexcept {
    static auto* const real = behind<decltype(::unlink)>("unlink");
    return change(real, path);
}

int remove(const char* path) noexcept {
    static auto* const real = behind<decltype(::remove)>("remove");
    return change(real, path);
}

int mkdir(const char* path, mode_t mode) noexcept {
    static auto* const real = behind<decltype(::mkdir)>("mkdir");
    return change(real, path, mode);
}

int fsync(int file) {
    static auto* const real = behind<decltype(::fsync)>("fsync");
    const int result = real(file);
    if (result == 0) orvane::test::FileRecord::forced(file);
    return result;
}

int fdatasync(int file) {
    static auto* const real = behind<decltype(::fdatasync)>("fdatasync");
    const int result = real(file);
    if (result == 0) orvane::test::FileRecord::forced(file);
    return result;
}

} // extern "C"
