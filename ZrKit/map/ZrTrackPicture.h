#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrTrackCover.h"
#include "ZrKit/map/ZrTrackLod.h"

#include <QRectF>

#include <memory>
#include <vector>

class ZrMapView;

/// What is drawn of a track in a view: never more than so many vertices, however long and dense it is.
///
/// The vertices are split doubles (`ZrMapSplit`), two for each line. Lines are taken from the level of the
/// track that is right to half a pixel, or to one; where these are too many the track covers the view, and
/// the picture is parallel lines over what it covers (`ZrTrackCover`): 1.4 pixels apart or, if these are too
/// many, farther, `RowHeight` says how far.
///
/// A picture reaches beyond its view if there is room: it suits others that lie within and do not show more
/// detail. No GL here. One thread at a time.
class ZR_KIT_EXPORT ZrTrackPicture
{
public:
    static constexpr int FloatsPerVertex = 4;

    /// What a picture is made for.
    struct Request
    {
        int line; ///< vertices, at most, of a picture of lines
        int cover; ///< likewise of a picture of what the track covers
        double width
            = 1.0; ///< of the lines when they are drawn, pixels; runs of a cover reach to their edges
    };

    /// Makes the picture of the positions before \p end.
    void Build(const ZrTrackLod& track, const ZrMapView& view, i64 end, const Request& request);

    /// Whether it shows what \p view needs of the first positions of \p track, as \p request wants it.
    bool Suits(const ZrTrackLod& track, const ZrMapView& view, const Request& request) const;

    /// Adds the positions from the last end up to \p end, as they are. False, and nothing is changed, when
    /// there is no room for them or \p end lies before the last one: it must be built again.
    bool Extend(const ZrTrackLod& track, i64 end);

    const std::vector<float>& Vertices() const { return m_vertices; }

    int VertexCount() const { return static_cast<int>(m_vertices.size()) / FloatsPerVertex; }

    i64 End() const { return m_end; }

    bool IsCover() const { return m_rowHeight > 0.0; }

    double RowHeight() const { return m_rowHeight; } ///< metres; 0 for a picture of lines

    /// The lines, two vertices each. Of a cover only what was added to it.
    const std::vector<ZrTrackLod::Segment>& Lines() const { return m_lines; }

    /// The first line that ends behind position \p index; the number of lines for none.
    int LineBehind(i64 index) const;

    int BuildCount() const { return m_buildCount; } ///< vertices of another build are others

private:
    bool BuildLines(const ZrTrackLod& track, const ZrMapView& view, double pixels, double margin);
    bool BuildCover(const ZrTrackLod& track, const ZrMapView& view, bool columns);
    void MarkCover(const ZrTrackLod& track, const ZrMapView& view, bool columns);
    void Add(QPointF a, QPointF b);

    std::vector<float> m_vertices;
    std::vector<ZrTrackLod::Segment> m_lines;
    QRectF m_region;
    Request m_request{0, 0, 1.0};
    double m_minScale = 0.0; ///< metres per pixel
    double m_shortest = 0.0; ///< lines are made as long as this, metres
    double m_rowHeight = 0.0;
    i64 m_end = 0;
    int m_clearCount = -1;
    std::unique_ptr<ZrTrackCover> m_cover; ///< kept for the next build
    QRectF m_coverBox;
    i64 m_coverEnd = 0; ///< positions marked in it
    int m_coverClearCount = -1;
    int m_buildCount = 0;
};
