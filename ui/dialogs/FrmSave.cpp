#include "ui/dialogs/FrmSave.h"

#include "platform/Conversions.h"
#include "platform/ImageControl.h"
#include "ui/Layout.h"
#include "ui/panel/PanelControls.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>

namespace orvane {

FrmSave::FrmSave(ImageOptions& options, QWidget* parent) : QDialog(parent), options_(options) {
    // The captions' font, and what shows them where it is not installed.
    setFont(japaneseFont(font()));
    QVBoxLayout* left = column({rawGroup(), formatGroup()});
    QVBoxLayout* right = column({{qualityGroup(), 1}, dateGroup()});
    setUp(*this, "FrmSave", "Save Options",
          {row({{left, 1}, {right, 1}}, 12), delayRow(), untilRow(), buttons()});
    Form_Load();
}

QGroupBox* FrmSave::rawGroup() {
    chk_save_ = control<QCheckBox>("chk_save", "保存", "Keeps the untouched picture as well.");
    chk_lr_ = control<QCheckBox>("chk_lr", "左右反転処理", "Mirrors pictures left to right.");
    connect(chk_lr_, &QCheckBox::clicked, this, &FrmSave::chk_lr_Click);
    return dialogGroup("画像生データ", column({chk_save_, chk_lr_, Item()}));
}

QGroupBox* FrmSave::dateGroup() {
    chk_date_ = control<QCheckBox>("chk_date", "日付付加",
                                   "Writes date and time into pictures that are mirrored.");
    return dialogGroup({}, column({chk_date_, Item()}));
}

QGroupBox* FrmSave::formatGroup() {
    opt_type_[0] = control<QRadioButton>("opt_type_0", "Jpeg(EXIF)", "JPEG with an EXIF header.");
    opt_type_[1] =
        control<QRadioButton>("opt_type_1", "Jpeg(4.4.4)", "JPEG with colours in full resolution.");
    return dialogGroup("保存形式", column({opt_type_[0], opt_type_[1], Item()}));
}

QGroupBox* FrmSave::qualityGroup() {
    Option1_ = quality("Option1", "最高品質[低圧縮率:2]", 2);
    Option2_ = quality("Option2", "高品質[中圧縮率:24]", 24);
    Option3_ = quality("Option3", "低品質[高圧縮率:56]", 56);
    return dialogGroup("画質品質", column({Option1_, Option2_, Option3_, Item()}));
}

QRadioButton* FrmSave::quality(const char* name, const QString& caption, std::int16_t factor) {
    auto* option = control<QRadioButton>(
        name, caption, QString("Compression factor %1. Takes effect at once.").arg(factor));
    connect(option, &QRadioButton::clicked, this, [this, factor] { options_.Quality = factor; });
    return option;
}

QLayout* FrmSave::delayRow() {
    auto* label = control<QLabel>("Label1", "画像取込遅延時間[sec] 　　 5sec以上に設定");
    txt_delay_ = control<QLineEdit>("txt_delay", "15",
                                    "Seconds to wait before a picture is fetched; 5 or more.");
    txt_delay_->setAccessibleName(label->text());
    txt_delay_->setAlignment(Qt::AlignRight);
    txt_delay_->setFixedWidth(txt_delay_->fontMetrics().horizontalAdvance("0000000") + 12);
    label->setBuddy(txt_delay_);
    return row({label, txt_delay_, Item()}, 10);
}

QLabel* FrmSave::untilRow() {
    QLabel* until = unitLabel("Mirroring, date and format hold until the program ends; the rest is "
                              "kept.");
    until->setObjectName("lbl_until");
    return until;
}

QLayout* FrmSave::buttons() {
    auto* ok = control<QPushButton>("Command1", "OK", "Takes the options over.");
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &FrmSave::Command1_Click);
    auto* cancel = control<QPushButton>("Command2", "Cancel",
                                        "Leaves the options as they are, except the quality.");
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    return buttonRow({ok, cancel});
}

void FrmSave::Form_Load() {
    chk_lr_->setChecked(isSet(options_.LrFlg));
    chk_date_->setChecked(isSet(options_.DateFlg));
    // At once, even if the dialog is cancelled: only mirrored pictures are stamped.
    if (!chk_lr_->isChecked()) options_.DateFlg = asFlag(false);
    chk_lr_Click(chk_lr_->isChecked());
    chk_save_->setChecked(isSet(options_.RawFlg));
    txt_delay_->setText(QString::number(options_.Delay));
    opt_type_[0]->setChecked(options_.JpegTyp == ImageControl::kFormatExif);
    opt_type_[1]->setChecked(options_.JpegTyp == ImageControl::kFormat444);
    // A factor between those of the buttons shows as one of theirs; it stays until one is pressed.
    QRadioButton* level = options_.Quality < 10   ? Option1_
                          : options_.Quality < 50 ? Option2_
                                                  : Option3_;
    level->setChecked(true);
}

void FrmSave::chk_lr_Click(bool checked) {
    if (!checked) chk_date_->setChecked(false);
    chk_date_->setEnabled(checked);
}

void FrmSave::Command1_Click() {
    // Full-width digits are what a Japanese keyboard may type.
    const QString text = txt_delay_->text().normalized(QString::NormalizationForm_KC);
    const std::optional<std::int16_t> delay = toInt16(text.toStdString());
    if (!delay) {
        // A box of its own and not the station's operator: the dialog stays open behind it.
        auto* box = new QMessageBox(QMessageBox::NoIcon, "Orvane",
                                    "The delay is not a usable number. Please enter whole seconds, "
                                    "5 or more and at most 32767.",
                                    QMessageBox::Ok, this);
        connect(box, &QMessageBox::finished, this, [this] {
            txt_delay_->setFocus();
            txt_delay_->selectAll();
        });
        return openOnce(box);
    }
    options_.DateFlg = asFlag(chk_date_->isChecked());
    options_.LrFlg = asFlag(chk_lr_->isChecked());
    options_.RawFlg = asFlag(chk_save_->isChecked());
    options_.Delay = *delay;
    if (opt_type_[0]->isChecked()) options_.JpegTyp = ImageControl::kFormatExif;
    if (opt_type_[1]->isChecked()) options_.JpegTyp = ImageControl::kFormat444;
    accept();
}

} // namespace orvane
