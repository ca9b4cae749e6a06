#include "platform/Paths.h"
#include "platform/SystemInfo.h"

#include <windows.h>

#include <shellapi.h>

#include <array>
#include <cstring>
#include <cwchar>
#include <optional>

namespace orvane {

namespace {

constexpr REGSAM kFullAccess = 0x2003F;
constexpr std::size_t kBufferLength = 1024; // characters

struct RegistryValue {
    DWORD type = REG_NONE;
    DWORD size = 0;                                ///< bytes
    std::array<wchar_t, kBufferLength + 1> text{}; ///< one more: there is always a NUL
};

std::optional<RegistryValue> read(const std::wstring& key, const std::wstring& name) {
    HKEY handle = nullptr;
    if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, kFullAccess, &handle) != ERROR_SUCCESS)
        return std::nullopt;
    RegistryValue value;
    value.size = kBufferLength * sizeof(wchar_t);
    const LSTATUS status =
        ::RegQueryValueExW(handle, name.c_str(), nullptr, &value.type,
                           reinterpret_cast<BYTE*>(value.text.data()), &value.size);
    ::RegCloseKey(handle);
    if (status != ERROR_SUCCESS) return std::nullopt;
    return value;
}

std::string toUtf8(const wchar_t* text) {
    return utf8FromPath(std::filesystem::path(text));
}

/// With the values of the environment variables it names, such as %ProgramFiles%.
std::string expanded(const wchar_t* text) {
    std::array<wchar_t, kBufferLength> result{};
    const DWORD length = ::ExpandEnvironmentStringsW(text, result.data(), kBufferLength);
    return length == 0 || length > kBufferLength ? std::string() : toUtf8(result.data());
}

/// The registry below HKEY_LOCAL_MACHINE, and the shell that starts programs.
class Win32SystemInfo final : public SystemInfo {
  public:
    /// Opens the key with full access, which Windows grants to administrators only: for other
    /// users every value is empty.
    std::string GetKeyValue(const std::string& key, const std::string& value) const override;
    bool fileExists(const std::filesystem::path& file) const override;
    bool start(const std::filesystem::path& program) override;
};

} // namespace

std::string Win32SystemInfo::GetKeyValue(const std::string& key, const std::string& value) const {
    const auto found = read(pathFromUtf8(key).native(), pathFromUtf8(value).native());
    if (!found) return {};
    switch (found->type) {
    case REG_SZ:
        return toUtf8(found->text.data());
    case REG_EXPAND_SZ:
        return expanded(found->text.data());
    case REG_DWORD: {
        DWORD number = 0;
        if (found->size != sizeof number) return {};
        std::memcpy(&number, found->text.data(), sizeof number);
        return std::to_string(number);
    }
    default:
        return {};
    }
}

bool Win32SystemInfo::fileExists(const std::filesystem::path& file) const {
    std::error_code error;
    return std::filesystem::is_regular_file(file, error);
}

bool Win32SystemInfo::start(const std::filesystem::path& program) {
    SHELLEXECUTEINFOW what{};
    what.cbSize = sizeof what;
    what.fMask = SEE_MASK_FLAG_NO_UI | SEE_MASK_NOASYNC;
    what.lpFile = program.c_str();
    what.nShow = SW_SHOWNORMAL;
    return ::ShellExecuteExW(&what) != FALSE;
}

std::unique_ptr<SystemInfo> makeSystemInfo() {
    return std::make_unique<Win32SystemInfo>();
}

} // namespace orvane
