// Stations of the page "Record", and the review of what was recorded.

#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrKit/review/ZrLogSummary.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrTextPanel.h"
#include "ZrKit/ui/ZrTimeBar.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrForm.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrPlayer.h"
#include "apps/ZrSurvey/RecordPage.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/ReviewSonar.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyPage.h"
#include "apps/ZrSurvey/SurveySource.h"
#include "apps/ZrSurvey/SurveyView.h"
#include "apps/ZrSurvey/tour/Tour.h"
#include "apps/ZrSurvey/tour/TourChanging.h"
#include "apps/ZrSurvey/tour/TourShot.h"
#include "apps/ZrSurvey/tour/TourStations.h"

#include <QFileInfo>

#include <cmath>
#include <optional>

namespace {

constexpr double speedOfTime = 20.0;
constexpr int beginMs = 240000; ///< that the first line takes at most
constexpr int pauseMs = 60000; ///< between two records, on a machine that is busy with much else
const char note[] = "Rope on the bottom";

/// Plays the log to its end, as a program that reads it does.
void check_log(Tour& tour, const QString& path, u64 events)
{
    ZrLogScan scan;
    ZrLogSummary summary;
    ZrLogItem item;
    u64 pos = 0;
    tour.Expect(scan.Open(path), QStringLiteral("a log in %1").arg(path), scan.Error());
    while (scan.Next(item, pos))
        summary.Add(item);
    tour.Expect(
        scan.State() == ZrLogScan::AtEnd, QStringLiteral("the log is sound to its end"), scan.Error());
    u64 played = 0;
    ZrPlayer player;
    QObject::connect(&player, &ZrPlayer::NewPayload, &player, [&played] { ++played; });
    tour.Expect(player.OpenFile(path), QStringLiteral("the log can be played"), path);
    while (player.ReadNextItem(true)) { }
    tour.Expect(
        static_cast<qint64>(played), static_cast<qint64>(summary.Items()), QStringLiteral("items played"));
    const auto count = [&summary](u16 type) {
        u64 sum = 0;
        for (const auto& each : summary.Types()) {
            if (each.first >> 16 == type)
                sum += each.second.count;
        }
        return static_cast<double>(sum);
    };
    constexpr double many = 1e6;
    tour.ExpectWithin(count(rtMissionPlan), 1, 1, QStringLiteral("plans in the log"));
    tour.ExpectWithin(count(krtNavigation), 200, many, QStringLiteral("navigation records"));
    tour.ExpectWithin(count(krtPing), 200, many, QStringLiteral("pings"));
    tour.ExpectWithin(count(krtFix), 20, many, QStringLiteral("position fixes"));
    tour.ExpectWithin(count(krtDepth), 20, many, QStringLiteral("soundings"));
    tour.ExpectWithin(
        count(rtEvent), static_cast<double>(events), static_cast<double>(events), QStringLiteral("events"));
}

/// Until the simulator has run the plan: it may be slow, but has to go on.
void await_end(const TourHand& hand, ZrRecordingSession& session)
{
    const auto hasEnded = [&session] { return session.Source() == ZrRecordingSession::sourceFinished; };
    while (!hasEnded()) {
        const auto items = session.Status().items;
        hand.Await(
            QStringLiteral("the simulator goes on"),
            [&] { return hasEnded() || session.Status().items > items; }, pauseMs);
    }
}

void check_instruments(Tour& tour)
{
    const auto value = [&tour](const char* caption) {
        return tour.Hand().Tile(QString::fromLatin1(caption)).Value().toDouble();
    };
    tour.ExpectWithin(value("Heading"), 0.0, 359.9, QStringLiteral("heading, degrees"));
    tour.ExpectWithin(value("Depth"), 0.0, 60.0, QStringLiteral("depth, metres"));
    tour.ExpectWithin(value("Altitude"), 1.0, 100.0, QStringLiteral("altitude, metres"));
    tour.ExpectWithin(value("Speed"), 0.3, 3.0, QStringLiteral("speed, m/s"));
    tour.ExpectWithin(std::fabs(value("Pitch")), 0.0, 30.0, QStringLiteral("pitch, degrees"));
    tour.ExpectWithin(std::fabs(value("Roll")), 0.0, 40.0, QStringLiteral("roll, degrees"));
}

} // namespace

