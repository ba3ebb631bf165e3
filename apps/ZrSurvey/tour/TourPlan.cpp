// Stations of the page "Plan".

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/planning/ZrAreaFile.h"
#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteFile.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCheck.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrInputDlg.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrWpts.h"
#include "apps/ZrSurvey/PlanPage.h"
#include "apps/ZrSurvey/PlanPatternPanel.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"
#include "apps/ZrSurvey/tour/Tour.h"
#include "apps/ZrSurvey/tour/TourStations.h"

#include <QFile>

#include <algorithm>
#include <cmath>

namespace {

constexpr double lineSpacing = 10.0; ///< metres; the area is as wide as the sonar sees

constexpr double turnRadius = 5.0; ///< metres

/// The page with what is asked of it again and again.
struct PlanTour
{
    explicit PlanTour(Tour& of)
        : tour(of)
        , page(of.Page<PlanPage>("Plan"))
        , hand(of.Hand())
        , plan(of.Model().plan)
    {
    }

    ZrMapPanel& Map() const { return hand.FindAny<ZrMapPanel>(&page); }

    int Count() const { return plan.Route().GetCount(); }

    ZrWpt& Wpt(int index) const { return *plan.Route().GetAt(plan.Route().FindIndex(index)); }

    QPoint PixelOf(const QPointF& world) const
    {
        return (page.Map().m_camera.ToPixel(world) / Map().devicePixelRatioF()).toPoint();
    }

    QPoint PixelOf(int waypoint) const
    {
        return PixelOf(page.Chart().Points()[static_cast<std::size_t>(waypoint)]);
    }

    /// Until the chart shows what the plan is.
    void AwaitChart() const
    {
        hand.Await(QStringLiteral("the map shows the plan"),
            [this] { return page.Chart().Points().size() == static_cast<std::size_t>(Count()); });
        hand.Settle();
    }

    QString TileValue(const char* name) const { return hand.Tile(QString::fromLatin1(name), &page).Value(); }

    Tour& tour;
    PlanPage& page;
    TourHand& hand;
    ZrPlanDocument& plan;
};

void choose_more(PlanTour& at, const QString& title)
{
    at.hand.Press(QStringLiteral("more"));
    at.hand.ChooseRow(at.hand.FindAny<ZrTouchList>(&at.hand.FindAny<ZrChoicePanel>()), title);
}

/// Corners around the middle of the map, of a size that the survey takes less than a minute at 20 times
/// speed, metres.
std::vector<QPoint> corners(const PlanTour& at)
{
    const QPoint middle = at.Map().rect().center() + QPoint(40, -30);
    const double wide = at.Map().width() * 0.5;
    const double high = at.Map().height() * 0.4;
    std::vector<QPoint> pixels;
    for (const auto& [x, y] :
        {std::pair(-0.5, -0.4), std::pair(0.45, -0.5), std::pair(0.5, 0.45), std::pair(-0.42, 0.5)})
        pixels.push_back(middle + QPointF(x * wide, y * high).toPoint());
    return pixels;
}

} // namespace

