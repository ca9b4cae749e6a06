#include "platform/qt/QtSettingsStore.h"

#include "platform/Paths.h"

#include <QFile>
#include <QStringList>

#include <filesystem>

namespace orvane {

namespace {

constexpr const char* kPathSection = "DataPath";
constexpr const char* kPathKey = "PathDataFile";

QString pathOf(const std::string& section, const std::string& key) {
    return QString::fromStdString(section) + '/' + QString::fromStdString(key);
}

/// A file that is not there is a store without settings; one that is there must be readable.
Fault readFault(const QString& file) {
    std::error_code error;
    const auto status = std::filesystem::status(pathFromUtf8(file.toStdString()), error);
    if (status.type() == std::filesystem::file_type::not_found) return std::nullopt;
    QFile opened(file);
    if (opened.open(QIODevice::ReadOnly)) return std::nullopt;
    return file.toStdString() + ": " + opened.errorString().toStdString();
}

/// The data folder as it stands in a settings file, when it was written by hand without quotes and
/// would be read as a list (",") or as far as a comment (";"). Invalid: there is no such text.
QString handWrittenPath(const QString& fileName) {
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return {};
    bool inSection = false;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (line.startsWith('[')) inSection = line == '[' + QByteArray(kPathSection) + ']';
        const qsizetype equals = line.indexOf('=');
        if (!inSection || line.left(equals).trimmed() != kPathKey) continue;
        const QByteArray value = line.mid(equals + 1).trimmed();
        const bool misread = value.contains(',') || value.contains(';');
        return misread && !value.startsWith('"') ? QString::fromUtf8(value) : QString();
    }
    return {};
}

/// A settings file may hold a password.
void keepFromOthers(const QSettings& settings) {
    if (settings.format() != QSettings::IniFormat) return;
    constexpr auto kOthers = std::filesystem::perms::group_all | std::filesystem::perms::others_all;
    std::error_code ignored; // there may be no file yet
    std::filesystem::permissions(pathFromUtf8(settings.fileName().toStdString()), kOthers,
                                 std::filesystem::perm_options::remove, ignored);
}

} // namespace

#ifdef Q_OS_WIN
QtSettingsStore::QtSettingsStore()
    : QtSettingsStore([] {
          return std::make_unique<QSettings>(QStringLiteral("HKEY_CURRENT_USER\\Software\\Orvane"),
                                             QSettings::NativeFormat);
      }) {}
#else
QtSettingsStore::QtSettingsStore()
    : QtSettingsStore([] {
          return std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                             QStringLiteral("Orvane"), QStringLiteral("Orvane"));
      }) {}
#endif

QtSettingsStore::QtSettingsStore(const QString& file)
    : QtSettingsStore([file] { return std::make_unique<QSettings>(file, QSettings::IniFormat); }) {}

QtSettingsStore::QtSettingsStore(Maker maker) : maker_(std::move(maker)), settings_(maker_()) {
    if (settings_->format() == QSettings::IniFormat) unreadable_ = readFault(settings_->fileName());
    open();
}

void QtSettingsStore::open() {
    settings_.reset();
    settings_ = maker_();
    if (unreadable_ || settings_->format() != QSettings::IniFormat) return;
    keepFromOthers(*settings_);
    const QString path = handWrittenPath(settings_->fileName());
    if (!path.isEmpty()) settings_->setValue(pathOf(kPathSection, kPathKey), path);
}

std::string QtSettingsStore::GetSetting(const std::string& section, const std::string& key,
                                        const std::string& fallback) const {
    if (unreadable_) return fallback;
    const QVariant value = settings_->value(pathOf(section, key));
    if (!value.isValid()) return fallback;
    // a text with commas, written by hand without quotes, is read as a list
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QLatin1String(", ")).toStdString();
    return value.toString().toStdString();
}

bool QtSettingsStore::SaveSetting(const std::string& section, const std::string& key,
                                  const std::string& value) {
    if (unreadable_) return false;
    const QString path = pathOf(section, key);
    const QString text = QString::fromStdString(value);
    // an unchanged value costs no write: saving all settings is frequent
    if (!unsaved_ && settings_->contains(path) && settings_->value(path) == text) return true;
    // its status tells of the first failure for ever
    if (settings_->status() != QSettings::NoError) open();
    settings_->setValue(path, text);
    settings_->sync();
    keepFromOthers(*settings_);
    unsaved_ = settings_->status() != QSettings::NoError;
    return !unsaved_;
}

} // namespace orvane
