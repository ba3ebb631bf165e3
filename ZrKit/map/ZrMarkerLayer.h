#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrMapLayer.h"
#include "ZrKit/map/ZrMapMarker.h"
#include "ZrKit/map/ZrMapProgram.h"

#include <QColor>

#include <vector>

class QPointF;

/// Markers on a map, all of them in one draw call (one for each 16,384).
///
/// \code
/// ZrMapMarker target;
/// target.position = place;
/// target.image = 3; // ":/marker_circle.png"
/// layer.SetMarkers({target});
/// layer.Paint(surface, view);
/// const int touched = ZrMarkerLayer::Nearest(layer.Markers(), view, finger, radius);
/// \endcode
///
/// Where there is no memory for texture or buffers nothing is drawn, and the debug log has a line, one for
/// each context. Buffers are tried again by the next `Paint`, the texture in another context.
///
/// Later markers cover earlier ones. Only what was changed is uploaded, 176 bytes for each marker. Images
/// stand as `ZrglRenderMarker` draws them: row 0 of a file at the lower edge.
class ZR_KIT_EXPORT ZrMarkerLayer : public ZrMapLayer
{
public:
    QColor m_halo; ///< around each shape, to set it off from what is below; none while not valid, as at first
    float m_haloWidth = 1.5F; ///< design pixels; at most 16 of 96 of the image's side

    ZrMarkerLayer();

    const std::vector<ZrMapMarker>& Markers() const { return m_markers; }

    void SetMarkers(std::vector<ZrMapMarker> markers);

    /// Changes one; nothing for an index that is not there.
    void SetMarker(int index, const ZrMapMarker& marker);

    /// Index of the marker whose position is nearest to \p pixel of \p view and within \p radius pixels; of
    /// equally near ones the last. -1 for none.
    static int Nearest(
        const std::vector<ZrMapMarker>& markers, const ZrMapView& view, const QPointF& pixel, double radius);

protected:
    void OnPaint(ZrGlSurface& surface, const ZrMapView& view) override;
    void OnRelease(ZrGlSurface& surface) override;
    void OnForget() override;

private:
    bool MakeTexture(ZrGlSurface& surface);
    bool MakeIndices(ZrGlSurface& surface);
    bool UploadMarkers(ZrGlSurface& surface);
    void LogFailure(const char* what, unsigned error);
    void DrawMarkers(ZrGlSurface& surface);

    ZrMapProgram m_program;
    std::vector<ZrMapMarker> m_markers;
    int m_changedFirst = 0; ///< markers that are not in the buffer
    int m_changedEnd = 0;
    unsigned m_texture = 0;
    unsigned m_vertices = 0;
    unsigned m_indices = 0;
    int m_capacity = 0; ///< of the buffer, markers
    bool m_hasTexture = false; ///< and indices; false while there is no memory for them
    bool m_isFailureLogged = false;
};
