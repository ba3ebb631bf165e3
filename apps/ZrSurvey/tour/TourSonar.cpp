// Stations of the page "Review" with the side-scan line.

#include "ZrKit/map/ZrWaterfallPanel.h"
#include "ZrKit/review/ZrEventList.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrKit/review/ZrTimeText.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrPaletteBtn.h"
#include "ZrKit/ui/ZrTextPanel.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrSlider.h"
#include "apps/ZrSurvey/HomePage.h"
#include "apps/ZrSurvey/ReviewBottom.h"
#include "apps/ZrSurvey/ReviewEvents.h"
#include "apps/ZrSurvey/ReviewExport.h"
#include "apps/ZrSurvey/ReviewLook.h"
#include "apps/ZrSurvey/ReviewMeasure.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/ReviewSonar.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"
#include "apps/ZrSurvey/tour/Tour.h"
#include "apps/ZrSurvey/tour/TourExport.h"
#include "apps/ZrSurvey/tour/TourStations.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace {

/// The wreck to starboard, as it lies in the line: its far side from near the stem on, and where its shadow
/// ends. Slant ranges, metres.
constexpr double middlePing = 172.0; ///< that is in the middle of the waterfall
constexpr double aftPing = 246.0;
constexpr double aftRange = 12.6;
constexpr double stemPing = 184.0;
constexpr double stemRange = 12.4;
constexpr double shadowRange = 16.0;

/// The stroke along the bottom line.
constexpr std::size_t strokePing = 180;
constexpr std::size_t strokeHalf = 15; ///< pings to either side

struct SonarTour
{
    explicit SonarTour(Tour& of)
        : tour(of)
        , page(of.Page<ReviewPage>("Review"))
        , hand(of.Hand())
        , settings(of.Model().settings)
        , files(of)
    {
    }

    ZrSurveyRecording& Recording() const { return *page.Recording(); }

    ZrWaterfallPanel& Panel() const { return page.Sonar().Panel(); }

    void AwaitLines() const
    {
        hand.Await(QStringLiteral("the waterfall is shown"),
            [this] { return page.Sonar().Loader() && !page.Sonar().Loader()->IsLoading(); });
        hand.Settle();
    }

    QPoint PixelOf(double ping, double range) const
    {
        const QPointF pixel = Panel().Layout().ToPixel(ping, sideStarboard, range);
        if (std::isnan(pixel.x()) || std::isnan(pixel.y()))
            throw TourFailure{QStringLiteral("ping %1 is in view").arg(ping), QStringLiteral("it is not")};
        return (pixel / Panel().devicePixelRatioF()).toPoint();
    }

    void Answer(const QString& text) const
    {
        auto& panel = hand.FindAny<ZrTextPanel>();
        hand.Fill(panel.Input(), text);
        hand.Tap(hand.Button(QStringLiteral("OK"), &panel));
        hand.Await(QStringLiteral("\"%1\" is taken").arg(text), [&panel] { return !panel.isVisible(); });
    }

    Tour& tour;
    ReviewPage& page;
    TourHand& hand;
    SurveySettings& settings;
    TourExport files;
};

/// A stroke through the water, a metre nearer than the line that was found; taken back and done again.
void correct_bottom(SonarTour& at)
{
    Tour& tour = at.tour;
    TourHand& hand = at.hand;
    ReviewBottom& bottom = at.page.Sonar().Bottom();
    const ZrBottomLine& line = at.Recording().Bottom();
    const double found = line.Altitude(strokePing);
    tour.ExpectWithin(found, 5.0, 9.0, QStringLiteral("altitude that was found, metres"));
    hand.Key(Qt::Key_K);
    tour.Expect(bottom.IsOn(), QStringLiteral("the bottom line is corrected"), QStringLiteral("it is not"));
    hand.HideToast();
    const double drawn = found - 1.0;
    hand.Drag(
        at.Panel(), at.PixelOf(strokePing - strokeHalf, drawn), at.PixelOf(strokePing + strokeHalf, drawn));
    const auto expectDrawn = [&](const QString& when) {
        tour.ExpectWithin(line.Altitude(strokePing), drawn - 0.1, drawn + 0.1,
            QStringLiteral("altitude %1, metres").arg(when));
        tour.Expect(line.IsEdited(strokePing), QStringLiteral("the line is drawn by hand %1").arg(when),
            QStringLiteral("it is not"));
    };
    expectDrawn(QStringLiteral("after the stroke"));
    tour.Expect(static_cast<qint64>(bottom.Editor().EditedCount(0, strokePing - 2 * strokeHalf)), 0,
        QStringLiteral("lines that were drawn elsewhere"));
    hand.Tap(bottom.UndoButton());
    tour.ExpectWithin(
        line.Altitude(strokePing), found - 1e-9, found + 1e-9, QStringLiteral("altitude after undo, metres"));
    hand.Key(Qt::Key_Y, Qt::ControlModifier);
    expectDrawn(QStringLiteral("after redo"));
    hand.Await(QStringLiteral("the line is saved"), [&bottom] { return bottom.Editor().IsSaved(); });
    at.AwaitLines();
}