void tour::plan_area(Tour& tour)
{
    PlanTour at(tour);
    TourHand& hand = tour.Hand();
    tour.Station(QStringLiteral("plan-track"), [&] {
        hand.Press(QStringLiteral("band_back"));
        hand.Press(QStringLiteral("entry_plan"));
        tour.ExpectPage("Plan");
        tour.Expect(at.Count(), 0, QStringLiteral("waypoints of the new plan"));
        hand.Press(QStringLiteral("open"));
        hand.OpenFile(tour.Exports() + QStringLiteral("/line-track.gpx"));
        tour.ExpectToast(QStringLiteral("line-track.gpx opened"));
        at.AwaitChart();
        ZrRouteFile file;
        ZrWpts track;
        tour.Expect(file.Read(tour.Exports() + QStringLiteral("/line-track.gpx"), track),
            QStringLiteral("the track can be read"), file.Error());
        tour.Expect(at.Count(), track.GetCount(), QStringLiteral("waypoints of the track"));
        hand.Press(QStringLiteral("tool_fit"));
        hand.HideToast();
    });
    tour.Station(QStringLiteral("plan-area"), [&] {
        choose_more(at, QStringLiteral("New plan"));
        hand.Await(QStringLiteral("an empty plan"), [&at] { return at.Count() == 0; });
        hand.HideToast();
        // As much of the sea floor as the sonar has seen beside the track.
        hand.Press(QStringLiteral("tool_zoom_out"));
        hand.Press(QStringLiteral("tool_zoom_out"));
        hand.Press(QStringLiteral("tool_area"));
        hand.Await(
            QStringLiteral("the page takes corners"), [&at] { return at.page.Mode() == PlanPage::modeArea; });
        for (const QPoint& corner : corners(at))
            hand.TouchAt(at.Map(), corner);
        // The last one is taken along a little.
        const QPoint last = corners(at).back();
        hand.TouchDrag(at.Map(), last, last + QPoint(-24, 12));
        hand.Press(QStringLiteral("done"));
        hand.Await(QStringLiteral("an area in the plan"), [&at] { return at.plan.Areas().size() == 1; });
        tour.Expect(static_cast<qint64>(at.plan.Areas().front().ring.size()), 4, QStringLiteral("corners"));
    });
    tour.Station(QStringLiteral("plan-pattern"), [&] {
        hand.Press(QStringLiteral("tool_pattern"));
        auto& pattern = hand.FindAny<PlanPatternPanel>(&at.page);
        const std::size_t before = pattern.Plan().lines.size();
        hand.Fill(hand.Field(QStringLiteral("Line spacing"), &pattern), QString::number(lineSpacing));
        hand.Key(Qt::Key_Return);
        hand.Fill(hand.Field(QStringLiteral("Turn radius"), &pattern), QString::number(turnRadius));
        hand.Key(Qt::Key_Return);
        hand.Await(QStringLiteral("a preview of more lines, with narrower turns"), [&] {
            return pattern.Plan().lines.size() > before
                && std::fabs(pattern.Plan().settings.turnRadius - turnRadius) < 1e-9;
        });
        tour.Expect(pattern.Problem().isEmpty(), QStringLiteral("lines can be planned"), pattern.Problem());
        tour.Expect(at.Count(), 0, QStringLiteral("waypoints while it is a preview"));
    });
    tour.Station(QStringLiteral("plan-lines"), [&] {
        auto& pattern = hand.FindAny<PlanPatternPanel>(&at.page);
        const auto lines = static_cast<qint64>(pattern.Plan().lines.size());
        const auto waypoints = static_cast<qint64>(pattern.Plan().waypoints.size());
        hand.Press(QStringLiteral("apply"));
        hand.Await(QStringLiteral("waypoints in the plan"), [&at] { return at.Count() > 0; });
        at.AwaitChart();
        tour.ExpectToast(QStringLiteral("Lines added: %1").arg(lines));
        tour.Expect(at.Count(), waypoints, QStringLiteral("waypoints"));
        tour.Expect(at.plan.LineCount(), lines, QStringLiteral("lines of the plan"));
        tour.Expect(at.TileValue("Lines").toLongLong(), lines, QStringLiteral("lines told"));
        tour.Expect(at.TileValue("Waypoints").toLongLong(), waypoints, QStringLiteral("waypoints told"));
        tour.ExpectWithin(at.plan.Path().Length(), 50.0, 3000.0, QStringLiteral("length of the way, metres"));
        hand.HideToast();
        hand.Press(QStringLiteral("tool_fit"));
    });
}

