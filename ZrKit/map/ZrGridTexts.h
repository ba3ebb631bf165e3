#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrGridLines.h"

#include <QRectF>

#include <vector>

class ZrMapObstacles;

/// Which lines of a grid have their text where, so that it covers neither what the map shows nor another one.
///
/// A text is at the edge where its kind of lines has them, beside its line on the side that is free; a line
/// on which neither is goes without. When that leaves a kind, meridians or parallels, without any text, one
/// of it is at another edge, or along its line, or over a line of the map, in this order; never over a mark.
/// Any thread that the obstacles allow.
class ZR_KIT_EXPORT ZrGridTexts
{
public:
    /// A line of the grid, as far as its text goes.
    struct Line
    {
        bool isNorthSouth = false;
        std::vector<ZrGridLines::Place> places; ///< see `ZrGridLines::Places`
    };

    /// \param taken what else the texts leave free, pixels of the view
    /// \param clear pixels between a text and what it keeps clear of; twice as many from one text to the next
    /// beside it, as `ZrLabelLayer` wants it
    static std::vector<ZrMapLabel> Choose(const std::vector<Line>& lines, const std::vector<QRectF>& taken,
        const ZrMapObstacles& obstacles, double clear);
};
