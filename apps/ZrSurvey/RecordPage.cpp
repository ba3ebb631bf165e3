#include "apps/ZrSurvey/RecordPage.h"

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/map/ZrWaterfallPalettes.h"
#include "ZrKit/planning/ZrPlanRecord.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/SourceMaker.h"
#include "apps/ZrSurvey/StateBanner.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QTimer>

#include <algorithm>
#include <memory>

namespace {

constexpr int waterfallLines = 2048;
constexpr int waterfallWidth = 1024; // samples of a side
constexpr int tickMs = 500;
constexpr qint64 megabyte = 1000000;

ZrValueTile* Tile(QWidget* parent, const QString& caption, QVector<ZrValueTile*>& group)
{
    auto* tile = new ZrValueTile(parent, caption);
    group.append(tile);
    return tile;
}

ZrBtn* Button(QWidget* parent, ZrBtn::eType type, const QString& icon, const QString& hint)
{
    auto* button = new ZrBtn(parent, type);
    button->setObjectName(icon);
    if (!icon.isEmpty())
        button->img = QImage(QStringLiteral(":/icons/%1.png").arg(icon));
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    return button;
}

} // namespace

RecordPage::RecordPage(SurveyView& view)
    : SurveyPage(view, tr("Record"))
    , m_waterfall(waterfallLines, waterfallWidth)
    , m_tick(new QTimer(this))
    , m_mapPanel(new ZrMapPanel(this, m_map))
    , m_sonarPanel(new ZrMapPanel(this, m_sonar))
    , m_record(Button(this, ZrBtn::typeAccent, QStringLiteral("record"), tr("Start or stop recording (R)")))
    , m_source(Button(this, ZrBtn::typeStd, QStringLiteral("source"), tr("Choose the source (S)")))
    , m_elapsed(Tile(this, tr("Recorded"), m_figures))
    , m_size(Tile(this, tr("Size"), m_figures))
    , m_rate(Tile(this, tr("Rate"), m_figures))
    , m_free(Tile(this, tr("Free space"), m_figures))
    , m_heading(Tile(this, tr("Heading"), m_instruments))
    , m_depth(Tile(this, tr("Depth"), m_instruments))
    , m_altitude(Tile(this, tr("Altitude"), m_instruments))
    , m_speed(Tile(this, tr("Speed"), m_instruments))
    , m_pitch(Tile(this, tr("Pitch"), m_instruments))
    , m_roll(Tile(this, tr("Roll"), m_instruments))
    , m_fix(Tile(this, tr("Age of fix"), m_instruments))
    , m_note(new ZrInput(this))
    , m_addNote(
          Button(this, ZrBtn::typeStd, QStringLiteral("event"), tr("Add the note as an event (Return)")))
    , m_banner(new StateBanner(this, view))
    , m_sources(nullptr)
    , m_ports(nullptr)
    , m_files(nullptr)
{
    m_hasBackground = false;
    ZrValueTile::SetRow(m_figures);
    ZrValueTile::SetRow(m_instruments);
    m_sonar.m_layers = {&m_sonarLayer};
    m_sonarLayer.SetRing(&m_waterfall.Ring());
    m_sonarLayer.m_isSmooth = true;
    m_sonarPanel->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_sonarPanel->setFocusPolicy(Qt::NoFocus);

    m_follow = AddMapTool(
        QStringLiteral("follow"), tr("Follow the vehicle (F); + and - zoom"), &RecordPage::ToggleFollow);
    m_follow->checkable = true;
    m_follow->on = true;
    AddMapTool(QStringLiteral("fit"), tr("Show plan and trail (Home)"), &RecordPage::FitMap);
    AddSonarTool(QStringLiteral("palette"), tr("Next palette (P)"), &RecordPage::NextPalette);
    AddSonarTool(QStringLiteral("remove"), tr("Less gain ([)"), &RecordPage::Quieter);
    AddSonarTool(QStringLiteral("add"), tr("More gain (])"), &RecordPage::Louder);
    m_bottom
        = AddSonarTool(QStringLiteral("bottom"), tr("Show the bottom line (O)"), &RecordPage::ToggleBottom);

    m_note->kind = ZrInput::kindText;
    m_note->caption = tr("Note");
    m_note->setPlaceholderText(tr("Note …"));
    m_note->setToolTip(tr("A note for an event (E)"));
    m_addNote->text = tr("Add note");
    m_addNote->setEnabled(false);
    m_record->lines = 1;
    m_source->lines = 2;

    connect(m_record, &ZrBtn::Clicked, this, &RecordPage::ToggleRecording);
    connect(m_source, &ZrBtn::Clicked, this, &RecordPage::ChooseSource);
    connect(m_addNote, &ZrBtn::Clicked, this, &RecordPage::AddNote);
    connect(m_note, &QLineEdit::returnPressed, this, &RecordPage::AddNote);
    connect(m_mapPanel, &ZrMapPanel::Changed, this, &SurveyPage::Changed);
    connect(m_mapPanel, &ZrMapPanel::CameraMoved, this, [this] {
        // Nearer or turned is not away.
        if (!m_map.m_way.IsCentred())
            SetFollowing(false);
    });
    connect(m_mapPanel, &ZrMapPanel::Tapped, this, [this](const QPointF& /*world*/, const QPointF& pixel) {
        if (!m_map.m_grid.NorthArrowRect(m_map.m_camera, m_map.m_pixelFactor).contains(pixel))
            return;
        m_map.m_camera.SetRotation(0.0);
        m_mapPanel->Moved();
    });
    connect(&m_session, &ZrRecordingSession::Updated, this, &RecordPage::OnNews);
    connect(&m_session, &ZrRecordingSession::SourceChanged, this, &RecordPage::ShowSource);
    connect(&m_session, &ZrRecordingSession::RecordingChanged, this, &RecordPage::OnRecording);
    connect(&m_session, &ZrRecordingSession::SpaceMeasured, this, [this](qint64 bytes) {
        m_space = bytes;
        ShowRecording();
    });
    connect(&m_session, &ZrRecordingSession::Failed, this, &RecordPage::OnFailed);
    connect(&m_session, &ZrRecordingSession::EventsLost, this, &RecordPage::OnEventsLost);
    connect(m_banner, &ZrBanner::Changed, this, [this] {
        Place();
        if (isVisible())
            Changed();
    });
    connect(&m_session, &ZrRecordingSession::SourceLost, this, &RecordPage::OnTrouble);
    connect(&m_session, &ZrRecordingSession::SourceBack, this, [this] { OnTrouble(QString()); });
    connect(&m_session, &ZrRecordingSession::Trouble, this, [this](const QString& message) {
        // The banner says that already, and stays.
        const QString reason = View().Model().feed.Facts().reason;
        if (m_loss.text.isEmpty() || reason.isEmpty() || !message.contains(reason))
            View().Tell(message);
    });
    connect(&view.Model().plan, &ZrPlanDocument::Changed, this, &RecordPage::OnPlan);
    connect(&m_map, &LiveMap::PlanMeasured, this, [this] {
        if (isVisible())
            Changed();
    });
    connect(&view.Model().feed, &SurveyFeed::Wanted, this, [this] {
        if (m_openKey != SourceMaker::Key(View().Model().settings)
            || m_session.Source() != ZrRecordingSession::sourceOpen)
            OpenSource();
    });
    connect(m_tick, &QTimer::timeout, this, &RecordPage::OnTick);
    m_tick->setObjectName(QStringLiteral("tick"));
    m_tick->start(tickMs);
}

