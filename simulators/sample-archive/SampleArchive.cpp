#include "simulators/sample-archive/SampleArchive.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace samplearchive {

namespace {

namespace fs = std::filesystem;

std::string contentsOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void writeFile(const fs::path& file, const std::string& bytes) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
}

/// What becomes of a picture after it was written. The first three leave its name as it is.
struct Harm {
    enum class Kind { Empty, Cut, Zeros, Tail, Renamed, Removed };
    int day;
    int minute;
    Kind kind;
    const char* text = ""; ///< the new name, or what stands behind the picture's end
};
const Harm kHarms[] = {
    {24, 7 * 60, Harm::Kind::Empty},
    {24, 7 * 60 + 10, Harm::Kind::Cut},
    {24, 7 * 60 + 20, Harm::Kind::Zeros},
    {24, 7 * 60 + 30, Harm::Kind::Renamed, "picture of 7.30.jpg"},
    {24, 7 * 60 + 40, Harm::Kind::Renamed, "20061115_256000_00.jpg"},
    {24, 7 * 60 + 50, Harm::Kind::Removed},
    {24, 8 * 60, Harm::Kind::Tail, "what a camera puts behind a picture"},
    {24, 8 * 60 + 10, Harm::Kind::Cut},
    // what was fetched may be lost as well: then the reason of the miss is known again
    {58, 15 * 60 + 30, Harm::Kind::Empty},
    {58, 9 * 60, Harm::Kind::Cut}};

/// A picture that came into the folder by itself: from a synchronisation, or by hand.
struct Extra {
    int day;
    int nameDay;      ///< that stands in its name
    const char* time; ///< the same, with further frame digits
};
constexpr Extra kExtras[] = {
    {24, 24, "081007_00"},                        // beside a broken capture
    {40, 40, "045800_00"},                        // outside the window
    {40, 40, "090507_00"},                        // between two due minutes
    {40, 40, "090537_00"}, {40, 40, "091007_00"}, // beside a capture
    {40, 40, "220000_00"}, {40, 41, "000007_00"}, // a run that went on past midnight
    {3, 3, "101107_00"},                          // a minute after a missed one: no late capture
    {11, 11, "120007_00"},                        // on a day without recording
    {15, 15, "063012_00"}};                       // while the program was not running

/// The days whose ledger was lost, cut by a power failure, written over in part, and emptied.
constexpr int kLostLedger = 25, kCutLedger = 26, kNonsenseLedger = 28, kEmptyLedger = 34;

/// Of a time that begins with hours and minutes.
int minuteOf(const std::string& time) {
    return std::stoi(time.substr(0, 2)) * 60 + std::stoi(time.substr(2, 2));
}

/// A new file in the old one's place: the old one may be shared with other names.
void replace(const fs::path& file, const std::string& bytes) {
    fs::remove(file);
    writeFile(file, bytes);
}

/// A baseline JPEG (ITU-T T.81): one component, tables with one code each, and every block without
/// a difference to the one before.
std::string greyJpeg() {
    using namespace std::string_literals;
    const std::string oneCode = "\1"s + std::string(16, '\0');
    return "\xFF\xD8\xFF\xDB\0\x43\0"s + std::string(64, '\1') +
           "\xFF\xC0\0\x0B\x8\0\x30\0\x40\1\1\x11\0"s + "\xFF\xC4\0\x14\0"s + oneCode +
           "\xFF\xC4\0\x14\x10"s + oneCode + "\xFF\xDA\0\x8\1\1\0\0\x3F\0"s +
           std::string(12, '\0') + "\xFF\xD9";
}

int countOf(const SampleDay& day, Truth SampleMinute::*member, Truth truth) {
    return static_cast<int>(std::ranges::count_if(day.minutes, [=](const SampleMinute& minute) {
        return minute.isDue && minute.*member == truth;
    }));
}