void tour::plan_edit(Tour& tour)
{
    PlanTour at(tour);
    TourHand& hand = tour.Hand();
    tour.Station(QStringLiteral("plan-edit"), [&] {
        const int count = at.Count();
        // A tap chooses it, a drag takes it along.
        hand.TouchAt(at.Map(), at.PixelOf(1));
        const double lat = at.Wpt(1).lat;
        const double lng = at.Wpt(1).lng;
        const QPoint from = at.PixelOf(1);
        hand.TouchDrag(at.Map(), from, from + QPoint(18, -24));
        hand.Await(QStringLiteral("waypoint 2 has moved"),
            [&] { return at.Wpt(1).lat != lat && at.Wpt(1).lng != lng; });
        tour.ExpectWithin(at.Wpt(1).lat - lat, 1e-7, 1e-3, QStringLiteral("way to the north, degrees"));
        at.AwaitChart();
        // In the middle of the first line.
        const QPoint middle = (at.PixelOf(0) + at.PixelOf(1)) / 2;
        hand.TouchAt(at.Map(), middle);
        hand.Press(QStringLiteral("insert"));
        hand.Await(QStringLiteral("one waypoint more"), [&] { return at.Count() == count + 1; });
        at.AwaitChart();
        hand.Press(QStringLiteral("undo"));
        tour.Expect(at.Count(), count, QStringLiteral("waypoints after undo"));
        hand.Press(QStringLiteral("redo"));
        tour.Expect(at.Count(), count + 1, QStringLiteral("waypoints after redo"));
        hand.Press(QStringLiteral("undo"));
        hand.Press(QStringLiteral("undo"));
        tour.Expect(at.Wpt(1).lat == lat && at.Wpt(1).lng == lng, QStringLiteral("waypoint 2 is back"),
            QString::number(at.Wpt(1).lat, 'f', 7));
        hand.Press(QStringLiteral("redo"));
        hand.Press(QStringLiteral("redo"));
        tour.Expect(at.Count(), count + 1, QStringLiteral("waypoints at the end"));
        at.AwaitChart();
    });
    tour.Station(QStringLiteral("plan-keyboard"), [&] {
        hand.OpenForm(QStringLiteral("Application Settings"));
        auto& tablet = hand.FindAny<ZrCheck>(&hand.View().forms());
        hand.Tap(tablet);
        tour.Expect(ZrTheme::tabletMode, QStringLiteral("tablet mode"), QStringLiteral("it is off"));
        hand.CloseForms();
        hand.Press(QStringLiteral("tab_target"));
        hand.TouchAt(at.Map(), at.PixelOf(1));
        hand.Tap(hand.Field(QStringLiteral("Speed")));
        auto& keys = hand.FindAny<ZrInputDlg>();
        for (const QChar key : QStringLiteral("1.2")) {
            const auto& items = keys.Items();
            const auto item = std::find_if(items.begin(), items.end(),
                [key](const ZrInputItem& each) { return each.action == zriKey && each.ch == key; });
            if (item == items.end())
                throw TourFailure{QStringLiteral("a key %1").arg(key), QStringLiteral("none")};
            hand.TapAt(keys, item->rect.center());
        }
        tour.Expect(keys.text == QLatin1String("1.2"), QStringLiteral("1.2 on the keyboard"), keys.text);
    });
    tour.Station(QStringLiteral("plan-property"), [&] {
        auto& keys = hand.FindAny<ZrInputDlg>();
        const auto& items = keys.Items();
        const auto ok = std::find_if(
            items.begin(), items.end(), [](const ZrInputItem& each) { return each.action == zriOk; });
        hand.TapAt(keys, ok->rect.center());
        hand.Await(QStringLiteral("the speed of waypoint 2 is 1.2 m/s"),
            [&at] { return std::fabs(at.Wpt(1).speed - 1.2) < 1e-9; });
        hand.OpenForm(QStringLiteral("Application Settings"));
        hand.Tap(hand.FindAny<ZrCheck>(&hand.View().forms()));
        tour.Expect(!ZrTheme::tabletMode, QStringLiteral("no tablet mode"), QStringLiteral("it is on"));
        hand.CloseForms();
    });
    tour.Station(QStringLiteral("plan-checks"), [&] {
        hand.Press(QStringLiteral("tab_warning"));
        hand.Await(QStringLiteral("the checks are of this plan"),
            [&at] { return at.hand.Tile(QStringLiteral("Checks"), &at.page).State() != ZrValueTile::stale; });
        const QString told = at.TileValue("Checks");
        qint64 serious = 0;
        for (const ZrRouteFinding& finding : at.plan.Findings()) {
            if (finding.severity != ZrRouteFinding::eInfo)
                ++serious;
            tour.Expect(finding.severity != ZrRouteFinding::eError, QStringLiteral("no error in the plan"),
                finding.text);
        }
        tour.Expect(serious == 0 ? told == QLatin1String("OK") : told.toLongLong() == serious,
            QStringLiteral("%1 findings told").arg(serious), told);
    });
}

void tour::plan_files(Tour& tour)
{
    PlanTour at(tour);
    TourHand& hand = tour.Hand();
    tour.Station(QStringLiteral("plan-export"), [&] {
        hand.Press(QStringLiteral("tab_list"));
        const QString saved = tour.Exports() + QStringLiteral("/survey.json");
        hand.Press(QStringLiteral("save"));
        hand.SaveAs(tour.Exports(), QStringLiteral("survey"));
        tour.ExpectToast(QStringLiteral("Saved as survey.json"));
        tour.Expect(!at.plan.IsDirty(), QStringLiteral("the plan is saved"), QStringLiteral("it is not"));
        tour.Expect(at.plan.FilePath() == saved, saved, at.plan.FilePath());
        for (const char* suffix : {"gpx", "kml", "geojson", "xml", "txt"}) {
            choose_more(at, QStringLiteral("Export the route"));
            hand.SaveAs(tour.Exports(), QStringLiteral("survey.") + QLatin1String(suffix));
            tour.ExpectToast(QStringLiteral("survey.") + QLatin1String(suffix));
        }
        for (const char* suffix : {"json", "gpx", "kml", "geojson", "xml", "txt"}) {
            const QString path = tour.Exports() + QStringLiteral("/survey.") + QLatin1String(suffix);
            ZrRouteFile file;
            ZrWpts route;
            tour.Expect(file.Read(path, route), QStringLiteral("%1 can be read").arg(path), file.Error());
            tour.Expect(route.GetCount(), at.Count(),
                QStringLiteral("waypoints of survey.%1").arg(QLatin1String(suffix)));
            double apart = 0.0;
            for (int i = 0; i < std::min(route.GetCount(), at.Count()); ++i) {
                const ZrWpt& wpt = *route.GetAt(route.FindIndex(i));
                apart = std::max(
                    {apart, std::fabs(wpt.lat - at.Wpt(i).lat), std::fabs(wpt.lng - at.Wpt(i).lng)});
            }
            tour.ExpectWithin(apart, 0.0, 2e-7,
                QStringLiteral("positions of survey.%1, degrees apart").arg(QLatin1String(suffix)));
        }
        ZrPlanDocument again{QString()};
        tour.Expect(again.Open(saved) && again.Areas().size() == 1,
            QStringLiteral("the area is in survey.json"), again.Error());
        hand.HideToast();
    });
}
