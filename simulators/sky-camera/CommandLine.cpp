#include "simulators/sky-camera/CommandLine.h"

#include <QCommandLineParser>

namespace skycamera {

namespace {

const char* const kIntroduction =
    "Simulates a network camera aimed at the sky: a fresh picture at each request, the recording\n"
    "switch, the recorded pictures, the clock setting, and on demand the ways in which such a\n"
    "camera fails.\n"
    "\n"
    "  /Images/full.jpg                     the current picture\n"
    "  /cgi/live_s_hide2.cgi?rec=1          recording on (0: off)\n"
    "  /cgi/conf_sys_inp.cgi?i_year=2006&i_mon=7&i_day=5&i_hour=9&i_min=3&i_sec=0\n"
    "                                       sets the camera's clock\n"
    "  /cgi/srch.cgi                        lists the recorded pictures of the last hour\n"
    "  /cgi/srch.cgi?from_year=6&from_mon=10&from_day=14&from_hour=9&from_min=30&from_sec=0\n"
    "    &from_frame=0&maxnum=2             lists two from 2006-11-15 09:30:00 on: years count "
    "from\n"
    "                                       2000, months and days from 0\n"
    "  /record/20061115/20061115_093007_00.jpg\n"
    "                                       a recorded picture\n"
    "  /                                    status page\n"
    "  /sim/status                          status as JSON\n"
    "  /sim/fault?name=NAME&arg=ARG&count=N&path=PREFIX\n"
    "                                       puts a fault in force for the next N requests (0 or\n"
    "                                       left out: for all) whose path begins with PREFIX\n"
    "                                       (default /Images/, with a fault of the search page\n"
    "                                       /cgi/srch.cgi); name=none ends it\n"
    "\n"
    "Faults (for --fault and /sim/fault; several, with commas between, take turns):\n";

const char* const kExample =
    "\n"
    "A lone --fault refuse without SECONDS never ends; over /sim/fault it ends after 10 seconds.\n"
    "\n"
    "Example: a winter morning; every third picture breaks off, and later on one comes late\n"
    "  sky-camera --time 2006-11-15T07:10:00 --fault none,none,short\n"
    "  curl \"http://127.0.0.1:8080/sim/fault?name=delay&arg=3000&count=1\"\n";

QList<QCommandLineOption> optionList() {
    return {
        {"address", "Address to listen on; default 127.0.0.1.", "ADDRESS", "127.0.0.1"},
        {"port", "Port to listen on, 0 for a free one; default 8080.", "PORT", "8080"},
        {"size", "Size of the picture; default 1280x960.", "WxH", "1280x960"},
        {"jpeg-quality", "1 to 100; default 85.", "QUALITY", "85"},
        {"seed", "Another number, other clouds; default 1.", "NUMBER", "1"},
        {"latitude", "Site, degrees, north positive; default 35.", "DEGREES", "35"},
        {"longitude", "Site, degrees, east positive; default the middle of the time zone.",
         "DEGREES"},
        {"tz-minutes", "Time zone, minutes east of universal time; default the PC's.", "MINUTES"},
        {"time",
         "Where the camera's clock starts, such as 2006-11-15T09:30:00. With the same seed, the "
         "same "
         "time and number of a picture give the same bytes. Default: the PC's time.",
         "TIME"},
        {"record", "The camera records from the start on."},
        {"record-every", "Seconds between recorded pictures; default 60.", "SECONDS", "60"},
        {"stored", "Pictures that are in the store from the start on; default 0.", "COUNT", "0"},
        {"stored-every", "Seconds between those; default as --record-every.", "SECONDS"},
        {"stored-size", "A stored picture has at least so many bytes; default 0.", "BYTES", "0"},
        {"stored-picture-size", "Width and height of a stored picture; default as --size.", "WxH"},
        {"stored-once",
         "Renders one stored picture and serves it for all, with a comment that differs: costs "
         "next to nothing, for measuring transfers."},
        {"list-all", "The search page ignores maxnum and lists everything."},
        {"fault", "Faults from the start on.", "NAME[:ARG][,...]"},
        {"fault-count", "For how many requests; default 0, all.", "N", "0"},
        {"fault-path",
         "Only requests whose path begins so; default /Images/, with a fault of the "
         "search page /cgi/srch.cgi.",
         "PREFIX"},
        {"quiet", "No line for each request."},
        {{"h", "help"}, "Shows this text."},
    };
}

/// Takes the options' values one by one and remembers the first that is wrong.
class Values {
  public:
    explicit Values(const QCommandLineParser& parser) : parser_(parser) {}

