#include "apps/ZrSurvey/ReviewPage.h"

#include "ZrKit/import/ZrImportTask.h"
#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/map/ZrWaterfallPanel.h"
#include "ZrKit/review/ZrTimeText.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/survey/ZrTargetEvent.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrPlotPanel.h"
#include "ZrKit/ui/ZrTextPanel.h"
#include "ZrKit/ui/ZrTimeBar.h"
#include "ZrKit/ui/ZrWorkPanel.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/ReviewBottom.h"
#include "apps/ZrSurvey/ReviewEvents.h"
#include "apps/ZrSurvey/ReviewExport.h"
#include "apps/ZrSurvey/ReviewLook.h"
#include "apps/ZrSurvey/ReviewMap.h"
#include "apps/ZrSurvey/ReviewMeasure.h"
#include "apps/ZrSurvey/ReviewSonar.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QFileInfo>
#include <QKeyEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// A first position in this part of a recording is where it is shown from.
constexpr double startShare = 0.05;
constexpr double startSeconds = 10.0; ///< at least
constexpr std::size_t mostPlaces = 50000; ///< of the way that the page "3D" gets

} // namespace

ReviewPage::ReviewPage(SurveyView& view)
    : SurveyPage(view, tr("Review"))
    , m_map(new ReviewMap(*this))
    , m_sonar(new ReviewSonar(*this))
    , m_plots(new ZrPlotPanel(this))
    , m_bar(new ZrTimeBar(this))
    , m_transport(new ReviewTransport(this))
    , m_events(new ReviewEvents(this, view))
    , m_export(new ReviewExport(view))
    , m_files(new ZrFilePanel(&view, tr("Open a recording")))
    , m_text(new ZrTextPanel(&view))
    , m_work(new ZrWorkPanel(&view))
    , m_open(AddTool("open", tr("Open"), tr("Open a recording (Ctrl+O)")))
    , m_list(AddTool("events", tr("Events"), tr("List the events (Ctrl+L)")))
    , m_exportBtn(AddTool("export", tr("Export"), tr("Export what is visible, or A to B (Ctrl+S)")))
    , m_fit(AddTool("fit", QString(), tr("Show all of the track (Shift+F)")))
    , m_follow(AddTool("follow", QString(), tr("Keep the vehicle in the middle (F)")))
    , m_mapLarge(AddTool("enlarge", QString(), tr("Enlarge the map (1)")))
    , m_look(AddTool("palette", QString(), tr("Palette, gain and contrast (P)")))
    , m_slant(AddTool("slant", QString(), tr("Correct for slant range (S)")))
    , m_bottom(AddTool("bottom", QString(), tr("Show the bottom line (O)")))
    , m_correct(AddTool("bottom_edit", QString(), tr("Correct the bottom line (K)")))
    , m_measure(AddTool("measure", QString(), tr("Mark and measure targets (M)")))
    , m_sonarLarge(AddTool("enlarge", QString(), tr("Enlarge the waterfall (2)")))
    , m_plotsLarge(AddTool("enlarge", QString(), tr("Enlarge the plots (3)")))
    , m_gaps(AddTool("gaps", QString(), QString()))
    , m_firstOpen(new ZrBtn(this, ZrBtn::typeAccent))
{
    m_hasBackground = false;
    m_firstOpen->img = QImage(QStringLiteral(":/icons/open.png"));
    m_firstOpen->text = tr("Open a recording");
    m_firstOpen->setToolTip(m_open->toolTip());
    m_plots->SetTimeLine(&m_bar->Line());
    m_events->hide();
    m_files->SetMode(ZrFilePanel::openFile);
    m_files->SetSuffixes(QStringList{QStringLiteral("log")} + ZrImportTask::Suffixes());
    Connect();
    Show(nullptr);
}

ReviewPage::~ReviewPage()
{
    // They are used by what the recording's end takes along.
    delete m_export;
    m_sonar->disconnect(this); // a tool that goes off needs no room any more
    m_map->Show(nullptr);
    m_sonar->Show(nullptr);
    delete m_sonar;
    delete m_map;
}

