#include "ui/FocusRing.h"

#include <QMdiSubWindow>
#include <QScrollArea>

#include <algorithm>

namespace orvane {
namespace {

/// A sub-window takes the focus only to hand it on to what is in it.
bool isStop(const QWidget& widget) {
    return widget.isVisible() && widget.isEnabled() && widget.focusProxy() == nullptr &&
           (widget.focusPolicy() & Qt::TabFocus) != 0 &&
           qobject_cast<const QMdiSubWindow*>(&widget) == nullptr;
}

} // namespace

void giveFocus(QWidget& control, Qt::FocusReason reason) {
    control.setFocus(reason);
    for (QWidget* above = control.parentWidget(); above != nullptr; above = above->parentWidget())
        if (auto* scrolled = qobject_cast<QScrollArea*>(above))
            scrolled->ensureWidgetVisible(&control);
}

std::size_t FocusRing::partOf(const QWidget& control) const {
    const auto part = std::ranges::find_if(
        parts_, [&](const QWidget* around) { return around->isAncestorOf(&control); });
    const auto itself = std::ranges::find(parts_, &control);
    const auto found = std::min(part, itself);
    return found == parts_.end() ? 0 : static_cast<std::size_t>(found - parts_.begin()) + 1;
}

std::vector<QWidget*> FocusRing::stops() const {
    std::vector<QWidget*> stops;
    for (QWidget* widget = window_.nextInFocusChain(); widget != &window_;
         widget = widget->nextInFocusChain())
        // A dialog of the window may be in the chain, too.
        if (widget->window() == &window_ && isStop(*widget)) stops.push_back(widget);
    std::ranges::stable_sort(stops, {}, [this](const QWidget* stop) { return partOf(*stop); });
    return stops;
}

bool FocusRing::step(bool next) const {
    const std::vector<QWidget*> stops = this->stops();
    if (stops.empty()) return false;
    const auto present = std::ranges::find(stops, window_.focusWidget());
    // Where nothing has the focus the ring is entered at its begin or its end.
    std::size_t target = next ? 0 : stops.size() - 1;
    if (present != stops.end()) {
        const auto index = static_cast<std::size_t>(present - stops.begin());
        target = (index + (next ? 1 : stops.size() - 1)) % stops.size();
    }
    giveFocus(*stops[target], next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

} // namespace orvane
