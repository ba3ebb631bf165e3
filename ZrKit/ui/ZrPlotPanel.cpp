#include "ZrKit/ui/ZrPlotPanel.h"

#include "ZrKit/review/ZrAxisTicks.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTouchEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double zoomStep = 1.25; ///< for each notch of the wheel
constexpr double notch = 120.0; ///< eighths of a degree
constexpr double panStep = 0.1;
constexpr float leastHeight = 64.0F; ///< of a plot, design pixels
constexpr float twoColumns = 900.0F; ///< from this width on, design pixels
constexpr float leastTwoColumns = 640.0F; ///< where plots are left out otherwise
constexpr float tickDistance = 22.0F; ///< design pixels at least
constexpr float sampleWidth = 20.0F; ///< of a curve in front of its value, design pixels
constexpr double turn = 360.0; ///< degrees

QColor ColourOf(const ZrPlotPanel::Curve& curve)
{
    return curve.colour.isValid() ? curve.colour : ZrTheme::ctrlHighlightCol;
}

double PenWidth()
{
    return std::max(static_cast<double>(ZrTheme::DpF(1.5F)), 1.0);
}

double ScaleOf(int quantity)
{
    switch (quantity) {
    case ZrPlotPanel::length:
        return ZrUnits::shortLengthScale;
    case ZrPlotPanel::speed:
        return ZrUnits::speedScale;
    default:
        return 1.0;
    }
}

QString UnitOf(int quantity)
{
    switch (quantity) {
    case ZrPlotPanel::length:
        return ZrUnits::GetShortLengthUnits();
    case ZrPlotPanel::speed:
        return ZrUnits::GetSpeedUnits();
    case ZrPlotPanel::angle:
    case ZrPlotPanel::tilt:
        return ZrUnits::degrees;
    default:
        return QString();
    }
}

/// By the compass, as \p text makes it of degrees from 0 up to below 360.
template <class Function> QString CompassText(double degrees, Function text)
{
    const double turned = std::fmod(degrees, turn);
    const QString shown = text(turned < 0.0 ? turned + turn : turned);
    // The last of it before north rounds up.
    return shown == text(turn) ? text(0.0) : shown;
}

QPen PenOf(const ZrPlotPanel::Curve& curve)
{
    QPen pen(ColourOf(curve), PenWidth());
    if (curve.style == Qt::SolidLine)
        return pen;
    // Caps of the usual kind would fill the gaps of so thin a line.
    pen.setCapStyle(Qt::FlatCap);
    pen.setStyle(curve.style);
    return pen;
}

} // namespace

ZrPlotPanel::ZrPlotPanel(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_AcceptTouchEvents);
    setAccessibleName(tr("Plots"));
}

void ZrPlotPanel::SetTimeLine(const ZrTimeLine* line)
{
    m_line = line;
    update();
}

void ZrPlotPanel::SetPlots(QVector<Plot> plots)
{
    m_plots = std::move(plots);
    m_pictures = std::vector<ZrKeptPicture>(static_cast<std::size_t>(m_plots.size()));
    update();
}

void ZrPlotPanel::SetCursor(double steady)
{
    if (steady == m_cursor || (std::isnan(steady) && std::isnan(m_cursor)))
        return;
    m_cursor = steady;
    update();
}

QFont ZrPlotPanel::SmallFont() const
{
    return ZrLegible::Font(15);
}

/// Two where there is plenty of room, or where one would leave plots out and each still has some.
int ZrPlotPanel::Columns() const
{
    const bool isLow = Room() < m_plots.size() && width() >= ZrTheme::DpI(leastTwoColumns);
    return m_plots.size() > 1 && (isLow || width() >= ZrTheme::DpI(twoColumns)) ? 2 : 1;
}

/// Plots, one above the other.
int ZrPlotPanel::Room() const
{
    return std::max(height() / std::max(ZrTheme::DpI(leastHeight), 1), 1);
}

QRect ZrPlotPanel::Area(int column) const
{
    const int ticks = QFontMetrics(SmallFont()).horizontalAdvance(QStringLiteral("-00.00"));
    const int wide = width() / Columns();
    return QRect(column * wide, 0, wide, height())
        .adjusted(ticks + ZrTheme::DpI(12), 0, -ZrTheme::DpI(16), 0);
}

int ZrPlotPanel::ShownPlots() const
{
    return std::min(Room() * Columns(), static_cast<int>(m_plots.size()));
}

