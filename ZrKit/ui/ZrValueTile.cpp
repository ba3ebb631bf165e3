#include "ZrKit/ui/ZrValueTile.h"

#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace {

const QString dash = QStringLiteral("–"); ///< a value that is not known

QColor ColourOf(ZrValueTile::eState state)
{
    switch (state) {
    case ZrValueTile::good:
        return ZrTheme::goodCol;
    case ZrValueTile::warning:
        return ZrTheme::warnCol;
    case ZrValueTile::error:
        return ZrTheme::errorCol;
    case ZrValueTile::stale:
        return ZrTheme::ctrlOutlineCol;
    case ZrValueTile::preview:
        return ZrTheme::ctrlHighlightCol;
    case ZrValueTile::normal:
        break;
    }
    return ZrTheme::ctrlCol;
}

int CaptionHeight()
{
    return QFontMetrics(ZrLegible::Font(15)).height();
}

/// Too low for a value that is larger than its caption below it: they stand beside one another.
bool IsFlat(const QRect& area)
{
    return area.height() < CaptionHeight() + ZrLegible::LeastText * 5 / 3;
}

/// And for the value, as well.
bool HasNoteRoom(const QRect& area)
{
    return area.height() >= 2 * CaptionHeight() + ZrLegible::LeastText * 3 / 2;
}

} // namespace

ZrValueTile::ZrValueTile(QWidget* parent, const QString& caption)
    : QWidget(parent)
    , m_caption(caption)
{
    Tell();
}

void ZrValueTile::Tell()
{
    setAccessibleName(QStringLiteral("%1 %2 %3").arg(m_caption, m_value, m_unit).simplified());
    Refit();
}

ZrValueTile::~ZrValueTile()
{
    if (m_row)
        m_row->removeOne(this);
}

void ZrValueTile::SetRow(const QVector<ZrValueTile*>& tiles)
{
    const auto row = std::make_shared<QVector<ZrValueTile*>>(tiles);
    for (ZrValueTile* tile : tiles) {
        if (tile->m_row)
            tile->m_row->removeOne(tile);
        tile->m_row = row;
        tile->update();
    }
}

/// Repaints it, and those of its row whose values have another size now.
void ZrValueTile::Refit()
{
    update();
    if (!m_row)
        return;
    const int size = ValueSize();
    for (ZrValueTile* tile : qAsConst(*m_row)) {
        if (tile->m_shownSize != size)
            tile->update();
    }
}

void ZrValueTile::Set(const QString& value, const QString& unit)
{
    if (value == m_value && unit == m_unit)
        return;
    m_value = value;
    m_unit = unit;
    Tell();
}

void ZrValueTile::SetNote(const QString& note)
{
    if (note == m_note)
        return;
    m_note = note;
    Refit();
}

void ZrValueTile::SetNoteRoom(bool hasRoom)
{
    if (hasRoom == m_hasNoteRoom)
        return;
    m_hasNoteRoom = hasRoom;
    Refit();
}

void ZrValueTile::SetState(eState state)
{
    if (state == m_state)
        return;
    m_state = state;
    update();
}

QSize ZrValueTile::sizeHint() const
{
    return {ZrTheme::DpI(180), ZrTheme::DpI(96)};
}

bool ZrValueTile::IsAngle() const
{
    return m_unit.startsWith(ZrUnits::degrees);
}

QString ZrValueTile::Number() const
{
    if (m_value.isEmpty())
        return dash;
    QString number = m_value;
    // A position or a name keeps its hyphens.
    if (number.size() > 1 && number[0] == QLatin1Char('-')
        && (number[1].isDigit() || number[1] == QLatin1Char('.')))
        number[0] = QChar(0x2212);
    return IsAngle() ? number + m_unit : number;
}

/// Behind the value, and smaller.
QString ZrValueTile::UnitBeside() const
{
    return m_value.isEmpty() || IsAngle() ? QString() : m_unit;
}

QRect ZrValueTile::Area() const
{
    const int margin = ZrTheme::DpI(12);
    return rect().adjusted(margin, ZrTheme::DpI(6), -margin, -ZrTheme::DpI(6));
}

