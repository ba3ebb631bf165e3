// What the page "Record" shows of its session, and where its data come from.

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/map/ZrWaterfallPalettes.h"
#include "ZrKit/recording/ZrSerialSource.h"
#include "ZrKit/review/ZrTimeText.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/ui/ZrByteText.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrNumberText.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "ZrUtil/ZrWpts.h"
#include "apps/ZrSurvey/HomeState.h"
#include "apps/ZrSurvey/RecordPage.h"
#include "apps/ZrSurvey/SourceMaker.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveySource.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDataStream>
#include <QDateTime>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

constexpr double gainStep = 2.0; // dB
constexpr int spaceTicks = 10; // free space is looked at so often
constexpr qint64 megabyte = 1000000;
constexpr double flowing = 1.0; // seconds without data, at most, while they flow
constexpr double littleTime = 600.0; // seconds of recording left
constexpr double lostAfter = 30.0; // seconds without a fix

QString FixName(double quality)
{
    static constexpr const char* names[] = {QT_TRANSLATE_NOOP("RecordPage", "no fix"),
        QT_TRANSLATE_NOOP("RecordPage", "autonomous"), QT_TRANSLATE_NOOP("RecordPage", "differential"),
        QT_TRANSLATE_NOOP("RecordPage", "precise"), QT_TRANSLATE_NOOP("RecordPage", "RTK fixed"),
        QT_TRANSLATE_NOOP("RecordPage", "RTK float"), QT_TRANSLATE_NOOP("RecordPage", "dead reckoning"),
        QT_TRANSLATE_NOOP("RecordPage", "typed in"), QT_TRANSLATE_NOOP("RecordPage", "simulated")};
    const auto index = std::isfinite(quality) ? static_cast<std::size_t>(quality) : std::size(names);
    return index < std::size(names) ? QCoreApplication::translate("RecordPage", names[index]) : QString();
}

QString TimeNow()
{
    const double now = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) * 1e-3;
    return QCoreApplication::translate("RecordPage", "%1 UTC").arg(ZrTimeText::Clock(now));
}

/// What the way along a plan depends on. Another key means another way; the form that plans are recorded in
/// would tell as much, but takes seconds for a long one.
QByteArray PlanKey(const ZrWpts& plan)
{
    QByteArray key;
    QDataStream out(&key, QIODevice::WriteOnly);
    out << plan.linked << plan.closed << plan.speedType << plan.speed << ZrWpts::s_msSlow
        << ZrWpts::s_msMedium << ZrWpts::s_msFast;
    for (ZrListPos* pos = plan.GetHeadPos(); pos;) {
        const ZrWpt& wpt = *plan.GetNext(pos);
        out << wpt.name << wpt.lat << wpt.lng << wpt.r << wpt.z << wpt.zType << wpt.alt << wpt.speed
            << wpt.spdType << wpt.time << wpt.head << wpt.headType;
    }
    return key;
}

/// Shows \p text, dimmed when \p value is old.
void ShowValue(
    ZrValueTile* tile, const ZrLiveValue& value, double now, const QString& text, const QString& unit)
{
    tile->Set(value.IsKnown() ? text : QString(), unit);
    tile->SetState(value.IsKnown() && !value.IsFresh(now) ? ZrValueTile::stale : ZrValueTile::normal);
}

} // namespace

void RecordPage::OpenSource()
{
    const SurveySettings& settings = View().Model().settings;
    const QString key = SourceMaker::Key(settings);
    if (m_session.IsRecording() && key != m_openKey) {
        View().Tell(tr("The recording goes on with another source: %1").arg(SurveySource::Describe(settings)),
            tr("Undo"), [this, before = m_opened] { SetSource(before); });
    }
    m_opened = settings;
    m_openKey = key;
    m_openPlan = PlanKey(SourceMaker::PlanOf(settings, View().Model().plan.Route()));
    m_trouble.clear();
    m_arrivals.Clear();
    m_session.Open(SourceMaker::Make(settings, View().Model().plan.Route()));
    ShowPlan();
}

bool RecordPage::IsPlanNew() const
{
    const SurveySettings& settings = View().Model().settings;
    return settings.source == SurveySource::simulator && m_openKey == SourceMaker::Key(settings)
        && m_openPlan != PlanKey(SourceMaker::PlanOf(settings, View().Model().plan.Route()));
}

