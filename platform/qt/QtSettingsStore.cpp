#include "platform/qt/QtSettingsStore.h"

#include <QStringList>

namespace orvane {

namespace {

QString pathOf(const std::string& section, const std::string& key) {
    return QString::fromStdString(section) + '/' + QString::fromStdString(key);
}

} // namespace

#ifdef Q_OS_WIN
QtSettingsStore::QtSettingsStore()
    : settings_(QStringLiteral("HKEY_CURRENT_USER\\Software\\Orvane"), QSettings::NativeFormat) {}
#else
QtSettingsStore::QtSettingsStore()
    : settings_(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Orvane"),
                QStringLiteral("Orvane")) {}
#endif

QtSettingsStore::QtSettingsStore(const QString& file) : settings_(file, QSettings::IniFormat) {}

std::string QtSettingsStore::GetSetting(const std::string& section, const std::string& key,
                                        const std::string& fallback) const {
    const QVariant value = settings_.value(pathOf(section, key));
    if (!value.isValid()) return fallback;
    // a text with commas, written by hand without quotes, is read as a list
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QLatin1String(", ")).toStdString();
    return value.toString().toStdString();
}

bool QtSettingsStore::SaveSetting(const std::string& section, const std::string& key,
                                  const std::string& value) {
    const QString path = pathOf(section, key);
    const QString text = QString::fromStdString(value);
    // an unchanged value costs no write: saving all settings is frequent
    if (settings_.contains(path) && settings_.value(path) == text &&
        settings_.status() == QSettings::NoError)
        return true;
    settings_.setValue(path, text);
    settings_.sync();
    return settings_.status() == QSettings::NoError;
}

} // namespace orvane