    int integer(const QString& name, int min, int max) {
        bool ok = false;
        const int value = parser_.value(name).toInt(&ok);
        check(ok && value >= min && value <= max, name,
              QString("a whole number from %1 to %2").arg(min).arg(max));
        return value;
    }
    double degrees(const QString& name, double limit) {
        bool ok = false;
        const double value = parser_.value(name).toDouble(&ok);
        check(ok && value >= -limit && value <= limit, name,
              QString("a number from -%1 to %1").arg(limit));
        return value;
    }
    void check(bool good, const QString& name, const QString& expected) {
        if (good || !error_.isEmpty()) return;
        error_ = QString("--%1 %2: %3 expected").arg(name, parser_.value(name), expected);
    }
    const QString& error() const { return error_; }

  private:
    const QCommandLineParser& parser_;
    QString error_;
};

QSize readSize(const QCommandLineParser& parser, Values& values, const QString& name) {
    const QStringList parts = parser.value(name).split('x');
    QSize size;
    if (parts.size() == 2) size = QSize(parts[0].toInt(), parts[1].toInt());
    values.check(size.width() >= 16 && size.height() >= 16 && size.width() <= 8192 &&
                     size.height() <= 8192,
                 name, "WxH, each from 16 to 8192,");
    return size;
}

SkySite readSite(const QCommandLineParser& parser, Values& values) {
    SkySite site;
    site.tzMinutes = parser.isSet("tz-minutes") ? values.integer("tz-minutes", -1440, 1440)
                                                : QDateTime::currentDateTime().offsetFromUtc() / 60;
    site.latitude = values.degrees("latitude", 90.0);
    site.longitude =
        parser.isSet("longitude") ? values.degrees("longitude", 180.0) : site.tzMinutes / 4.0;
    return site;
}

void readTime(const QCommandLineParser& parser, Values& values, SkyCameraOptions& options) {
    if (!parser.isSet("time")) return;
    const QDateTime time = QDateTime::fromString(parser.value("time"), "yyyy-MM-dd'T'HH:mm:ss");
    values.check(time.isValid(), "time", "a time such as 2006-11-15T09:30:00");
    options.startTime = calendarTime(time.date(), time.time());
}

StoreOptions readStore(const QCommandLineParser& parser, Values& values) {
    constexpr int kDay = 86'400;
    StoreOptions store;
    store.recording = parser.isSet("record");
    store.recordEvery = values.integer("record-every", 1, kDay);
    store.stored = values.integer("stored", 0, 100'000);
    if (parser.isSet("stored-every")) store.storedEvery = values.integer("stored-every", 1, kDay);
    store.storedSize = values.integer("stored-size", 0, 100'000'000);
    if (parser.isSet("stored-picture-size"))
        store.storedPictureSize = readSize(parser, values, "stored-picture-size");
    store.storedOnce = parser.isSet("stored-once");
    store.listAll = parser.isSet("list-all");
    return store;
}

void readFault(const QCommandLineParser& parser, Values& values, FaultRule& rule) {
    rule.count = values.integer("fault-count", 0, 1'000'000'000);
    if (!parser.isSet("fault")) return;
    const FaultListResult list = parseFaults(parser.value("fault"));
    values.check(list.error.isEmpty(), "fault", list.error + "; a list of faults");
    rule.faults = list.faults;
    rule.pathPrefix = parser.isSet("fault-path") ? parser.value("fault-path").toUtf8()
                                                 : defaultPathPrefix(list.faults);
}

} // namespace

CommandLine parseCommandLine(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QString(kIntroduction) + faultHelp() + kExample);
    parser.addOptions(optionList());

    CommandLine line;
    if (!parser.parse(arguments)) {
        line.error = parser.errorText();
        return line;
    }
    if (parser.isSet("help")) {
        line.help = parser.helpText();
        return line;
    }
    if (!parser.positionalArguments().isEmpty()) {
        line.error = "unexpected argument \"" + parser.positionalArguments().constFirst() + '"';
        return line;
    }
    Values values(parser);
    SkyCameraOptions& options = line.options;
    values.check(options.address.setAddress(parser.value("address")), "address", "an IP address");
    options.port = static_cast<quint16>(values.integer("port", 0, 65535));
    options.size = readSize(parser, values, "size");
    options.jpegQuality = values.integer("jpeg-quality", 1, 100);
    options.seed = static_cast<quint32>(values.integer("seed", 0, 1'000'000'000));
    options.site = readSite(parser, values);
    readTime(parser, values, options);
    options.store = readStore(parser, values);
    readFault(parser, values, options.fault);
    line.quiet = parser.isSet("quiet");
    line.error = values.error();
    return line;
}

} // namespace skycamera
