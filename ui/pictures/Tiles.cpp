#include "ui/pictures/Tiles.h"

#include <algorithm>

namespace orvane {
namespace {

/// `count` windows in `rows` rows of one height, the longer ones first.
std::vector<QRect> inRows(QSize area, int count, int rows) {
    std::vector<QRect> places;
    for (int row = 0; row < rows; ++row) {
        const int inRow = count / rows + (row < count % rows ? 1 : 0);
        // Each edge from the whole, so that roundings leave no gaps.
        const int top = area.height() * row / rows;
        const int bottom = area.height() * (row + 1) / rows;
        for (int column = 0; column < inRow; ++column) {
            const int left = area.width() * column / inRow;
            const int right = area.width() * (column + 1) / inRow;
            places.emplace_back(QPoint(left, top), QSize(right - left, bottom - top));
        }
    }
    return places;
}

std::vector<QRect> inColumns(QSize area, int count, int columns) {
    std::vector<QRect> places = inRows(area.transposed(), count, columns);
    for (QRect& place : places)
        place = QRect(QPoint(place.y(), place.x()), place.size().transposed());
    return places;
}

QSize leastOf(const std::vector<Tile>& windows) {
    QSize least(1, 1);
    for (const Tile& tile : windows)
        least = least.expandedTo(tile.least);
    return least;
}

/// Nothing covered where a window is larger than its place.
double covered(const std::vector<Tile>& windows, const std::vector<QRect>& places, QSize least) {
    double sum = 0;
    for (std::size_t i = 0; i < windows.size(); ++i) {
        const QSize cell = places[i].size();
        if (cell.width() < least.width() || cell.height() < least.height()) return 0;
        sum += coveredBy(windows[i], cell);
    }
    return sum;
}

} // namespace

double coveredBy(const Tile& tile, QSize cell) {
    const QSizeF room = (cell - tile.around).expandedTo(QSize(0, 0));
    if (tile.picture.isEmpty()) return 0;
    const QSizeF fitted = QSizeF(tile.picture).scaled(room, Qt::KeepAspectRatio);
    return fitted.width() * fitted.height();
}

std::vector<QRect> tilesIn(QSize area, const std::vector<Tile>& windows) {
    const int count = static_cast<int>(windows.size());
    const QSize least = leastOf(windows);
    std::vector<QRect> best;
    double most = 0;
    for (int lines = 1; lines <= count; ++lines)
        for (const auto grid : {inRows, inColumns}) {
            std::vector<QRect> places = grid(area, count, lines);
            const double sum = covered(windows, places, least);
            if (sum <= most) continue;
            most = sum;
            best = std::move(places);
        }
    // No grid gives each window its least size: rows of that size go on below, and the area
    // scrolls.
    if (!best.empty() || count == 0) return best;
    const int columns = std::clamp(area.width() / least.width(), 1, count);
    const int rows = (count + columns - 1) / columns;
    return inRows({std::max(area.width(), least.width()), least.height() * rows}, count, rows);
}

} // namespace orvane
