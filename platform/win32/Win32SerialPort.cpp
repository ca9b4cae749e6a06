#include "platform/win32/Win32SerialPort.h"

#include <algorithm>
#include <array>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace orvane {

namespace {

constexpr DWORD kDriverQueue = 4096;
// A write returns when its bytes are on the line. Long enough for the usual frame of some 20 bytes,
// short enough for the user interface when the line is stuck.
constexpr DWORD kWriteMilliseconds = 30;

std::string systemReason(DWORD error) {
    std::array<wchar_t, 512> wide{};
    DWORD length =
        ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                         0, wide.data(), static_cast<DWORD>(wide.size()), nullptr);
    while (length > 0 && wide[length - 1] <= L' ')
        --length;
    if (length == 0) return "Error " + std::to_string(error);
    std::string text(3 * length, '\0'); // UTF-8 needs at most three bytes for a unit
    const int size =
        ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(length), text.data(),
                              static_cast<int>(text.size()), nullptr, nullptr);
    text.resize(static_cast<std::size_t>(size));
    return text;
}

BYTE parityCode(Parity parity) {
    if (parity == Parity::None) return NOPARITY;
    return parity == Parity::Even ? EVENPARITY : ODDPARITY;
}

// Binary, no handshaking of any kind, the device told that somebody is there.
void setLine(DCB& dcb, const LineSettings& line) {
    dcb.BaudRate = static_cast<DWORD>(line.baud);
    dcb.ByteSize = static_cast<BYTE>(line.dataBits);
    dcb.Parity = parityCode(line.parity);
    dcb.StopBits = line.stopBits == 2 ? TWOSTOPBITS : ONESTOPBIT;
    dcb.fBinary = TRUE;
    dcb.fParity = line.parity != Parity::None;
    dcb.fOutxCtsFlow = FALSE;
    dcb.fOutxDsrFlow = FALSE;
    dcb.fDsrSensitivity = FALSE;
    dcb.fOutX = FALSE;
    dcb.fInX = FALSE;
    dcb.fErrorChar = FALSE;
    dcb.fNull = FALSE;
    dcb.fAbortOnError = FALSE;
    dcb.fDtrControl = DTR_CONTROL_ENABLE;
    dcb.fRtsControl = RTS_CONTROL_ENABLE;
}

} // namespace

bool Win32SerialPort::isThere(int portNumber) const {
    if (portNumber < 1 || portNumber > 4) return false;
    const std::wstring name = L"COM" + std::to_wstring(portNumber);
    wchar_t device[MAX_PATH];
    return ::QueryDosDeviceW(name.c_str(), device, MAX_PATH) != 0 ||
           ::GetLastError() == ERROR_INSUFFICIENT_BUFFER;
}

bool Win32SerialPort::open(int portNumber, const std::string& settings) {
    close();
    name_ = "COM" + std::to_string(portNumber);
    if (portNumber < 1 || portNumber > 4) return fail(name_ + ": no such port");
    const std::optional<LineSettings> line = parseLineSettings(settings);
    if (!line) return fail("Unusable line settings: " + settings);
    const std::string path = "\\\\.\\" + name_;
    const HANDLE handle =
        ::CreateFileW(std::wstring(path.begin(), path.end()).c_str(), GENERIC_READ | GENERIC_WRITE,
                      0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return failWithSystemReason();
    handle_ = handle;
    return configure(*line) || failWithSystemReason();
}

bool Win32SerialPort::configure(const LineSettings& line) {
    DCB dcb{};
    dcb.DCBlength = sizeof dcb;
    if (!::GetCommState(handle_, &dcb)) return false;
    setLine(dcb, line);
    COMMTIMEOUTS timeouts{};
    timeouts.ReadIntervalTimeout = MAXDWORD; // with the zeros beside it: never wait
    timeouts.WriteTotalTimeoutConstant = kWriteMilliseconds;
    return ::SetupComm(handle_, kDriverQueue, kDriverQueue) && ::SetCommState(handle_, &dcb) &&
           ::SetCommTimeouts(handle_, &timeouts) &&
           ::PurgeComm(handle_, PURGE_RXABORT | PURGE_RXCLEAR);
}

void Win32SerialPort::close() {
    if (handle_ == nullptr) return;
    ::CloseHandle(handle_);
    handle_ = nullptr;
    output_.clear();
    fault_ = "The port is closed";
}

std::optional<std::size_t> Win32SerialPort::inputCount() {
    if (handle_ == nullptr) return std::nullopt;
    DWORD errors = 0;
    COMSTAT status{};
    if (!::ClearCommError(handle_, &errors, &status)) {
        failWithSystemReason();
        return std::nullopt;
    }
    return status.cbInQue;
}

std::optional<std::size_t> Win32SerialPort::outputCount() {
    if (handle_ == nullptr) return std::nullopt;
    DWORD errors = 0;
    COMSTAT status{};
    if (!pushOutput() || !::ClearCommError(handle_, &errors, &status)) {
        failWithSystemReason();
        return std::nullopt;
    }
    return output_.size() + status.cbOutQue;
}

std::optional<std::uint8_t> Win32SerialPort::readByte() {
    if (handle_ == nullptr) return std::nullopt;
    std::uint8_t byte = 0;
    DWORD count = 0;
    if (!::ReadFile(handle_, &byte, 1, &count, nullptr)) {
        failWithSystemReason();
        return std::nullopt;
    }
    if (count == 0) return std::nullopt;
    return byte;
}

bool Win32SerialPort::write(std::span<const std::uint8_t> bytes) {
    if (handle_ == nullptr) return false;
    output_.insert(output_.end(), bytes.begin(), bytes.end());
    return pushOutput() || failWithSystemReason();
}

void Win32SerialPort::discardInput() {
    if (handle_ != nullptr) ::PurgeComm(handle_, PURGE_RXABORT | PURGE_RXCLEAR);
}

bool Win32SerialPort::pushOutput() {
    if (output_.empty()) return true;
    const auto size = static_cast<DWORD>(std::min<std::size_t>(output_.size(), kDriverQueue));
    DWORD count = 0;
    const BOOL written = ::WriteFile(handle_, output_.data(), size, &count, nullptr);
    // Some drivers tell an elapsed time-out as an error; the next poll tries again.
    if (!written && ::GetLastError() != ERROR_SEM_TIMEOUT) return false;
    output_.erase(output_.begin(), output_.begin() + static_cast<std::ptrdiff_t>(count));
    return true;
}

bool Win32SerialPort::fail(const std::string& reason) {
    close();
    fault_ = reason;
    return false;
}

bool Win32SerialPort::failWithSystemReason() {
    return fail(name_ + ": " + systemReason(::GetLastError()));
}

std::unique_ptr<SerialPort> makeSerialPort(std::function<std::string(int)>) {
    return std::make_unique<Win32SerialPort>();
}

} // namespace orvane
