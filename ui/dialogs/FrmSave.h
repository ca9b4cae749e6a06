#pragma once

#include "imaging/ImageOptions.h"

#include <QDialog>

class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QRadioButton;

namespace orvane {

/// The options of saved pictures. They change when OK is pressed, but for two: the quality follows
/// its buttons at once, and without mirroring the date stamp is off as soon as the dialog opens.
/// Made anew each time, and gone when it is closed.
class FrmSave : public QDialog {
  public:
    /// `options` outlives the dialog.
    explicit FrmSave(ImageOptions& options, QWidget* parent = nullptr);

  private:
    QGroupBox* rawGroup();
    QGroupBox* dateGroup();
    QGroupBox* formatGroup();
    QGroupBox* qualityGroup();
    QLayout* delayRow();
    static QLabel* untilRow();
    QLayout* buttons();
    QRadioButton* quality(const char* name, const QString& caption, std::int16_t factor);

    void Form_Load();
    void chk_lr_Click(bool checked);
    void Command1_Click();

    ImageOptions& options_;
    QCheckBox* chk_save_ = nullptr;
    QCheckBox* chk_lr_ = nullptr;
    QCheckBox* chk_date_ = nullptr;
    QRadioButton* opt_type_[2] = {};
    QRadioButton* Option1_ = nullptr;
    QRadioButton* Option2_ = nullptr;
    QRadioButton* Option3_ = nullptr;
    QLineEdit* txt_delay_ = nullptr;
};

} // namespace orvane
