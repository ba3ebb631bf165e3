// Where the data of the page "Record" come from, and whether they do.

#include "ZrKit/planning/ZrRouteKey.h"
#include "ZrKit/recording/ZrSerialSource.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrUtil/ZrBtn.h"
#include "apps/ZrSurvey/RecordPage.h"
#include "apps/ZrSurvey/SourceMaker.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveySource.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QFileInfo>

#include <memory>
#include <utility>

namespace {

constexpr double flowing = 1.0; // seconds without data, at most, while they flow

/// Whether a recording should not go on without that being known; \p seconds it did.
bool IsLoss(const ZrSourceFacts& facts, double seconds)
{
    switch (facts.state) {
    case ZrSourceFacts::receiving:
    case ZrSourceFacts::opening:
        return false;
    case ZrSourceFacts::none:
    case ZrSourceFacts::waiting:
        return seconds > ZrLiveValue::StaleAfter;
    case ZrSourceFacts::troubled: // a connection that comes back at once is none
        return facts.age > ZrLiveValue::StaleAfter;
    case ZrSourceFacts::silent:
    case ZrSourceFacts::unreadable:
    case ZrSourceFacts::finished:
    case ZrSourceFacts::failed:
        break;
    }
    return true;
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
    m_openPlan = ZrRouteKey::Of(SourceMaker::PlanOf(settings, View().Model().plan.Route()));
    m_watch.Clear();
    m_session.Open(SourceMaker::Make(settings, View().Model().plan.Route()));
    ShowPlan();
}

bool RecordPage::IsPlanNew() const
{
    return m_opened.source == SurveySource::simulator
        && m_openPlan != ZrRouteKey::Of(SourceMaker::PlanOf(m_opened, View().Model().plan.Route()));
}

/// The simulated vehicle begins anew, unless its way is being recorded.
void RecordPage::UsePlan()
{
    if (m_openKey != SourceMaker::Key(View().Model().settings) || !IsPlanNew())
        return;
    if (m_session.Recording() == ZrRecordingSession::recordingOff)
        OpenSource();
    else
        View().Tell(tr("The simulator runs the changed plan when the recording has ended"));
}

/// A page that is not shown has the plan when it is opened.
void RecordPage::OnPlan()
{
    if (!isVisible())
        return;
    UsePlan();
    ShowPlan();
    Changed();
}

/// The vehicle's plan, or that which the simulated one runs: while it is recorded that is the one before, of
/// which the log tells as well.
void RecordPage::ShowPlan()
{
    const ZrPlanDocument& plan = View().Model().plan;
    const bool isRun = m_opened.source == SurveySource::simulator;
    const bool isShown = m_shownPlan == plan.Revision() && m_isShownRun == isRun;
    if (isShown || (m_session.Recording() != ZrRecordingSession::recordingOff && IsPlanNew())) {
        m_map.LocatePlan();
        return;
    }
    m_shownPlan = plan.Revision();
    m_isShownRun = isRun;
    m_map.SetPlan(std::make_shared<const ZrWpts>(SourceMaker::PlanOf(m_opened, plan.Route())));
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

void RecordPage::TellFeed()
{
    const ZrSourceFacts facts = m_watch.Look(m_session);
    if (facts.age <= flowing && facts.bytesPerSecond > 0.0) // what fades out is no rate
        View().Model().recording.SetSourceRate(facts.bytesPerSecond);
    View().Model().feed.Set(m_openKey, facts);
    TellLoss(facts);
}

/// A recording that goes on without data should be known until they are back, not for some seconds.
void RecordPage::TellLoss(const ZrSourceFacts& facts)
{
    SurveyRecording& recording = View().Model().recording;
    const double now = m_session.Now();
    const bool isBack = facts.state == ZrSourceFacts::receiving;
    if (isBack || !recording.IsOn()) { // its begin takes away what was told before
        m_flowAt = now;
        const bool wasTold = !std::exchange(m_loss, {}).text.isEmpty();
        m_lossKey.clear();
        if (wasTold && isBack && !recording.Told().isOver)
            recording.Dismiss();
        return;
    }
    if (facts.state == ZrSourceFacts::opening)
        m_flowAt = now;
    if (!IsLoss(facts, now - m_flowAt))
        return;
    if (std::exchange(m_lossKey, m_openKey) != m_openKey) {
        m_loss = {};
        m_lossTime = SurveyRecording::TimeNow();
    }
    const SurveyRecording::Notice notice = LossNotice(facts);
    const bool isKnown = notice.text == m_loss.text;
    // Why may be known later; what was touched away stays away.
    if (isKnown && (notice.advice == m_loss.advice || recording.Told().text != m_loss.text))
        return;
    m_loss = notice;
    recording.Tell(notice);
}

/// That nothing comes from the source, or no more.
SurveyRecording::Notice RecordPage::LossNotice(const ZrSourceFacts& facts) const
{
    SurveyRecording::Notice notice;
    if (facts.state == ZrSourceFacts::finished) {
        notice.text = tr("%1: the source has ended. The recording goes on without data.").arg(m_lossTime);
        notice.advice = tr("Stop the recording, or choose another source.");
        return notice;
    }
    notice.text = tr("%1: no data from %2. The recording goes on without.")
                      .arg(m_lossTime, SurveySource::Describe(m_opened));
    if (facts.state == ZrSourceFacts::troubled)
        notice.advice = tr("%1; it is tried again and again.").arg(facts.reason);
    else if (facts.state == ZrSourceFacts::failed)
        notice.advice = tr("%1. Choose another source.").arg(facts.reason);
    else if (facts.state == ZrSourceFacts::unreadable)
        notice.advice = tr("What comes cannot be read: check speed and kind of the source.");
    else
        notice.advice = tr("Check the vehicle and its cable, or choose another source.");
    return notice;
}

void RecordPage::ShowSource()
{
    TellFeed();
    const QString text = SurveySource::Describe(View().Model().settings) + QChar(QChar::LineSeparator)
        + View().Model().feed.Text();
    if (m_source->text == text)
        return;
    const bool isBad = View().Model().feed.Facts().IsBad();
    m_source->text = text;
    m_source->img
        = QImage(isBad ? QStringLiteral(":/icons/error.png") : QStringLiteral(":/icons/source.png"));
    m_source->Changed();
}

/// \p reason why the source has no connection; empty when it is back.
void RecordPage::OnTrouble(const QString& reason)
{
    m_watch.Lose(reason, m_session.Now());
    ShowSource();
}
