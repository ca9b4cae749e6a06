#include "ui/dialogs/FilmDialog.h"

#include "archive/FilmFile.h"
#include "station/Module1.h"
#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/PanelControls.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QPushButton>
#include <QSpinBox>

namespace orvane {
namespace {

/// How the film is to be; a child of the dialog.
class FilmControls : public QWidget {
  public:
    FilmControls() {
        for (const int rows : {1080, 720, 480})
            size_->addItem(QString("%1 rows").arg(rows), rows);
        rate_->setObjectName("spnRate");
        rate_->setToolTip("How many pictures are shown in a second, 1 to 60.");
        rate_->setRange(1, 60);
        rate_->setValue(FilmOptions{}.rate);
        // Enter starts the film, whichever control has the focus.
        choose_->setAutoDefault(false);
        fill(*this, column({row({captionOf(size_, "Si&ze"), size_,
                                 captionOf(rate_, "Pictures a secon&d"), rate_, Item()},
                                8),
                            row({stamp_, Item(), choose_})}));
    }
    FilmOptions chosen() const {
        return {.rows = size_->currentData().toInt(),
                .rate = rate_->value(),
                .stamp = stamp_->isChecked()};
    }
    QPushButton& choose() { return *choose_; }
    void interpretText() { rate_->interpretText(); }

  private:
    QComboBox* size_ = sizes();
    QSpinBox* rate_ = new QSpinBox;
    QCheckBox* stamp_ = control<QCheckBox>("chkStamp", "Date and ti&me in each picture",
                                           "Writes when it was taken into each picture.");
    QPushButton* choose_ = control<QPushButton>("cmdFfmpeg", "C&hoose ffmpeg...",
                                                "Tells where the program ffmpeg is.");

    static QComboBox* sizes() {
        auto* box = new QComboBox;
        box->setObjectName("cboSize");
        box->setToolTip("How large the film is; it has the first picture's proportions.");
        box->addItem("As the pictures", 0);
        return box;
    }
};

/// Told each time the dialog comes to the front: ffmpeg may have been installed meanwhile.
QString purposeOf(const FilmFile& film, const Module1& module) {
    const std::filesystem::path program = film.program();
    if (program.empty())
        return QString("A film is made by the program ffmpeg, which is not there. %1.")
            .arg(FilmFile::kHowToInstall);
    return QString("Saves the pictures of these days as a film (H.264 in MP4), %1, one for each "
                   "minute. The pictures themselves stay as they are, and captures go first. "
                   "It is made by %2.")
        .arg(isSet(module.image.LrFlg) ? "mirrored" : "not mirrored", toQString(program));
}

void askForProgram(FilmFile& film, SpanDialog& form) {
    const QString folder = toQString(film.program().parent_path());
    auto* dialog = new QFileDialog(&form, "Choose ffmpeg", folder);
    dialog->setFileMode(QFileDialog::ExistingFile);
    QObject::connect(dialog, &QFileDialog::fileSelected, &form, [&](const QString& file) {
        film.choose(toPath(file));
        // It names the program, or how to get one.
        form.tellPurpose();
    });
    openOnce(dialog);
}

} // namespace

SpanDialog* filmDialog(FilmFile& film, const Module1& module, const Clock& clock, QWidget* parent) {
    auto* controls = new FilmControls;
    const auto purpose = [&] { return purposeOf(film, module); };
    const auto start = [&, controls](DaySpan span, SpanDialog& form) {
        // A key may start the film while a number is being typed.
        controls->interpretText();
        FilmOptions options = controls->chosen();
        // As the save options are at the start, not when the dialog was opened: the purpose says
        // which.
        options.mirror = isSet(module.image.LrFlg);
        QString days = toQString(dateDigits(WallTime(span.first)));
        if (span.last != span.first) days += "-" + toQString(dateDigits(WallTime(span.last)));
        askForFile(form,
                   {"Save Film", QStandardPaths::MoviesLocation, "Films (*.mp4)", "mp4",
                    "orvane-" + days + ".mp4"},
                   [&film, span, options](const auto& file) { film.start(span, options, file); });
    };
    auto* form =
        new SpanDialog({"frmFilmFile", "Save Film", film, purpose, start, clock, controls}, parent);
    QObject::connect(&controls->choose(), &QPushButton::clicked, form,
                     [&film, form] { askForProgram(film, *form); });
    return form;
}

} // namespace orvane
