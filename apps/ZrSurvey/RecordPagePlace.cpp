// Where things are on the page "Record", and what it paints itself.

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/map/ZrWaterfallOverlay.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/RecordPage.h"
#include "apps/ZrSurvey/StateBanner.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QPainter>

#include <algorithm>

namespace {

/// Over the picture, which is dark by day too.
const QColor scaleColour(235, 240, 245);
const QColor bottomColour(64, 224, 255);

/// The theme's, where it is not too small to be read.
QFont TextFont()
{
    QFont font = ZrTheme::font;
    font.setPixelSize(std::max(font.pixelSize(), ZrLegible::LeastText));
    return font;
}

void PlaceButton(ZrBtn& button, const QRect& at)
{
    button.setGeometry(at);
    button.font = TextFont();
    button.Changed();
}

void PaintEmpty(QPainter& painter, const QRect& area, const QString& text)
{
    painter.setFont(TextFont());
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, text);
}

void PaintBottom(QPainter& painter, const ZrWaterfallLayout& layout, double penWidth)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(ZrColourScheme::OverPicture(bottomColour), std::max(penWidth, 1.0)));
    for (const QPolygonF& line : ZrWaterfallOverlay::Bottom(layout))
        painter.drawPolyline(line);
    painter.restore();
}

} // namespace

void RecordPage::Place()
{
    const int gap = Gap();
    QRect area = Content().adjusted(gap, gap, -gap, -gap);
    const int bar = ZrTheme::DpI(88);
    PlaceBar(QRect(area.x(), area.y(), area.width(), bar));
    const int events = std::max(ZrTheme::DpI(72), 44);
    PlaceEvents(QRect(area.x(), area.bottom() + 1 - events, area.width(), events));
    area.adjust(0, bar + gap, 0, -events - gap);
    const int told = m_banner->HeightFor(area.width());
    m_banner->setGeometry(area.x(), area.y(), area.width(), told);
    area.setTop(area.top() + told + (told > 0 ? gap : 0));
    const int column = ZrTheme::DpI(168);
    PlaceInstruments(QRect(area.x(), area.y(), column, area.height()));
    area.setLeft(area.left() + column + gap);
    const int sonar = area.width() * 2 / 5;
    m_map.m_pixelFactor = qRound(devicePixelRatioF());
    m_mapPanel->setGeometry(area.adjusted(0, 0, -sonar - gap, 0));
    PlaceSonar(QRect(area.right() + 1 - sonar, area.y(), sonar, area.height()));
    const int side = std::max(ZrTheme::DpI(64), 44);
    const QRect mapArea = m_mapPanel->geometry();
    // Arrow, scale and the values of the grid stay clear of the tools.
    m_map.m_grid.SetMargins(QMarginsF(0.0, 0.0, (side + gap) * devicePixelRatioF(), 0.0));
    int y = mapArea.y() + gap;
    for (ZrBtn* tool : qAsConst(m_mapTools)) {
        tool->setGeometry(mapArea.right() + 1 - side - gap, y, side, side);
        tool->Changed();
        y += side + gap;
    }
}

void RecordPage::PlaceSonar(const QRect& area)
{
    const int side = std::max(ZrTheme::DpI(64), 44);
    m_sonarHead = QRect(area.x(), area.y(), area.width(), side);
    m_sonarPanel->setGeometry(area.adjusted(0, side, 0, 0));
    int x = area.right() + 1 - static_cast<int>(m_sonarTools.size()) * side;
    for (ZrBtn* tool : qAsConst(m_sonarTools)) {
        tool->setGeometry(x, area.y(), side, side);
        tool->Changed();
        x += side;
    }
}

void RecordPage::PlaceBar(const QRect& area)
{
    const int gap = Gap();
    const int record = ZrTheme::DpI(240);
    // As wide as its words are at this size of letters.
    const int source = ZrTheme::DpI(272) * TextFont().pixelSize() / ZrTheme::font.pixelSize();
    m_record->setGeometry(area.x(), area.y(), record, area.height());
    m_record->font = ZrTheme::fontLarge;
    m_record->Changed();
    PlaceButton(*m_source, QRect(area.right() + 1 - source, area.y(), source, area.height()));
    const int count = m_figures.size();
    const int room = area.width() - record - source - (count + 1) * gap;
    int x = area.x() + record + gap;
    for (int i = 0; i < count; ++i) {
        const int width = room * (i + 1) / count - room * i / count;
        m_figures[i]->setGeometry(x, area.y(), width, area.height());
        m_figures[i]->SetNoteRoom(true);
        x += width + gap;
    }
}