QRect ZrPlotPanel::PlotRect(int plot) const
{
    const int count = ShownPlots();
    if (plot < 0 || plot >= count)
        return {};
    const int columns = Columns();
    const int rows = (count + columns - 1) / columns;
    const int row = plot / columns;
    const QRect area = Area(plot % columns);
    const int caption = QFontMetrics(SmallFont()).height() + ZrTheme::DpI(4);
    const int top = area.height() * row / rows + caption;
    const int bottom = area.height() * (row + 1) / rows - ZrTheme::DpI(8);
    return {area.x(), top, area.width(), std::max(bottom - top, 1)};
}

QString ZrPlotPanel::ValueText(int plot, int curve) const
{
    if (plot < 0 || plot >= m_plots.size() || curve < 0 || curve >= m_plots[plot].curves.size())
        return {};
    const int quantity = m_plots[plot].quantity;
    const auto value = static_cast<double>(m_plots[plot].curves[curve].series->ValueAt(m_cursor));
    if (std::isnan(value))
        return QStringLiteral("–");
    const auto textOf = [quantity](double shown) {
        return QString::number(shown * ScaleOf(quantity), 'f', quantity == speed ? 2 : 1);
    };
    const QString text = quantity == angle ? CompassText(value, textOf) : textOf(value);
    const QString unit = UnitOf(quantity);
    const bool isApart = !unit.isEmpty() && quantity != angle && quantity != tilt;
    return text + (isApart ? QStringLiteral(" ") : QString()) + unit;
}

// -- Input

double ZrPlotPanel::FractionAt(double x) const
{
    const int column = std::clamp(static_cast<int>(x * Columns() / std::max(width(), 1)), 0, Columns() - 1);
    const QRect area = Area(column);
    return std::clamp((x - area.x()) / std::max(area.width(), 1), 0.0, 1.0);
}

void ZrPlotPanel::Tell(double x)
{
    if (m_line && m_line->Log())
        Q_EMIT Scrubbed(m_line->At(FractionAt(x)));
}

bool ZrPlotPanel::event(QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type != QEvent::TouchBegin && type != QEvent::TouchUpdate && type != QEvent::TouchEnd
        && type != QEvent::TouchCancel)
        return QWidget::event(event);
    event->accept();
    const auto points = static_cast<QTouchEvent*>(event)->touchPoints();
    const bool isOver = type == QEvent::TouchEnd || type == QEvent::TouchCancel;
    if (points.size() >= 2) {
        m_isPinching = true;
        const auto span
            = [](const QPointF& a, const QPointF& b) { return std::max(std::fabs(a.x() - b.x()), 10.0); };
        const double middle = (points[0].pos().x() + points[1].pos().x()) / 2.0;
        const double before = (points[0].lastPos().x() + points[1].lastPos().x()) / 2.0;
        Q_EMIT PanWanted((before - middle) / std::max(Area(0).width(), 1));
        Q_EMIT ZoomWanted(
            span(points[0].pos(), points[1].pos()) / span(points[0].lastPos(), points[1].lastPos()),
            FractionAt(middle));
    } else if (points.size() == 1 && !m_isPinching && !isOver) {
        if (type == QEvent::TouchBegin) {
            m_isScrubbing = true;
            Q_EMIT ScrubBegan();
        }
        Tell(points[0].pos().x());
    }
    if (isOver) {
        if (m_isScrubbing)
            Q_EMIT ScrubEnded();
        m_isScrubbing = m_isPinching = false;
    }
    return true;
}

void ZrPlotPanel::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || event->source() != Qt::MouseEventNotSynthesized)
        return;
    m_isScrubbing = true;
    Q_EMIT ScrubBegan();
    Tell(event->localPos().x());
}

void ZrPlotPanel::mouseMoveEvent(QMouseEvent* event)
{
    if (m_isScrubbing && event->source() == Qt::MouseEventNotSynthesized)
        Tell(event->localPos().x());
}

void ZrPlotPanel::mouseReleaseEvent(QMouseEvent* event)
{
    if (!m_isScrubbing || event->button() != Qt::LeftButton)
        return;
    m_isScrubbing = false;
    Q_EMIT ScrubEnded();
}

void ZrPlotPanel::wheelEvent(QWheelEvent* event)
{
    event->accept();
    const QPoint turned = event->angleDelta();
    const double notches = (turned.y() != 0 ? turned.y() : turned.x()) / notch;
    if (event->modifiers() & Qt::ShiftModifier)
        Q_EMIT PanWanted(-notches * panStep);
    else
        Q_EMIT ZoomWanted(std::pow(zoomStep, notches), FractionAt(event->position().x()));
}

// -- Painting

