#pragma once

#include <QRect>
#include <QSize>

#include <vector>

namespace orvane {

/// A window that is to be laid beside others. All sizes are logical pixels but the picture's, of
/// which only the proportions matter.
struct Tile {
    QSize picture; ///< whose shape counts
    QSize around;  ///< what the window needs besides the picture
    QSize least;   ///< the window's own smallest size
};

/// How much of a cell the picture of `tile` covers, fitted, in pixels.
double coveredBy(const Tile& tile, QSize cell);

/// Places for `windows` in rows, or in columns, that fill `area` without gaps, in their order, so
/// that the pictures get as much room as possible together. Where `area` is too small for so many
/// windows the places go on below it.
std::vector<QRect> tilesIn(QSize area, const std::vector<Tile>& windows);

} // namespace orvane
