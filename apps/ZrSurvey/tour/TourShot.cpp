#include "apps/ZrSurvey/tour/TourShot.h"

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/map/ZrWaterfallPanel.h"
#include "ZrKit/review/ZrEventList.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrPlotPanel.h"
#include "ZrKit/ui/ZrTimeBar.h"
#include "ZrUtil/ZrTheme.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/ReviewSonar.h"
#include "apps/ZrSurvey/SurveyView.h"
#include "apps/ZrSurvey/tour/Tour.h"

#include <QPixmap>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int leastOther = 6; ///< of 255, of a pixel that is another one
constexpr int leastPixels = 40; ///< that differ where anything has moved
constexpr double leastFilled = 0.95; ///< of the columns of the band
constexpr float handle = 20.0F; ///< beside the ends of the band, design pixels

bool IsOther(QRgb a, QRgb b)
{
    return std::max(
               {std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))})
        >= leastOther;
}

int OtherPixels(const QImage& a, const QImage& b)
{
    if (a.size() != b.size())
        return 0;
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            count += IsOther(a.pixel(x, y), b.pixel(x, y)) ? 1 : 0;
    }
    return count;
}

} // namespace

TourShot::TourShot(const Tour& tour, ReviewPage& page)
    : m_page(page)
{
    QWidget& window = tour.View();
    const QPixmap picture = window.grab();
    const QImage image = picture.toImage().convertToFormat(QImage::Format_RGB32);
    m_ratio = picture.devicePixelRatioF();
    const auto add = [&](const QString& name, const QWidget& widget) {
        const QPoint at = widget.mapTo(&window, QPoint());
        m_panes.push_back({name,
            image.copy(qRound(at.x() * m_ratio), qRound(at.y() * m_ratio), qRound(widget.width() * m_ratio),
                qRound(widget.height() * m_ratio))});
    };
    for (const ZrMapPanel* map : page.findChildren<ZrMapPanel*>())
        add(QStringLiteral("the map"), *map);
    add(QStringLiteral("the waterfall"), page.Sonar().Panel());
    add(QStringLiteral("the plots"), page.Plots());
    add(QStringLiteral("the time line"), page.Bar());
}

void TourShot::ExpectMoved(Tour& tour, const TourShot& before, const QString& when) const
{
    for (std::size_t i = 0; i < m_panes.size(); ++i) {
        const int count = OtherPixels(m_panes[i].image, before.m_panes[i].image);
        tour.Expect(count >= leastPixels,
            QStringLiteral("%1 shows another moment %2").arg(m_panes[i].name, when),
            QStringLiteral("%1 pixels that are not as before").arg(count));
    }
}

/// Those in which a pixel is another one.
std::vector<int> TourShot::OtherColumns(const QImage& a, const QImage& b)
{
    std::vector<int> columns;
    for (int x = 0; x < a.width(); ++x) {
        for (int y = 0; y < a.height(); ++y) {
            if (!IsOther(a.pixel(x, y), b.pixel(x, y)))
                continue;
            columns.push_back(x);
            break;
        }
    }
    return columns;
}

void TourShot::ExpectRange(Tour& tour, const TourShot& without) const
{
    const ZrTimeBar& bar = m_page.Bar();
    const QImage& now = m_panes.back().image;
    const QImage& before = without.m_panes.back().image;
    if (now.size() != before.size()) {
        tour.Expect(false, QStringLiteral("a time line as large as before"), QStringLiteral("another one"));
        return;
    }
    const double ends[] = {bar.XOf(bar.RangeA()) * m_ratio, bar.XOf(bar.RangeB()) * m_ratio};
    const double a = std::min(ends[0], ends[1]);
    const double b = std::max(ends[0], ends[1]);
    const std::vector<int> columns = OtherColumns(now, before);
    const auto within = [&columns](double from, double to) {
        return static_cast<double>(
            std::count_if(columns.begin(), columns.end(), [&](int x) { return x >= from && x < to; }));
    };
    tour.Expect(within(a, b) >= leastFilled * (b - a) - 1.0,
        QStringLiteral("a band from A to B in the time line, %1 pixels").arg(b - a, 0, 'f', 0),
        QStringLiteral("%1 of its columns").arg(within(a, b)));
    const double beside = static_cast<double>(ZrTheme::DpF(handle)) * m_ratio;
    // The flag of the event that was gone to stands out.
    std::vector<double> flags{a, b};
    const ZrEventList& events = m_page.Recording()->Events();
    for (std::size_t i = 0; i < events.Count(); ++i)
        flags.push_back(bar.XOf(m_page.Recording()->TimeOf(events.At(i))) * m_ratio);
    const auto isUnasked = [&](int x) {
        const auto isBeside = [&](double at) { return std::abs(x - at) <= beside; };
        return !(x >= a && x < b) && std::none_of(flags.begin(), flags.end(), isBeside);
    };
    const auto unasked = std::count_if(columns.begin(), columns.end(), isUnasked);
    tour.Expect(static_cast<qint64>(unasked), 0, QStringLiteral("other columns of the time line"));
}