/// The simulated vehicle begins anew, unless its way is being recorded.
void RecordPage::UsePlan()
{
    if (!IsPlanNew())
        return;
    if (m_session.Recording() == ZrRecordingSession::recordingOff)
        OpenSource();
    else
        View().Tell(tr("The simulator runs the changed plan when the recording has ended"));
}

/// The vehicle's plan, or that which the simulated one runs.
void RecordPage::ShowPlan()
{
    m_map.SetPlan(SourceMaker::PlanOf(View().Model().settings, View().Model().plan.Route()));
}

void RecordPage::MeasureSpace()
{
    if (!m_session.IsRecording())
        m_session.MeasureSpace(View().Model().settings.recordDir);
}

void RecordPage::ChooseSource()
{
    if (!m_sources) {
        m_sources = new ZrChoicePanel(&View(), tr("Source of data"));
        connect(m_sources, &ZrChoicePanel::Chosen, this, &RecordPage::UseSource);
    }
    SurveySettings settings = View().Model().settings;
    QVector<ZrListItem> items;
    for (int kind = 0; kind < SurveySource::Count; ++kind) {
        settings.source = kind;
        ZrListItem item;
        item.title = SurveySource::Name(kind);
        const QString what = SurveySource::Describe(settings);
        item.subtitle = what == item.title ? tr("Runs the plan, or one of its own") : what;
        items.append(item);
    }
    m_sources->SetItems(items, View().Model().settings.source);
    m_sources->Open();
}

/// A port or a file is asked for first: until then, and when none is chosen, all stays as it is.
void RecordPage::UseSource(int kind)
{
    if (kind == SurveySource::serial) {
        ChoosePort();
        return;
    }
    if (kind == SurveySource::nmeaFile || kind == SurveySource::replay) {
        ChooseFile(kind);
        return;
    }
    SurveySettings settings = View().Model().settings;
    settings.source = kind;
    SetSource(settings);
}

void RecordPage::SetSource(const SurveySettings& settings)
{
    View().Model().settings.TakeSource(settings);
    View().SettingsEdited();
    OpenSource();
}

/// The source that the settings name now, wherever they were changed; not one without a port or file while
/// data are recorded, whose choice is not complete.
void RecordPage::FollowSettings()
{
    const SurveySettings& settings = View().Model().settings;
    if (m_openKey != SourceMaker::Key(settings) && (settings.HasSource() || !m_session.IsRecording()))
        OpenSource();
}

void RecordPage::ChoosePort()
{
    const QString& known = View().Model().settings.serialPort;
    QStringList ports = ZrSerialSource::Ports();
    if (!known.isEmpty() && !ports.contains(known))
        ports.append(known); // typed in the settings
    if (ports.isEmpty()) {
        View().Warn(tr("This computer has no serial port"));
        return;
    }
    if (!m_ports) {
        m_ports = new ZrChoicePanel(&View(), tr("Serial port"));
        connect(m_ports, &ZrChoicePanel::Chosen, this, [this](int row) {
            SurveySettings settings = View().Model().settings;
            settings.source = SurveySource::serial;
            settings.serialPort = m_ports->Items()[row].title;
            SetSource(settings);
        });
    }
    QVector<ZrListItem> items;
    for (const QString& port : qAsConst(ports))
        items.append({port, QString(), QString(), QImage(), false, QColor(), QVariant()});
    m_ports->SetItems(items, ports.indexOf(known));
    m_ports->Open();
}

void RecordPage::ChooseFile(int kind)
{
    m_fileKind = kind;
    if (!m_files) {
        m_files = new ZrFilePanel(&View(), tr("File to replay"));
        m_files->SetMode(ZrFilePanel::openFile);
        connect(m_files, &ZrFilePanel::FileChosen, this, [this](const QString& path) {
            SurveySettings settings = View().Model().settings;
            settings.source = m_fileKind;
            settings.sourceFile = path;
            SetSource(settings);
        });
    }
    const SurveySettings& settings = View().Model().settings;
    const bool isLog = kind == SurveySource::replay;
    m_files->SetSuffixes(isLog ? QStringList{QStringLiteral("log")} : QStringList());
    m_files->SetFolder(
        settings.sourceFile.isEmpty() ? settings.recordDir : QFileInfo(settings.sourceFile).path());
    m_files->Open();
}

