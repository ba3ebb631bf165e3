// Tracks that are too long to be kept: made piece by piece, as they are asked for.

#include "SonarTrackPings.h"

#include <QtTest/QtTest>

#include <atomic>
#include <cmath>
#include <random>
#include <thread>

using track_test::AngleBetween;
using track_test::Ping;
using track_test::Pings;
using track_test::Smoothing;
using track_test::start;

class tst_ZrSonarTrackLong : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void longTrackIsOne();
    void longTrackInSeveralThreads();
};

/// A track is made piece by piece as it is asked for: whatever the order, no seam shows in it.
void tst_ZrSonarTrackLong::longTrackIsOne()
{
    constexpr std::size_t count = 40000;
    std::mt19937 random(5);
    Pings pings;
    double time = start;
    for (std::size_t i = 0; i < count; ++i) {
        time += 0.02 + 0.0001 * static_cast<double>(random() % 1000);
        const double at = static_cast<double>(i);
        const ZrGeoPoint place{44.6 + 0.001 * std::sin(at * 1e-3), -63.5 + 0.001 * std::cos(at * 1e-3)};
        const bool isKnown = i % 11 != 0 && !(i > 6000 && i < 10200);
        pings.push_back(Ping(time, isKnown ? place : ZrGeoPoint{}));
        if (i == 20470)
            time -= 1000.0; // the clock is set back, near a seam
    }
    const ZrSonarTrack track(pings, Smoothing(5.0));
    QCOMPARE(track.Count(), count);
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < 400; ++i)
        order.push_back(i * 7919 % count); // here and there at first
    for (std::size_t i = 0; i < count; ++i)
        order.push_back(i);
    std::vector<double> distances(count, -1.0);
    std::vector<ZrLocalPoint> points(count);
    std::vector<double> headings(count);
    std::vector<double> speeds(count);
    for (const std::size_t i : order) {
        QVERIFY(distances[i] < 0.0 || distances[i] == track.Distance(i));
        distances[i] = track.Distance(i);
        points[i] = track.Point(i);
        headings[i] = track.Heading(i);
        speeds[i] = track.Speed(i);
    }
    double way = 0.0;
    std::size_t before = count;
    for (std::size_t i = 0; i < count; ++i) {
        QCOMPARE(std::isnan(points[i].x), std::isnan(pings[i].pose.position.lat));
        if (!std::isnan(points[i].x)) {
            if (before != count)
                way += std::hypot(points[i].x - points[before].x, points[i].y - points[before].y);
            before = i;
        }
        QVERIFY2(std::fabs(distances[i] - way) < 1e-6, qPrintable(QString::number(i)));
        QVERIFY(i == 0 || distances[i] >= distances[i - 1]);
    }
    QVERIFY(std::fabs(track.Length() - way) < 1e-6);
    // Courses and speeds against a track of some pings alone, which is made at once.
    for (const std::size_t first :
        {std::size_t(1700), std::size_t(3900), std::size_t(20000), std::size_t(38500)}) {
        const Pings part(pings.begin() + static_cast<std::ptrdiff_t>(first),
            pings.begin() + static_cast<std::ptrdiff_t>(first + 1000));
        const ZrSonarTrack alone(part, Smoothing(5.0));
        for (std::size_t i = 300; i < 700; ++i) {
            QCOMPARE(std::isnan(headings[first + i]), std::isnan(alone.Heading(i)));
            if (!std::isnan(alone.Heading(i)))
                QVERIFY2(AngleBetween(headings[first + i], alone.Heading(i)) < 1e-3,
                    qPrintable(QString::number(first + i)));
            QCOMPARE(std::isnan(speeds[first + i]), std::isnan(alone.Speed(i)));
            if (!std::isnan(alone.Speed(i)))
                QVERIFY2(std::fabs(speeds[first + i] - alone.Speed(i)) < 1e-4,
                    qPrintable(QString::number(first + i)));
        }
    }
}

void tst_ZrSonarTrackLong::longTrackInSeveralThreads()
{
    constexpr std::size_t count = 100000; // more stretches than are kept
    Pings pings;
    for (std::size_t i = 0; i < count; ++i)
        pings.push_back(
            Ping(start + 0.1 * static_cast<double>(i), {44.6 + 1e-7 * static_cast<double>(i), -63.5}, 10.0));
    const ZrSonarTrack track(pings, Smoothing(2.0));
    std::vector<double> distances;
    for (std::size_t i = 0; i < count; ++i)
        distances.push_back(track.Distance(i));
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < 3; ++t) {
        threads.emplace_back([&, t] {
            std::minstd_rand random(static_cast<unsigned>(t));
            for (int n = 0; n < 300; ++n) {
                const std::size_t i = random() % count;
                wrong += track.Distance(i) == distances[i] ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(wrong.load(), 0);
}

QTEST_GUILESS_MAIN(tst_ZrSonarTrackLong)
#include "tst_ZrSonarTrackLong.moc"