ZrBtn* RecordPage::AddMapTool(const QString& icon, const QString& hint, void (RecordPage::*action)())
{
    ZrBtn* button = Button(this, ZrBtn::typeRound, icon, hint);
    connect(button, &ZrBtn::Clicked, this, action);
    m_mapTools.append(button);
    return button;
}

ZrBtn* RecordPage::AddSonarTool(const QString& icon, const QString& hint, void (RecordPage::*action)())
{
    ZrBtn* button = Button(this, ZrBtn::typeTool, icon, hint);
    connect(button, &ZrBtn::Clicked, this, action);
    m_sonarTools.append(button);
    return button;
}

void RecordPage::zr_initializeGL()
{
    m_map.OnCreate();
    m_sonar.OnCreate();
    ZrWaterfallPalettes::Load(m_sonar);
}

void RecordPage::zr_paintGL()
{
    m_map.Render();
    m_sonarLayer.m_view.rect = QRect(0, 0, m_sonar.m_camera.Width(), m_sonar.m_camera.Height());
    m_sonarLayer.m_view.pixelsPerLine = std::max(1.0, 1.5 * devicePixelRatioF() * ZrTheme::dp);
    m_sonar.Render();
}

void RecordPage::OnPageOpen()
{
    View().Model().isReviewLast = false;
    MakeEventButtons();
    FollowSettings();
    UsePlan();
    ShowPlan();
    MeasureSpace();
    ShowState();
}

void RecordPage::OnColours()
{
    m_map.OnColours();
    m_banner->Restyle();
    SurveyPage::OnColours();
    ShowState();
}

bool RecordPage::OnKey(int key, Qt::KeyboardModifiers modifiers)
{
    if (ZoomBy(key, modifiers))
        return true;
    if (modifiers != Qt::NoModifier)
        return false;
    if (key >= Qt::Key_1 && key < Qt::Key_1 + m_events.size()) {
        AddEvent(m_eventLabels[key - Qt::Key_1]);
        return true;
    }
    switch (key) {
    case Qt::Key_R:
        ToggleRecording();
        return true;
    case Qt::Key_S:
        ChooseSource();
        return true;
    case Qt::Key_E:
        m_note->setFocus(Qt::ShortcutFocusReason);
        return true;
    case Qt::Key_Space:
        if (!m_eventLabels.isEmpty())
            AddEvent(m_eventLabels.first());
        return true;
    case Qt::Key_F:
        SetFollowing(!m_follow->on);
        ShowState();
        return true;
    case Qt::Key_Home:
        FitMap();
        return true;
    case Qt::Key_P:
        NextPalette();
        return true;
    case Qt::Key_O:
        ToggleBottom();
        return true;
    case Qt::Key_BracketLeft:
        Quieter();
        return true;
    case Qt::Key_BracketRight:
        Louder();
        return true;
    default:
        return false;
    }
}

