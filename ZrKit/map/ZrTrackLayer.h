#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrMapLayer.h"
#include "ZrKit/map/ZrMapProgram.h"
#include "ZrKit/map/ZrTrackLod.h"
#include "ZrKit/map/ZrTrackPicture.h"

#include <QColor>

class QPointF;

/// The track of a vehicle on a map: a line of any length that may grow while it is shown.
///
/// \code
/// layer.m_track.Append(position.x(), position.y()); // live
/// layer.m_cursor = player.Index(); // in review: what lies behind it has another colour
/// layer.Paint(surface, view);
/// \endcode
///
/// There are at most `m_vertexLimit` vertices and 5 draw calls in a frame: one for the casing, one for the
/// line, and with a cursor one for its other part and two for the pieces on both sides of it. Where the
/// driver has no lines as wide as wanted each of them is drawn several times side by side, and its vertices
/// count as often: 3 pixels of lines of one pixel 5 times. A new position costs 32 bytes of upload; a frame
/// of the same view and track none. Seen from another place the vertices are chosen again when the view
/// leaves those there are.
///
/// Where there is no memory for vertices nothing is drawn, `Paint` tries again, and the debug log has a line,
/// one for each context.
///
/// A colour that is not opaque is blended, and denser where the track crosses itself.
class ZR_KIT_EXPORT ZrTrackLayer : public ZrMapLayer
{
public:
    ZrTrackLod m_track;
    QColor m_colour; ///< up to the cursor; while it is not valid, as at first, the theme's `track`
    QColor m_futureColour; ///< behind the cursor, where the line is thinner too; not valid: a darker one
    QColor m_casing; ///< under the line, a design pixel wider on both sides; not valid, as at first: none
    float m_width = 3.0F; ///< design pixels
    i64 m_cursor = -1; ///< index of a position; below 0 for none
    int m_vertexLimit = 50000; ///< of a frame; at least 100 are used

    ZrTrackLayer();

    /// What is drawn in the view painted last.
    const ZrTrackPicture& Picture() const { return m_picture; }

protected:
    void OnPaint(ZrGlSurface& surface, const ZrMapView& view) override;
    void OnRelease(ZrGlSurface& surface) override;
    void OnForget() override;

private:
    /// A buffer object and what is in it.
    struct Buffer
    {
        unsigned id = 0;
        int capacity = 0; ///< vertices
        int count = 0; ///< vertices
        int buildCount = -1; ///< of the picture
    };

    float Width() const;
    void UpdatePictures(const ZrMapView& view);
    bool Upload(ZrGlSurface& surface, const ZrTrackPicture& picture, Buffer& buffer);
    bool Allocate(ZrGlSurface& surface, Buffer& buffer, int vertices, const float* data);
    bool UploadJoint(ZrGlSurface& surface, int line);
    void DrawAll(ZrGlSurface& surface, const ZrMapView& view);
    void DrawAtCursor(ZrGlSurface& surface, const QColor& past, const QColor& future, float width);
    void Draw(
        ZrGlSurface& surface, const Buffer& buffer, int first, int count, const QColor& colour, float width);

    bool HasCursor() const { return m_cursor >= 0; }

    ZrMapProgram m_program;
    ZrTrackPicture m_picture; ///< of the whole track
    ZrTrackPicture m_pastPicture; ///< up to the cursor, where the other one is a cover
    Buffer m_buffer;
    Buffer m_pastBuffer;
    Buffer m_jointBuffer; ///< the pieces before and behind the cursor of the line that it lies on
    int m_jointLine = -1;
    i64 m_jointCursor = -1;
    bool m_isFailureLogged = false;
    float m_pixel = 1.0F; ///< pixels of a design pixel in the frame painted last
    float m_widest = 0.0F; ///< line of the driver, pixels; 0 until asked
    int m_height = 0; ///< of the view, pixels
    int m_widthPixels = 0; ///< of the view
};