void leave_bottom(SonarTour& at)
{
    ReviewBottom& bottom = at.page.Sonar().Bottom();
    at.hand.Key(Qt::Key_Z, Qt::ControlModifier);
    at.tour.Expect(static_cast<qint64>(bottom.Editor().EditedCount(0, at.Recording().Pings().size() - 1)), 0,
        QStringLiteral("lines that are drawn by hand after undo"));
    at.hand.Tap(at.hand.Button(QStringLiteral("Done"), &bottom));
    at.tour.Expect(
        !bottom.IsOn(), QStringLiteral("the bottom line is no longer corrected"), QStringLiteral("it is"));
}

/// The one target, where the wreck is.
void check_targets(Tour& tour, const QByteArray& json)
{
    const QJsonArray features
        = QJsonDocument::fromJson(json).object().value(QLatin1String("features")).toArray();
    tour.Expect(features.size(), 1, QStringLiteral("targets of line-targets.geojson"));
    const QJsonObject target = features.first().toObject();
    const QJsonArray place
        = target.value(QLatin1String("geometry")).toObject().value(QLatin1String("coordinates")).toArray();
    tour.ExpectWithin(place.at(0).toDouble(), -68.83, -68.82, QStringLiteral("its longitude"));
    tour.ExpectWithin(place.at(1).toDouble(), 48.44, 48.45, QStringLiteral("its latitude"));
    const QJsonObject told = target.value(QLatin1String("properties")).toObject();
    tour.Expect(told.value(QLatin1String("name")).toString() == QLatin1String("Target 1"),
        QStringLiteral("the name Target 1"), told.value(QLatin1String("name")).toString());
    tour.ExpectWithin(
        told.value(QLatin1String("height")).toDouble(), 0.5, 3.0, QStringLiteral("its height, metres"));
}

} // namespace