ZrBtn* ReviewPage::AddTool(const char* icon, const QString& text, const QString& hint)
{
    auto* button = new ZrBtn(this, ZrBtn::typeTool);
    button->setObjectName(QString::fromLatin1(icon));
    button->img = QImage(QStringLiteral(":/icons/%1.png").arg(QLatin1String(icon)));
    button->text = text;
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    return button;
}

void ReviewPage::Connect()
{
    connect(m_open, &ZrBtn::Clicked, this, &ReviewPage::AskFile);
    connect(m_firstOpen, &ZrBtn::Clicked, this, &ReviewPage::AskFile);
    connect(m_files, &ZrFilePanel::FileChosen, &View(), &SurveyView::Open);
    connect(&m_worker, &ZrWorker::Finished, this, &ReviewPage::OnLoaded);
    connect(m_exportBtn, &ZrBtn::Clicked, this, &ReviewPage::ExportPart);
    connect(m_list, &ZrBtn::Clicked, this, [this] {
        m_events->setVisible(!m_events->isVisible());
        Place();
        Changed();
    });
    connect(m_fit, &ZrBtn::Clicked, m_map, &ReviewMap::FitAll);
    connect(m_follow, &ZrBtn::Clicked, this, [this] { m_map->SetFollows(!m_map->Follows()); });
    connect(m_map, &ReviewMap::FollowsChanged, this, &ReviewPage::ShowState);
    connect(m_map, &ReviewMap::Built, this, &SurveyPage::Changed);
    connect(m_mapLarge, &ZrBtn::Clicked, this, [this] { Enlarge(paneMap); });
    connect(&View(), &SurveyView::SettingsChanged, this, [this] {
        m_sonar->ShowSettings();
        ShowGaps();
        ShowState();
        m_events->update();
    });
    connect(m_sonarLarge, &ZrBtn::Clicked, this, [this] { Enlarge(paneSonar); });
    connect(m_plotsLarge, &ZrBtn::Clicked, this, [this] { Enlarge(panePlots); });
    connect(m_look, &ZrBtn::Clicked, this, [this] {
        m_sonar->Look().Load();
        m_sonar->Look().setVisible(!m_sonar->Look().isVisible());
        Place();
        ShowState();
    });
    connect(m_gaps, &ZrBtn::Clicked, this, [this] {
        View().Model().settings.gapsCut = !View().Model().settings.gapsCut;
        View().SettingsEdited();
    });
    connect(m_correct, &ZrBtn::Clicked, this, [this] { m_sonar->Bottom().SetOn(!m_sonar->Bottom().IsOn()); });
    connect(m_sonar, &ReviewSonar::ToolChanged, this, [this] {
        Place(); // the look may have gone for it
        ShowState();
    });
    connect(m_sonar, &ReviewSonar::BottomChanged, this, [this] { update(m_sonarHeader); });
    connect(m_slant, &ZrBtn::Clicked, this, [this] { Toggle(View().Model().settings.slant); });
    connect(m_bottom, &ZrBtn::Clicked, this, [this] { Toggle(View().Model().settings.bottom); });
    connect(
        m_measure, &ZrBtn::Clicked, this, [this] { m_sonar->Measure().SetOn(!m_sonar->Measure().IsOn()); });
    connect(&m_sonar->Measure(), &ReviewMeasure::Failed, this,
        [this](const QString& reason) { View().Warn(reason); });
    connect(&m_sonar->Measure(), &ReviewMeasure::Stored, this, [this](const ZrSonarTarget& target) {
        const int number = static_cast<int>(m_recording->Targets().size()) + 1;
        m_events->Add(ZrTargetEvent::ToEvent(target, tr("Target %1").arg(number)));
    });

    const auto pause = [this] {
        m_clock.Pause();
        ShowState();
    };
    connect(m_bar, &ZrTimeBar::ScrubBegan, this, pause);
    connect(m_plots, &ZrPlotPanel::ScrubBegan, this, pause);
    connect(m_sonar, &ReviewSonar::ScrubBegan, this, pause);
    connect(m_bar, &ZrTimeBar::Scrubbed, this, &ReviewPage::GoTo);
    connect(m_plots, &ZrPlotPanel::Scrubbed, this, &ReviewPage::GoTo);
    connect(m_sonar, &ReviewSonar::Scrubbed, this, &ReviewPage::GoTo);
    connect(m_map, &ReviewMap::Scrubbed, this, [this, pause](double steady) {
        pause();
        GoTo(steady);
    });
    connect(m_bar, &ZrTimeBar::ViewChanged, m_plots, qOverload<>(&QWidget::update));
    connect(m_plots, &ZrPlotPanel::ZoomWanted, m_bar, &ZrTimeBar::Zoom);
    connect(m_plots, &ZrPlotPanel::PanWanted, m_bar, &ZrTimeBar::Pan);
    connect(m_bar, &ZrTimeBar::RangeChanged, this, [this](double a, double b) {
        if (m_clock.HasLoop() && !m_clock.SetLoop(a, b))
            m_clock.ClearLoop();
    });
    const auto toEvent = [this, pause](int event) {
        if (event < 0 || event >= static_cast<int>(m_recording->Events().Count()))
            return;
        pause();
        GoTo(m_recording->TimeOf(m_recording->Events().At(static_cast<std::size_t>(event))));
        m_events->SetCurrent(event);
    };
    connect(m_bar, &ZrTimeBar::EventTapped, this,
        [this, toEvent](int flag) { toEvent(m_events->Flags().EventOf(flag)); });
    connect(m_events, &ReviewEvents::Chosen, this, toEvent);
    connect(m_events, &ReviewEvents::CurrentChanged, this,
        [this](int event) { m_bar->SetCurrentEvent(m_events->Flags().FlagOf(event)); });
    connect(m_events, &ReviewEvents::Changed, this, &ReviewPage::ShowEvents);
    connect(m_events, &ReviewEvents::Unsaved, this, [this] {
        m_events->show();
        Place();
        Changed();
    });
    connect(m_events, &ReviewEvents::Closed, this, [this] {
        m_events->hide();
        Place();
        Changed();
    });
    connect(m_transport, &ReviewTransport::Wanted, this, &ReviewPage::Act);
    SurveyPlayer& player = View().Model().player;
    connect(&player, &SurveyPlayer::ToggleWanted, this, &ReviewPage::PlayOrPause);
    connect(&player, &SurveyPlayer::PauseWanted, this, pause);
    connect(&player, &SurveyPlayer::Elapsed, this, &ReviewPage::Advance);
    // Keys step through the recording wherever the finger was last.
    for (QWidget* panel : {static_cast<QWidget*>(&m_map->Panel()), static_cast<QWidget*>(&m_sonar->Panel())})
        panel->installEventFilter(this);
}

