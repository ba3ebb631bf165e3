#include "ZrKit/map/ZrTrackPicture.h"

#include "ZrKit/map/ZrMapSplit.h"
#include "ZrKit/map/ZrMapView.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double lineMargin = 0.25; ///< of the view's size, on each side
constexpr double coverMargin = 0.125;
constexpr double markMargin = 0.5;
constexpr double almostSame = 0.9; ///< of the scale, at which rows are still narrow enough
constexpr double rowPixels = 0.7; ///< rows of a cover before they are taken together
constexpr double coverTolerance = 0.1; ///< pixels, of the line that makes a cover

struct Step
{
    double rowPixels;
    double gapPixels;
};

/// Fine enough for lines of three pixels to look the same.
constexpr Step fineSteps[] = {{1.4, 1.4}, {2.1, 2.0}, {2.1, 3.0}};
constexpr double firstCoarse = 2.8; ///< pixels, for rows and gaps
constexpr double coarser = 1.5;
constexpr double lastCoarse = 1e6;
constexpr double finestMark = 0.25; ///< pixels of a row that is worth its time

QRectF Grown(const QRectF& box, double margin)
{
    const double dx = box.width() * margin;
    const double dy = box.height() * margin;
    return box.adjusted(-dx, -dy, dx, dy);
}

/// The lines of \p vertices, but for a tenth: room to grow until the next build.
std::size_t LinesOf(int vertices)
{
    return static_cast<std::size_t>(std::max(vertices / 2 - vertices / 20, 1));
}

} // namespace

void ZrTrackPicture::Build(const ZrTrackLod& track, const ZrMapView& view, i64 end, const Request& request)
{
    m_request = request;
    m_end = std::clamp<i64>(end, 0, track.Count());
    m_clearCount = track.ClearCount();
    m_shortest = view.Scale();
    ++m_buildCount;
    if (view.IsEmpty()) {
        m_vertices.clear();
        m_lines.clear();
        m_rowHeight = 0.0;
        m_region = {};
        return;
    }
    for (const double pixels : {0.5, 1.0}) {
        for (const double margin : {lineMargin, 0.0}) {
            if (BuildLines(track, view, pixels, margin)) {
                m_cover.reset();
                return;
            }
        }
    }
    if (!BuildCover(track, view, false))
        BuildCover(track, view, true);
}

bool ZrTrackPicture::BuildLines(const ZrTrackLod& track, const ZrMapView& view, double pixels, double margin)
{
    const int level = ZrTrackLod::LevelOf(pixels * view.Scale());
    m_region = Grown(view.Bounds(), margin);
    m_lines.clear();
    const std::size_t limit = LinesOf(m_request.line);
    const bool isAll = track.ForEach(m_region, level, m_end, [&](const ZrTrackLod::Segment& line) {
        m_lines.push_back(line);
        return m_lines.size() <= limit;
    });
    if (!isAll)
        return false;
    m_minScale = ZrTrackLod::Tolerance(level) / pixels;
    m_rowHeight = 0.0;
    m_vertices.clear();
    for (const ZrTrackLod::Segment& line : m_lines)
        Add(track[line.from], track[line.to]);
    return true;
}

/// Rows first, which may fail; columns are the second choice and become as wide as they must.
bool ZrTrackPicture::BuildCover(const ZrTrackLod& track, const ZrMapView& view, bool columns)
{
    const double scale = view.Scale();
    MarkCover(track, view, columns);
    std::vector<ZrTrackCover::Run> runs;
    const auto fits = [&](const Step& step, const QRectF& clip) {
        const int rows = std::max(static_cast<int>(step.rowPixels * scale / m_cover->RowHeight() + 0.35), 1);
        runs.clear();
        m_region = clip;
        m_rowHeight = rows * m_cover->RowHeight();
        return m_cover->Runs(clip, rows, step.gapPixels * scale, LinesOf(m_request.cover), runs);
    };
    bool isMade = false;
    for (const Step& step : fineSteps) {
        for (const double margin : {coverMargin, 0.0})
            isMade = isMade || fits(step, Grown(view.Bounds(), margin));
    }
    if (!isMade && !columns)
        return false;
    for (double pixels = firstCoarse; !isMade && pixels < lastCoarse; pixels *= coarser)
        isMade = fits({pixels, pixels}, view.Bounds());
    m_lines.clear();
    m_vertices.clear();
    m_minScale = almostSame * scale;
    // The marks are those of the line's middle: what crosses a row is as wide as it is drawn.
    const double reach = 0.5 * std::max(m_request.width - 1.0, 0.0) * scale;
    const QPointF ends = columns ? QPointF(0.0, reach) : QPointF(reach, 0.0);
    for (const ZrTrackCover::Run& run : runs)
        Add(run.from - ends, run.to + ends);
    return true;
}

