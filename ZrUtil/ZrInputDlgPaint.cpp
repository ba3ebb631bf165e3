// How the keyboard on the screen is painted.

#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrInputDlg.h"
#include "ZrUtil/ZrTheme.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace {

// Design pixels.
constexpr float smallText = 18.0F;
constexpr float leastText = 11.0F; ///< a longer text ends in an ellipsis
constexpr float fieldText = 34.0F;
constexpr float digitText = 32.0F;
constexpr float letterText = 28.0F;
constexpr float markText = 40.0F; ///< of points, quotes and the like: small signs
constexpr float wordText = 20.0F;
constexpr float signSide = 34.0F;

QColor Opaque(QColor colour)
{
    colour.setAlpha(255);
    return colour;
}

QColor PanelCol()
{
    return ZrCtrlLook::Mixed(ZrTheme::formBack, ZrTheme::toolBack, 0.35);
}

/// White letters on it have a contrast of 7.8 in the standard style.
QColor AlarmCol()
{
    return ZrCtrlLook::Mixed(ZrTheme::errorCol, ZrTheme::formBack, 1.0 / 3);
}

/// Readable on the panel, unlike pure red.
QColor AlarmTextCol()
{
    return ZrCtrlLook::Mixed(ZrTheme::errorCol, ZrTheme::ctrlCol, 0.45);
}

