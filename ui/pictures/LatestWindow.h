#pragma once

#include "archive/DayWatch.h"
#include "station/RepeatingTimer.h"
#include "ui/pictures/ImageWindow.h"

#include <optional>

class QLabel;

namespace orvane {

/// "12 s ago", "3 min ago", "2 h 05 min ago", "4 days ago"; a negative age counts as none.
std::string ageText(std::chrono::milliseconds age);

/// The window that follows the captures. At its lower right it tells the age of its picture, and
/// whether the next ones are overdue. Four states: no picture, a recorded one, a live one, a live
/// one with the reason why no newer one comes. Closed by the operator it is gone; `QtImageViews`
/// makes another when one is wanted.
class LatestWindow : public ImageWindow {
    Q_OBJECT

  public:
    LatestWindow(ImageServices& services, Clock& clock, const DayWatch& days);

    /// A recorded file's age counts from the minute in its name, another's from now.
    void showFile(const std::filesystem::path& file);
    /// Shows a JPEG that was not filed.
    void showLive(const std::string& jpeg);
    /// While such a JPEG is shown, `text` stands in its age's place: why no newer one comes.
    void tellLive(const std::string& text);
    void showNone();

    bool canStep() const override { return false; }

  private:
    void take(std::optional<WallTime> taken, bool live);
    void updateAge();

    Clock& clock_;
    const DayWatch& days_;
    QLabel* age_;
    std::optional<WallTime> taken_; ///< nothing: there is no picture
    bool live_ = false;
    QString liveText_;
    RepeatingTimer ageTimer_;
};

} // namespace orvane
