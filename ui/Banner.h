#pragma once

#include "core/Condition.h"
#include "ui/panel/Bindings.h"

#include <QFrame>

class QLabel;
class QPushButton;

namespace orvane {

class GradeSign;

/// A notice in a line or two: what, what to do, and a button that does it. The banner owns it.
class BannerLine : public QFrame {
    Q_OBJECT

  public:
    /// `index` makes the names of its controls.
    explicit BannerLine(std::size_t index, QWidget* parent = nullptr);

    void tell(const Notice& notice);
    /// Stands at the line's right.
    void add(QWidget& control);

  signals:
    void pressed();

  private:
    void label(const Notice& notice);

    GradeSign* sign_;
    QLabel* text_;
    QPushButton* button_;
};

/// The notices of the station's condition, under the menu; hidden while there are none. The gravest
/// stands alone until the operator wants to see the others. It never widens the window. Its lines
/// are made as they are needed and kept. It shows and asks; what a remedy does is the main
/// window's.
class Banner : public QWidget {
    Q_OBJECT

  public:
    /// `condition` outlives the banner.
    explicit Banner(Condition& condition, QWidget* parent = nullptr);

  signals:
    /// The operator wants to do something about a warning.
    void remedyWanted(Remedy remedy);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void follow();
    BannerLine& line(std::size_t index);
    void press(std::size_t index);

    Condition& condition_;
    QPushButton* more_;
    bool showsAll_ = false;
    std::vector<BannerLine*> lines_;
    Bindings bindings_;
};

} // namespace orvane
