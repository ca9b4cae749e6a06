#pragma once

#include "core/PanelSettings.h"

#include <QDialog>

namespace orvane {

/// "Tools > Status Page": where the page lies that tells the station's state to others, and whether
/// the latest picture is copied beside it. The switch takes effect at once. Made anew each time,
/// and gone when it is closed; what it is given outlives it.
class FrmStatusPage : public QDialog {
    Q_OBJECT

  public:
    FrmStatusPage(const Module1& module, PanelSettings& settings, QWidget* parent = nullptr);

  private:
    void chk_latest_Click(bool on);
    void Command1_Click();
    void tell(const QString& text);

    PanelSettings& settings_;
    std::filesystem::path page_;
};

} // namespace orvane
