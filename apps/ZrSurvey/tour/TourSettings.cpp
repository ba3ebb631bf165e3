// Stations of the page "3D" and of the settings.

#include "ZrKit/scene/ZrScenePanel.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrFmApp.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrRadio.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/FormAbout.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/ReviewSonar.h"
#include "apps/ZrSurvey/ScenePage.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"
#include "apps/ZrSurvey/tour/Tour.h"
#include "apps/ZrSurvey/tour/TourStations.h"

namespace {

QString general()
{
    return QStringLiteral("Application Settings");
}

void choose(Tour& tour, const QString& list, int choice)
{
    TourHand& hand = tour.Hand();
    for (ZrRadio* radio : tour.View().forms().findChildren<ZrRadio*>()) {
        if (radio->isVisible() && radio->accessibleName() == list) {
            hand.TapAt(*radio, radio->ItemRect(choice).center());
            return;
        }
    }
    throw TourFailure{QStringLiteral("the list \"%1\"").arg(list), QStringLiteral("none is shown")};
}

void await_sonar(Tour& tour)
{
    auto& page = tour.Page<ReviewPage>("Review");
    tour.Hand().Await(QStringLiteral("the waterfall is shown"),
        [&page] { return page.Sonar().Loader() && !page.Sonar().Loader()->IsLoading(); });
}

} // namespace

void tour::scene(Tour& tour)
{
    TourHand& hand = tour.Hand();
    auto& page = tour.Page<ScenePage>("Scene");
    const auto& camera = page.Scene().m_camera;
    tour.Station(QStringLiteral("scene-orbit"), [&] {
        hand.Key(Qt::Key_F5);
        tour.ExpectPage("Scene");
        hand.Await(QStringLiteral("the sea floor is made"), [&page] { return !page.Way().IsWorking(); });
        tour.Expect(page.Scene().m_hasVehicle, QStringLiteral("a vehicle"), QStringLiteral("none"));
        auto& panel = hand.FindAny<ZrScenePanel>(&page);
        const float before = camera.Azimuth();
        const QPoint middle = panel.rect().center();
        hand.TouchDrag(panel, middle, middle + QPoint(panel.width() / 8, 20));
        tour.Expect(std::fabs(camera.Azimuth() - before) > 5.0F, QStringLiteral("the camera has turned"),
            QString::number(camera.Azimuth() - before));
        tour.ExpectWithin(hand.Tile(QStringLiteral("Altitude"), &page).Value().toDouble(), 0.5, 50.0,
            QStringLiteral("altitude, metres"));
    });
    tour.Station(QStringLiteral("scene-follow"), [&] {
        // Off and on again, from behind.
        hand.Press(QStringLiteral("follow"));
        hand.Press(QStringLiteral("follow"));
        hand.Press(QStringLiteral("orbit"));
        hand.Wheel(hand.FindAny<ZrScenePanel>(&page), -2);
        const QVector3D target = camera.Target();
        const QVector3D place = page.Scene().m_pose.position;
        tour.ExpectWithin(static_cast<double>(std::hypot(target.x() - place.x(), target.y() - place.y())),
            0.0, 0.01, QStringLiteral("from the vehicle to what the camera looks at, metres"));
    });
}

void tour::settings(Tour& tour)
{
    TourHand& hand = tour.Hand();
    tour.Station(QStringLiteral("settings"), [&] {
        hand.Key(Qt::Key_F4);
        tour.ExpectPage("Review");
        hand.OpenForm(general());
    });
    tour.Station(QStringLiteral("imperial"), [&] {
        choose(tour, QStringLiteral("Units of Measurement"), 1);
        choose(tour, QStringLiteral("Coordinate System"), 3);
        tour.Expect(ZrUnits::GetShortLengthUnits() == QLatin1String("ft"), QStringLiteral("feet"),
            ZrUnits::GetShortLengthUnits());
        tour.Expect(ZrUnits::GetGeoStyle() == eGeoUTM, QStringLiteral("UTM"),
            QString::number(ZrUnits::GetGeoStyle()));
        hand.CloseForms();
        await_sonar(tour);
    });
    tour.Station(QStringLiteral("metric"), [&] {
        hand.OpenForm(general());
        choose(tour, QStringLiteral("Units of Measurement"), 0);
        choose(tour, QStringLiteral("Coordinate System"), 2);
        tour.Expect(ZrUnits::GetShortLengthUnits() == QLatin1String("m"), QStringLiteral("metres"),
            ZrUnits::GetShortLengthUnits());
    });
    tour.Station(QStringLiteral("scale"), [&] {
        const float before = ZrTheme::dp;
        hand.Tap(hand.Button(QStringLiteral("+2"), &tour.View().forms()));
        hand.Await(QStringLiteral("everything is larger"), [before] { return ZrTheme::dp > before * 1.05F; });
        hand.CloseForms();
        await_sonar(tour);
    });
    const char* const colours[] = {"Day", "Dusk", "Night"};
    for (const int scheme : {0, 2, 1}) {
        tour.Station(QString::fromLatin1(colours[scheme]).toLower(), [&] {
            hand.OpenForm(scheme == 0 ? general() : QStringLiteral("Display"));
            if (scheme == 0) {
                hand.Tap(hand.Button(QStringLiteral("+1"), &tour.View().forms()));
                hand.OpenForm(QStringLiteral("Display"));
            }
            hand.Tap(hand.Button(QString::fromLatin1(colours[scheme]), &tour.View().forms()));
            tour.Expect(ZrColourScheme::Current(), scheme, QStringLiteral("colours"));
            hand.CloseForms();
            await_sonar(tour);
        });
    }
    tour.Station(QStringLiteral("about"), [&] {
        hand.OpenForm(QStringLiteral("About"));
        const auto& form = hand.FindAny<FormAbout>(&tour.View().forms());
        for (const int row : {int(FormAbout::LibrariesRow), int(FormAbout::FolderRow)})
            tour.Changes(*form.Body(), form.TextRect(row));
    });
    tour.Station(QStringLiteral("settings-closed"), [&] {
        hand.CloseForms();
        tour.ExpectPage("Review");
    });
}