void RecordPage::PlaceInstruments(const QRect& area)
{
    const int gap = Gap();
    const int count = m_instruments.size();
    // All of one height, for their values to be alike: what is over goes between them.
    const int height = (area.height() - (count - 1) * gap) / count;
    for (int i = 0; i < count; ++i) {
        const int y = area.y() + (area.height() - height) * i / (count - 1);
        m_instruments[i]->setGeometry(area.x(), y, area.width(), height);
    }
}

void RecordPage::PlaceEvents(const QRect& area)
{
    const int gap = Gap();
    const int add = ZrTheme::DpI(168);
    const int note = area.width() / 5;
    PlaceButton(*m_addNote, QRect(area.right() + 1 - add, area.y(), add, area.height()));
    m_note->setGeometry(area.right() + 1 - add - gap - note, area.y(), note, area.height());
    const int count = m_events.size();
    const int room = area.width() - add - note - (count + 1) * gap;
    int x = area.x();
    for (int i = 0; i < count; ++i) {
        const int width = room * (i + 1) / count - room * i / count;
        m_events[i]->lines = 2;
        PlaceButton(*m_events[i], QRect(x, area.y(), width, area.height()));
        x += width + gap;
    }
}

void RecordPage::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    // All but the map and the waterfall, which are drawn below.
    const QRegion shown = QRegion(m_mapPanel->geometry()) + m_sonarPanel->geometry();
    painter.setClipRegion(QRegion(rect()) - shown);
    painter.fillRect(rect(), ZrTheme::formBack);
    painter.end();
    SurveyPage::paintEvent(event);
    QPainter over(this);
    if (!m_map.m_way.Grid())
        PaintEmpty(over, m_mapPanel->geometry(), tr("No position yet"));
    PaintSonar(over);
}

void RecordPage::PaintSonar(QPainter& painter) const
{
    painter.setPen(Qt::NoPen);
    painter.fillRect(m_sonarHead, ZrTheme::toolBack);
    const int tools = m_sonarTools.isEmpty() ? m_sonarHead.right() : m_sonarTools.front()->x();
    const QRect label = m_sonarHead.adjusted(Gap(), 0, tools - m_sonarHead.right() - Gap(), 0);
    const QStringList look = SonarText();
    const QRect upper(label.x(), label.y(), label.width(), label.height() / 2);
    painter.setFont(TextFont());
    const QFontMetrics metrics = painter.fontMetrics();
    painter.setPen(ZrTheme::ctrlCol);
    painter.drawText(upper, Qt::AlignLeft | Qt::AlignBottom,
        metrics.elidedText(look.first(), Qt::ElideRight, label.width()));
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(
        upper.translated(0, label.height() - upper.height()), Qt::AlignLeft | Qt::AlignTop, look.last());

    const QRect sonar = m_sonarPanel->geometry();
    painter.setClipRect(sonar);
    if (m_waterfall.Ring().End() <= 0) {
        PaintEmpty(painter, sonar, tr("No sonar data"));
        return;
    }
    const double ratio = devicePixelRatioF();
    painter.translate(sonar.topLeft());
    painter.scale(1.0 / ratio, 1.0 / ratio);
    const ZrWaterfallLayout& layout = m_sonarLayer.Layout();
    // The brightest thing on the screen would take the eyes their night sight; what is written over it has
    // the night's ink.
    if (ZrColourScheme::Current() == ZrColourScheme::night)
        painter.fillRect(layout.View().rect, QColor(30, 0, 0, 150));
    if (View().Model().settings.bottom)
        PaintBottom(painter, layout, 1.2 * ratio);
    QFont font = ZrTheme::font;
    font.setPixelSize(qRound(ZrLegible::Px(14) * ratio));
    ZrWaterfallOverlay::PaintScale(painter, layout, font, ZrColourScheme::OverPicture(scaleColour));
}

/// The event buttons and the note, and the scales of map and waterfall above them.
int RecordPage::FreeBelow() const
{
    return height() - m_note->y() + ZrTheme::DpI(ZrGridLayer::ScaleRoom);
}
