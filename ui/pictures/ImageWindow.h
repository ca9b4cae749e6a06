#pragma once

// First: moc 6.4 cannot parse <coroutine> unless a Qt header came before.
#include <QHBoxLayout>
#include <QPointer>

#include "station/TaskGroup.h"
#include "ui/pictures/PictureLoader.h"
#include "ui/pictures/PictureView.h"

namespace orvane {

class ElidedLabel;
class ImageWindow;

/// What all picture windows share. Outlives them.
struct ImageServices {
    PictureLoader& loader;
    Faults& faults;
    QPointer<ImageWindow> fullHolder; ///< the one window that may hold a whole picture
};

/// What a window with this picture is called: the time of a recorded one, else the file's name.
QString titleOf(const std::filesystem::path& file);

/// One picture with a status line below: its size, zoom, the file's size and date.
///
/// It keeps the picture at no more than the screen's size and where it came from. Of all windows
/// only the one that was zoomed in last keeps the whole picture besides; it is decoded again for
/// whatever else needs it: copying, saving, trimming. A picture that cannot be read is replaced by
/// a text that says why.
class ImageWindow : public QWidget {
    Q_OBJECT

  public:
    explicit ImageWindow(ImageServices& services, QWidget* parent = nullptr);

    /// Loads and shows a picture; until it is there, what was shown before stays.
    void showPicture(PictureSource source, const QString& title);
    /// Shows `text` where the picture would be.
    void showText(const QString& text);

    const PictureSource& source() const { return source_; }
    PictureView& view() { return *view_; }
    const PictureView& view() const { return *view_; }
    bool hasPicture() const { return view_->hasPicture(); }
    /// Whether it shows a whole file of a folder, from which `step` can go on.
    virtual bool canStep() const;
    /// Shows the next or previous picture of the file's folder.
    void step(bool forward);
    /// Puts the picture, or the rectangle's part, on the clipboard.
    void copy();
    /// Applies the rectangle, or marks one when there is none.
    void trim();

    QSize sizeHint() const override { return {480, 360}; }
    QSize minimumSizeHint() const override { return {120, 90}; }

  signals:
    void changed(); ///< what can be done with the picture
    void trimmed(const PictureSource& source, const QString& title);

  protected:
    /// For labels of a derived window, at the status line's right end.
    QHBoxLayout* statusLine() { return status_; }
    /// Keeps the JPEG's bytes: the file may change or go.
    void keepJpeg() { keepsJpeg_ = true; }

  private:
    enum class Purpose { Show, Full, Copy };

    Task<> load(Purpose purpose, PictureSource source, QRect part);
    void take(const LoadedPicture& loaded);
    void loadFull();
    PictureSource partOf(QRect rectangle) const;
    void describeFile();
    void updateStatus();
    QSize screenPixels() const;

    ImageServices& services_;
    PictureView* view_;
    ElidedLabel* details_;
    QHBoxLayout* status_;
    PictureSource source_;
    QString title_;
    QString fileDetails_;
    QString notice_; ///< shown instead of the details until something changes
    bool keepsJpeg_ = false;
    bool fullLoading_ = false;
    bool fullFailed_ = false;
    // Last: their tasks use everything above. The next picture ends the loading of the one before,
    // but not the copying.
    TaskGroup copying_;
    TaskGroup tasks_;
};

} // namespace orvane