void tour::record(Tour& tour)
{
    TourHand& hand = tour.Hand();
    tour.Station(QStringLiteral("sources"), [&] {
        hand.OpenForm(QStringLiteral("Source of data"));
        QWidget& form = *tour.View().forms().m_form;
        hand.Tap(hand.Button(QStringLiteral("Simulator"), &form));
        hand.Fill(hand.Field(QStringLiteral("Speed of time, \u00d7"), &form), QString::number(speedOfTime));
        tour.Expect(tour.Model().settings.source, SurveySource::simulator, QStringLiteral("the simulator"));
        tour.ExpectWithin(
            tour.Model().settings.simSpeed, speedOfTime, speedOfTime, QStringLiteral("speed of time"));
    });
    auto& page = tour.Page<RecordPage>("Record");
    ZrRecordingSession& session = page.Session();
    tour.Station(QStringLiteral("record"), [&] {
        hand.CloseForms();
        hand.Key(Qt::Key_F3);
        tour.ExpectPage("Record");
        hand.Press(QStringLiteral("record"));
        hand.Await(QStringLiteral("it is recorded"), [&session] {
            return session.Recording() == ZrRecordingSession::recordingOn && session.Status().items > 0;
        });
        tour.Expect(QFileInfo(session.Status().file).path() == tour.Recordings(), tour.Recordings(),
            session.Status().file);
        const QStringList labels = tour.Model().settings.eventLabels.mid(0, 2);
        for (const QString& label : labels)
            hand.Tap(hand.Button(label, &page));
        hand.Fill(hand.Field(QStringLiteral("Note"), &page), QString::fromLatin1(note));
        hand.Press(QStringLiteral("event"));
        hand.Await(
            QStringLiteral("a trail and echoes are shown"),
            [&page] { return page.Map().TrailCount() > 50 && page.Waterfall().Ring().End() > 200; }, beginMs);
        check_instruments(tour);
        const double size = hand.Tile(QStringLiteral("Size")).Value().toDouble();
        tour.ExpectWithin(size, 0.001, 1000.0, QStringLiteral("size told"));
        record_changes(tour, true);
    });
    tour.Station(QStringLiteral("recorded"), [&] {
        await_end(hand, session);
        const QString file = session.Status().file;
        hand.Press(QStringLiteral("record"));
        hand.Await(QStringLiteral("the recording has ended"),
            [&session] { return session.Recording() == ZrRecordingSession::recordingOff; });
        tour.ExpectToast(QStringLiteral("Recording stopped"));
        const auto events = static_cast<u64>(tour.Model().settings.eventLabels.mid(0, 2).size() + 1);
        check_log(tour, file, events);
        record_changes(tour, false);
    });
}

