// What the page "Record" shows of its session.

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/map/ZrWaterfallPalettes.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/ui/ZrByteText.h"
#include "ZrKit/ui/ZrNumberText.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/HomeState.h"
#include "apps/ZrSurvey/RecordPage.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveySource.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

constexpr double gainStep = 2.0; // dB
constexpr int spaceTicks = 10; // free space is looked at so often
constexpr qint64 megabyte = 1000000;
constexpr double littleTime = 600.0; // seconds of recording left
constexpr double lostAfter = 30.0; // seconds without a fix
constexpr double mostMinutes = 9999.0; // that an age is told in

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

/// By minutes: a page to which nothing comes draws no more often.
QString AgeText(double seconds)
{
    if (seconds < 60.0)
        return {};
    const int minutes = static_cast<int>(std::min(seconds / 60.0, mostMinutes));
    return QCoreApplication::translate("RecordPage", "%1 min ago").arg(minutes);
}

/// Shows \p text, dimmed, later with its age too, when \p value is old.
void ShowValue(
    ZrValueTile* tile, const ZrLiveValue& value, double now, const QString& text, const QString& unit)
{
    tile->Set(value.IsKnown() ? text : QString(), unit);
    const bool isOld = value.IsKnown() && !value.IsFresh(now);
    tile->SetState(isOld ? ZrValueTile::stale : ZrValueTile::normal);
    tile->SetNote(isOld ? AgeText(value.Age(now)) : QString());
    tile->setToolTip(tile->Note());
}

} // namespace

void RecordPage::MeasureSpace()
{
    if (!m_session.IsRecording())
        m_session.MeasureSpace(View().Model().settings.recordDir);
}

void RecordPage::OnNews(const ZrRecordingNews& news)
{
    if (news.source != m_sourceNumber) {
        m_sourceNumber = news.source;
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
    const double shown = isLong ? std::min(age / 60.0, mostMinutes) : age;
    m_fix->Set(state.fix.IsKnown() ? QString::number(static_cast<int>(shown)) : QString(),
        isLong ? tr("min") : tr("s"));
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
    if (const QString text = isOn ? tr("Stop") : tr("Record"); m_record->text != text) {
        m_record->text = text;
        m_record->img
            = QImage(isOn ? QStringLiteral(":/icons/stop.png") : QStringLiteral(":/icons/record.png"));
        m_record->on = isOn;
        m_record->setAccessibleName(isOn ? tr("Stop recording (R)") : tr("Start recording (R)"));
        m_record->Changed();
    }
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

/// The recording could not begin, or has ended without being asked.
void RecordPage::OnFailed(const QString& message)
{
    SurveyRecording::Notice notice;
    notice.isOver = true;
    notice.text = QStringLiteral("%1: %2").arg(SurveyRecording::TimeNow(), message);
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
    View().Model().unsaved.Add(m_hasLog ? m_session.Status().file : QString(), events,
        m_hasLog ? tr("the disk did not take them") : tr("it could not begin"));
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
