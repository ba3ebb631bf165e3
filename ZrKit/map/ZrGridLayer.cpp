#include "ZrKit/map/ZrGridLayer.h"

#include "ZrKit/map/ZrMapShapes.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

// Design pixels.
constexpr double lineWidth = 1.0;
constexpr double lineCasing = 2.4; ///< for light lines to be seen on light ground
constexpr double edge = 12.0; ///< of the area, beside bar and arrow
constexpr double inset = 5.0; ///< of the texts of the grid
constexpr double clear = 2.0; ///< between these and what they keep clear of
constexpr float gridText = 16.0F;
// Bar and arrow are read at arm's length.
constexpr float northText = 28.0F;
constexpr float gridNorthText = 22.0F; ///< of two letters
constexpr float barText = 22.0F;
constexpr double barTextHeight = 28.0;
constexpr double barWidth = 220.0; ///< at most
constexpr double barHeight = 10.0;
constexpr double casing = 2.0;
constexpr double arrowRadius = 34.0;

// A text that was chosen is shown.
static_assert(clear >= ZrLabelLayer::BesideText);

static_assert(edge + barTextHeight + barHeight + 2.0 * casing == double(ZrGridLayer::ScaleRoom));

constexpr int middleGrey = 128;

constexpr double farthest = 2e7; ///< metres

QColor Valid(const QColor& colour, const QColor& otherwise)
{
    return colour.isValid() ? colour : otherwise;
}

QColor Opaque(QColor colour)
{
    colour.setAlpha(255);
    return colour;
}

/// Pixels of a design pixel; 0 when nothing can be drawn.
double PixelOf(int factor)
{
    const double pixel = static_cast<double>(ZrTheme::dp) * factor;
    return std::isfinite(pixel) && pixel > 0.0 ? pixel : 0.0;
}

} // namespace

/// Draws the marks of its grid.
class ZrGridLayer::MarksLayer : public ZrMapLayer
{
public:
    explicit MarksLayer(ZrGridLayer& grid)
        : m_grid(grid)
    {
    }

    Part m_part;

protected:
    void OnPaint(ZrGlSurface& surface, const ZrMapView& view) override
    {
        m_grid.PaintPart(m_part, false, true, surface, view);
    }

    void OnRelease(ZrGlSurface& surface) override
    {
        m_part.batch.Release(surface);
        m_part.labels.Release(surface);
    }

    void OnForget() override { m_part.batch.Forget(); }

private:
    ZrGridLayer& m_grid;
};

ZrGridLayer::Part::Part()
    : batch(QStringLiteral(":/map_shape.fsh"))
{
}

ZrGridLayer::ZrGridLayer() = default;
ZrGridLayer::~ZrGridLayer() = default;

ZrMapLayer& ZrGridLayer::Marks()
{
    if (!m_marks) {
        m_marks = std::make_unique<MarksLayer>(*this);
        m_part.key.clear();
    }
    return *m_marks;
}

void ZrGridLayer::SetProjection(const ZrSphd& spheroid, const ZrProj& projection)
{
    m_spheroid = spheroid;
    m_projection = projection;
    m_hasProjection = true;
    ForgetKeys();
}

void ZrGridLayer::ClearProjection()
{
    m_hasProjection = false;
    ForgetKeys();
}

/// The projection is not among what the keys are made of.
void ZrGridLayer::ForgetKeys()
{
    m_part.key.clear();
    if (m_marks)
        m_marks->m_part.key.clear();
}

void ZrGridLayer::SetMargins(const QMarginsF& margins)
{
    const auto usable = [](double v) { return std::isfinite(v) ? std::max(v, 0.0) : 0.0; };
    m_margins = QMarginsF(
        usable(margins.left()), usable(margins.top()), usable(margins.right()), usable(margins.bottom()));
}

void ZrGridLayer::KeepClearOf(const ZrLabelLayer* names)
{
    m_obstacles.m_names.clear();
    if (names)
        m_obstacles.m_names.push_back(names);
}

void ZrGridLayer::KeepClearOf(
    std::vector<const ZrMarkerLayer*> markers, std::vector<const ZrTrackLayer*> tracks)
{
    m_obstacles.m_markers = std::move(markers);
    m_obstacles.m_tracks = std::move(tracks);
}

