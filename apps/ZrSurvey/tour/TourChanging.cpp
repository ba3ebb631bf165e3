#include "apps/ZrSurvey/tour/TourChanging.h"

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/map/ZrWaterfallPanel.h"
#include "ZrKit/review/ZrTimeText.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrPlotPanel.h"
#include "ZrKit/ui/ZrTextPanel.h"
#include "ZrKit/ui/ZrTimeBar.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/HomePage.h"
#include "apps/ZrSurvey/RecordPage.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/ReviewSonar.h"
#include "apps/ZrSurvey/ReviewTransport.h"
#include "apps/ZrSurvey/SurveyView.h"
#include "apps/ZrSurvey/tour/Tour.h"

#include <algorithm>

namespace {

constexpr double beforeEnd = 170.0; ///< seconds: on the second line, beside a wreck

/// The text above a panel of a page, which ends at the first of the buttons beside it.
void header_changes(Tour& tour, const QWidget& page, const QWidget& panel)
{
    const QRect below(panel.mapTo(&page, QPoint()), panel.size());
    QRect text;
    const auto buttons = page.findChildren<ZrBtn*>();
    for (const ZrBtn* button : buttons) {
        const QRect at(button->mapTo(&page, QPoint()), button->size());
        const bool isAbove = at.bottom() < below.center().y() && at.bottom() > below.top() - at.height();
        if (!button->isVisible() || !isAbove || at.left() < below.left() || at.right() > below.right())
            continue;
        const int right = text.isNull() ? at.left() : std::min(text.right(), at.left());
        text = QRect(QPoint(below.left(), at.top()), QPoint(right, at.bottom()));
    }
    tour.Changes(page, text);
}

} // namespace

void tour::title_changes(Tour& tour, const SurveyPage& page)
{
    const auto& back = tour.Hand().Find<ZrBtn>(QStringLiteral("band_back"), &page);
    const int band = page.BandBottom();
    tour.Changes(page, QRect(back.geometry().right(), band / 2, page.width() / 3, band / 2));
}

void tour::home_changes(Tour& tour)
{
    auto& page = tour.Page<HomePage>("Home");
    tour.Changes(tour.Hand().Tile(QStringLiteral("Free space"), &page));
    // The heading of the list names the folder, at its right.
    const auto& list = tour.Hand().FindAny<ZrTouchList>(&page);
    const int high = ZrTheme::DpI(48);
    tour.Changes(list, QRect(list.width() / 3, -high, list.width() - list.width() / 3, high));
}

void tour::record_changes(Tour& tour, bool isRunning)
{
    TourHand& hand = tour.Hand();
    auto& page = tour.Page<RecordPage>("Record");
    for (const char* figure : {"Recorded", "Size", "Rate", "Free space"})
        tour.Changes(hand.Tile(QString::fromLatin1(figure), &page));
    // Where messages are, which name the folder, and are as long as its name.
    const int high = ZrTheme::DpI(128);
    tour.Changes(page, QRect(0, page.height() - page.FreeBelow() - high, page.width(), high));
    if (!isRunning)
        return;
    title_changes(tour, page);
    // How long it has gone on.
    const int settings = hand.Find<ZrBtn>(QStringLiteral("band_settings"), &page).x();
    tour.Changes(page, QRect(page.width() / 2, 0, settings - page.width() / 2, page.BandBottom()));
    for (const ZrValueTile* tile : page.findChildren<ZrValueTile*>())
        tour.Changes(*tile);
    for (const ZrMapPanel* panel : page.findChildren<ZrMapPanel*>())
        tour.Changes(*panel);
    tour.Changes(hand.Find<ZrBtn>(QStringLiteral("source"), &page)); // tells how much comes
}

void tour::recorded_changes(Tour& tour)
{
    auto& page = tour.Page<ReviewPage>("Review");
    title_changes(tour, page);
    for (const ZrMapPanel* panel : page.findChildren<ZrMapPanel*>()) {
        header_changes(tour, page, *panel);
        tour.Changes(*panel); // with the events
    }
    header_changes(tour, page, page.Sonar().Panel());
    for (const ZrPlotPanel* plots : page.findChildren<ZrPlotPanel*>())
        tour.Changes(*plots);
    tour.Changes(page.Bar());
    tour.Changes(tour.Hand().Find<ZrBtn>(QStringLiteral("act%1").arg(int(ReviewTransport::typeTime)), &page));
}

void tour::show_same_place(Tour& tour)
{
    TourHand& hand = tour.Hand();
    auto& page = tour.Page<ReviewPage>("Review");
    const ZrSteadyTime& times = *page.Recording()->Times();
    hand.Key(Qt::Key_T);
    auto& panel = hand.FindAny<ZrTextPanel>();
    hand.Fill(panel.Input(), ZrTimeText::DateClock(times.LogTime(times.End() - beforeEnd), 3));
    hand.Key(Qt::Key_Return);
    hand.Await(QStringLiteral("the typed time is taken"), [&panel] { return !panel.isVisible(); });
    hand.Await(QStringLiteral("the waterfall is shown"),
        [&page] { return page.Sonar().Loader() && !page.Sonar().Loader()->IsLoading(); });
}
