#include "Desk.h"

#include "ZrKit/review/ZrTimeText.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrKit/ui/ZrNumberText.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QApplication>
#include <QEvent>
#include <QFileInfo>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

QImage Icon(const char* name)
{
    return QImage(QStringLiteral(":/icons/%1.png").arg(QLatin1String(name)));
}

ZrListItem Row(const QString& title, const QString& subtitle, const QImage& icon = QImage())
{
    ZrListItem item;
    item.title = title;
    item.subtitle = subtitle;
    item.image = icon;
    return item;
}

int Gap()
{
    return ZrTheme::DpI(16);
}

int TitleHeight()
{
    return ZrTheme::DpI(64);
}

} // namespace

Desk::Desk()
{
    setWindowTitle(tr("Dives"));
    m_goTo->icon = Icon("time");
    m_light->icon = Icon("day");
    m_open->icon = Icon("open");
    m_list->m_empty = tr("No dive is left");
    ZrValueTile::SetRow({m_time, m_depth, m_altitude, m_heading});
    m_plots->SetTimeLine(&m_bar->Line());
    m_files->SetFolder(QStringLiteral("."));
    m_choice->SetItems(
        {Row(ZrColourScheme::Name(ZrColourScheme::day), tr("Light, for the sun"), Icon("day")),
            Row(ZrColourScheme::Name(ZrColourScheme::dusk), tr("Dark, for rooms"), Icon("dusk")),
            Row(ZrColourScheme::Name(ZrColourScheme::night), tr("Red, keeps the eyes adapted"),
                Icon("night"))},
        ZrColourScheme::Current());
    Connect();
    for (int number = 1; number <= 6; ++number)
        m_dives.push_back(std::make_shared<Dive>(number));
    ShowDives();
    m_list->SetCurrent(0);
    ShowDive(0);
}

void Desk::Connect()
{
    connect(m_list, &ZrTouchList::Chosen, this, &Desk::ShowDive);
    connect(m_list, &ZrTouchList::Held, this, &Desk::Remove);
    connect(m_bar, &ZrTimeBar::Scrubbed, this, &Desk::GoTo);
    connect(m_bar, &ZrTimeBar::ViewChanged, m_plots, qOverload<>(&QWidget::update));
    connect(m_bar, &ZrTimeBar::EventTapped, this, [this](int event) {
        GoTo(m_dive->times->FromLog(m_dive->events[std::size_t(event)], m_bar->Cursor()));
    });
    connect(m_plots, &ZrPlotPanel::Scrubbed, this, &Desk::GoTo);
    connect(m_plots, &ZrPlotPanel::ZoomWanted, m_bar, &ZrTimeBar::Zoom);
    connect(m_plots, &ZrPlotPanel::PanWanted, m_bar, &ZrTimeBar::Pan);
    connect(m_goTo, &ZrBtn::Clicked, this, &Desk::AskTime);
    connect(m_light, &ZrBtn::Clicked, m_choice, &ZrOverlay::Open);
    connect(m_choice, &ZrChoicePanel::Chosen, this, &Desk::SetColours);
    connect(m_open, &ZrBtn::Clicked, m_files, &ZrOverlay::Open);
    connect(m_files, &ZrFilePanel::FileChosen, this, &Desk::Open);
    // Its height depends on its text.
    connect(m_banner, &ZrBanner::Changed, this, &Desk::Place);
}

void Desk::ShowDives()
{
    QVector<ZrListItem> items;
    for (const auto& dive : m_dives) {
        ZrListItem item = Row(tr("Dive %1").arg(dive->number),
            ZrTimeText::DateClock(dive->times->LogTime(dive->times->Begin())));
        item.detail = ZrTimeText::Elapsed(dive->times->End() - dive->times->Begin());
        items.append(item);
    }
    m_list->SetItems(items);
}

void Desk::ShowDive(int row)
{
    m_bar->SetProfile(nullptr);
    m_plots->SetPlots({});
    m_dive = row >= 0 && row < int(m_dives.size()) ? m_dives[std::size_t(row)] : nullptr;
    m_goTo->setEnabled(m_dive != nullptr);
    if (!m_dive) {
        m_bar->SetLog(nullptr);
        return GoTo(std::nan(""));
    }
    m_bar->SetLog(m_dive->times);
    m_bar->SetProfile(&m_dive->depth);
    std::vector<double> events;
    for (const double time : m_dive->events)
        events.push_back(m_dive->times->FromLog(time, m_dive->times->Begin()));
    m_bar->SetEvents(events);
    m_plots->SetPlots(
        {{tr("Depth and seabed"), ZrPlotPanel::length, true,
             {{&m_dive->depth, QColor(), tr("depth")}, {&m_dive->seabed, ZrTheme::warnCol, tr("seabed")}}},
            {tr("Heading"), ZrPlotPanel::angle, false, {{&m_dive->heading, QColor(), QString()}}}});
    GoTo((m_dive->times->Begin() + m_dive->times->End()) / 2.0);
}

