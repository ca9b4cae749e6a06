#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <utility>

class QAction;
class QMenu;

namespace orvane {

class ImageWindow;
class PictureArea;
class QtImageViews;

/// "Save As" of the menu "File" and the menu "Picture": what can be done with the picture window
/// that is in front. An entry is enabled only when it applies. The area owns it. The keys belong to
/// the main window, so they work wherever the focus is in it.
class ImageMenu : public QObject {
    Q_OBJECT

  public:
    /// `saveAs` and `image` are filled and followed; the rest outlives this.
    ImageMenu(QAction& saveAs, QMenu& image, PictureArea& area, QtImageViews& views);

  private:
    enum class Needs { Picture, File };

    void addEntries(QMenu& image);
    void follow();
    void update();
    void mnuFileSaveAs_Click();

    PictureArea& area_;
    QtImageViews& views_;
    QPointer<ImageWindow> window_;
    QMetaObject::Connection following_;
    QList<std::pair<QAction*, Needs>> entries_;
    QString saveFolder_; ///< where a picture was saved last
};

} // namespace orvane
