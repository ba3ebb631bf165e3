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
    case ZrValueTile::normal:
        break;
    }
    return ZrTheme::ctrlCol;
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
    update();
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
    update();
}

void ZrValueTile::SetNoteRoom(bool hasRoom)
{
    if (hasRoom == m_hasNoteRoom)
        return;
    m_hasNoteRoom = hasRoom;
    update();
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
    const int margin = ZrTheme::DpI(12);
    const QRect area = rect().adjusted(margin, ZrTheme::DpI(6), -margin, -ZrTheme::DpI(6));
    const QFont small = ZrLegible::Font(15);
    painter.setFont(small);
    painter.setPen(ZrTheme::bodyCol);
    const QFontMetrics smallSize = painter.fontMetrics();
    painter.drawText(
        area, Qt::AlignLeft | Qt::AlignTop, smallSize.elidedText(m_caption, Qt::ElideRight, area.width()));
    int bottom = area.bottom();
    if (!m_note.isEmpty()) {
        painter.drawText(area, Qt::AlignLeft | Qt::AlignBottom,
            smallSize.elidedText(m_note, Qt::ElideRight, area.width()));
    }
    if (!m_note.isEmpty() || m_hasNoteRoom)
        bottom -= smallSize.height();
    const QRect middle(area.x(), area.y() + smallSize.height(), area.width(),
        std::max(bottom - area.y() - smallSize.height(), 1));
    const QString value = Number();
    const QString unit = m_value.isEmpty() || IsAngle() ? QString() : m_unit;
    QFont large = ZrTheme::fontHuge;
    large.setPixelSize(std::clamp(middle.height() * 9 / 10, ZrLegible::LeastText, ZrLegible::Px(36)));
    const int unitWidth = unit.isEmpty() ? 0 : smallSize.horizontalAdvance(unit) + ZrTheme::DpI(6);
    // A long value, for instance a position, is made to fit rather than cut.
    const int valueWidth = QFontMetrics(large).horizontalAdvance(value);
    const int room = std::max(middle.width() - unitWidth, 1);
    if (valueWidth > room)
        large.setPixelSize(std::max(large.pixelSize() * room / valueWidth, ZrLegible::LeastText));
    painter.setFont(large);
    // What is not known draws no eyes.
    painter.setPen(value == dash && m_state == normal ? ZrTheme::bodyCol : colour);
    painter.drawText(middle, Qt::AlignLeft | Qt::AlignVCenter, value);
    const QFontMetrics largeSize = painter.fontMetrics();
    if (unit.isEmpty())
        return;
    const int baseline = middle.center().y() + (largeSize.ascent() - largeSize.descent()) / 2 + 1;
    painter.setFont(small);
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(middle.x() + largeSize.horizontalAdvance(value) + ZrTheme::DpI(6), baseline, unit);
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