/// Relative luminance (WCAG 2.1): 0 for black, 1 for white.
double Luminance(const QColor& colour)
{
    const auto linear
        = [](double part) { return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

/// Of the letters of controls and the ground of forms the one that is easier to read on \p fill: a theme may
/// have a highlight as bright as its letters.
QColor LettersOn(const QColor& fill)
{
    const double at = Luminance(fill) + 0.05;
    const auto contrast = [at](const QColor& letters) {
        const double other = Luminance(letters) + 0.05;
        return std::max(at, other) / std::min(at, other);
    };
    const QColor ground = Opaque(ZrTheme::formBack);
    return contrast(ZrTheme::ctrlCol) >= contrast(ground) ? ZrTheme::ctrlCol : ground;
}

/// Signs that are lost on a key at the size of letters.
bool IsMark(const QString& label)
{
    return label.size() == 1 && QString::fromUtf8(".,'\"`°-−").contains(label);
}

float TextSize(const QString& label)
{
    if (label.size() > 1)
        return wordText;
    if (IsMark(label))
        return markText;
    return label.at(0).isDigit() || label.at(0) == QChar(0x00B1) ? digitText : letterText;
}

void PaintChevron(QPainterPath& path, double x, double half, double towards)
{
    path.moveTo(x - towards * half / 2, -half);
    path.lineTo(x + towards * half / 2, 0);
    path.lineTo(x - towards * half / 2, half);
}

/// The sign of a key that has no picture, around the origin; \p half is half its height.
QPainterPath Sign(eZriAction action, double half)
{
    QPainterPath path;
    const double small = half * 0.6;
    switch (action) {
    case zriLeft:
        PaintChevron(path, 0, small, -1);
        break;
    case zriRight:
        PaintChevron(path, 0, small, 1);
        break;
    case zriStart:
        PaintChevron(path, half * 0.2, small, -1);
        path.moveTo(-half * 0.5, -small);
        path.lineTo(-half * 0.5, small);
        break;
    case zriEnd:
        PaintChevron(path, -half * 0.2, small, 1);
        path.moveTo(half * 0.5, -small);
        path.lineTo(half * 0.5, small);
        break;
    case zriDelete: {
        const double cross = half * 0.26;
        const double middle = half * 0.28;
        path.moveTo(-half, 0);
        path.lineTo(-half * 0.4, -small);
        path.lineTo(half, -small);
        path.lineTo(half, small);
        path.lineTo(-half * 0.4, small);
        path.closeSubpath();
        path.moveTo(middle - cross, -cross);
        path.lineTo(middle + cross, cross);
        path.moveTo(middle - cross, cross);
        path.lineTo(middle + cross, -cross);
        break;
    }
    case zriOk:
        path.moveTo(-half * 0.6, 0);
        path.lineTo(-half * 0.15, half * 0.45);
        path.lineTo(half * 0.65, -half * 0.45);
        break;
    case zriCancel:
        path.moveTo(-half * 0.45, -half * 0.45);
        path.lineTo(half * 0.45, half * 0.45);
        path.moveTo(-half * 0.45, half * 0.45);
        path.lineTo(half * 0.45, -half * 0.45);
        break;
    default:
        break;
    }
    return path;
}

void PaintSign(QPainter& painter, eZriAction action, const QPointF& centre, double side, const QColor& colour)
{
    painter.setPen(QPen(colour, std::max(1.5, side / 11), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(Sign(action, side / 2).translated(centre));
}

/// \p font made smaller until \p text is at most \p room wide, but not below \p least pixels.
QFont Fitting(QFont font, const QString& text, double room, int least)
{
    while (font.pixelSize() > least && QFontMetricsF(font).horizontalAdvance(text) > room)
        font.setPixelSize(font.pixelSize() - 1);
    return font;
}

void DrawFitting(QPainter& painter, const QFont& font, const QString& text, const QRectF& rect, int least,
    const QTextOption& where)
{
    const QFont fitting = Fitting(font, text, rect.width(), least);
    QTextOption option(where);
    option.setWrapMode(QTextOption::NoWrap);
    painter.setFont(fitting);
    painter.drawText(rect, QFontMetricsF(fitting).elidedText(text, Qt::ElideRight, rect.width()), option);
}

} // namespace

QFont ZrInputDlg::Sized(float design) const
{
    QFont font(ZrTheme::ctrlFont);
    font.setPixelSize(Px(design));
    return font;
}

void ZrInputDlg::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double line = std::max(1.0, static_cast<double>(m_unit));
    const double radius = Px(12.0F);
    painter.setPen(QPen(ZrTheme::ctrlOutlineCol, line));
    painter.setBrush(PanelCol());
    painter.drawRoundedRect(
        QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2), radius, radius);
    DrawDisplay(painter, DisplayRect());
    for (std::size_t i = 0; i < m_items.size(); ++i)
        PaintItem(painter, static_cast<int>(i));
}

void ZrInputDlg::DrawDisplay(QPainter& painter, QRect rect)
{
    painter.setRenderHint(QPainter::Antialiasing);
    const int lineHeight = Px(28.0F);
    const QRect head(rect.left(), rect.top(), rect.width(), lineHeight);
    const QRect foot(rect.left(), rect.bottom() + 1 - lineHeight, rect.width(), lineHeight);
    const int gap = Px(5.0F);
    const QRect field(
        rect.left(), head.bottom() + 1 + gap, rect.width(), foot.top() - gap - head.bottom() - 1 - gap);
    PaintHead(painter, head);
    PaintField(painter, field);
    PaintFoot(painter, foot);
}

/// The caption, and "Range Error" or "Error" at its right.
void ZrInputDlg::PaintHead(QPainter& painter, const QRect& rect)
{
    const QFont font = Sized(smallText);
    const int least = Px(leastText);
    QRectF room = rect;
    if (state != 1) {
        const QString word = IsRangeError() ? tr("Range Error") : tr("Error");
        QFont bold = font;
        bold.setWeight(QFont::DemiBold);
        bold = Fitting(bold, word, rect.width() * 0.6, least);
        const double inset = Px(10.0F);
        const double mark = Px(18.0F);
        const double wide = QFontMetricsF(bold).horizontalAdvance(word) + 2 * inset + mark;
        const QRectF badge(rect.right() + 1 - wide, rect.top(), wide, rect.height());
        painter.setPen(Qt::NoPen);
        painter.setBrush(AlarmCol());
        painter.drawRoundedRect(badge, badge.height() / 2, badge.height() / 2);
        const QColor letters = LettersOn(AlarmCol());
        painter.setPen(letters);
        painter.setFont(bold);
        painter.drawText(badge.adjusted(inset + mark, 0, -inset / 2, 0), word, ZrTheme::left);
        // A ring with an exclamation mark says it to who does not see red.
        const double ring = mark * 0.8;
        QRectF circle(badge.left() + inset * 0.7, badge.center().y() - ring / 2, ring, ring);
        painter.setBrush(letters);
        painter.setPen(Qt::NoPen);
        painter.drawEllipse(circle);
        bold.setPixelSize(std::max(1, qRound(ring * 0.85)));
        bold.setWeight(QFont::Bold);
        painter.setFont(bold);
        painter.setPen(AlarmCol());
        painter.drawText(circle, QStringLiteral("!"), ZrTheme::centre);
        room.setRight(badge.left() - inset);
    }
    painter.setPen(Opaque(ZrTheme::bodyCol));
    DrawFitting(painter, font, caption, room, least, ZrTheme::left);
}

void ZrInputDlg::PaintFoot(QPainter& painter, const QRect& rect)
{
    QString below = Range();
    if (state != 1 && !IsRangeError() && m_control)
        below = m_control->RefusalText(text);
    painter.setPen(state == 1 ? Opaque(ZrTheme::bodyCol) : AlarmTextCol());
    DrawFitting(painter, Sized(smallText), below, rect, Px(leastText), ZrTheme::left);
}

void ZrInputDlg::PaintField(QPainter& painter, const QRect& rect)
{
    ZrCtrlState plain;
    ZrCtrlLook look = ZrCtrlLook::Of(plain);
    look.fill = Opaque(ZrTheme::formBack);
    look.outlineWidth = std::max(1.0, 2.0 * static_cast<double>(m_unit));
    look.outline = state == 1 ? ZrTheme::ctrlOutlineCol : AlarmTextCol();
    look.PaintFrame(painter, rect, Px(8.0F));
    const int inset = Px(14.0F);
    QRect line = rect.adjusted(inset, 0, -inset, 0);
    const QString unit = m_control ? m_control->UnitText() : QString();
    if (!unit.isEmpty()) {
        const QFont font = Fitting(Sized(24.0F), unit, line.width() / 2.0, Px(leastText));
        painter.setFont(font);
        painter.setPen(Opaque(ZrTheme::bodyCol));
        painter.drawText(line, unit, ZrTheme::right);
        line.setRight(line.right() - qRound(QFontMetricsF(font).horizontalAdvance(unit)) - inset);
    }
    PaintText(painter, line);
}

/// The text with the cursor. A long one slides, so that the cursor stays in view.
void ZrInputDlg::PaintText(QPainter& painter, const QRect& line)
{
    const int at = std::clamp(cursor, 0, text.size());
    QString shown = text;
    shown.insert(at, m_preedit);
    // One line, with the same number of characters.
    for (QChar& c : shown) {
        if (c == QLatin1Char('\n') || c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
            c = QLatin1Char(' ');
    }
    QTextLayout layout(shown, Sized(fieldText));
    QTextOption option(Qt::AlignLeft);
    option.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine whole = layout.createLine();
    if (whole.isValid())
        whole.setLineWidth(1e6);
    layout.endLayout();
    if (!m_preedit.isEmpty()) {
        QTextLayout::FormatRange range;
        range.start = at;
        range.length = m_preedit.size();
        range.format.setFontUnderline(true);
        layout.setFormats({range});
        layout.beginLayout();
        whole = layout.createLine();
        whole.setLineWidth(1e6);
        layout.endLayout();
    }
    const double thick = std::max(2, Px(2.5F));
    const double before = whole.isValid() ? whole.cursorToX(at + m_preedit.size()) : 0.0;
    const double high = QFontMetricsF(Sized(fieldText)).height();
    const double slide = std::max(0.0, before + thick - line.width());
    const double top = line.top() + (line.height() - high) / 2;
    painter.save();
    painter.setClipRect(line.adjusted(-Px(2.0F), 0, Px(2.0F), 0));
    // What the next key replaces is dim.
    painter.setPen(
        m_isFresh ? ZrCtrlLook::Mixed(ZrTheme::formBack, ZrTheme::ctrlCol, 0.62) : ZrTheme::ctrlCol);
    layout.draw(&painter, QPointF(line.left() - slide, top));
    painter.fillRect(QRectF(line.left() - slide + before, top, thick, high), ZrTheme::seabed);
    painter.restore();
}

void ZrInputDlg::PaintItem(QPainter& painter, int i)
{
    const ZrInputItem& item = m_items[static_cast<std::size_t>(i)];
    ZrCtrlState key;
    key.pressed = IsHeld(i);
    key.hovered = i == m_hot;
    key.on = item.action == zriCaps && m_caps;
    key.enabled = item.enabled && (item.action != zriOk || state == 1);
    ZrCtrlLook look = ZrCtrlLook::Of(key);
    // Thinner than those of buttons, since there are many; each state has its own at every scale.
    look.outlineWidth = Px(1.0F) * (key.enabled && key.pressed ? 3 : key.enabled && key.hovered ? 2 : 1);
    if (key.enabled && !key.pressed && !key.on) {
        if (item.action == zriOk) {
            look.fill = Opaque(ZrTheme::ctrlHighlightCol);
            look.text = LettersOn(look.fill);
        } else if (item.action == zriKey)
            look.fill = ZrCtrlLook::Mixed(ZrTheme::toolBack, ZrTheme::ctrlCol, 0.07);
    }
    look.PaintFrame(painter, item.rect, Px(8.0F));
    if (key.on)
        look.PaintBar(painter, item.rect);

    QRectF inside = item.rect;
    inside.translate(0, look.shift);
    const QString label = Label(item);
    const double side = Px(signSide);
    if (item.label.isEmpty() && !item.picture.isNull()) {
        QRectF at(0, 0, side, side);
        at.moveCenter(inside.center());
        ZrCtrlLook::PaintIcon(painter, at, item.picture, look.text);
        return;
    }
    const bool isClosing = item.action == zriOk || item.action == zriCancel;
    if (label.isEmpty()) {
        PaintSign(painter, item.action, inside.center(), side, look.text);
        return;
    }
    QFont font = Sized(TextSize(label));
    if (IsMark(label))
        font.setWeight(QFont::DemiBold);
    const double pad = Px(6.0F);
    inside.adjust(pad, 0, -pad, 0);
    font = Fitting(font, label, inside.width() - (isClosing ? side : 0.0), 4);
    if (isClosing) {
        // Sign and word together in the middle.
        const double wide = QFontMetricsF(font).horizontalAdvance(label);
        const double left = inside.center().x() - (side + wide) / 2;
        PaintSign(painter, item.action, QPointF(left + side / 2 - pad / 2, inside.center().y()), side * 0.8,
            look.text);
        inside.setLeft(left + side);
        inside.setRight(left + side + wide + 1);
    }
    painter.setPen(look.text);
    painter.setFont(font);
    QTextOption option(ZrTheme::centre);
    option.setWrapMode(QTextOption::NoWrap);
    painter.drawText(inside, label, option);
}