void tour::review(Tour& tour)
{
    TourHand& hand = tour.Hand();
    auto& page = tour.Page<ReviewPage>("Review");
    const QString file = tour.Page<RecordPage>("Record").Session().Status().file;
    const auto act = [&hand](int which) { hand.Press(QStringLiteral("act%1").arg(which)); };
    const auto now = [&page] { return page.Clock().Time(); };
    std::optional<TourShot> withoutRange;
    tour.Station(QStringLiteral("review-recording"), [&] {
        // The message offers it for some seconds; later it is the first one at home.
        auto* toast = tour.View().findChild<ZrToast*>();
        if (toast && toast->isVisible()) {
            hand.Tap(hand.Button(QStringLiteral("Review"), toast));
        } else {
            hand.Key(Qt::Key_F1);
            hand.ChooseRow(hand.FindAny<ZrTouchList>(tour.View().Page()), QFileInfo(file).completeBaseName());
        }
        hand.Await(
            QStringLiteral("the recording is opened"),
            [&] { return page.Recording() && !page.IsLoading() && page.Recording()->Path() == file; }, 30000);
        tour.ExpectPage("Review");
        ZrSurveyRecording& recording = *page.Recording();
        tour.Expect(!recording.IsDamaged() && recording.Remarks().isEmpty(), QStringLiteral("a sound log"),
            recording.Remarks().join(QLatin1Char(' ')));
        QStringList told;
        for (std::size_t i = 0; i < recording.Events().Count(); ++i)
            told.append(recording.Events().At(i).text);
        const QStringList wanted
            = tour.Model().settings.eventLabels.mid(0, 2) + QStringList(QString::fromLatin1(note));
        tour.Expect(told == wanted, wanted.join(QStringLiteral(", ")), told.join(QStringLiteral(", ")));
        tour.Expect(static_cast<qint64>(recording.Plan().size()), tour.Model().plan.Route().GetCount(),
            QStringLiteral("waypoints of the plan in the log"));
        // A finger along the time line.
        const double before = now();
        ZrTimeBar& bar = page.Bar();
        hand.Drag(bar, QPoint(bar.width() / 6, bar.height() / 2), QPoint(bar.width() / 2, bar.height() / 2));
        hand.Await(QStringLiteral("the cursor has moved"), [&] { return now() > before; });
        tour.ExpectWithin(bar.XOf(now()) / bar.width(), 0.45, 0.55, QStringLiteral("place of the cursor"));
        hand.Await(QStringLiteral("the waterfall is shown"),
            [&page] { return page.Sonar().Loader() && !page.Sonar().Loader()->IsLoading(); });
        show_same_place(tour);
        hand.Settle();
        withoutRange.emplace(tour, page);
        recorded_changes(tour);
    });
    tour.Station(QStringLiteral("review-play"), [&] {
        double before = now();
        act(ReviewTransport::play);
        hand.Await(
            QStringLiteral("it plays on"), [&] { return page.Clock().IsPlaying() && now() > before + 0.3; });
        act(ReviewTransport::play);
        tour.Expect(!page.Clock().IsPlaying(), QStringLiteral("it stands still"), QStringLiteral("it plays"));
        before = now();
        act(ReviewTransport::recordForward);
        tour.ExpectWithin(now() - before, 1e-6, 1.0, QStringLiteral("a record on, seconds"));
        act(ReviewTransport::recordBack);
        act(ReviewTransport::secondForward);
        tour.ExpectWithin(now() - before, 0.5, 1.5, QStringLiteral("a second on"));
        // From A to B and again.
        act(ReviewTransport::setA);
        hand.Key(Qt::Key_T);
        auto& panel = hand.FindAny<ZrTextPanel>();
        hand.Fill(panel.Input(), QStringLiteral("+20"));
        hand.Key(Qt::Key_Return);
        hand.Await(QStringLiteral("the typed time is taken"), [&panel] { return !panel.isVisible(); });
        tour.ExpectWithin(now() - before, 20.5, 21.5, QStringLiteral("twenty seconds on"));
        act(ReviewTransport::setB);
        act(ReviewTransport::loop);
        tour.Expect(page.Clock().HasLoop(), QStringLiteral("a loop"), QStringLiteral("none"));
        for (int i = 0; i < 3; ++i)
            act(ReviewTransport::faster);
        hand.Settle();
        const TourShot atB(tour, page);
        act(ReviewTransport::play);
        double last = now();
        int turns = 0;
        hand.Await(QStringLiteral("it begins at A again, twice"), [&] {
            turns += now() < last ? 1 : 0;
            last = now();
            return turns >= 2;
        });
        TourShot(tour, page).ExpectMoved(tour, atB, QStringLiteral("while it plays, once more at A"));
        act(ReviewTransport::play);
        act(ReviewTransport::loop);
        for (int i = 0; i < 3; ++i)
            act(ReviewTransport::slower);
        act(ReviewTransport::nextEvent);
        show_same_place(tour);
        hand.HideToast();
        hand.Settle();
        TourShot(tour, page).ExpectRange(tour, *withoutRange);
        recorded_changes(tour);
    });
}