/// Marks what the track covers in a box much larger than the view, for views beside it and of other scales.
void ZrTrackPicture::MarkCover(const ZrTrackLod& track, const ZrMapView& view, bool columns)
{
    const double scale = view.Scale();
    const double row = m_cover ? m_cover->RowHeight() / scale : 0.0;
    const bool isSame = m_cover && m_cover->IsColumns() == columns && row >= finestMark
        && row <= fineSteps[0].rowPixels && m_coverClearCount == track.ClearCount() && m_coverEnd <= m_end
        && m_coverBox.contains(Grown(view.Bounds(), coverMargin));
    if (!isSame) {
        m_coverBox = Grown(view.Bounds(), markMargin);
        m_coverClearCount = track.ClearCount();
        m_coverEnd = 0;
        m_cover = std::make_unique<ZrTrackCover>(m_coverBox, rowPixels * scale, columns);
    }
    track.ForEach(
        m_coverBox, ZrTrackLod::LevelOf(coverTolerance * scale), m_end, [&](const ZrTrackLod::Segment& line) {
            if (line.to >= m_coverEnd)
                m_cover->Add(track[line.from], track[line.to]);
            return true;
        });
    m_coverEnd = m_end;
}

/// A line shorter than a pixel may be drawn as none.
void ZrTrackPicture::Add(QPointF a, QPointF b)
{
    const QPointF d = b - a;
    const double length = std::hypot(d.x(), d.y());
    if (length < m_shortest) {
        const QPointF along = length > 0.0 ? d / length : QPointF(1.0, 0.0);
        const QPointF middle = (a + b) / 2.0;
        a = middle - along * (m_shortest / 2.0);
        b = middle + along * (m_shortest / 2.0);
    }
    float vertices[2 * FloatsPerVertex];
    ZrMapSplit::Split(a.x(), a.y(), vertices);
    ZrMapSplit::Split(b.x(), b.y(), vertices + FloatsPerVertex);
    m_vertices.insert(m_vertices.end(), std::begin(vertices), std::end(vertices));
}

bool ZrTrackPicture::Suits(const ZrTrackLod& track, const ZrMapView& view, const Request& request) const
{
    constexpr double almost = 1.0 - 1e-9;
    const bool isWanted = IsCover() ? VertexCount() <= request.cover && m_request.width == request.width
                                    : VertexCount() <= request.line;
    return isWanted && m_clearCount == track.ClearCount() && m_end <= track.Count() && !view.IsEmpty()
        && view.Scale() >= m_minScale * almost && m_region.contains(view.Bounds());
}

bool ZrTrackPicture::Extend(const ZrTrackLod& track, i64 end)
{
    end = std::min(end, track.Count());
    if (end < m_end)
        return false;
    const std::size_t lines = m_lines.size();
    const std::size_t floats = m_vertices.size();
    const int limit = IsCover() ? m_request.cover : m_request.line;
    for (i64 i = m_end; i < end; ++i) {
        if (track.IsBreak(i))
            continue;
        const i64 from = track.IsBreak(i - 1) ? i : i - 1;
        const QPointF& a = track[from];
        const QPointF& b = track[i];
        if (std::max(a.x(), b.x()) < m_region.left() || std::min(a.x(), b.x()) > m_region.right()
            || std::max(a.y(), b.y()) < m_region.top() || std::min(a.y(), b.y()) > m_region.bottom())
            continue;
        if (VertexCount() + 2 > limit) {
            m_lines.resize(lines);
            m_vertices.resize(floats);
            return false;
        }
        m_lines.push_back({from, i});
        Add(a, b);
    }
    m_end = end;
    return true;
}

int ZrTrackPicture::LineBehind(i64 index) const
{
    const auto at = std::partition_point(m_lines.begin(), m_lines.end(),
        [index](const ZrTrackLod::Segment& line) { return line.to <= index; });
    return static_cast<int>(at - m_lines.begin());
}