void writeLedger(const SampleDay& day, int number, const fs::path& file) {
    std::string ledger = day.ledger;
    if (ledger.empty() || number == kLostLedger) return;
    if (number == kCutLedger) ledger.resize(ledger.size() - 12);
    if (number == kNonsenseLedger)
        ledger.insert(ledger.find('\n', ledger.size() / 2) + 1,
                      ",,,,\r\n\r\nhello\r\n\"\r\n\xFF\xFE\n25:00,+01:00,recording off,,\r\n"
                      "10:00,+01:00,recording off,\r\n10:00,+01:00,Recording Off,,\r\n");
    writeFile(file, number == kEmptyLedger ? "" : ledger);
}

void writeDay(SampleDay& day, int number, const fs::path& folder,
              const SampleArchive::Paint& paint) {
    if (!day.filed.empty()) fs::create_directory(folder / day.digits);
    for (const std::string& name : day.filed)
        paint(folder / day.digits / name, minuteOf(name.substr(9)));
    day.pictures = day.filed;
    writeLedger(day, number, folder / "Ledger" / (day.digits + ".csv"));
    for (SampleMinute& minute : day.minutes) {
        minute.bySize = minute.truth;
        if (number == kLostLedger && minute.truth == Truth::Missed)
            minute.detail = minute.reason = "";
    }
}

void harmPicture(SampleDay& day, const Harm& harm, const fs::path& dated) {
    using enum Harm::Kind;
    SampleMinute& minute = day.at(harm.minute);
    const std::string name = minute.detail;
    if (!day.pictures.contains(name)) return; // the story ended before
    const fs::path file = dated / name;
    const std::string bytes = contentsOf(file);
    if (harm.kind == Tail) return replace(file, bytes + harm.text);
    if (harm.kind == Empty) replace(file, "");
    if (harm.kind == Cut) replace(file, bytes.substr(0, bytes.size() / 2));
    if (harm.kind == Zeros) replace(file, std::string(bytes.size(), '\0'));
    if (harm.kind == Renamed) fs::rename(file, dated / harm.text);
    if (harm.kind == Removed) fs::remove(file);
    minute.truth = Truth::Missed;
    minute.detail = minute.reason;
    if (harm.kind != Cut && harm.kind != Zeros) minute.bySize = Truth::Missed;
    day.pictures.erase(name);
}

void addPicture(SampleDay& day, const std::string& namedDay, const std::string& time) {
    const std::string name = namedDay + "_" + time + ".jpg";
    day.pictures.insert(name);
    SampleMinute& minute = day.at(minuteOf(time));
    const bool isHad = minute.truth == Truth::Taken || minute.truth == Truth::Fetched;
    if (day.digits != namedDay || isHad) return;
    minute.truth = time.substr(4, 2) == "00" ? Truth::Taken : Truth::Fetched;
    if (minute.bySize != Truth::Taken) minute.bySize = minute.truth;
    minute.detail = name;
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
    : days_(kSampleDays) {
    auto date = lastDay - std::chrono::days(kSampleDays - 1);
    for (SampleDay& day : days_) {
        const std::chrono::year_month_day parts(day.date = date++);
        day.digits = std::to_string(static_cast<int>(parts.year())) +
                     sampleDigits(static_cast<int>(static_cast<unsigned>(parts.month()))) +
                     sampleDigits(static_cast<int>(static_cast<unsigned>(parts.day())));
    }
    playSampleStory(days_, until);
    fs::create_directory(folder / "Ledger");
    for (std::size_t number = 0; number < days_.size(); ++number)
        writeDay(days_[number], static_cast<int>(number), folder, paint);
    const auto at = [this](int day) -> SampleDay& { return days_[static_cast<std::size_t>(day)]; };
    for (const Harm& harm : kHarms)
        harmPicture(at(harm.day), harm, folder / at(harm.day).digits);
    for (const Extra& extra : kExtras) {
        const fs::path dated = folder / at(extra.day).digits;
        const std::string& named = at(extra.nameDay).digits;
        fs::create_directory(dated);
        paint(dated / (named + "_" + extra.time + ".jpg"), minuteOf(extra.time));
        addPicture(at(extra.day), named, extra.time);
    }
}

void SampleArchive::paintGrey(const fs::path& file, int) {
    static const std::string picture = greyJpeg();
    writeFile(file, picture);
}

} // namespace samplearchive
