#pragma once

#include <QScrollArea>

namespace orvane {

/// Holds the panel at its own width. Where the window is too low for it, a vertical scroll bar
/// stands beside the panel instead of over it. It belongs to the main window, and the panel to it.
/// The width follows the panel's needs: fonts, captions and the rows that come and go change them.
class PanelScroll : public QScrollArea {
  public:
    explicit PanelScroll(QWidget& panel, QWidget* parent = nullptr);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void fitWidth();
};

} // namespace orvane
