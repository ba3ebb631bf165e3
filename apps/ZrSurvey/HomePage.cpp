#include "apps/ZrSurvey/HomePage.h"

#include "ZrKit/ui/ZrEntryBtn.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/StateBanner.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveySource.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int mostRecordings = 20000;
constexpr int mostPreviews = 100; ///< that are made without being asked for
constexpr int mostPictures = 8192; ///< kB
constexpr int leaveMs = 30000; ///< a page that is left for longer has no more previews made
constexpr int smallest = 14; ///< pixels of a text
constexpr int tickMs = 1000;
constexpr int ticksPerListing = 10;
constexpr qint64 megabyte = 1000000;
constexpr double shortest = 5.0; ///< seconds of a recording that its rate is told from

void Show(ZrValueTile& tile, const HomeState::Tile& state)
{
    tile.Set(state.value, state.unit);
    tile.SetNote(state.note);
    tile.SetState(state.state);
    tile.setToolTip(state.hint);
}

double Age(const QElapsedTimer& clock)
{
    return clock.isValid() ? static_cast<double>(clock.elapsed()) * 1e-3
                           : std::numeric_limits<double>::quiet_NaN();
}

} // namespace

HomePage::HomePage(SurveyView& view)
    : SurveyPage(view, QStringLiteral("ZrSurvey"))
    , m_position(new ZrValueTile(this, tr("Position")))
    , m_data(new ZrValueTile(this, tr("Vehicle data")))
    , m_recording(new ZrValueTile(this, tr("Recording")))
    , m_space(new ZrValueTile(this, tr("Free space")))
    , m_banner(new StateBanner(this, view))
    , m_list(new ZrTouchList(this))
    , m_recordings(new ZrRecordingList(this))
    , m_previews(new ZrRecordingPreviews(this))
    , m_pictures(mostPictures)
    , m_leave(new QTimer(this))
    , m_tick(new QTimer(this))
{
    m_back->hide();
    m_hasBackground = false;
    const auto page
        = [this](const char* name) { return [this, name] { View().Show(QString::fromLatin1(name)); }; };
    AddEntry(QStringLiteral("plan"), tr("Plan"), tr("Areas, lines and routes"), tr("F2"), page("Plan"));
    AddEntry(QStringLiteral("record"), tr("Record"), tr("Run the survey"), tr("F3"), page("Record"));
    AddEntry(QStringLiteral("review"), tr("Review"), tr("Replay and measure"), tr("F4"), page("Review"));
    AddEntry(QStringLiteral("scene"), tr("3D"), tr("Vehicle and sea floor"), tr("F5"), page("Scene"));
    AddEntry(QStringLiteral("settings"), tr("Settings"), tr("Sources, units, colours"), tr("F10"),
        [this] { View().ShowSettings(QString()); });

    m_list->setAccessibleName(tr("Latest recordings"));
    connect(m_list, &ZrTouchList::Chosen, this, [this](int row) {
        if (row >= 0 && row < m_shown.size())
            View().OpenLog(m_shown[row].log.path);
    });
    m_list->m_picture = [this](int row) { return Picture(row); };
    connect(m_recordings, &ZrRecordingList::Listed, this, &HomePage::ShowRecordings);
    connect(m_recordings, &ZrRecordingList::Finished, this, [this] {
        ShowRecordings();
        WantPreviews();
    });
    connect(m_previews, &ZrRecordingPreviews::Made, this, [this](const QString& path) {
        m_pictures.remove(path);
        m_list->viewport()->update();
        if (isVisible())
            ListRecordings(); // its time and length are known as well
    });
    m_leave->setSingleShot(true);
    m_leave->setInterval(leaveMs);
    connect(m_leave, &QTimer::timeout, m_previews, &ZrRecordingPreviews::Cancel);
    const SurveyModel& model = view.Model();
    connect(&model.vehicle, &SurveyVehicle::Changed, this, &HomePage::OnVehicle);
    connect(&model.recording, &SurveyRecording::Changed, this, &HomePage::ShowState);
    connect(&model.recording, &SurveyRecording::Switched, this, [this](bool isOn) {
        // The disk is for the recording.
        if (isOn)
            m_previews->Cancel();
        else if (isVisible())
            ListRecordings();
    });
    connect(&model.feed, &SurveyFeed::Changed, this, &HomePage::ShowState);
    connect(&view, &SurveyView::SettingsChanged, this, [this] {
        ListRecordings();
        ShowState();
        update(HeadingRect());
    });
    const auto settings = [&view](const QString& form) { return [&view, form] { view.ShowSettings(form); }; };
    connect(m_data, &ZrValueTile::Clicked, this,
        settings(QCoreApplication::translate("FormSources", "Source of data")));
    connect(m_tick, &QTimer::timeout, this, &HomePage::OnTick);
    connect(m_banner, &ZrBanner::Changed, this, [this] {
        Place();
        update();
    });
}

