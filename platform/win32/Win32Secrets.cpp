#include "platform/SystemCalls.h"

#include <windows.h>

#include <wincrypt.h>

namespace orvane {

namespace {

/// Bytes that the system gave and takes back.
struct SystemBytes {
    SystemBytes() = default;
    SystemBytes(const SystemBytes&) = delete;
    ~SystemBytes() { LocalFree(blob.pbData); }

    DATA_BLOB blob{};
};

DATA_BLOB blobOf(std::string& bytes) {
    return {static_cast<DWORD>(bytes.size()), reinterpret_cast<BYTE*>(bytes.data())};
}

constexpr DWORD kForm = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;

} // namespace

std::optional<std::string> protectSecret(const std::string& secret) {
    if (secret.empty()) return secret;
    std::string bytes = secret;
    DATA_BLOB in = blobOf(bytes);
    SystemBytes out;
    if (!CryptProtectData(&in, L"Orvane", nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN,
                          &out.blob))
        return std::nullopt;
    DWORD length = 0;
    if (!CryptBinaryToStringA(out.blob.pbData, out.blob.cbData, kForm, nullptr, &length))
        return std::nullopt;
    std::string text(length, '\0'); // with its end
    if (!CryptBinaryToStringA(out.blob.pbData, out.blob.cbData, kForm, text.data(), &length))
        return std::nullopt;
    text.resize(length);
    return text;
}

std::optional<std::string> unprotectSecret(const std::string& stored) {
    if (stored.empty()) return stored;
    const auto textLength = static_cast<DWORD>(stored.size());
    DWORD length = 0;
    if (!CryptStringToBinaryA(stored.data(), textLength, CRYPT_STRING_BASE64, nullptr, &length,
                              nullptr, nullptr))
        return std::nullopt;
    std::string bytes(length, '\0');
    if (!CryptStringToBinaryA(stored.data(), textLength, CRYPT_STRING_BASE64,
                              reinterpret_cast<BYTE*>(bytes.data()), &length, nullptr, nullptr))
        return std::nullopt;
    DATA_BLOB in = blobOf(bytes);
    SystemBytes out;
    if (!CryptUnprotectData(&in, nullptr, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN,
                            &out.blob))
        return std::nullopt;
    return std::string(reinterpret_cast<const char*>(out.blob.pbData), out.blob.cbData);
}

} // namespace orvane