/// Between caption and note, or right of the caption in a flat one.
QRect ZrValueTile::ValueArea() const
{
    const QRect area = Area();
    if (IsFlat(area)) {
        // Digits reach no further than their line: the margins above and below may be smaller.
        const int caption = QFontMetrics(ZrLegible::Font(15)).horizontalAdvance(m_caption);
        return area.adjusted(caption + ZrTheme::DpI(8), -ZrTheme::DpI(3), 0, ZrTheme::DpI(3));
    }
    const int line = CaptionHeight();
    const bool hasNote = m_hasNoteRoom || (!m_note.isEmpty() && HasNoteRoom(area));
    const int bottom = area.bottom() - (hasNote ? line : 0);
    return {area.x(), area.y() + line, area.width(), std::max(bottom - area.y() - line, 1)};
}

/// Of the value, pixels: a long one, for instance a position, is made to fit rather than cut.
int ZrValueTile::FittingSize() const
{
    const QRect area = ValueArea();
    QFont large = ZrTheme::fontHuge;
    large.setPixelSize(std::clamp(area.height() * 9 / 10, ZrLegible::LeastText, ZrLegible::Px(36)));
    const QString unit = UnitBeside();
    const int unitWidth
        = unit.isEmpty() ? 0 : QFontMetrics(ZrLegible::Font(15)).horizontalAdvance(unit) + ZrTheme::DpI(6);
    const int width = QFontMetrics(large).horizontalAdvance(Number());
    const int room = std::max(area.width() - unitWidth, 1);
    return width > room ? std::max(large.pixelSize() * room / width, ZrLegible::LeastText)
                        : large.pixelSize();
}

int ZrValueTile::ValueSize() const
{
    int size = FittingSize();
    if (m_row) {
        for (const ZrValueTile* tile : qAsConst(*m_row))
            size = std::min(size, tile->FittingSize());
    }
    return size;
}

void ZrValueTile::resizeEvent(QResizeEvent* /*event*/)
{
    Refit();
}

void ZrValueTile::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ZrTheme::toolBack);
    painter.drawRoundedRect(rect(), ZrTheme::rxy, ZrTheme::rxy);
    const QColor colour = ColourOf(m_state);
    if (m_state != normal)
        painter.fillRect(QRect(0, ZrTheme::rxy, ZrTheme::DpI(4), height() - 2 * ZrTheme::rxy), colour);
    const QRect area = Area();
    const QFont small = ZrLegible::Font(15);
    painter.setFont(small);
    painter.setPen(ZrTheme::bodyCol);
    const QFontMetrics smallSize = painter.fontMetrics();
    const bool isFlat = IsFlat(area);
    painter.drawText(area, Qt::AlignLeft | (isFlat ? Qt::AlignVCenter : Qt::AlignTop),
        smallSize.elidedText(m_caption, Qt::ElideRight, area.width()));
    if (!m_note.isEmpty() && !isFlat && (m_hasNoteRoom || HasNoteRoom(area))) {
        painter.drawText(area, Qt::AlignLeft | Qt::AlignBottom,
            smallSize.elidedText(m_note, Qt::ElideRight, area.width()));
    }
    const QRect middle = ValueArea();
    const QString value = Number();
    const QString unit = UnitBeside();
    m_shownSize = ValueSize();
    QFont large = ZrTheme::fontHuge;
    large.setPixelSize(m_shownSize);
    painter.setFont(large);
    // What is not known draws no eyes.
    painter.setPen(value == dash && m_state == normal ? ZrTheme::bodyCol : colour);
    const QFontMetrics largeSize = painter.fontMetrics();
    const int unitWidth = unit.isEmpty() ? 0 : smallSize.horizontalAdvance(unit) + ZrTheme::DpI(6);
    const int wide = largeSize.horizontalAdvance(value);
    const int x = isFlat ? std::max(middle.right() + 1 - wide - unitWidth, middle.x()) : middle.x();
    painter.drawText(
        QRect(x, middle.y(), wide + 1, middle.height()), Qt::AlignLeft | Qt::AlignVCenter, value);
    if (unit.isEmpty())
        return;
    const int baseline = middle.center().y() + (largeSize.ascent() - largeSize.descent()) / 2 + 1;
    painter.setFont(small);
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(x + wide + ZrTheme::DpI(6), baseline, unit);
}

void ZrValueTile::mousePressEvent(QMouseEvent* event)
{
    event->setAccepted(event->button() == Qt::LeftButton);
}

void ZrValueTile::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->pos()))
        Q_EMIT Clicked();
}