void HomePage::AddEntry(const QString& icon, const QString& title, const QString& hint, const QString& key,
    const std::function<void()>& open)
{
    auto* entry = new ZrEntryBtn(this, title, hint);
    entry->setObjectName(QStringLiteral("entry_") + icon);
    entry->icon = QImage(QStringLiteral(":/icons/%1.png").arg(icon));
    entry->setToolTip(QStringLiteral("%1 (%2)").arg(title, key));
    connect(entry, &ZrBtn::Clicked, this, open);
    m_entries.append(entry);
}

void HomePage::OnPageOpen()
{
    ListRecordings();
    ShowState();
}

void HomePage::showEvent(QShowEvent* event)
{
    SurveyPage::showEvent(event);
    m_tick->start(tickMs);
    m_leave->stop();
}

void HomePage::hideEvent(QHideEvent* event)
{
    m_tick->stop();
    m_leave->start();
    SurveyPage::hideEvent(event);
}

void HomePage::OnTick()
{
    ShowState();
    if (++m_ticks % ticksPerListing == 0 && !m_recordings->IsListing())
        ListRecordings();
}

void HomePage::OnVehicle()
{
    const SurveyVehicle& vehicle = View().Model().vehicle;
    if (vehicle.IsLive()) {
        m_dataClock.start();
        if (vehicle.HasNewFix())
            m_fixClock.start();
    }
    // Often, and of no use below another page.
    if (isVisible())
        ShowState();
}

void HomePage::ListRecordings()
{
    m_recordings->List(View().Model().settings.recordDir, mostRecordings);
}

void HomePage::ShowState()
{
    const SurveyModel& model = View().Model();
    const SurveyVehicle& vehicle = model.vehicle;
    const SurveyRecording& recording = model.recording;
    const ZrRecorder::Status& status = recording.Status();
    const bool isOn = recording.IsOn();
    const ZrSourceFacts& feed = model.feed.Facts();
    const bool isAtEnd = feed.state == ZrSourceFacts::finished;
    ::Show(*m_position, HomeState::Position(vehicle.Current(), vehicle.IsLive(), Age(m_fixClock), isAtEnd));
    const bool isSilent = feed.state == ZrSourceFacts::silent; // the tile tells its age itself
    const QString problem = feed.IsBad() && !isSilent ? model.feed.Text() : QString();
    // Data without a position are data of no vehicle.
    const bool isHeard = !vehicle.IsLive() && (isSilent || feed.state == ZrSourceFacts::receiving)
        && std::isfinite(feed.age);
    ::Show(*m_data,
        HomeState::Data(SurveySource::Describe(model.settings), vehicle.IsLive() || isHeard,
            isHeard ? feed.age : Age(m_dataClock), problem, isAtEnd));
    m_data->setToolTip(problem);
    ::Show(*m_recording,
        HomeState::Recording(isOn ? recording.ElapsedText() : QString(), status,
            tr("Folder: %1").arg(QFileInfo(model.settings.recordDir).fileName()), recording.Told().isOver));
    const qint64 room = isOn && status.freeBytes >= 0 ? status.freeBytes : m_recordings->FreeBytes();
    const int least = model.settings.stopBelowMegabytes;
    ::Show(*m_space, HomeState::Space(room, least, recording.Left(room, least * megabyte)));
}

/// Of the latest one that tells how long it is.
void HomePage::TellRate()
{
    double rate = 0.0;
    for (const ZrRecording& recording : m_recordings->Recordings()) {
        if (!(recording.log.duration >= shortest))
            continue;
        rate = static_cast<double>(recording.log.size) / recording.log.duration;
        break;
    }
    View().Model().recording.SetEarlierRate(rate);
}

void HomePage::ShowRecordings()
{
    TellRate();
    ShowState();
    const QString error = m_recordings->Error();
    const QString empty = error.isEmpty()
        ? tr("There are no recordings in this folder yet. Open Record to make the first one, or choose "
             "another folder in Settings, Recording.")
        : tr("%1. Choose another folder in Settings, Recording.").arg(error);
    if (m_list->m_empty != empty) {
        m_list->m_empty = empty;
        m_list->viewport()->update();
    }
    if (m_shown == m_recordings->Recordings() && m_list->Items().size() == m_shown.size())
        return;
    m_shown = m_recordings->Recordings();
    m_pictures.clear();
    QVector<ZrListItem> items;
    for (const ZrRecording& recording : qAsConst(m_shown)) {
        ZrListItem item;
        item.title = QFileInfo(recording.log.path).completeBaseName();
        item.subtitle = HomeState::RecordingText(recording.log);
        item.isPicture = true; // see Picture
        if (recording.log.isDamaged) {
            item.detail = tr("Damaged");
            item.edge = ZrTheme::errorCol;
        }
        items.append(item);
    }
    m_list->SetItems(items);
}

/// The latest ones that have none, unless the vehicle is recording.
void HomePage::WantPreviews()
{
    if (isVisible() && !View().Model().recording.IsOn())
        m_previews->Want(m_shown.mid(0, mostPreviews));
}