void ZrPlotPanel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    QColor back = ZrTheme::formBack;
    back.setAlpha(255);
    painter.fillRect(rect(), back);
    m_looks = 0;
    if (!m_line || !m_line->Log())
        return;
    painter.setFont(SmallFont());
    for (int i = 0; i < ShownPlots(); ++i)
        PaintPlot(painter, i);
    const double fraction = m_line->Fraction(m_cursor);
    if (!(fraction >= 0.0 && fraction <= 1.0))
        return;
    painter.setPen(QPen(ZrTheme::ctrlCol, std::max(ZrTheme::DpI(2), 1)));
    for (int i = 0; i < ShownPlots(); ++i) {
        const QRect plot = PlotRect(i);
        const int x = plot.x() + qRound(fraction * plot.width());
        painter.drawLine(x, plot.top(), x, plot.bottom());
    }
}

ZrPlotSeries::Extent ZrPlotPanel::ExtentOf(int plot) const
{
    ZrPlotSeries::Extent extent;
    for (const Curve& curve : m_plots[plot].curves)
        extent.Add(curve.series->ExtentBetween(m_line->VisibleBegin(), m_line->VisibleEnd()));
    return extent;
}

ZrAxisTicks ZrPlotPanel::TicksOf(int plot, const ZrPlotSeries::Extent& extent) const
{
    const double scale = ScaleOf(m_plots[plot].quantity);
    const int most = std::max(PlotRect(plot).height() / std::max(ZrTheme::DpI(tickDistance), 1), 2);
    return {static_cast<double>(extent.min) * scale, static_cast<double>(extent.max) * scale, most,
        m_plots[plot].quantity == angle ? ZrAxisTicks::angular : ZrAxisTicks::decimal};
}

int ZrPlotPanel::YOf(int plot, double value, const ZrAxisTicks& ticks) const
{
    const QRect rect = PlotRect(plot);
    const double share = (value - ticks.Low()) / (ticks.High() - ticks.Low());
    return rect.y() + qRound((m_plots[plot].isDown ? share : 1.0 - share) * (rect.height() - 1));
}

QVector<ZrPlotPanel::Label> ZrPlotPanel::Labels(int plot) const
{
    if (plot < 0 || plot >= ShownPlots() || !m_line || !m_line->Log())
        return {};
    const ZrPlotSeries::Extent extent = ExtentOf(plot);
    if (!extent.IsKnown())
        return {};
    const ZrAxisTicks ticks = TicksOf(plot, extent);
    const QRect rect = PlotRect(plot);
    const int high = QFontMetrics(SmallFont()).height();
    const int left = Area(plot % Columns()).x() - Area(0).x();
    const auto text = [&ticks](double value) { return ticks.Label(value); };
    const bool isCompass = m_plots[plot].quantity == angle;
    const auto label = [&](double value, int y) {
        return Label{value, QRect(left, y - high / 2, rect.x() - ZrTheme::DpI(6) - left, high),
            isCompass ? CompassText(value, text) : text(value)};
    };
    QVector<Label> labels;
    for (const double value : ticks.Values()) {
        const Label next = label(value, YOf(plot, value, ticks));
        if (labels.isEmpty() || !next.rect.intersects(labels.last().rect))
            labels.append(next);
    }
    if (labels.size() > 1)
        return labels;
    // The data lies between two ticks: the ends of the axis, inside the plot, tell where.
    labels.clear();
    for (const double value : {ticks.Low(), ticks.High()}) {
        Label end = label(value, YOf(plot, value, ticks));
        const bool isLow = YOf(plot, value, ticks) > rect.center().y();
        end.rect.moveTop(isLow ? std::max(rect.bottom() + 1 - high, rect.center().y() + 1)
                               : std::min(rect.top(), rect.center().y() + 1 - high));
        labels.append(end);
    }
    return labels;
}