void RecordPage::OnNews(const ZrRecordingNews& news)
{
    if (news.source != m_sourceNumber) {
        m_sourceNumber = news.source;
        m_bytes.Clear();
        View().Model().recording.SetSourceRate(0.0);
        m_map.m_way.Clear();
        m_waterfall.Clear();
        View().Model().vehicle.Clear();
    }
    m_map.m_way.Append(news.trail);
    for (const ZrLivePing& live : news.pings)
        m_waterfall.Add(live.ping, live.time, live.altitude);
    if (news.isRecording)
        View().Model().recording.Set(news.status);
    // News come while nothing does, too.
    if (news.state.latitude.IsKnown() && news.state.lastData != m_toldData)
        TellModel();
    if (isVisible())
        ShowState();
}

void RecordPage::TellModel()
{
    const ZrLiveState& state = m_session.State();
    SurveyVehicle::Pose pose;
    pose.time = static_cast<qint64>(state.dataTime * 1000.0);
    pose.lat = state.latitude.value;
    pose.lng = state.longitude.value;
    pose.depth = state.depth.value;
    pose.altitude = state.altitude.value;
    pose.heading = state.heading.value;
    pose.pitch = state.pitch.value;
    pose.roll = state.roll.value;
    pose.speed = state.speed.value;
    const bool hasNewFix = state.latitude.at != m_toldFix;
    m_toldData = state.lastData;
    m_toldFix = state.latitude.at;
    View().Model().vehicle.Set(pose, SurveySource::Describe(View().Model().settings), true, hasNewFix);
}

void RecordPage::OnTick()
{
    TellFeed();
    if (!isVisible())
        return;
    FollowSettings();
    MakeEventButtons();
    if (++m_ticks % spaceTicks == 0)
        MeasureSpace();
    ShowInstruments();
    ShowSource();
}

void RecordPage::ShowState()
{
    ShowInstruments();
    ShowRecording();
    ShowSource();
    ShowSonar();
    if (isVisible())
        Changed();
}

void RecordPage::ShowInstruments()
{
    const ZrLiveState& state = m_session.State();
    const double now = m_session.Now();
    const QString degree(ZrUnits::degrees);
    const auto angle = [&](ZrValueTile* tile, const ZrLiveValue& value) {
        ShowValue(tile, value, now, ZrNumberText::Of(value.value, 1), degree);
    };
    const auto length = [&](ZrValueTile* tile, const ZrLiveValue& value) {
        ShowValue(tile, value, now,
            ZrNumberText::WithoutMinusZero(ZrUnits::GetShortLengthString(value.value, 1, false)),
            ZrUnits::GetShortLengthUnits());
    };
    ShowValue(m_heading, state.heading, now, ZrNumberText::Heading(state.heading.value, 1), degree);
    length(m_depth, state.depth);
    length(m_altitude, state.altitude);
    const ZrLiveValue& speed = state.speed.IsFresh(now) ? state.speed : state.waterSpeed;
    ShowValue(m_speed, speed, now,
        ZrNumberText::WithoutMinusZero(ZrUnits::GetSpeedString(speed.value, 2, false)),
        ZrUnits::GetSpeedUnits());
    angle(m_pitch, state.pitch);
    angle(m_roll, state.roll);

    const double age = state.fix.Age(now);
    const bool isLong = age >= 60.0;
    const int whole = state.fix.IsKnown() ? static_cast<int>(std::min(isLong ? age / 60.0 : age, 9999.0)) : 0;
    m_fix->Set(state.fix.IsKnown() ? QString::number(whole) : QString(), isLong ? tr("min") : tr("s"));
    m_fix->SetState(!state.fix.IsKnown()    ? ZrValueTile::normal
            : age > lostAfter               ? ZrValueTile::error
            : age > ZrLiveValue::StaleAfter ? ZrValueTile::warning
                                            : ZrValueTile::good);
    QString note = FixName(state.fix.value);
    if (state.satellites.IsFresh(now) && state.satellites.value > 0.0)
        note = tr("%1, %2 sat.").arg(note).arg(static_cast<int>(state.satellites.value));
    m_fix->setToolTip(note);
    m_map.m_way.SetVehicle(
        state.latitude.value, state.longitude.value, state.heading.value, state.latitude.IsFresh(now));
}