QImage HomePage::Picture(int row)
{
    if (row < 0 || row >= m_shown.size())
        return {};
    const QString path = m_shown[row].log.path;
    if (const QImage* known = m_pictures.object(path))
        return *known;
    const QImage made = Preview(m_shown[row]);
    m_pictures.insert(path, new QImage(made), std::max(static_cast<int>(made.sizeInBytes() / 1024), 1));
    return made;
}

/// Where the vehicle went, or a sign where that is not known.
QImage HomePage::Preview(const ZrRecording& recording) const
{
    const double ratio = devicePixelRatioF();
    const int high = qRound(std::max(ZrTheme::DpI(60), 32) * ratio);
    QImage image(high * 3 / 2, high, QImage::Format_ARGB32_Premultiplied);
    image.fill(ZrTheme::sea);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const double side = high * 0.76;
    QRectF box(0, 0, side, side);
    const QPolygonF outline = m_previews->Outline(recording);
    if (outline.isEmpty()) {
        const bool isDamaged = recording.log.isDamaged;
        box.setSize(QSizeF(high, high) * 0.5);
        box.moveCenter(QRectF(image.rect()).center());
        const QImage sign(
            isDamaged ? QStringLiteral(":/icons/warning.png") : QStringLiteral(":/icons/file.png"));
        ZrCtrlLook::PaintIcon(painter, box, sign, isDamaged ? ZrTheme::errorCol : ZrTheme::bodyCol);
        return image;
    }
    const QRectF covered = outline.boundingRect();
    QTransform place;
    place.translate(image.width() / 2.0, high / 2.0);
    place.scale(side, side);
    place.translate(-covered.center().x(), -covered.center().y());
    const QPolygonF track = place.map(outline);
    painter.setPen(
        QPen(ZrTheme::track, std::max(high / 30.0, 1.0), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(track);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ZrTheme::waypoint);
    painter.drawEllipse(track.front(), high / 20.0, high / 20.0);
    return image;
}

void HomePage::OnColours()
{
    m_banner->Restyle();
    m_list->Restyle();
    // The pictures have the colours of before.
    m_pictures.clear();
    m_list->SetItems({});
    ShowRecordings();
    SurveyPage::OnColours();
}

void HomePage::Place()
{
    const int margin = 2 * Gap();
    const QRect area = Content().adjusted(margin, margin, -margin, -margin);
    const int tileHeight = std::max(ZrTheme::DpI(104), 72);
    const int shares = 9; // three of the position, two of each other
    const auto edge = [&](int share) { return area.x() + share * (area.width() + margin) / shares; };
    int share = 0;
    for (ZrValueTile* tile : {m_position, m_data, m_recording, m_space}) {
        const int next = share + (tile == m_position ? 3 : 2);
        tile->setGeometry(edge(share), area.y(), edge(next) - edge(share) - margin, tileHeight);
        share = next;
    }
    int top = area.y() + tileHeight + margin;
    const int told = m_banner->HeightFor(area.width());
    m_banner->setGeometry(area.x(), top, area.width(), told);
    top += told > 0 ? told + margin : 0;
    // Entries and list side by side; the entries end where the position does.
    const int high = area.bottom() + 1 - top;
    const int count = m_entries.size();
    const auto rowOf = [&](int i) { return top + i * (high + Gap()) / count; };
    for (int i = 0; i < count; ++i) {
        m_entries[i]->setGeometry(
            area.x(), rowOf(i), edge(3) - edge(0) - margin, rowOf(i + 1) - rowOf(i) - Gap());
        m_entries[i]->Changed();
    }
    m_panel = QRect(QPoint(edge(3), top), area.bottomRight());
    const QRect inside = m_panel.adjusted(Gap(), HeadingRect().height(), -Gap(), -Gap());
    m_list->setGeometry(inside);
}

QRect HomePage::HeadingRect() const
{
    return {m_panel.x() + 2 * Gap(), m_panel.y(), m_panel.width() - 4 * Gap(), ZrTheme::DpI(56)};
}

void HomePage::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.fillRect(Content(), ZrTheme::formBack);
    painter.end();
    SurveyPage::paintEvent(event);
    painter.begin(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ZrTheme::toolBack);
    painter.drawRoundedRect(m_panel, ZrTheme::rxy, ZrTheme::rxy);
    const QRect heading = HeadingRect();
    painter.setFont(ZrTheme::fontLarge);
    painter.setPen(ZrTheme::titleCol);
    const QString title = tr("Latest recordings");
    painter.drawText(heading, Qt::AlignLeft | Qt::AlignVCenter, title);
    const int used = painter.fontMetrics().horizontalAdvance(title) + 3 * Gap();
    QFont small = ZrTheme::font;
    small.setPixelSize(std::max(small.pixelSize(), smallest));
    painter.setFont(small);
    painter.setPen(ZrTheme::bodyCol);
    const QString folder = painter.fontMetrics().elidedText(
        View().Model().settings.recordDir, Qt::ElideMiddle, heading.width() - used);
    painter.drawText(heading, Qt::AlignRight | Qt::AlignVCenter, folder);
}