const ZrLabelLayer& ZrGridLayer::Texts() const
{
    return m_marks ? m_marks->m_part.labels : m_part.labels;
}

void ZrGridLayer::SetSpacing(double spacing)
{
    if (std::isfinite(spacing))
        m_spacing = std::max(spacing, LeastSpacing);
}

double ZrGridLayer::NorthAngle(const ZrMapView& view) const
{
    if (m_north != northTrue || !m_hasProjection)
        return view.Rotation();
    // Beyond the earth there is no other north.
    if (std::fabs(view.Centre().x()) > farthest || std::fabs(view.Centre().y()) > farthest)
        return view.Rotation();
    double lat = 0.0;
    double lng = 0.0;
    ZrUnits::EN2LL(m_spheroid, m_projection, view.Centre().x(), view.Centre().y(), lat, lng);
    const double convergence = std::fabs(lat) < 89.9
        ? ZrUnits::Convergence(m_spheroid, m_projection, lat, lng)
        : std::numeric_limits<double>::quiet_NaN();
    return std::isfinite(convergence) ? view.Rotation() + convergence : view.Rotation();
}

/// The pixels of the view that nothing covers.
QRectF ZrGridLayer::Area(const ZrMapView& view) const
{
    const QRectF area = QRectF(0.0, 0.0, view.Width(), view.Height()).marginsRemoved(m_margins);
    return area.isValid() ? area : QRectF();
}

QRectF ZrGridLayer::NorthArrowRect(const ZrMapView& view, int factor) const
{
    const double pixel = PixelOf(factor);
    const QRectF area = Area(view);
    const double side = 2.0 * std::round(arrowRadius * pixel);
    const double gap = std::round(edge * pixel);
    if (!m_hasNorthArrow || pixel == 0.0 || area.width() < side + 2.0 * gap
        || area.height() < side + 2.0 * gap)
        return {};
    return {std::floor(area.right() - gap - side), std::ceil(area.top() + gap), side, side};
}

ZrScaleBar ZrGridLayer::BarOf(const ZrMapView& view, double pixel) const
{
    const double room = Area(view).width() - 2.0 * (edge + casing) * pixel;
    return ZrScaleBar::Of(view.Scale(), std::min(barWidth * pixel, room));
}

QRectF ZrGridLayer::ScaleBarRect(const ZrMapView& view, int factor) const
{
    const double pixel = PixelOf(factor);
    const QRectF area = Area(view);
    const double gap = std::round(edge * pixel);
    const double high = std::round((barTextHeight + barHeight + 2.0 * casing) * pixel);
    const ZrScaleBar bar = BarOf(view, pixel);
    if (!m_hasScaleBar || pixel == 0.0 || bar.metres == 0.0 || area.height() < high + 2.0 * gap)
        return {};
    return {std::ceil(area.left() + gap), std::floor(area.bottom() - gap - high),
        std::round(bar.pixels) + 2.0 * std::round(casing * pixel), high};
}

/// All that vertices and texts are made of.
QByteArray ZrGridLayer::Key(const ZrMapView& view, double pixel) const
{
    QByteArray key;
    QDataStream stream(&key, QIODevice::WriteOnly);
    stream << view.Width() << view.Height() << view.Centre() << view.Scale() << view.Rotation() << pixel
           << m_hasGrid << m_hasTexts << m_hasScaleBar << m_hasNorthArrow << static_cast<int>(m_north)
           << m_margins.left() << m_margins.top() << m_margins.right() << m_margins.bottom() << m_spacing
           << static_cast<int>(ZrUnits::geoStyle) << ZrUnits::tinyLengthUnit << ZrUnits::tinyLengthScale
           << ZrUnits::shortLengthUnit << ZrUnits::shortLengthScale << ZrUnits::longLengthUnit
           << ZrUnits::longLengthScale << ZrTheme::gridCol << ZrTheme::darken << ZrTheme::ctrlCol
           << ZrTheme::formBack << ZrTheme::formBdr << ZrTheme::errorCol;
    return key;
}

