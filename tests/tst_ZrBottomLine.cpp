// What was found and what was set by hand, kept apart.

#include "ZrKit/sonar/ZrBottomLine.h"

#include <QtTest/QtTest>

#include <cmath>
#include <utility>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::size_t farAway = std::numeric_limits<std::size_t>::max();

/// The altitudes with an asterisk at those set by hand.
QString Text(const ZrBottomLine& line)
{
    QStringList all;
    for (std::size_t i = 0; i < line.Count(); ++i)
        all << QString::number(line.Altitude(i)) + (line.IsEdited(i) ? QStringLiteral("*") : QString());
    return all.join(QLatin1Char(' '));
}

ZrBottomLine Found(const std::vector<double>& altitudes)
{
    ZrBottomLine line;
    line.SetFound(altitudes);
    return line;
}

} // namespace

class tst_ZrBottomLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void empty();
    void found();
    void draw_data();
    void draw();
    void refused_data();
    void refused();
    void clear_data();
    void clear();
    void detectAgain();
    void setEdited();
    void movedFrom();
};

void tst_ZrBottomLine::empty()
{
    ZrBottomLine none;
    QCOMPARE(none.Count(), std::size_t(0));
    QVERIFY(std::isnan(none.Altitude(0)));
    QVERIFY(std::isnan(none.Altitude(farAway)));
    QVERIFY(!none.IsEdited(0));
    QVERIFY(!none.Draw(0, 1.0, 0, 1.0));
    none.Clear(0, farAway);
    none.SetEdited(0, std::vector<double>{1.0});
    QCOMPARE(none.Count(), std::size_t(0));
    const ZrBottomLine unset(3);
    QCOMPARE(Text(unset), QStringLiteral("nan nan nan"));
    QVERIFY(std::isnan(unset.Altitude(3)));
}

void tst_ZrBottomLine::found()
{
    const ZrBottomLine line = Found({4.5, 0.0, unknown, -1.0, infinity, -0.001, 1.0e6});
    QCOMPARE(Text(line), QStringLiteral("4.5 0 nan nan nan nan 1e+06"));
    QCOMPARE(line.Found().size(), std::size_t(7));
    QVERIFY(std::isnan(line.Found()[3]));
    QVERIFY(std::isnan(line.Edited()[0]));
}

void tst_ZrBottomLine::draw_data()
{
    QTest::addColumn<quint64>("first");
    QTest::addColumn<double>("from");
    QTest::addColumn<quint64>("last");
    QTest::addColumn<double>("to");
    QTest::addColumn<QString>("line");
    QTest::newRow("rising") << quint64(1) << 1.0 << quint64(3) << 2.0 << "9 1* 1.5* 2* 9";
    QTest::newRow("backwards") << quint64(3) << 2.0 << quint64(1) << 1.0 << "9 1* 1.5* 2* 9";
    QTest::newRow("one ping") << quint64(2) << 3.0 << quint64(2) << 7.0 << "9 9 3* 9 9";
    QTest::newRow("all") << quint64(0) << 0.0 << quint64(4) << 8.0 << "0* 2* 4* 6* 8*";
    QTest::newRow("beyond the end") << quint64(3) << 1.0 << quint64(7) << 5.0 << "9 9 9 1* 2*";
    QTest::newRow("from beyond") << quint64(7) << 5.0 << quint64(3) << 1.0 << "9 9 9 1* 2*";
    QTest::newRow("far beyond") << quint64(4) << 1.0 << quint64(farAway) << 5.0 << "9 9 9 9 1*";
}

void tst_ZrBottomLine::draw()
{
    QFETCH(quint64, first);
    QFETCH(double, from);
    QFETCH(quint64, last);
    QFETCH(double, to);
    ZrBottomLine line = Found({9.0, 9.0, 9.0, 9.0, 9.0});
    QVERIFY(line.Draw(first, from, last, to));
    QTEST(Text(line), "line");
    QCOMPARE(line.Found(), std::vector<double>(5, 9.0));
}

void tst_ZrBottomLine::refused_data()
{
    QTest::addColumn<quint64>("first");
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::newRow("negative") << quint64(0) << -0.1 << 1.0;
    QTest::newRow("negative end") << quint64(0) << 1.0 << -0.1;
    QTest::newRow("NaN") << quint64(0) << unknown << 1.0;
    QTest::newRow("infinite") << quint64(0) << 1.0 << infinity;
    QTest::newRow("beyond") << quint64(5) << 1.0 << 1.0;
}

