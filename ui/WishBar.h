#pragma once

#include "core/Wishes.h"
#include "ui/panel/Bindings.h"

#include <QFrame>

class QLabel;

namespace orvane {

/// Tells that the station will stop or close in a moment, with a button that drops the wish. It
/// lies over the top of its parent, which stays as it is: most wishes come true at once, and a bar
/// in the layout would move everything for a moment. Its parent owns it. It does not take the
/// focus.
class WishBar : public QFrame {
  public:
    WishBar(Wishes& wishes, QWidget* parent);

  private:
    void follow(const std::string& text);

    QLabel* text_;
    Bindings bindings_;
};

} // namespace orvane
