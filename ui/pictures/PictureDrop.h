#pragma once

#include <QObject>

class QAction;
class QDropEvent;
class QWidget;

namespace orvane {

class QtImageViews;

/// Opens files that are dropped onto a window or anything in it, as the entry "Open" does, and only
/// while that is available. The window owns it. A filter, since all that it needs of the window are
/// three events; what no child accepts arrives there.
class PictureDrop : public QObject {
  public:
    PictureDrop(QWidget& window, const QAction& open, QtImageViews& views);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool answer(QDropEvent& event) const;

    const QAction& open_;
    QtImageViews& views_;
};

} // namespace orvane