void tour::sonar(Tour& tour)
{
    SonarTour at(tour);
    TourHand& hand = tour.Hand();
    tour.Station(QStringLiteral("review-line"), [&] {
        hand.Key(Qt::Key_F1);
        tour.ExpectPage("Home");
        const auto& recordings = hand.FindAny<ZrTouchList>(&tour.Page<HomePage>("Home"));
        hand.Await(QStringLiteral("both recordings are listed"),
            [&recordings] { return recordings.Items().size() >= 2; });
        hand.ChooseRow(hand.FindAny<ZrTouchList>(&tour.Page<HomePage>("Home")),
            QFileInfo(tour.Line()).completeBaseName());
        hand.Await(
            QStringLiteral("the line is opened"),
            [&] {
                return at.page.Recording() && !at.page.IsLoading()
                    && QFileInfo(at.Recording().Path()).completeBaseName()
                    == QFileInfo(tour.Line()).completeBaseName();
            },
            30000);
        tour.ExpectPage("Review");
        hand.Key(Qt::Key_T);
        at.Answer(QStringLiteral("21:13:30"));
        at.AwaitLines();
        hand.HideToast();
    });
    tour.Station(QStringLiteral("sonar-look"), [&] {
        const int palette = at.settings.palette;
        hand.Press(QStringLiteral("palette"));
        auto& look = hand.FindAny<ReviewLook>(&at.page);
        const auto palettes = look.findChildren<ZrPaletteBtn*>();
        for (const int each : {0, 4, 2}) {
            const int before = at.settings.palette;
            hand.Tap(*palettes.at(each));
            tour.Expect(at.settings.palette != before, QStringLiteral("another palette than %1").arg(before),
                QString::number(at.settings.palette));
        }
        tour.Expect(
            at.settings.palette != palette, QStringLiteral("another palette"), QString::number(palette));
        const auto sliders = look.findChildren<ZrSlider*>();
        for (ZrSlider* slider : sliders) {
            if (slider->text == QLatin1String("Gain"))
                hand.Drag(*slider, QPoint(slider->width() / 2, slider->height() * 3 / 4),
                    QPoint(slider->width() * 6 / 10, slider->height() * 3 / 4));
        }
        tour.ExpectWithin(at.settings.gain, 0.5, 10.0, QStringLiteral("gain, dB"));
        at.AwaitLines();
    });
    tour.Station(QStringLiteral("sonar-slant"), [&] {
        hand.Press(QStringLiteral("palette"));
        const bool slant = at.settings.slant;
        hand.Press(QStringLiteral("slant"));
        tour.Expect(at.settings.slant != slant, QStringLiteral("slant ranges are corrected"),
            QStringLiteral("they are not"));
        at.AwaitLines();
    });
    tour.Station(QStringLiteral("sonar-bottom"), [&] {
        hand.Press(QStringLiteral("slant"));
        correct_bottom(at);
    });
    tour.Station(QStringLiteral("sonar-measure"), [&] {
        leave_bottom(at);
        hand.Press(QStringLiteral("bottom"));
        hand.Press(QStringLiteral("bottom"));
        tour.Expect(
            at.settings.bottom, QStringLiteral("the bottom line is shown"), QStringLiteral("it is not"));
        // All of the window for the waterfall.
        hand.Key(Qt::Key_2);
        hand.Key(Qt::Key_T);
        at.Answer(
            ZrTimeText::Clock(at.Recording().Times()->LogTime(at.Recording().TimeOfPing(middlePing)), 1));
        at.AwaitLines();
        hand.Press(QStringLiteral("measure"));
        ReviewMeasure& measure = at.page.Sonar().Measure();
        tour.Expect(measure.IsOn(), QStringLiteral("measuring"), QStringLiteral("it is off"));
        hand.TapAt(at.Panel(), at.PixelOf(aftPing, aftRange));
        hand.Await(QStringLiteral("a target is marked"), [&measure] { return measure.Target().has_value(); });
        tour.ExpectWithin(measure.Target()->slantRange, aftRange - 0.3, aftRange + 0.3,
            QStringLiteral("slant range of the target, metres"));
        tour.ExpectWithin(
            measure.Target()->position.lat, 48.44, 48.45, QStringLiteral("latitude of the target"));
        // Along the hull, then the end of the shadow.
        hand.Drag(at.Panel(), at.PixelOf(aftPing, aftRange), at.PixelOf(stemPing, stemRange));
        hand.Await(
            QStringLiteral("its length is measured"), [&measure] { return measure.Extent().has_value(); });
        tour.ExpectWithin(measure.Extent()->distance, 5.0, 12.0, QStringLiteral("length, metres"));
        hand.Tap(hand.Button(QStringLiteral("Height"), &measure));
        hand.TapAt(at.Panel(), at.PixelOf(aftPing, shadowRange));
        hand.Await(
            QStringLiteral("its height is measured"), [&measure] { return measure.Shadow().has_value(); });
        tour.ExpectWithin(measure.Shadow()->height, 0.5, 3.0, QStringLiteral("height, metres"));
        hand.HideToast();
    });
    tour.Station(QStringLiteral("events"), [&] {
        ReviewMeasure& measure = at.page.Sonar().Measure();
        ZrEventList& events = at.Recording().Events();
        const auto before = static_cast<qint64>(events.Count());
        hand.Tap(hand.Button(QStringLiteral("Store"), &measure));
        tour.ExpectToast(QStringLiteral("Target"));
        tour.Expect(
            static_cast<qint64>(events.Count()), before + 1, QStringLiteral("events with the target"));
        hand.Press(QStringLiteral("measure"));
        hand.Key(Qt::Key_2);
        hand.Press(QStringLiteral("events"));
        hand.Press(QStringLiteral("act%1").arg(ReviewTransport::addEvent));
        at.Answer(QStringLiteral("Wreck"));
        tour.Expect(static_cast<qint64>(events.Count()), before + 2,
            QStringLiteral("events with that of the cursor"));
        auto& list = at.page.Events();
        hand.ChooseRow(list.List(), QStringLiteral("Wreck"));
        hand.Press(QStringLiteral("edit"));
        at.Answer(QStringLiteral("Wreck, amidships"));
        QStringList told;
        for (const ZrListItem& item : list.List().Items())
            told.append(item.title);
        tour.Expect(
            told.contains(QStringLiteral("Target 1")) && told.contains(QStringLiteral("Wreck, amidships")),
            QStringLiteral("Target 1 and Wreck, amidships"), told.join(QStringLiteral(", ")));
        hand.HideToast();
    });
}