// -- Opening

void ReviewPage::AskFile()
{
    const QString folder = View().last_path();
    m_files->SetFolder(folder.isEmpty() ? View().Model().settings.recordDir : folder);
    m_files->Open();
}

bool ReviewPage::IsLoading() const
{
    return m_worker.IsWorking() || m_map->Chart().IsBuilding();
}

void ReviewPage::OpenLog(const QString& path)
{
    if (m_worker.IsWorking()) {
        m_nextPath = path;
        m_worker.Cancel();
        return;
    }
    StartLoading(path);
}

void ReviewPage::StartLoading(const QString& path)
{
    m_path = path;
    m_clock.Pause();
    ShowState();
    m_loading = std::make_shared<ZrSurveyRecording>();
    m_work->Begin(m_worker, tr("Opening %1").arg(QFileInfo(path).fileName()));
    m_worker.Start(
        [loading = m_loading, path](IZrProgress& progress) {
            loading->progress = &progress;
            loading->Load(path);
            loading->progress = nullptr;
        },
        [loading = m_loading] { loading->cancel = true; });
}

void ReviewPage::OnLoaded()
{
    const std::shared_ptr<ZrSurveyRecording> loaded = std::move(m_loading);
    if (!m_nextPath.isEmpty()) {
        StartLoading(std::exchange(m_nextPath, QString()));
        return;
    }
    const QString name = QFileInfo(m_path).fileName();
    if (m_worker.IsCancelled()) {
        View().Tell(tr("%1 was not opened").arg(name));
        return;
    }
    if (!loaded->Error().isEmpty()) {
        View().Warn(tr("%1 cannot be opened. %2").arg(name, loaded->Error()));
        return;
    }
    View().set_last_path(QFileInfo(m_path).absolutePath());
    Show(loaded);
    if (!loaded->Remarks().isEmpty())
        View().Warn(loaded->Remarks().join(QLatin1Char('\n')));
}

