// Stations of the page "Home", and the import of the side-scan line.

#include "ZrKit/planning/ZrRouteFile.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrKit/ui/ZrWorkPanel.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrWpts.h"
#include "apps/ZrSurvey/HomePage.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/ReviewSonar.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"
#include "apps/ZrSurvey/tour/Tour.h"
#include "apps/ZrSurvey/tour/TourChanging.h"
#include "apps/ZrSurvey/tour/TourStations.h"

#include <QApplication>
#include <QFileInfo>

namespace {

constexpr int linePings = 300; ///< of the side-scan line

} // namespace

void tour::home(Tour& tour)
{
    TourHand& hand = tour.Hand();
    tour.Station(QStringLiteral("home"), [&] {
        hand.Await(QStringLiteral("the window is shown"), [&tour] { return tour.View().isVisible(); });
        QApplication::setActiveWindow(&tour.View());
        tour.ExpectPage("Home");
        for (const char* entry : {"plan", "record", "review", "scene", "settings"})
            hand.Find<ZrBtn>(QStringLiteral("entry_") + QLatin1String(entry));
        const auto& space = hand.Tile(QStringLiteral("Free space"));
        hand.Await(
            QStringLiteral("free space is known"), [&space] { return space.Value().toDouble() > 0.0; });
        home_changes(tour);
    });
}

void tour::line(Tour& tour)
{
    TourHand& hand = tour.Hand();
    tour.Station(QStringLiteral("open"), [&] {
        hand.Press(QStringLiteral("entry_review"));
        tour.ExpectPage("Review");
        hand.Press(QStringLiteral("open"));
        auto& panel = hand.FindAny<ZrFilePanel>();
        hand.GoToFolder(panel, QFileInfo(tour.Line()).path());
        const auto& items = hand.Find<ZrTouchList>(QStringLiteral("files"), &panel).Items();
        bool isListed = false;
        for (const ZrListItem& item : items)
            isListed = isListed || item.title == QFileInfo(tour.Line()).fileName();
        tour.Expect(isListed, QStringLiteral("%1 is listed").arg(QFileInfo(tour.Line()).fileName()),
            QStringLiteral("%1 others").arg(items.size()));
        // The drives of the machine; when the line was put there.
        for (const ZrTouchList* list : panel.findChildren<ZrTouchList*>())
            tour.Changes(*list);
    });
    tour.Station(QStringLiteral("line"), [&] {
        hand.OpenFile(tour.Line());
        auto& page = tour.Page<ReviewPage>("Review");
        hand.Await(
            QStringLiteral("the line is imported and opened"),
            [&page] { return page.Recording() && !page.IsLoading(); }, 30000);
        tour.ExpectPage("Review");
        const ZrSurveyRecording& recording = *page.Recording();
        tour.Expect(
            QFileInfo(recording.Path()).path() == tour.Recordings(), tour.Recordings(), recording.Path());
        tour.Expect(static_cast<qint64>(recording.Pings().size()), linePings, QStringLiteral("pings"));
        tour.Expect(!recording.IsDamaged() && recording.Remarks().isEmpty(), QStringLiteral("a sound log"),
            recording.Remarks().join(QLatin1Char(' ')));
        tour.Expect(tour.Model().reviewed.Way().size() > 250, QStringLiteral("the way of the vehicle"),
            QString::number(tour.Model().reviewed.Way().size()));
        hand.Await(QStringLiteral("the waterfall is shown"),
            [&page] { return page.Sonar().Loader() && !page.Sonar().Loader()->IsLoading(); });
    });
    tour.Station(QStringLiteral("track"), [&] {
        hand.Press(QStringLiteral("export"));
        auto& choice = hand.FindAny<ZrChoicePanel>();
        hand.ChooseRow(hand.FindAny<ZrTouchList>(&choice), QStringLiteral("Track"));
        hand.SaveAs(tour.Exports(), QStringLiteral("line-track.gpx"));
        tour.ExpectToast(QStringLiteral("line-track.gpx was written"));
        ZrRouteFile file;
        ZrWpts route;
        tour.Expect(file.Read(tour.Exports() + QStringLiteral("/line-track.gpx"), route),
            QStringLiteral("the track can be read"), file.Error());
        tour.ExpectWithin(route.GetCount(), 250, linePings, QStringLiteral("points of the track"));
        hand.HideToast();
    });
}

void tour::home_again(Tour& tour)
{
    TourHand& hand = tour.Hand();
    tour.Station(QStringLiteral("home-recordings"), [&] {
        // Home, whichever pages were visited before.
        for (int i = 0; i < 20 && hand.Sees(QStringLiteral("band_back")); ++i)
            hand.Press(QStringLiteral("band_back"));
        tour.ExpectPage("Home");
        auto& page = tour.Page<HomePage>("Home");
        auto& list = hand.FindAny<ZrTouchList>(&page);
        hand.Await(
            QStringLiteral("both recordings are listed"), [&list] { return list.Items().size() >= 2; });
        // A long list makes the pictures of rows when they are painted.
        const auto hasPreview = [&list](int row) {
            const ZrListItem& item = list.Items()[row];
            return item.isPicture && !(list.m_picture ? list.m_picture(row) : item.image).isNull();
        };
        for (int row = 0; row < list.Items().size(); ++row) {
            const ZrListItem item = list.Items()[row];
            hand.Await(QStringLiteral("a preview of %1").arg(item.title), [&] { return hasPreview(row); });
            tour.Expect(item.detail.isEmpty(), QStringLiteral("%1 is sound").arg(item.title), item.detail);
            // That of the simulator is named by the time of its begin.
            if (item.title != QFileInfo(tour.Line()).completeBaseName())
                tour.Changes(*list.viewport(), list.visualRect(list.model()->index(row, 0)));
        }
        // Here as on the page "Record": the simulator has run the plan.
        const auto& data = hand.Tile(QStringLiteral("Vehicle data"), &page);
        tour.Expect(data.Value() == QLatin1String("At its end") && data.State() == ZrValueTile::normal,
            QStringLiteral("a simulator at its end"), data.Value());
        home_changes(tour);
        tour.Changes(hand.Tile(QStringLiteral("Position"), &page)); // tells its age
    });
}