void ZrGridLayer::OnPaint(ZrGlSurface& surface, const ZrMapView& view)
{
    PaintPart(m_part, true, !m_marks, surface, view);
}

void ZrGridLayer::PaintPart(
    Part& part, bool hasLines, bool hasMarks, ZrGlSurface& surface, const ZrMapView& view)
{
    const double pixel = PixelOf(surface.m_pixelFactor);
    if (pixel == 0.0 || !part.batch.Use(surface))
        return;
    const QByteArray key = Key(view, pixel);
    bool isChanged = hasMarks && m_obstacles.Look(view, pixel);
    if (key != part.key || !part.batch.IsUploaded()) {
        ZrMapShapes shapes;
        isChanged = true;
        if (hasLines && m_hasGrid)
            AddLines(shapes, view, pixel);
        if (hasMarks)
            AddMarks(shapes, part, view, surface.m_pixelFactor);
        else
            part.labels.SetLabels({});
        part.batch.Upload(surface, shapes.Triangles());
        part.key = key;
    }
    if (isChanged && hasMarks) {
        std::vector<ZrMapLabel> labels
            = ZrGridTexts::Choose(part.lines, part.taken, m_obstacles, clear * pixel);
        labels.insert(labels.end(), part.marks.begin(), part.marks.end());
        part.labels.SetLabels(std::move(labels));
    }
    part.batch.Draw(surface, view);
    part.labels.Paint(surface, view);
}

ZrGridLines::Lines ZrGridLayer::Lines(const ZrMapView& view, double pixel) const
{
    const eGeoStyle style = ZrUnits::GetGeoStyle();
    const bool isGeographic = m_hasProjection && style != eGeoUTM;
    return isGeographic ? ZrGridLines::Geographic(view, m_spacing * pixel, style, m_spheroid, m_projection)
                        : ZrGridLines::Projected(view, m_spacing * pixel);
}

void ZrGridLayer::AddLines(ZrMapShapes& shapes, const ZrMapView& view, double pixel) const
{
    const QColor colour = Valid(ZrTheme::gridCol, QColor(128, 128, 128, 128));
    const ZrGridLines::Lines lines = Lines(view, pixel);
    // Under dark lines it would only make them stronger than what they are to be behind of.
    if (qGray(colour.rgb()) >= middleGrey) {
        const QColor under = Valid(ZrTheme::darken, QColor(0, 0, 0, 50));
        for (const ZrGridLines::Line& line : lines)
            shapes.AddWorldLine(line.points, lineCasing * pixel, under);
    }
    for (const ZrGridLines::Line& line : lines)
        shapes.AddWorldLine(line.points, lineWidth * pixel, colour);
}

void ZrGridLayer::AddMarks(ZrMapShapes& shapes, Part& part, const ZrMapView& view, int factor) const
{
    const double pixel = PixelOf(factor);
    FindPlaces(part, view, pixel);
    const QRectF bar = ScaleBarRect(view, factor);
    const QRectF arrow = NorthArrowRect(view, factor);
    part.marks.clear();
    if (!bar.isEmpty())
        AddScaleBar(shapes, part.marks, BarOf(view, pixel), bar, pixel);
    if (!arrow.isEmpty())
        AddNorthArrow(shapes, part.marks, view, arrow, pixel);
    const double gap = edge / 2.0 * pixel;
    const QMarginsF around(gap, gap, gap, gap);
    part.taken.clear();
    for (const QRectF& rect : {bar, arrow}) {
        if (!rect.isEmpty())
            part.taken.push_back(rect.marginsAdded(around));
    }
    part.labels.SetDeclutter(true, part.taken);
}

/// Of the texts of the grid.
void ZrGridLayer::FindPlaces(Part& part, const ZrMapView& view, double pixel) const
{
    part.lines.clear();
    if (!m_hasGrid || !m_hasTexts)
        return;
    const float size = ZrLegible::Design(gridText);
    for (const ZrGridLines::Line& line : Lines(view, pixel)) {
        ZrGridTexts::Line text{line.isNorthSouth, {}};
        text.places = ZrGridLines::Places(
            line, view, Area(view), inset * pixel, part.labels.TextSize(line.text, size) * pixel);
        for (ZrGridLines::Place& place : text.places)
            place.label.size = size;
        part.lines.push_back(std::move(text));
    }
}

