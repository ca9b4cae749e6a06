#include "core/MailSettings.h"

#include "core/MailMessage.h"
#include "platform/Conversions.h"
#include "platform/Paths.h"
#include "platform/SystemCalls.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace orvane {

namespace {

constexpr const char* kSection = "Station";
constexpr std::size_t kMostRecipients = 10;
constexpr std::array<std::string_view, 3> kSecurities{"none", "starttls", "tls"};

/// One setting: how it is stored and taken back. False: what is stored, or to be stored, cannot be.
struct Item {
    const char* key;
    bool (*save)(const MailSettings& settings, std::string& text);
    bool (*load)(const std::string& text, MailSettings& settings);
};

template <auto Member>
Item serverText(const char* key) {
    return {key,
            [](const MailSettings& settings, std::string& text) {
                text = settings.server.*Member;
                return true;
            },
            [](const std::string& text, MailSettings& settings) {
                settings.server.*Member = text;
                return true;
            }};
}

template <auto Member>
Item text(const char* key) {
    return {key,
            [](const MailSettings& settings, std::string& stored) {
                stored = settings.*Member;
                return true;
            },
            [](const std::string& stored, MailSettings& settings) {
                settings.*Member = stored;
                return true;
            }};
}

template <auto Member>
Item flag(const char* key) {
    return {key,
            [](const MailSettings& settings, std::string& stored) {
                stored = settings.*Member ? "1" : "0";
                return true;
            },
            [](const std::string& stored, MailSettings& settings) {
                settings.*Member = stored == "1";
                return true;
            }};
}

bool savePort(const MailSettings& settings, std::string& text) {
    text = std::to_string(settings.server.port);
    return true;
}
bool loadPort(const std::string& text, MailSettings& settings) {
    const double port = toDouble(text).value_or(0);
    if (port >= 1 && port <= 65535) settings.server.port = static_cast<int>(port);
    return true;
}

bool saveSecurity(const MailSettings& settings, std::string& text) {
    text = kSecurities.at(static_cast<std::size_t>(settings.server.security));
    return true;
}
bool loadSecurity(const std::string& text, MailSettings& settings) {
    const auto found = std::ranges::find(kSecurities, text);
    if (found != kSecurities.end())
        settings.server.security = static_cast<MailSecurity>(found - kSecurities.begin());
    return true;
}

bool saveCaFile(const MailSettings& settings, std::string& text) {
    text = utf8FromPath(settings.server.caFile);
    return true;
}
bool loadCaFile(const std::string& text, MailSettings& settings) {
    settings.server.caFile = pathFromUtf8(text);
    return true;
}

bool savePassword(const MailSettings& settings, std::string& text) {
    const auto stored = protectSecret(settings.server.password);
    text = stored.value_or("");
    return stored.has_value();
}
bool loadPassword(const std::string& text, MailSettings& settings) {
    const auto secret = unprotectSecret(text);
    settings.server.password = secret.value_or("");
    return secret.has_value();
}

/// In the order of storing. The password is the last: by then the file is there, and nobody else
/// may read it.
const std::array kItems{serverText<&MailServer::host>("MailServer"),
                        Item{"MailPort", savePort, loadPort},
                        Item{"MailSecurity", saveSecurity, loadSecurity},
                        serverText<&MailServer::user>("MailUser"),
                        Item{"MailCaFile", saveCaFile, loadCaFile},
                        text<&MailSettings::from>("MailFrom"),
                        text<&MailSettings::to>("MailTo"),
                        flag<&MailSettings::warnings>("MailWarnings"),
                        flag<&MailSettings::daily>("MailDaily"),
                        Item{"MailPassword", savePassword, loadPassword}};

/// Whether it could stand in an address: a name, or the digits of one.
bool isHost(const std::string& host) {
    return !host.empty() && std::ranges::all_of(host, [](unsigned char c) {
        return c > 0x20 && c < 0x7F &&
               std::string_view("/@?#\\\"<>%").find(static_cast<char>(c)) == std::string_view::npos;
    });
}

bool isThere(const std::filesystem::path& file) {
    std::error_code error;
    return std::filesystem::is_regular_file(file, error);
}

std::optional<MailMistake> mistakeInAddresses(const MailSettings& settings) {
    if (!parseMailAddress(settings.from))
        return MailMistake{MailField::From, "The sender is not a mail address. Please write it as "
                                            "name@host or as Station <name@host>."};
    const auto recipients = parseMailAddresses(settings.to);
    if (!recipients || recipients->empty())
        return MailMistake{MailField::To, "Please enter the recipients' mail addresses, with "
                                          "commas between them."};
    if (recipients->size() > kMostRecipients)
        return MailMistake{MailField::To, "No more than ten recipients can be told. Please leave "
                                          "some out."};
    return std::nullopt;
}

} // namespace

int usualPort(MailSecurity security) {
    switch (security) {
    case MailSecurity::None:
        return 25;
    case MailSecurity::StartTls:
        return 587;
    case MailSecurity::Tls:
        break;
    }
    return 465;
}

std::optional<MailMistake> mistakeIn(const MailSettings& settings) {
    const MailServer& server = settings.server;
    if (!isHost(server.host))
        return MailMistake{MailField::Host, "Please enter the name of the mail server, such as "
                                            "mail.example.org."};
    if (!server.user.empty() && server.password.empty())
        return MailMistake{MailField::Password, "Please enter the user's password."};
    if (!server.caFile.empty() && !isThere(server.caFile))
        return MailMistake{MailField::CaFile,
                           "There is no such file of certificates. Please choose "
                           "another one, or none."};
    return mistakeInAddresses(settings);
}

LoadedMailSettings loadMailSettings(const SettingsStore& store) {
    LoadedMailSettings loaded;
    for (const Item& item : kItems) {
        std::string standing;
        item.save(loaded.settings, standing);
        if (!item.load(store.GetSetting(kSection, item.key, standing), loaded.settings))
            loaded.fault = "The password of the mail server cannot be read back. Please enter it "
                           "again in Tools > Alerts.";
    }
    return loaded;
}

Fault saveMailSettings(SettingsStore& store, const MailSettings& settings) {
    for (const Item& item : kItems) {
        std::string stored;
        if (!item.save(settings, stored)) return "The system does not keep the password.";
        if (!store.SaveSetting(kSection, item.key, stored))
            return "The settings cannot be stored: see whether their disk is full.";
    }
    return std::nullopt;
}

} // namespace orvane
