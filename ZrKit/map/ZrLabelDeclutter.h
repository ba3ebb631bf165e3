#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrMapLabel.h"

#include <QRectF>
#include <QSizeF>

#include <vector>

class ZrMapView;

/// Which labels are drawn so that none covers another. Any thread.
class ZR_KIT_EXPORT ZrLabelDeclutter
{
public:
    struct Item
    {
        QRectF box; ///< pixels of the view
        int priority = 0;
    };

    /// The upright box, in pixels of the view, that holds a text of \p size pixels; \p pixel is the pixels of
    /// a design pixel.
    static QRectF Box(const ZrMapLabel& label, const QSizeF& size, const ZrMapView& view, double pixel);

    /// True for each item that is drawn: higher priorities first, of equals the first. \p taken is left free
    /// too; `AlwaysShown` is drawn in any case. A box that is empty or not finite is neither drawn nor in
    /// anybody's way. Boxes that touch do not overlap. For items on a screen nearly linear in their number.
    static std::vector<bool> Shown(const std::vector<Item>& items, const std::vector<QRectF>& taken = {});
};
