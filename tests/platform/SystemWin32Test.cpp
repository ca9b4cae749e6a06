#include "platform/SystemCalls.h"
#include "platform/SystemInfo.h"
#include "platform/qt/QtSettingsStore.h"
#include "platform/win32/Win32SerialPort.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <optional>

namespace orvane::test {
namespace {

/// A key that is removed at the end.
class TestKey {
  public:
    TestKey(HKEY root, std::wstring path) : root_(root), path_(std::move(path)) {
        created_ = ::RegCreateKeyExW(root_, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                     &key_, nullptr) == ERROR_SUCCESS;
    }
    TestKey(const TestKey&) = delete;
    ~TestKey() {
        if (!created_) return;
        ::RegCloseKey(key_);
        ::RegDeleteTreeW(root_, path_.c_str());
    }
    bool created() const { return created_; }
    void set(const wchar_t* name, DWORD type, const void* data, std::size_t size) {
        ::RegSetValueExW(key_, name, 0, type, static_cast<const BYTE*>(data),
                         static_cast<DWORD>(size));
    }
    void set(const wchar_t* name, DWORD type, const std::wstring& text) {
        set(name, type, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    }
    /// The text of a REG_SZ value, nothing for any other.
    std::optional<std::wstring> text(const wchar_t* name) const {
        wchar_t buffer[256];
        DWORD size = sizeof buffer;
        if (::RegGetValueW(key_, nullptr, name, RRF_RT_REG_SZ, nullptr, buffer, &size) !=
            ERROR_SUCCESS)
            return std::nullopt;
        return buffer;
    }

  private:
    HKEY root_;
    std::wstring path_;
    HKEY key_ = nullptr;
    bool created_ = false;
};

TEST(Win32SystemInfo, ReadsTextsAndNumbersBelowTheLocalMachine) {
    TestKey key(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Orvane test");
    if (!key.created()) GTEST_SKIP() << "only an administrator may open keys there";
    const DWORD number = 0xFFFE0001;
    key.set(L"text", REG_SZ, L"C:\\Werkzeug für 空\\x.exe");
    key.set(L"two texts", REG_SZ, std::wstring(L"one\0two", 7));
    key.set(L"unfinished", REG_SZ, L"abc", 2 * sizeof(wchar_t));
    key.set(L"longest", REG_SZ, std::wstring(1023, L'x'));
    key.set(L"too long", REG_SZ, std::wstring(1024, L'x'));
    key.set(L"variable", REG_EXPAND_SZ, L"%SystemRoot%\\x.exe");
    key.set(L"number", REG_DWORD, &number, sizeof number);
    key.set(L"bytes", REG_BINARY, &number, sizeof number);
    key.set(L"", REG_SZ, L"the key's own");

    const auto info = makeSystemInfo();
    const std::string windows = qEnvironmentVariable("SystemRoot").toStdString();
    for (const auto& [name, expected] :
         {std::pair{"text", std::string("C:\\Werkzeug für 空\\x.exe")},
          {"two texts", "one"},
          {"unfinished", "ab"},
          {"longest", std::string(1023, 'x')},
          {"too long", ""},
          {"variable", windows + "\\x.exe"},
          {"number", "4294836225"},
          {"bytes", ""},
          {"", "the key's own"},
          {"missing", ""}})
        EXPECT_EQ(info->GetKeyValue("SOFTWARE\\Orvane test", name), expected) << name;
    EXPECT_EQ(info->GetKeyValue("SOFTWARE\\Orvane test\\missing", "text"), "");
}

TEST(Win32SystemInfo, StartsWhatExists) {
    const TempFolder folder;
    const auto info = makeSystemInfo();
    EXPECT_FALSE(info->fileExists(folder.path()));
    EXPECT_FALSE(info->fileExists(folder.path() / "missing.exe"));
    EXPECT_FALSE(info->start(folder.path() / "missing.exe"));
    const std::filesystem::path windows(qEnvironmentVariable("SystemRoot").toStdWString());
    const auto program = windows / "system32" / "hostname.exe"; // ends at once
    EXPECT_TRUE(info->fileExists(program));
    EXPECT_TRUE(info->start(program));
}

TEST(Win32KeepAwake, AsksForTheSystemNotForTheScreen) {
    keepAwake(true);
    // setting a state answers the one before
    EXPECT_EQ(::SetThreadExecutionState(ES_CONTINUOUS), ES_CONTINUOUS | ES_SYSTEM_REQUIRED);
    keepAwake(true);
    keepAwake(false);
    EXPECT_EQ(::SetThreadExecutionState(ES_CONTINUOUS), EXECUTION_STATE{ES_CONTINUOUS});
}

TEST(QtSettingsStore, KeepsTextsInTheUsersRegistry) {
    TestKey key(HKEY_CURRENT_USER, L"Software\\Orvane\\Test section");
    ASSERT_TRUE(key.created());
    QtSettingsStore store;
    EXPECT_EQ(store.GetSetting("Test section", "Mode Auto", "none"), "none");
    for (const auto& [text, stored] : {std::pair{"", L""},
                                       {"a, b;c", L"a, b;c"},
                                       {"D:\\空の写真\\", L"D:\\空の写真\\"},
                                       {" x ", L" x "},
                                       {"True", L"True"}}) {
        EXPECT_TRUE(store.SaveSetting("Test section", "Mode Auto", text));
        EXPECT_EQ(key.text(L"Mode Auto"), stored); // in the registry when the call returns
        EXPECT_EQ(QtSettingsStore().GetSetting("Test section", "Mode Auto", "?"), text);
    }
    const DWORD number = 30; // as somebody may enter it by hand
    key.set(L"IntervalMinute", REG_DWORD, &number, sizeof number);
    EXPECT_EQ(QtSettingsStore().GetSetting("Test section", "IntervalMinute", ""), "30");
}

TEST(Win32FileAttributes, AreTheSystemsOwn) {
    const TempFolder folder;
    const auto file = folder.path() / std::filesystem::path(u8"空.jpg");
    EXPECT_EQ(attributeWord(file), std::nullopt);
    writeFile(file, "x");
    ASSERT_TRUE(::SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY));
    const auto word = attributeWord(file);
    ASSERT_TRUE(word);
    EXPECT_TRUE(*word & kAttributeReadOnly);
    EXPECT_FALSE(*word & kAttributeFolder);
    ASSERT_TRUE(::SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_TRUE(*attributeWord(folder.path()) & kAttributeFolder);
}

TEST(Win32SerialPort, TellsThePortAndTheSystemsReason) {
    Win32SerialPort port;
    EXPECT_FALSE(port.open(5, "38400,N,8,1"));
    EXPECT_EQ(port.fault(), "COM5: no such port");
    EXPECT_FALSE(port.open(4, "38400"));
    EXPECT_EQ(port.fault(), "Unusable line settings: 38400");
    EXPECT_FALSE(port.isOpen());
    EXPECT_EQ(port.inputCount(), std::nullopt);
    EXPECT_EQ(port.readByte(), std::nullopt);
    const std::uint8_t byte = 0;
    EXPECT_FALSE(port.write({&byte, 1}));
}

/// What is stored shows nothing of a secret, and what another user or PC stored is refused.
TEST(Secrets, AreProtectedByTheSystem) {
    const auto stored = protectSecret("a secret");
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->find("secret"), std::string::npos);
    EXPECT_NE(*stored, "YSBzZWNyZXQ=") << "base64 is no protection";
    EXPECT_FALSE(unprotectSecret("a secret"));
    EXPECT_FALSE(unprotectSecret("YSBzZWNyZXQ="));
}

} // namespace
} // namespace orvane::test
