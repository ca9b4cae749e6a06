#include "tests/support/SampleArchive.h"

#include "tests/support/SampleWalk.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace orvane::test {

namespace {

namespace fs = std::filesystem;

std::string digitsOf(std::chrono::local_days date) {
    const std::chrono::year_month_day day(date);
    char text[32];
    std::snprintf(text, sizeof text, "%04d%02u%02u", static_cast<int>(day.year()),
                  static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
    return text;
}

std::string minuteDigits(int minute) {
    char text[32];
    std::snprintf(text, sizeof text, "_%02d%02d", minute / 60, minute % 60);
    return text;
}

void put(const fs::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
}

/// A new file in the old one's place: the old one may be shared with other names.
void replace(const fs::path& file, const std::string& bytes) {
    fs::remove(file);
    put(file, bytes);
}

std::string bytesOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// A baseline JPEG (ITU-T T.81): one component, tables with one code each, and every block without
/// a difference to the one before.
std::string greyJpeg() {
    const auto bytes = [](std::initializer_list<int> values) {
        std::string text;
        for (const int value : values)
            text += static_cast<char>(value);
        return text;
    };
    const std::string oneCode = bytes({1}) + std::string(15, '\0') + bytes({0});
    return bytes({0xFF, 0xD8, 0xFF, 0xDB, 0, 67, 0}) + std::string(64, '\1') +
           bytes({0xFF, 0xC0, 0, 11, 8, 0, 48, 0, 64, 1, 1, 0x11, 0}) +
           bytes({0xFF, 0xC4, 0, 20, 0x00}) + oneCode + bytes({0xFF, 0xC4, 0, 20, 0x10}) + oneCode +
           bytes({0xFF, 0xDA, 0, 8, 1, 1, 0x00, 0, 63, 0}) + std::string(12, '\0') +
           bytes({0xFF, 0xD9});
}

int countOf(const SampleDay& day, Truth SampleMinute::*member, Truth truth) {
    return static_cast<int>(std::ranges::count_if(day.minutes, [=](const SampleMinute& minute) {
        return minute.isDue && minute.*member == truth;
    }));
}

std::string middleLines(const std::string& ledger, const std::string& lines) {
    const std::size_t place = ledger.find('\n', ledger.size() / 2) + 1;
    return ledger.substr(0, place) + lines + ledger.substr(place);
}

} // namespace

int SampleDay::due() const {
    return static_cast<int>(std::ranges::count(minutes, true, &SampleMinute::isDue));
}

int SampleDay::count(Truth truth) const {
    return countOf(*this, &SampleMinute::truth, truth);
}

int SampleDay::countBySize(Truth truth) const {
    return countOf(*this, &SampleMinute::bySize, truth);
}

SampleArchive::SampleArchive(const fs::path& folder, std::chrono::local_days lastDay,
                             const Paint& paint, int until)
    : folder_(folder), days_(kSampleDays) {
    auto date = lastDay - std::chrono::days(kSampleDays - 1);
    for (SampleDay& day : days_) {
        day.date = date++;
        day.digits = digitsOf(day.date);
    }
    SampleWalk(days_).run(until);
    fs::create_directory(folder_ / "Ledger");
    for (int number = 0; number < kSampleDays; ++number)
        writeDay(number, paint);
    for (const SampleHarm& harm : sampleHarms())
        harmPicture(harm);
    for (const SampleExtra& extra : sampleExtras())
        addExtra(extra, paint);
}

void SampleArchive::writeDay(int number, const Paint& paint) {
    SampleDay& day = days_[static_cast<std::size_t>(number)];
    if (!day.filed.empty()) fs::create_directory(folder_ / day.digits);
    for (const std::string& name : day.filed) {
        const int minute = std::stoi(name.substr(9, 2)) * 60 + std::stoi(name.substr(11, 2));
        paint(folder_ / day.digits / name, minute);
    }
    day.pictures = day.filed;
    for (SampleMinute& minute : day.minutes)
        minute.bySize = minute.truth;
    if (!day.ledger.empty()) writeLedger(number);
    const bool isLost = std::ranges::any_of(sampleLedgerHarms(), [=](const auto& harm) {
        return harm.day == number && harm.harm == LedgerHarm::Removed;
    });
    for (SampleMinute& minute : day.minutes)
        if (isLost && minute.truth == Truth::Missed) minute.detail = minute.reason = "";
}

void SampleArchive::writeLedger(int number) const {
    std::string ledger = day(number).ledger;
    const fs::path file = folder_ / "Ledger" / (day(number).digits + ".csv");
    put(file, ledger);
    for (const SampleLedgerHarm& harm : sampleLedgerHarms()) {
        if (harm.day != number) continue;
        if (harm.harm == LedgerHarm::Cut) put(file, ledger.substr(0, ledger.size() - 12));
        if (harm.harm == LedgerHarm::Emptied) put(file, "");
        if (harm.harm == LedgerHarm::Removed) fs::remove(file);
        if (harm.harm == LedgerHarm::Nonsense)
            put(file, middleLines(ledger, ",,,,\r\n\r\nhello\r\n\"\r\n\xFF\xFE\n"
                                          "25:00,+01:00,recording off,,\r\n"
                                          "10:00,+01:00,recording off,\r\n"
                                          "10:00,+01:00,Recording Off,,\r\n"));
    }
}

void SampleArchive::harmPicture(const SampleHarm& harm) {
    SampleDay& day = days_[static_cast<std::size_t>(harm.day)];
    SampleMinute& minute = day.minutes[static_cast<std::size_t>(harm.minute)];
    const auto name = day.pictures.lower_bound(day.digits + minuteDigits(harm.minute));
    if (name == day.pictures.end() || *name != minute.detail) return;
    const fs::path file = folder_ / day.digits / *name;
    const std::string bytes = bytesOf(file);
    if (harm.harm == Harm::Tail) return replace(file, bytes + harm.text);
    if (harm.harm == Harm::Empty) replace(file, "");
    if (harm.harm == Harm::Cut) replace(file, bytes.substr(0, bytes.size() / 2));
    if (harm.harm == Harm::Zeros) replace(file, std::string(bytes.size(), '\0'));
    if (harm.harm == Harm::Renamed) fs::rename(file, file.parent_path() / harm.text);
    if (harm.harm == Harm::Removed) fs::remove(file);
    minute.truth = Truth::Missed;
    minute.detail = minute.reason;
    if (harm.harm != Harm::Cut && harm.harm != Harm::Zeros) minute.bySize = Truth::Missed;
    day.pictures.erase(name);
}

void SampleArchive::addExtra(const SampleExtra& extra, const Paint& paint) {
    SampleDay& day = days_[static_cast<std::size_t>(extra.day)];
    const SampleDay& named = days_[static_cast<std::size_t>(extra.nameDay)];
    const std::string name = named.digits + minuteDigits(extra.minute) + extra.rest + ".jpg";
    fs::create_directory(folder_ / day.digits);
    paint(folder_ / day.digits / name, extra.minute);
    day.pictures.insert(name);
    SampleMinute& minute = day.minutes[static_cast<std::size_t>(extra.minute)];
    const bool isHad = minute.truth == Truth::Taken || minute.truth == Truth::Fetched;
    if (&day != &named || isHad) return;
    const bool isCapture = std::string(extra.rest).starts_with("00");
    minute.truth = isCapture ? Truth::Taken : Truth::Fetched;
    if (minute.bySize != Truth::Taken) minute.bySize = minute.truth;
    minute.detail = name;
}

void SampleArchive::paintGrey(const fs::path& file, int) {
    static const std::string picture = greyJpeg();
    put(file, picture);
}

} // namespace orvane::test
