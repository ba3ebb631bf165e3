// The likeliest line through the echoes of many pings.

#include "ZrKit/sonar/ZrBottomPath.h"

#include <QtTest/QtTest>

#include <cmath>

class tst_ZrBottomPath : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void acrossBlocks();
    void twice();
    void best();
};

/// Decided in blocks, the line is the same as decided at once: here the seabed always, although the false
/// echoes are stronger.
void tst_ZrBottomPath::acrossBlocks()
{
    const ZrBottomTrackerSettings settings;
    ZrBottomPath path(settings);
    std::size_t most = 0;
    std::vector<ZrBottomEcho> all;
    const std::size_t count = 10 * ZrBottomPath::LookAhead + 7;
    std::size_t waiting = 0;
    for (std::size_t i = 0; i < count; ++i) {
        std::vector<ZrBottomEcho> echoes{{10.0 + 0.1 * static_cast<double>(i % 2), 0.7}};
        if (i % 8 == 0)
            echoes.push_back({4.0, 1.0});
        path.Add(echoes);
        const std::vector<ZrBottomEcho> decided = path.Take();
        all.insert(all.end(), decided.begin(), decided.end());
        waiting = i + 1 - all.size();
        most = std::max(most, waiting);
    }
    QVERIFY(most < 2 * ZrBottomPath::LookAhead);
    QVERIFY(waiting >= ZrBottomPath::LookAhead);
    path.Finish();
    const std::vector<ZrBottomEcho> rest = path.Take();
    all.insert(all.end(), rest.begin(), rest.end());
    QCOMPARE(all.size(), count);
    for (std::size_t i = 0; i < count; ++i)
        QCOMPARE(all[i].altitude, 10.0 + 0.1 * static_cast<double>(i % 2));
}

/// After the end another line begins, which owes nothing to the one before.
void tst_ZrBottomPath::twice()
{
    ZrBottomPath path{ZrBottomTrackerSettings()};
    path.Finish();
    QVERIFY(path.Take().empty());
    for (const double altitude : {10.0, 25.0}) {
        path.Add({{altitude, 0.5}});
        path.Add({});
        path.Add({{altitude, 0.1}}); // too weak
        path.Finish();
        const std::vector<ZrBottomEcho> line = path.Take();
        QCOMPARE(line.size(), std::size_t(3));
        QCOMPARE(line[0].altitude, altitude);
        QVERIFY(std::isnan(line[1].altitude));
        QVERIFY(std::isnan(line[2].altitude));
    }
}

/// Short lines against all lines there are: the value of the one chosen is the highest.
void tst_ZrBottomPath::best()
{
    ZrBottomTrackerSettings settings;
    settings.falseEcho = 3;
    const double jump = (1.0 - settings.strength) * settings.falseEcho;
    unsigned state = 7;
    const auto random = [&](unsigned end) {
        state = state * 1664525U + 1013904223U;
        return (state >> 16) % end;
    };
    for (int round = 0; round < 300; ++round) {
        constexpr int pings = 6;
        std::vector<std::vector<ZrBottomEcho>> echoes(pings);
        for (auto& ping : echoes) {
            for (unsigned n = random(4); n > 0; --n)
                ping.push_back({1.0 + 0.13 * random(20), 0.01 * random(101)});
        }
        // What a line is worth: -1 is no echo of that ping.
        const auto value = [&](const std::vector<int>& line) {
            double sum = 0.0;
            int last = -1;
            for (int i = 0; i < pings; ++i) {
                if (line[static_cast<std::size_t>(i)] < 0)
                    continue;
                const auto at = static_cast<std::size_t>(i);
                const ZrBottomEcho& echo = echoes[at][static_cast<std::size_t>(line[at])];
                sum += echo.strength - settings.strength;
                if (last >= 0) {
                    const auto before = static_cast<std::size_t>(last);
                    const double from = echoes[before][static_cast<std::size_t>(line[before])].altitude;
                    const double steps = (echo.altitude - from) / (settings.step * (i - last));
                    sum -= std::min(jump, steps * steps);
                }
                last = i;
            }
            return sum;
        };
        std::vector<int> line(pings, -1);
        double most = 0.0;
        for (;;) {
            most = std::max(most, value(line));
            std::size_t i = 0;
            while (i < pings && ++line[i] == static_cast<int>(echoes[i].size()))
                line[i++] = -1;
            if (i == pings)
                break;
        }
        ZrBottomPath path(settings);
        for (const auto& ping : echoes)
            path.Add(ping);
        path.Finish();
        const std::vector<ZrBottomEcho> chosen = path.Take();
        QCOMPARE(chosen.size(), std::size_t(pings));
        for (std::size_t i = 0; i < pings; ++i) {
            line[i] = -1;
            for (std::size_t k = 0; k < echoes[i].size(); ++k) {
                if (echoes[i][k].altitude == chosen[i].altitude
                    && echoes[i][k].strength == chosen[i].strength)
                    line[i] = static_cast<int>(k);
            }
            QCOMPARE(line[i] < 0, std::isnan(chosen[i].altitude));
        }
        QVERIFY2(std::fabs(value(line) - most) < 1.0e-9, qPrintable(QString::number(round)));
    }
}

QTEST_APPLESS_MAIN(tst_ZrBottomPath)
#include "tst_ZrBottomPath.moc"