void tour::exports(Tour& tour)
{
    SonarTour at(tour);
    TourHand& hand = tour.Hand();
    tour.Station(QStringLiteral("export-choice"), [&] {
        hand.Press(QStringLiteral("events"));
        hand.HideToast();
        hand.Press(QStringLiteral("export"));
        const auto& list = hand.FindAny<ZrTouchList>(&hand.FindAny<ZrChoicePanel>());
        tour.Expect(list.Items().size(), ZrSurveyExport::kindCount, QStringLiteral("kinds of export"));
    });
    tour.Station(QStringLiteral("exports"), [&] {
        hand.Key(Qt::Key_Escape);
        at.files.Write(QStringLiteral("Part of the log"), QStringLiteral("line-part.log"));
        for (const char* name : {"line.kml", "line.geojson", "line.csv"})
            at.files.Write(QStringLiteral("Track"), QString::fromLatin1(name));
        at.files.Write(QStringLiteral("Records"), QStringLiteral("line-records.csv"));
        at.files.Write(QStringLiteral("Events"), QStringLiteral("line-events.csv"));
        at.files.Write(QStringLiteral("Targets"), QStringLiteral("line-targets.geojson"));
        at.files.Write(QStringLiteral("Waterfall picture"), QStringLiteral("line-waterfall.png"));
        at.files.Write(QStringLiteral("Mosaic"), QStringLiteral("line-mosaic.png"));
        ZrLogScan scan;
        ZrLogItem item;
        u64 pos = 0;
        qint64 items = 0;
        tour.Expect(scan.Open(tour.Exports() + QStringLiteral("/line-part.log")),
            QStringLiteral("the part is a log"), scan.Error());
        while (scan.Next(item, pos))
            ++items;
        tour.Expect(scan.State() == ZrLogScan::AtEnd, QStringLiteral("the part is sound"), scan.Error());
        ZrLogScan whole;
        qint64 all = 0;
        whole.Open(at.Recording().Path());
        while (whole.Next(item, pos))
            ++all;
        const auto events = static_cast<qint64>(at.Recording().Events().Count());
        tour.ExpectWithin(static_cast<double>(items), static_cast<double>(all),
            static_cast<double>(all + events), QStringLiteral("items of the part"));
        const auto records = static_cast<qint64>(at.Recording().Series().Count());
        tour.Expect(at.files.Read(QStringLiteral("line-records.csv")).count('\n'), records + 1,
            QStringLiteral("lines of the table of records"));
        tour.Expect(at.files.Read(QStringLiteral("line-events.csv")).count('\n'), events + 1,
            QStringLiteral("lines of the table of events"));
        tour.Expect(QJsonDocument::fromJson(at.files.Read(QStringLiteral("line.geojson"))).isObject(),
            QStringLiteral("line.geojson is JSON"), QStringLiteral("it is not"));
        check_targets(tour, at.files.Read(QStringLiteral("line-targets.geojson")));
        tour.Expect(at.files.Read(QStringLiteral("line.kml")).contains("</kml>"),
            QStringLiteral("line.kml is whole"), QStringLiteral("it is not"));
        at.files.ExpectPicture(QStringLiteral("line-waterfall.png"), 400);
        at.files.ExpectPicture(QStringLiteral("line-mosaic.png"), 50);
        tour.ExpectFile(tour.Exports() + QStringLiteral("/line-mosaic.pgw"));
        hand.HideToast();
    });
}