void ZrGridLayer::AddScaleBar(ZrMapShapes& shapes, std::vector<ZrMapLabel>& labels, const ZrScaleBar& bar,
    const QRectF& rect, double pixel) const
{
    const double border = std::round(casing * pixel);
    const QRectF box(rect.left(), rect.bottom() - std::round(barHeight * pixel) - 2.0 * border, rect.width(),
        std::round(barHeight * pixel) + 2.0 * border);
    const QRectF inner = box.adjusted(border, border, -border, -border);
    const QColor light = Opaque(Valid(ZrTheme::ctrlCol, Qt::white));
    const QColor dark = Opaque(Valid(ZrTheme::formBack, Qt::black));
    shapes.AddRect(box, dark);
    // Blocks in turn, as on a printed chart; the dark ones are the casing.
    for (int i = 0; i < bar.parts; i += 2) {
        const double left = inner.left() + std::round(inner.width() * i / bar.parts);
        const double right = inner.left() + std::round(inner.width() * (i + 1) / bar.parts);
        shapes.AddRect(QRectF(left, inner.top(), right - left, inner.height()), light);
    }
    const double line = std::max(std::round(pixel), 1.0);
    shapes.AddRect(QRectF(inner.left(), inner.top(), inner.width(), line), light);
    shapes.AddRect(QRectF(inner.left(), inner.bottom() - line, inner.width(), line), light);
    shapes.AddRect(QRectF(inner.right() - line, inner.top(), line, inner.height()), light);

    ZrMapLabel label;
    label.text = bar.text;
    label.isOnScreen = true;
    label.position = {box.left(), box.top()};
    label.size = ZrLegible::Design(barText);
    label.priority = ZrMapLabel::AlwaysShown;
    labels.push_back(label);
}

void ZrGridLayer::AddNorthArrow(ZrMapShapes& shapes, std::vector<ZrMapLabel>& labels, const ZrMapView& view,
    const QRectF& rect, double pixel) const
{
    const QPointF centre = rect.center();
    const double radius = rect.width() / 2.0;
    const QColor light = Opaque(Valid(ZrTheme::formBdr, Qt::white));
    const QColor north = Opaque(Valid(ZrTheme::errorCol, Qt::red));
    shapes.AddDisc(centre, radius, light);
    shapes.AddDisc(centre, radius - casing * pixel, Opaque(Valid(ZrTheme::formBack, Qt::black)));

    const double angle = qDegreesToRadians(NorthAngle(view));
    const auto turned = [&](double right, double up) {
        return QPointF(right * std::cos(angle) - up * std::sin(angle),
                   right * std::sin(angle) + up * std::cos(angle))
            * radius;
    };
    // Around the letter a pointer, which turns; the letter stands.
    shapes.AddPolygon(centre, {turned(-0.36, 0.58), turned(0.36, 0.58), turned(0.0, 0.96)}, north);

    ZrMapLabel label;
    const bool isTrue = m_north == northTrue && m_hasProjection;
    label.text = isTrue ? QCoreApplication::translate("ZrGridLayer", "N", "true north")
                        : QCoreApplication::translate("ZrGridLayer", "GN", "grid north");
    label.isOnScreen = true;
    label.position = centre;
    label.alignX = ZrMapLabel::alignCentre;
    label.alignY = ZrMapLabel::alignMiddle;
    label.size = isTrue ? northText : gridNorthText;
    label.haloWidth = 0.0F;
    label.colour = Opaque(Valid(ZrTheme::ctrlCol, Qt::white));
    label.priority = ZrMapLabel::AlwaysShown;
    labels.push_back(label);
}

void ZrGridLayer::OnRelease(ZrGlSurface& surface)
{
    m_part.batch.Release(surface);
    m_part.labels.Release(surface);
}

void ZrGridLayer::OnForget()
{
    m_part.batch.Forget();
    // The labels find out by themselves that their context is gone.
}