void Desk::GoTo(double steady)
{
    m_bar->SetCursor(steady);
    m_plots->SetCursor(steady);
    if (!m_dive) {
        for (ZrValueTile* tile : {m_time, m_depth, m_altitude, m_heading})
            tile->Set(QString(), QString());
        return;
    }
    const auto depth = static_cast<double>(m_dive->depth.ValueAt(steady));
    const double altitude = static_cast<double>(m_dive->seabed.ValueAt(steady)) - depth;
    m_time->Set(ZrTimeText::Clock(m_dive->times->LogTime(steady)), QString());
    m_depth->Set(ZrUnits::GetShortLengthString(depth, 1, false), ZrUnits::GetShortLengthUnits());
    m_altitude->Set(ZrUnits::GetShortLengthString(altitude, 1, false), ZrUnits::GetShortLengthUnits());
    m_altitude->SetState(altitude < 5.0 ? ZrValueTile::warning : ZrValueTile::normal);
    m_heading->Set(ZrNumberText::Heading(static_cast<double>(m_dive->heading.ValueAt(steady)), 0),
        QString(QChar(0x00B0)));
}

void Desk::Remove(int row)
{
    const std::shared_ptr<Dive> dive = m_dives[std::size_t(row)];
    m_dives.erase(m_dives.begin() + row);
    ShowDives();
    ShowDive(m_list->Current());
    m_toast->Show(tr("Dive %1 removed").arg(dive->number), tr("Undo"), [this, dive, row] {
        m_dives.insert(m_dives.begin() + std::min(row, int(m_dives.size())), dive);
        ShowDives();
        m_list->SetCurrent(row);
        ShowDive(row);
    });
}

void Desk::AskTime()
{
    m_ask->Ask(tr("Go to"), tr("12:34:56, or +90 for so many seconds on"), QString(),
        [this](const QString& text) { return Typed(text); });
}

QString Desk::Typed(const QString& text)
{
    const ZrSteadyTime& times = *m_dive->times;
    const ZrTimeText::Range range{
        times.LogTime(times.Begin()), times.LogTime(times.End()), times.LogTime(m_bar->Cursor())};
    double time = 0.0;
    QString error;
    if (!ZrTimeText::Parse(text, range, time, error))
        return error;
    GoTo(times.FromLog(time, m_bar->Cursor()));
    return {};
}

void Desk::Open(const QString& path)
{
    m_banner->Show(ZrBanner::warning, tr("%1 is not opened").arg(QFileInfo(path).fileName()),
        tr("This window shows controls, and reads no files."));
}

void Desk::SetColours(int scheme)
{
    ZrColourScheme::Apply(scheme);
    qApp->setStyleSheet(ZrTheme::GetStylesheet(QStringLiteral(":/css/AppView.css")));
    m_choice->SetItems(m_choice->Items(), scheme);
    m_list->Restyle();
    m_banner->Restyle();
    m_bar->Restyle();
    for (ZrOverlay* panel : std::initializer_list<ZrOverlay*>{m_ask, m_choice, m_files})
        panel->Restyle();
    if (m_dive)
        ShowDive(m_list->Current());
    update();
}

void Desk::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), ZrTheme::formBack);
    painter.setFont(ZrLegible::Font(24));
    painter.setPen(ZrTheme::titleText);
    painter.drawText(
        QRect(Gap(), 0, width(), TitleHeight()), Qt::AlignVCenter | Qt::AlignLeft, windowTitle());
}

void Desk::resizeEvent(QResizeEvent* /*event*/)
{
    ZrTheme::SetAppSize(float(width()), float(height()));
    Place();
}

bool Desk::event(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest)
        Place();
    return QWidget::event(event);
}

void Desk::Place()
{
    const int gap = Gap();
    const int left = ZrTheme::DpI(320);
    int y = height();
    for (ZrEntryBtn* entry : {m_open, m_light, m_goTo}) {
        const int high = entry->sizeHint().height();
        y -= high + gap;
        entry->setGeometry(gap, y, left, high);
    }
    m_list->setGeometry(gap, TitleHeight(), left, y - gap - TitleHeight());

    const int x = left + 2 * gap;
    const int wide = width() - x - gap;
    y = TitleHeight();
    const int told = m_banner->HeightFor(wide);
    m_banner->setGeometry(x, y, wide, told);
    y += told > 0 ? told + gap : 0;
    const int tile = (wide - 3 * gap) / 4;
    const int high = ZrTheme::DpI(96);
    int at = x;
    for (ZrValueTile* value : {m_time, m_depth, m_altitude, m_heading}) {
        value->setGeometry(at, y, tile, high);
        at += tile + gap;
    }
    y += high + gap;
    const int bar = ZrTheme::DpI(ZrTimeBar::Height);
    m_bar->setGeometry(x, height() - bar - gap, wide, bar);
    m_plots->setGeometry(x, y, wide, m_bar->y() - gap - y);
    m_toast->Place();
}