/// The caption, and behind it the values at the cursor.
void ZrPlotPanel::PaintHead(QPainter& painter, int index, const QRect& head)
{
    const Plot& plot = m_plots[index];
    const QFontMetrics metrics = painter.fontMetrics();
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(head, Qt::AlignLeft | Qt::AlignVCenter, plot.caption);
    int right = head.right() + 1;
    const int captionEnd = head.x() + metrics.horizontalAdvance(plot.caption) + ZrTheme::DpI(12);
    const int between = ZrTheme::DpI(16);
    const int count = plot.curves.size();
    const auto told = [&](int i, bool withName) {
        const QString text = ValueText(index, i);
        const QString& name = plot.curves[i].name;
        return !withName || name.isEmpty() ? text : name + QLatin1Char(' ') + text;
    };
    const auto width = [&](int i, bool withName) { return metrics.horizontalAdvance(told(i, withName)) + 2; };
    int named = -between;
    for (int i = 0; i < count; ++i)
        named += width(i, true) + between;
    // A piece of the curve in front of each name; where that is too much the names alone, which a piece
    // without a name stands for where they are too much as well.
    const int sample = ZrTheme::DpI(sampleWidth) + ZrTheme::DpI(6);
    const bool isNamed = named <= right - captionEnd;
    const bool isSampled = count > 1 && (!isNamed || named + count * sample <= right - captionEnd);
    for (int i = count - 1; i >= 0; --i) {
        const Curve& curve = plot.curves[i];
        const int wide = width(i, isNamed) + (isSampled ? sample : 0);
        if (right - wide < captionEnd)
            break;
        painter.setPen(count > 1 && curve.colour.isValid() ? curve.colour : ZrTheme::ctrlCol);
        painter.drawText(QRect(right - wide, head.y(), wide, head.height()),
            Qt::AlignRight | Qt::AlignVCenter, told(i, isNamed));
        if (isSampled) {
            const int y = head.center().y();
            painter.setPen(PenOf(curve));
            painter.drawLine(right - wide, y, right - wide + ZrTheme::DpI(sampleWidth), y);
        }
        right -= wide + between;
    }
}

void ZrPlotPanel::PaintPlot(QPainter& painter, int index)
{
    const Plot& plot = m_plots[index];
    const QRect rect = PlotRect(index);
    const int high = painter.fontMetrics().height();
    const ZrPlotSeries::Extent extent = ExtentOf(index);
    PaintHead(painter, index, {rect.x(), rect.y() - high - ZrTheme::DpI(2), rect.width(), high});
    painter.setPen(QPen(ZrTheme::gridCol, 1));
    painter.drawRect(rect.adjusted(0, 0, -1, -1));
    if (!extent.IsKnown()) {
        painter.setPen(ZrTheme::bodyCol);
        painter.drawText(rect, Qt::AlignCenter, tr("Not recorded"));
        return;
    }
    const ZrAxisTicks ticks = TicksOf(index, extent);
    painter.setPen(QPen(ZrTheme::gridCol, 1, Qt::DotLine));
    for (const double value : ticks.Values()) {
        const int y = YOf(index, value, ticks);
        painter.drawLine(rect.left(), y, rect.right(), y);
    }
    painter.setPen(ZrTheme::bodyCol);
    for (const Label& label : Labels(index))
        painter.drawText(label.rect, Qt::AlignRight | Qt::AlignVCenter, label.text);
    painter.setClipRect(rect);
    QVector<double> key;
    for (const Curve& curve : plot.curves)
        key += KeyOf(curve, ticks.Low(), ticks.High(), plot.isDown);
    m_pictures[static_cast<std::size_t>(index)].Paint(painter, rect, key, [&](QPainter& to) {
        for (const Curve& curve : plot.curves)
            PaintCurve(to, curve, rect, ticks.Low(), ticks.High(), ScaleOf(plot.quantity), plot.isDown);
    });
    painter.setClipping(false);
}

/// All that a curve is painted by, but for the size.
QVector<double> ZrPlotPanel::KeyOf(const Curve& curve, double low, double high, bool isDown) const
{
    return {static_cast<double>(reinterpret_cast<quintptr>(curve.series)),
        static_cast<double>(curve.series->Count()), m_line->VisibleBegin(), m_line->VisibleEnd(),
        m_line->AreGapsCut() ? 1.0 : 0.0, m_line->LongestStep(), low, high, isDown ? 1.0 : 0.0,
        static_cast<double>(ColourOf(curve).rgba()), PenWidth(), static_cast<double>(curve.style)};
}

void ZrPlotPanel::PaintCurve(QPainter& painter, const Curve& curve, const QRect& rect, double low,
    double high, double scale, bool isDown)
{
    m_decimator.mostStep = m_line->LongestStep();
    QPolygonF line;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(PenOf(curve));
    const auto draw = [&painter, &line] {
        if (line.size() > 1)
            painter.drawPolyline(line);
        else if (line.size() == 1)
            painter.drawPoint(line[0]);
        line.clear();
    };
    for (const ZrPlotDecimator::Point& point :
        m_decimator.Decimate(*curve.series, m_line->Columns(rect.width()))) {
        if (std::isnan(point.y)) {
            draw();
            continue;
        }
        const double share = (static_cast<double>(point.y) * scale - low) / (high - low);
        line.append(QPointF(rect.x() + static_cast<double>(point.x),
            rect.y() + (isDown ? share : 1.0 - share) * (rect.height() - 1)));
    }
    draw();
    m_looks += m_decimator.Looks();
    painter.setRenderHint(QPainter::Antialiasing, false);
}