void ReviewPage::Show(const std::shared_ptr<ZrSurveyRecording>& recording)
{
    ZrSurveyRecording* now = recording.get();
    m_map->Show(recording);
    m_sonar->Show(recording);
    m_events->Show(now);
    const std::shared_ptr<ZrSurveyRecording> before = std::exchange(m_recording, recording);
    m_clock = ZrPlayClock();
    m_bar->SetProfile(nullptr);
    m_bar->SetLog(now ? now->Times() : nullptr);
    ShowPlots();
    SetSubtitle(now ? QFileInfo(now->Path()).fileName() + (now->IsDamaged() ? tr(" (damaged)") : QString())
                    : QString());
    if (now) {
        m_clock.SetRange(now->Times()->Begin(), now->Times()->End());
        m_clock.SetGaps(m_bar->Line().Gaps());
        // What comes before the first position has little to show.
        const double start = std::max((m_clock.End() - m_clock.Begin()) * startShare, startSeconds);
        const double first = now->FirstPosition(m_clock.Begin() + start);
        if (!std::isnan(first))
            m_clock.SetTime(first);
        ShowGaps();
        ShowEvents();
        TellWay();
        ShowCursor();
    }
    ShowState();
    if (isVisible())
        Place();
    Changed();
}

/// In real time playing takes as long as gaps were.
void ReviewPage::ShowGaps()
{
    const bool isCut = View().Model().settings.gapsCut;
    m_bar->SetGapsCut(isCut);
    m_clock.SetSkipGaps(isCut);
    const QString hint = isCut ? tr("Gaps are cut out of the time line: show real time (G)")
                               : tr("The time line is real time: cut gaps out (G)");
    m_gaps->setToolTip(hint);
    m_gaps->setAccessibleName(hint);
}

/// Gives the 3D page the whole way, of very long recordings every so many places.
void ReviewPage::TellWay()
{
    std::vector<ZrScenePlace> way;
    const ZrSurveySeries& series = m_recording->Series();
    const std::size_t step = series.Count() / mostPlaces + 1;
    way.reserve(series.Count() / step + 1);
    for (std::size_t i = 0; i < series.Count(); i += step)
        way.push_back({series.track[i].latitude, series.track[i].longitude,
            static_cast<double>(series.depth.Value(i)), static_cast<double>(series.altitude.Value(i))});
    View().Model().reviewed.SetWay(std::move(way));
}

void ReviewPage::ShowPlots()
{
    if (!m_recording || m_recording->Series().Count() == 0) {
        m_plots->SetPlots({});
        return;
    }
    const ZrSurveySeries& series = m_recording->Series();
    m_bar->SetProfile(&series.depth);
    m_plots->SetPlots({{tr("Depth and seabed"), ZrPlotPanel::length, true,
                           {{&series.depth, ZrTheme::ctrlHighlightCol, tr("Depth")},
                               {&series.seabed, ZrTheme::warnCol, tr("Seabed"), Qt::DashLine}}},
        {tr("Altitude"), ZrPlotPanel::length, false, {{&series.altitude, QColor(), QString()}}},
        {tr("Heading"), ZrPlotPanel::angle, false, {{&series.heading, QColor(), QString()}}},
        {tr("Speed"), ZrPlotPanel::speed, false, {{&series.speed, QColor(), QString()}}}});
}

// -- The cursor

void ReviewPage::GoTo(double steady)
{
    if (m_recording && m_clock.SetTime(steady))
        ShowCursor();
}