void tst_ZrBottomLine::refused()
{
    QFETCH(quint64, first);
    QFETCH(double, from);
    QFETCH(double, to);
    ZrBottomLine line = Found({9.0, 9.0, unknown});
    QVERIFY(!line.Draw(first, from, first + 1, to));
    QCOMPARE(Text(line), QStringLiteral("9 9 nan"));
}

void tst_ZrBottomLine::clear_data()
{
    QTest::addColumn<quint64>("first");
    QTest::addColumn<quint64>("last");
    QTest::addColumn<QString>("line");
    QTest::newRow("middle") << quint64(1) << quint64(2) << "1* 9 9 1*";
    QTest::newRow("backwards") << quint64(2) << quint64(1) << "1* 9 9 1*";
    QTest::newRow("one") << quint64(3) << quint64(3) << "1* 1* 1* nan";
    QTest::newRow("all") << quint64(0) << quint64(farAway) << "9 9 9 nan";
    QTest::newRow("beyond") << quint64(4) << quint64(9) << "1* 1* 1* 1*";
}

void tst_ZrBottomLine::clear()
{
    QFETCH(quint64, first);
    QFETCH(quint64, last);
    ZrBottomLine line = Found({9.0, 9.0, 9.0, unknown});
    QVERIFY(line.Draw(0, 1.0, 3, 1.0));
    line.Clear(first, last);
    if (first == 1 || first == 2)
        QVERIFY(line.Draw(3, 1.0, 3, 1.0));
    QTEST(Text(line), "line");
}

void tst_ZrBottomLine::detectAgain()
{
    ZrBottomLine line = Found({9.0, 9.0, 9.0});
    QVERIFY(line.Draw(1, 4.0, 1, 4.0));
    line.SetFound({7.0, 7.0, unknown});
    QCOMPARE(Text(line), QStringLiteral("7 4* nan"));
    line.SetFound({7.0, 7.0, 7.0, 7.0}); // the log has grown
    QCOMPARE(Text(line), QStringLiteral("7 4* 7 7"));
    line.SetFound({6.0});
    QCOMPARE(Text(line), QStringLiteral("6"));
}

void tst_ZrBottomLine::setEdited()
{
    ZrBottomLine line = Found({9.0, 9.0, 9.0, 9.0});
    line.SetEdited(1, std::vector<double>{1.0, unknown, 0.0, 5.0});
    QCOMPARE(Text(line), QStringLiteral("9 1* 9 0*"));
    line.SetEdited(0, std::vector<double>{-1.0, infinity});
    QCOMPARE(Text(line), QStringLiteral("9 9 9 0*"));
    line.SetEdited(4, std::vector<double>{1.0});
    line.SetEdited(farAway, std::vector<double>{1.0});
    line.SetEdited(0, {});
    QCOMPARE(Text(line), QStringLiteral("9 9 9 0*"));
}

/// Nothing is left behind, and that is as good as a new one.
void tst_ZrBottomLine::movedFrom()
{
    const auto isEmpty = [](const ZrBottomLine& line) {
        return line.Count() == 0 && std::isnan(line.Altitude(0)) && !line.HasEdits() && line.Found().empty()
            && line.Edited().empty() && line.SharedFound();
    };
    ZrBottomLine from = Found({9.0, 8.0, 7.0});
    QVERIFY(from.Draw(1, 4.0, 1, 4.0));
    ZrBottomLine made = std::move(from);
    QCOMPARE(Text(made), QStringLiteral("9 4* 7"));
    QVERIFY(isEmpty(from)); // NOLINT: this is what is checked
    QVERIFY(!from.Draw(0, 1.0, 2, 1.0));
    from.SetFound({3.0});
    QCOMPARE(Text(from), QStringLiteral("3"));
    from = std::move(made);
    QCOMPARE(Text(from), QStringLiteral("9 4* 7"));
    QVERIFY(isEmpty(made)); // NOLINT
    made = from; // a copy leaves all there
    QCOMPARE(Text(made), Text(from));
}

QTEST_APPLESS_MAIN(tst_ZrBottomLine)
#include "tst_ZrBottomLine.moc"