/// The map, whatever has the focus; where the sign is typed with Shift or at the keypad too.
bool RecordPage::ZoomBy(int key, Qt::KeyboardModifiers modifiers)
{
    if ((modifiers & ~(Qt::ShiftModifier | Qt::KeypadModifier)) != Qt::NoModifier)
        return false;
    const bool isNearer = key == Qt::Key_Plus || key == Qt::Key_Equal;
    if (!isNearer && key != Qt::Key_Minus && key != Qt::Key_Underscore)
        return false;
    ZrMapView& camera = m_map.m_camera;
    camera.ZoomAbout({camera.Width() / 2.0, camera.Height() / 2.0},
        isNearer ? ZrMapGesture::WheelFactor : 1.0 / ZrMapGesture::WheelFactor);
    m_mapPanel->Moved();
    return true;
}

void RecordPage::ToggleRecording()
{
    if (m_session.IsRecording()) {
        m_session.Stop();
        return;
    }
    UsePlan(); // the log begins with it
    const SurveySettings& settings = View().Model().settings;
    ZrRecorder::Options options;
    options.dir = settings.recordDir;
    options.prefix = settings.recordPrefix;
    options.stopBelow = settings.stopBelowMegabytes * megabyte;
    options.warnBelow = 2 * options.stopBelow;
    options.splitBytes = settings.splitMegabytes * megabyte;
    options.splitSeconds = 60.0 * settings.splitMinutes;
    const auto plan
        = std::make_shared<const ZrWpts>(SourceMaker::PlanOf(settings, View().Model().plan.Route()));
    m_session.Start(options, [plan] { return ZrPlanRecord::Encode(*plan); });
}

void RecordPage::OnRecording()
{
    if (m_session.Recording() == ZrRecordingSession::recordingOff) {
        UsePlan();
        View().Model().recording.End();
        if (!View().Model().recording.Told().isOver)
            View().Model().recording.Dismiss();
        const QString file = m_session.Status().file;
        if (m_session.Failure() == ZrRecorder::failureNone && !file.isEmpty()
            && m_session.Status().seconds > 0.0)
            View().Tell(
                tr("Recording stopped: %1").arg(file), tr("Review"), [this, file] { View().OpenLog(file); });
    }
    if (m_session.Recording() == ZrRecordingSession::recordingOn)
        m_hasLog = true;
    if (m_session.Recording() == ZrRecordingSession::recordingStarting) {
        m_hasLog = false;
        for (ZrBtn* button : qAsConst(m_events))
            button->badge = 0;
        m_addNote->badge = 0;
    }
    EnableEvents();
    ShowState();
}

void RecordPage::EnableEvents()
{
    const bool isOn = m_session.IsRecording();
    for (ZrBtn* button : qAsConst(m_events))
        button->setEnabled(isOn);
    m_addNote->setEnabled(isOn);
}

void RecordPage::ToggleFollow()
{
    m_map.m_way.m_isFollowing = m_follow->on;
    ShowState();
}

void RecordPage::SetFollowing(bool isFollowing)
{
    m_follow->on = m_map.m_way.m_isFollowing = isFollowing;
    m_follow->update();
}

void RecordPage::FitMap()
{
    SetFollowing(false);
    m_map.FitAll();
    Changed();
}

bool RecordPage::AddEvent(const QString& label)
{
    // Told by a number on the button: a strip of text would lie over the buttons.
    if (!m_session.AddEvent(label))
        return false;
    const int index = m_eventLabels.indexOf(label);
    ZrBtn* button = index >= 0 ? m_events[index] : m_addNote;
    ++button->badge;
    button->update();
    return true;
}

void RecordPage::AddNote()
{
    const QString text = m_note->QLineEdit::text().trimmed();
    if (text.isEmpty()) {
        m_note->setFocus(Qt::OtherFocusReason);
        return;
    }
    if (AddEvent(text))
        m_note->SetText(QString());
    setFocus(Qt::OtherFocusReason); // shortcuts again
}

void RecordPage::MakeEventButtons()
{
    const QStringList& labels = View().Model().settings.eventLabels;
    if (m_eventLabels == labels)
        return;
    m_eventLabels = labels;
    for (ZrBtn* button : qAsConst(m_events))
        button->deleteLater();
    m_events.clear();
    for (const QString& label : labels) {
        const QString key = m_events.isEmpty() ? tr("1 or space") : QString::number(m_events.size() + 1);
        ZrBtn* button
            = Button(this, ZrBtn::typeStd, QString(), tr("Add the event \"%1\" (%2)").arg(label, key));
        button->text = label;
        connect(button, &ZrBtn::Clicked, this, [this, label] { AddEvent(label); });
        button->setEnabled(m_session.IsRecording());
        button->show();
        m_events.append(button);
    }
    Place();
}