QString ReviewPage::GoToText(const QString& text)
{
    const ZrSteadyTime& times = *m_recording->Times();
    const ZrTimeText::Range range{
        times.LogTime(times.Begin()), times.LogTime(times.End()), times.LogTime(m_clock.Time())};
    double time = 0.0;
    QString error;
    if (!ZrTimeText::Parse(text, range, time, error))
        return error;
    m_clock.Pause();
    GoTo(times.FromLog(time, m_clock.Time()));
    ShowState();
    return {};
}

void ReviewPage::ShowCursor()
{
    const double at = m_clock.Time();
    const ZrSurveySeries& series = m_recording->Series();
    const double logTime = m_recording->Times()->LogTime(at);
    m_bar->SetCursor(at);
    m_bar->Reveal(at);
    m_plots->SetCursor(at);
    m_map->SetCursor(at);
    m_sonar->SetCursor(at);
    m_events->SetCursor(at);
    m_transport->SetTime(ZrTimeText::Clock(logTime, 2), ZrTimeText::Date(logTime));
    SurveyVehicle::Pose pose;
    const ZrGeoPoint position = m_recording->PositionAt(at);
    const double known = m_recording->KnowsVehicle(at) ? at : std::nan("");
    const auto value = [known](const ZrPlotSeries& from) { return static_cast<double>(from.ValueAt(known)); };
    pose.time = static_cast<qint64>(std::llround(logTime * 1000.0));
    pose.lat = position.lat;
    pose.lng = position.lng;
    pose.depth = value(series.depth);
    pose.altitude = value(series.altitude);
    pose.heading = std::fmod(std::fmod(value(series.heading), 360.0) + 360.0, 360.0);
    pose.pitch = value(series.pitch);
    pose.roll = value(series.roll);
    pose.speed = value(series.speed);
    View().Model().reviewed.Set(pose, QFileInfo(m_recording->Path()).fileName(), false);
    update(m_mapHeader);
    update(m_sonarHeader);
}

void ReviewPage::ShowEvents()
{
    m_bar->SetEvents(m_events->Flags().Times());
    m_bar->SetCurrentEvent(m_events->Flags().FlagOf(m_events->Current()));
    m_map->ShowEvents();
    m_sonar->ShowEvents();
    m_list->badge = static_cast<i32>(m_recording->Events().Count());
    m_list->Changed();
}

void ReviewPage::ShowState()
{
    const bool hasLog = m_recording != nullptr;
    const bool hasSonar = hasLog && m_recording->HasSonar();
    m_transport->SetState(m_clock, hasLog);
    const auto set = [](ZrBtn& button, bool on, bool enabled) {
        button.setEnabled(enabled);
        if (button.on == on)
            return;
        button.on = on;
        button.Changed();
    };
    const SurveySettings& settings = View().Model().settings;
    set(*m_list, m_events->isVisible(), hasLog);
    set(*m_exportBtn, false, hasLog);
    set(*m_fit, false, hasLog);
    set(*m_follow, m_map->Follows(), hasLog);
    set(*m_look, m_sonar->Look().isVisible(), hasSonar);
    set(*m_slant, settings.slant, hasSonar);
    set(*m_bottom, settings.bottom, hasSonar);
    set(*m_correct, m_sonar->Bottom().IsOn(), hasSonar);
    set(*m_measure, m_sonar->Measure().IsOn(), hasSonar);
    set(*m_gaps, !settings.gapsCut, hasLog);
    set(*m_mapLarge, m_pane == paneMap, hasLog);
    set(*m_sonarLarge, m_pane == paneSonar, hasSonar);
    set(*m_plotsLarge, m_pane == panePlots, hasLog);
    m_firstOpen->setVisible(!hasLog);
    View().Model().player.Set(hasLog, m_clock.IsPlaying());
    if (m_clock.IsPlaying() && isVisible())
        Animate();
}

bool ReviewPage::OnFrame(double seconds)
{
    return Advance(seconds);
}

bool ReviewPage::Advance(double seconds)
{
    if (!m_recording || !m_clock.IsPlaying())
        return false;
    m_now += seconds;
    if (m_clock.Advance(m_now) != ZrPlayClock::Still)
        ShowCursor();
    if (!m_clock.IsPlaying())
        ShowState();
    return m_clock.IsPlaying();
}
