#pragma once

#include "platform/Mail.h"
#include "platform/SettingsStore.h"

#include <optional>
#include <string>

namespace orvane {

/// What the operator chose for the station's mails. Without `warnings` and `daily`, as at first, it
/// sends none.
struct MailSettings {
    MailServer server;
    std::string from; ///< "Station South <sky@example.org>"
    std::string to;   ///< one or more such, with commas between them
    bool warnings = false;
    bool daily = false;

    bool wanted() const { return warnings || daily; }
    bool operator==(const MailSettings&) const = default;
};

/// The port that servers offer a kind of connection at: 25, 587 or 465.
int usualPort(MailSecurity security);

/// A field of the settings that cannot be used.
enum class MailField { Host, Password, CaFile, From, To };
struct MailMistake {
    MailField field;
    std::string text; ///< for the operator
};
/// The first mistake, or nothing: mails can be tried.
std::optional<MailMistake> mistakeIn(const MailSettings& settings);

struct LoadedMailSettings {
    MailSettings settings;
    Fault fault; ///< the password cannot be read back: it was stored by another user or PC
};
LoadedMailSettings loadMailSettings(const SettingsStore& store);
/// Why they could not be stored, for the operator, or nothing.
Fault saveMailSettings(SettingsStore& store, const MailSettings& settings);

} // namespace orvane