void RecordPage::ShowRecording()
{
    const bool isOn = m_session.IsRecording();
    m_record->text = isOn ? tr("Stop") : tr("Record");
    m_record->img = QImage(isOn ? QStringLiteral(":/icons/stop.png") : QStringLiteral(":/icons/record.png"));
    m_record->on = isOn;
    m_record->setAccessibleName(isOn ? tr("Stop recording (R)") : tr("Start recording (R)"));
    m_record->Changed();
    const ZrRecorder::Status& status = m_session.Status();
    const bool hasFile = !status.file.isEmpty();
    m_elapsed->Set(hasFile ? View().Model().recording.ElapsedText() : QString(), QString());
    m_elapsed->SetNote(status.part > 0 ? tr("part %1").arg(status.part) : QString());
    m_elapsed->SetState(isOn ? ZrValueTile::error : ZrValueTile::normal);
    const ZrByteText size = ZrByteText::Of(hasFile ? static_cast<double>(status.bytes) : -1.0);
    m_size->Set(size.value, size.unit);
    const ZrByteText rate = ZrByteText::Of(isOn ? status.bytesPerSecond : -1.0);
    m_rate->Set(rate.value, rate.value.isEmpty() ? QString() : rate.unit + QStringLiteral("/s"));
    const ZrByteText room = ZrByteText::Of(static_cast<double>(isOn ? status.freeBytes : m_space));
    m_free->Set(room.value, room.unit);
    ShowSpaceLeft(isOn ? status.freeBytes : m_space);
    SetSubtitle(isOn ? QFileInfo(status.file).fileName() : QString());
}

void RecordPage::ShowSpaceLeft(qint64 freeBytes)
{
    const SurveyModel& model = View().Model();
    const int least = model.settings.stopBelowMegabytes;
    const ZrSpaceLeft left = model.recording.Left(freeBytes, least * megabyte);
    m_free->setToolTip(HomeState::Space(freeBytes, least, left).hint);
    if (!left.IsKnown()) {
        m_free->SetNote(freeBytes < 0 ? tr("disk does not tell") : tr("– left: no data"));
        m_free->SetState(ZrValueTile::normal);
        return;
    }
    const QString text = HomeState::LeftText(left.seconds);
    const bool isExact = left.by == ZrSpaceLeft::byRecording || left.seconds >= HomeState::Year;
    m_free->SetNote(isExact ? text : QChar(0x2248) + QLatin1Char(' ') + text);
    m_free->SetState(left.seconds < littleTime ? ZrValueTile::warning : ZrValueTile::normal);
}

void RecordPage::TellFeed()
{
    const ZrRecordingNews& news = m_session.News();
    const double now = m_session.Now();
    const double age = now - news.state.lastData;
    SurveyFeed::Facts facts;
    facts.isText = news.lineCount > 0;
    facts.badLines = news.damagedLines + news.droppedLines;
    m_arrivals.Look(now, facts.isText ? news.lineCount - news.damagedLines : news.recordCount);
    facts.perSecond = m_arrivals.PerSecond(now);
    facts.age = age;
    m_bytes.Look(now, news.byteCount);
    const double rate = m_bytes.PerSecond(now);
    if (age <= flowing && rate > 0.0) // what fades out is no rate
        View().Model().recording.SetSourceRate(rate);
    if (age <= ZrLiveValue::StaleAfter)
        m_trouble.clear();
    switch (m_session.Source()) {
    case ZrRecordingSession::sourceNone:
        facts.state = SurveyFeed::none;
        break;
    case ZrRecordingSession::sourceOpening:
        facts.state = SurveyFeed::opening;
        break;
    case ZrRecordingSession::sourceFailed:
        facts.state = SurveyFeed::failed;
        facts.reason = m_session.SourceText();
        break;
    case ZrRecordingSession::sourceFinished:
        facts.state = SurveyFeed::finished;
        break;
    case ZrRecordingSession::sourceOpen:
        facts.reason = m_trouble;
        facts.state = !m_trouble.isEmpty()                           ? SurveyFeed::troubled
            : std::isfinite(age) && age > ZrLiveValue::StaleAfter    ? SurveyFeed::silent
            : std::isfinite(age)                                     ? SurveyFeed::receiving
            : facts.badLines > 2 && facts.badLines >= news.lineCount ? SurveyFeed::unreadable
                                                                     : SurveyFeed::waiting;
        break;
    }
    View().Model().feed.Set(m_openKey, facts);
}

