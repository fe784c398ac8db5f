#pragma once

#include <opencv2/core/mat.hpp>

#include <vector>

namespace kelvara {

/// One pixel of an edge that runs roughly along the field's columns.
struct EdgePoint
{
    float across; ///< Position across the edge, to a fraction of a pixel (continuous).
    float slope; ///< Of the edge here: change across per step along.
    float strength; ///< Of the colour gradient across, in grey levels (all channels together).
    short along; ///< Column.
};

/// The thinned edges of one direction in a colour plane: those that run along the rows of the field, give or take
/// 20°. Internal. A field of near-vertical edges is that of the transposed plane.
struct EdgeField
{
    int length = 0; ///< Columns: the extent along the edges.
    int extent = 0; ///< Rows: the extent across them.
    std::vector<EdgePoint> points;
    cv::Mat_<int> index; ///< For every pixel the place of its edge in `points`, or −1.
};

struct EdgeFields
{
    EdgeField horizontal;
    EdgeField vertical; ///< Transposed: along is y, across is x.
};

/// Finds the edges of both directions in an 8-bit plane of four channels (the last of which is constant). At most a
/// fixed share of the pixels become edges: where there are more, the weaker are left out.
[[nodiscard]] EdgeFields findEdges(const cv::Mat& bgra);

} // namespace kelvara
