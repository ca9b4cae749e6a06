#include "tracker/TrackerOptions.h"

#include "platform/Conversions.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

namespace orvane {

namespace {

constexpr const char* kSerial = "OptionSetup Serial";
constexpr const char* kTimezone = "OptionSetup Timezone";
constexpr const char* kOrigin = "OptionSetup origin";
constexpr int kSerialCount = 16;
constexpr int kSiteCount = 18;
constexpr int kOriginCount = 8;

std::string twoDecimals(double value) {
    char text[400];
    std::snprintf(text, sizeof text, "%.2f", value);
    return text;
}

/// One character a byte, up to the first zero, as UTF-8.
std::string textFrom(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (byte == 0) break;
        if (byte < 0x80) {
            text += static_cast<char>(byte);
        } else {
            text += static_cast<char>(0xC0 | byte >> 6);
            text += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return text;
}

/// One byte a character; characters beyond one byte become "?".
std::string bytesFrom(const std::string& utf8) {
    std::string bytes;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto lead = static_cast<std::uint8_t>(utf8[i]);
        if (lead < 0x80) {
            bytes += utf8[i];
        } else if ((lead == 0xC2 || lead == 0xC3) && i + 1 < utf8.size()) {
            bytes += static_cast<char>((lead & 0x03) << 6 | (utf8[++i] & 0x3F));
        } else if (lead >= 0xC0) {
            bytes += '?';
        }
    }
    return bytes;
}

/// "= 9 h", "= -5 h 30 min", "= 45 min"
std::string hoursText(int minutes) {
    const int size = std::abs(minutes);
    std::string text = minutes < 0 ? "= -" : "= ";
    if (size >= 60 || size == 0) text += std::to_string(size / 60) + " h";
    if (size > 60 && size % 60 != 0) text += " ";
    if (size % 60 != 0) text += std::to_string(size % 60) + " min";
    return text;
}

bool below(double value, double limit) {
    return std::abs(value) < limit;
}

} // namespace

TrackerOptions::TrackerOptions(OptionForm& form, Module1& module, TrackerCommands& commands,
                               ErrorLog& log, Operator& op, Busy& busy,
                               std::function<void()> siteChanged)
    : form_(form), module_(module), commands_(commands), log_(log), op_(op), busy_(busy),
      siteChanged_(std::move(siteChanged)) {}

Task<> TrackerOptions::activate() {
    const Busy::Hold busy(busy_);
    const Scope working([this](bool on) { setWorking(on); });
    const OpenPort port = open("Reading the tracker's options ...");
    if (!port) co_return;
    Task<> serial = readSerial();
    co_await serial;
    Task<> site = readSite();
    co_await site;
    Task<> origin = readOrigin();
    co_await origin;
    finish("Read from the tracker.");
}

/// Shows `status` while the exchange goes on.
OpenPort TrackerOptions::open(const char* status) {
    form_.status.caption = status;
    failures_.clear();
    changes_.clear();
    OpenPort port = commands_.open();
    if (!port) form_.status.caption = "The tracker's port cannot be opened, or is in use.";
    return port;
}

void TrackerOptions::finish(const std::string& success) {
    form_.status.caption = (failures_.empty() ? success : "Failed: " + failures_ + ".") + changes_;
}

/// Logs how an exchange failed. A reading that brings another command's reply is logged as a
/// missing acknowledgement.
bool TrackerOptions::succeeded(Exchange result, const char* name, bool reading) {
    if (result == Exchange::Done) return true;
    const char* fault = result == Exchange::NoReply                 ? ":Receive ERROR"
                        : result == Exchange::WrongEcho && !reading ? ":Except[CMD]"
                                                                    : ":Except[ACK]";
    refuse(name, fault);
    return false;
}

void TrackerOptions::refuse(const char* name, const char* fault) {
    log_.write(std::string(name) + fault);
    failures_ += (failures_.empty() ? "" : ", ") + std::string(name) + fault;
}

/// Requests a reply of at least `count` data bytes; false after logging what went wrong.
Task<bool> TrackerOptions::read(TrackerCommand command, const char* name, int count, Reply& reply) {
    Task<Exchange> requesting = commands_.request(command, reply);
    const Exchange result = co_await requesting;
    if (!succeeded(result, name, true)) co_return false;
    if (reply.lastIndex + 1 >= count) co_return true;
    refuse(name, ":Receive ERROR");
    co_return false;
}

Task<> TrackerOptions::readSerial() {
    Reply reply;
    Task<bool> reading = read(TrackerCommand::ReadSerial, kSerial, 0, reply);
    if (!co_await reading) co_return;
    const int count = std::min(reply.lastIndex + 1, kSerialCount);
    form_.txt_sn.text = textFrom(std::span(reply.data).first(static_cast<std::size_t>(count)));
}

Task<> TrackerOptions::readSite() {
    Reply reply;
    Task<bool> reading = read(TrackerCommand::ReadSite, kTimezone, kSiteCount, reply);
    if (!co_await reading) co_return;
    const auto data = std::span(std::as_const(reply.data)).first<kSiteCount>();
    const SiteValues told{doubleFrom(data.subspan<10, 8>()), doubleFrom(data.subspan<2, 8>()),
                          int16From(data.first<2>())};
    showSite(told);
    if (below(told.Tz, 720) && below(told.longitude, 180) && isLatitude(told.latitude)) {
        takeSite(told);
    } else {
        refuse(kTimezone, ":values out of range, not stored");
    }
}

/// The station's values are replaced without a question, so what they were is told.
void TrackerOptions::takeSite(const SiteValues& told) {
    const SiteValues before = std::exchange(module_.site, told);
    noteChange("Latitude", toText(before.latitude), toText(told.latitude));
    noteChange("Longitude", toText(before.longitude), toText(told.longitude));
    noteChange("Time zone", std::to_string(before.Tz), std::to_string(told.Tz));
    siteChanged_();
}

void TrackerOptions::noteChange(const char* name, const std::string& before,
                                const std::string& now) {
    if (before == now) return;
    changes_ += std::string(" ") + name + " changed: " + before + " to " + now + ".";
}

Task<> TrackerOptions::readOrigin() {
    Reply reply;
    Task<bool> reading = read(TrackerCommand::ReadOrigin, kOrigin, kOriginCount, reply);
    if (!co_await reading) co_return;
    const double origin = doubleFrom(std::span(std::as_const(reply.data)).first<kOriginCount>());
    form_.txt_org.text = twoDecimals(origin);
    if (origin >= 0 && origin < 360) {
        module_.origin = origin;
    } else {
        refuse(kOrigin, ":value out of range, not stored");
    }
}

void TrackerOptions::showSite(const SiteValues& site) {
    form_.txt_tz.text = std::to_string(site.Tz);
    txt_tz_Change();
    form_.txt_lon.text = twoDecimals(site.longitude);
    form_.txt_lat.text = twoDecimals(site.latitude);
}

void TrackerOptions::txt_tz_Change() {
    const auto minutes = toInt16(form_.txt_tz.text.get());
    form_.lbl_hours.caption = minutes ? hoursText(*minutes) : std::string();
}

Task<> TrackerOptions::Command1_Click() {
    std::string message;
    {
        const Busy::Hold busy(busy_);
        const Scope working([this](bool on) { setWorking(on); });
        const OpenPort port = open("Sending to the tracker ...");
        if (!port) co_return;
        Task<> serial = writeSerial();
        co_await serial;
        message = siteFault();
        if (message.empty()) {
            Task<> site = writeSite();
            co_await site;
        }
        Task<> origin = writeOrigin();
        co_await origin;
        finish(message.empty() ? "Sent to the tracker." : message);
    }
    // told when the port is closed: a box may stay open for days
    if (!message.empty()) co_await op_.tell(std::move(message));
}

Task<> TrackerOptions::writeSerial() {
    if (form_.txt_sn.text.get().empty()) co_return;
    putSerial(std::span(commands_.buffer).subspan<1, kSerialCount>(), bytesFrom(form_.txt_sn.text));
    Task<Exchange> writing = commands_.exchange(TrackerCommand::WriteSerial, kSerialCount);
    const Exchange result = co_await writing;
    succeeded(result, kSerial, false);
}

/// The message for the first site field that cannot be sent, or nothing. The bound of the latitude
/// is that of the longitude.
std::string TrackerOptions::siteFault() const {
    const auto zone = toInt16(form_.txt_tz.text.get());
    if (!zone || !below(*zone, 720)) return "Input Error TimeZone Data.";
    const auto longitude = toDouble(form_.txt_lon.text.get());
    if (!longitude || !below(*longitude, 180)) return "Input Error Longitude Data.";
    const auto latitude = toDouble(form_.txt_lat.text.get());
    if (!latitude || !below(*latitude, 180)) return "Input Error Latitude Data.";
    return {};
}

Task<> TrackerOptions::writeSite() {
    SiteValues& site = module_.site;
    site.Tz = toInt16(form_.txt_tz.text.get()).value_or(site.Tz);
    site.longitude = toDouble(form_.txt_lon.text.get()).value_or(site.longitude);
    site.latitude = toDouble(form_.txt_lat.text.get()).value_or(site.latitude);
    siteChanged_();
    const std::span buffer(commands_.buffer);
    putInt16(buffer.subspan<1, 2>(), site.Tz);
    putDouble(buffer.subspan<3, 8>(), site.longitude);
    putDouble(buffer.subspan<11, 8>(), site.latitude);
    Task<Exchange> writing = commands_.exchange(TrackerCommand::WriteSite, kSiteCount);
    const Exchange result = co_await writing;
    if (succeeded(result, kTimezone, false)) showSite(site);
}

/// An origin outside its range is left out without a word.
Task<> TrackerOptions::writeOrigin() {
    const auto origin = toDouble(form_.txt_org.text.get());
    if (!origin || *origin < 0 || *origin >= 360) co_return;
    module_.origin = *origin;
    putDouble(std::span(commands_.buffer).subspan<1, 8>(), *origin);
    Task<Exchange> writing = commands_.exchange(TrackerCommand::WriteOrigin, kOriginCount);
    const Exchange result = co_await writing;
    succeeded(result, kOrigin, false);
}

void TrackerOptions::setWorking(bool working) {
    form_.working = working;
    form_.Command1.enabled = !working;
}

} // namespace orvane