/// A recording goes on when its source has ended; that should be known.
void RecordPage::OnSource()
{
    SurveyRecording& recording = View().Model().recording;
    const bool isEnded = m_session.Source() == ZrRecordingSession::sourceFinished
        || m_session.Source() == ZrRecordingSession::sourceFailed;
    if (isEnded && m_session.IsRecording()) {
        SurveyRecording::Notice notice;
        notice.text = tr("%1: the source has ended. The recording goes on without data.").arg(TimeNow());
        notice.advice = tr("Stop the recording, or choose another source.");
        recording.Tell(notice);
    } else if (m_session.Source() == ZrRecordingSession::sourceOpen && !recording.Told().isOver) {
        recording.Dismiss();
    }
    ShowSource();
}

/// The recording could not begin, or has ended without being asked.
void RecordPage::OnFailed(const QString& message)
{
    SurveyRecording::Notice notice;
    notice.isOver = true;
    notice.text = QStringLiteral("%1: %2").arg(TimeNow(), message);
    notice.log = m_hasLog ? m_session.Status().file : QString();
    const QString folder = tr("choose another folder in Settings, Recording");
    switch (m_session.Failure()) {
    case ZrRecorder::failureSpace:
        notice.advice = tr("Free some space or %1, then start again.").arg(folder);
        break;
    case ZrRecorder::failureWrite:
        notice.advice = tr("Check the disk and its cable or %1, then start again.").arg(folder);
        break;
    case ZrRecorder::failureCreate:
        notice.advice = tr("The folder cannot be written: %1, then start again.").arg(folder);
        break;
    case ZrRecorder::failureNone:
        break;
    }
    if (m_hasLog)
        notice.advice = tr("What was recorded before is in the log. %1").arg(notice.advice);
    View().Model().recording.Tell(notice);
    // Those two pages show it.
    if (!isVisible() && View().Page() != View().GetPage(QStringLiteral("Home")))
        View().Warn(message);
}

void RecordPage::OnEventsLost(const std::vector<ZrLogEvt>& events)
{
    View().Model().unsaved.Add(m_session.Status().file, events, tr("the disk did not take them"));
}

void RecordPage::ShowSource()
{
    TellFeed();
    const QString text = SurveySource::Describe(View().Model().settings) + QChar(QChar::LineSeparator)
        + View().Model().feed.Text();
    if (m_source->text == text)
        return;
    m_source->text = text;
    m_source->Changed();
}

void RecordPage::ShowSonar()
{
    const SurveySettings& settings = View().Model().settings;
    ZrWaterfallPalettes::SetLook(m_sonarLayer, settings.palette, settings.gain, settings.contrast);
    m_sonarLayer.m_view.slantCorrected = settings.slant;
    // Dark behind echoes, as where there is none; without any the ground of the map beside it.
    m_sonar.m_water = m_waterfall.Ring().End() > 0 ? QColor(20, 26, 32) : QColor();
    if (m_bottom->on == settings.bottom)
        return;
    m_bottom->on = settings.bottom;
    m_bottom->update();
}

void RecordPage::NextPalette()
{
    SurveySettings& settings = View().Model().settings;
    settings.palette = (settings.palette + 1) % ZrSonarPalette::Names().size();
    View().SettingsEdited();
    ShowState();
}

void RecordPage::ToggleBottom()
{
    bool& isShown = View().Model().settings.bottom;
    isShown = !isShown;
    View().SettingsEdited();
    ShowState();
}

void RecordPage::Louder()
{
    ChangeGain(gainStep);
}

void RecordPage::Quieter()
{
    ChangeGain(-gainStep);
}

void RecordPage::ChangeGain(double by)
{
    double& gain = View().Model().settings.gain;
    gain = std::clamp(gain + by, -SurveySettings::MostGain, SurveySettings::MostGain);
    View().SettingsEdited();
    ShowState();
}

/// The palette, and the gain.
QStringList RecordPage::SonarText() const
{
    const SurveySettings& settings = View().Model().settings;
    const QStringList names = ZrSonarPalette::Names();
    return {ZrSonarPalette::Title(names.value(settings.palette, names.first())),
        tr("%1 dB").arg(ZrNumberText::Signed(settings.gain))};
}
