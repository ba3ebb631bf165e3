// Curves over time: values in the units in force, what a tap tells, how much a painting looks at.

#include "ZrKit/review/ZrPlotSeries.h"
#include "ZrKit/ui/ZrPlotPanel.h"
#include "ZrUiChecks.h"
#include "ZrUnitsState.h"

#include <QSignalSpy>
#include <QWheelEvent>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace {

constexpr double start = 1614780300.0;
constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

struct Data
{
    std::shared_ptr<ZrSteadyTime> times = std::make_shared<ZrSteadyTime>();
    ZrPlotSeries depth{times};
    ZrPlotSeries heading{times};
    ZrPlotSeries speed{times};
    ZrTimeLine line;

    explicit Data(int count)
    {
        for (int i = 0; i < count; ++i) {
            times->Append(start + i);
            depth.Append(static_cast<float>(10 + i % 7));
            heading.Append(static_cast<float>(350 + i));
            speed.Append(i == 4 ? static_cast<float>(unknown) : 1.5F);
        }
        line.SetLog(times);
    }
};

} // namespace

class tst_ZrPlotPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void valuesAtTheCursor();
    void units();
    void tapTellsTheTime();
    void tapInTheSecondColumn();
    void wheelAsksForZoom();
    void asManyPlotsAsHaveRoom();
    void looksDoNotGrowWithTheLog();
    void paintsOnlyChanges();
    void curvesAreKept();
    void nothingToShow();
    void unitsArePainted();
    void everyAxisHasNumbers_data();
    void everyAxisHasNumbers();
    void numbersOfAllTicks();
    void headings_data();
    void headings();
    void curvesOfOneColour();

private:
    void Show();

    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<Data> m_data;
    std::unique_ptr<ZrPlotPanel> m_panel;
};

void tst_ZrPlotPanel::init()
{
    m_theme = std::make_unique<ZrThemeState>();
    m_data = std::make_unique<Data>(100);
    m_panel = std::make_unique<ZrPlotPanel>(nullptr);
    m_panel->resize(600, 400);
    Show();
    m_panel->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_panel.get()));
    Settle();
}

void tst_ZrPlotPanel::cleanup()
{
    m_panel.reset();
    m_data.reset();
    m_theme.reset();
}

void tst_ZrPlotPanel::Show()
{
    m_panel->SetTimeLine(&m_data->line);
    m_panel->SetPlots(
        {{QStringLiteral("Depth"), ZrPlotPanel::length, true, {{&m_data->depth, QColor(), QString()}}},
            {QStringLiteral("Heading"), ZrPlotPanel::angle, false, {{&m_data->heading, QColor(), QString()}}},
            {QStringLiteral("Speed"), ZrPlotPanel::speed, false, {{&m_data->speed, QColor(), QString()}}}});
}

void tst_ZrPlotPanel::valuesAtTheCursor()
{
    const ZrUnitsState units;
    ZrUnits::SetToMetric();
    const QString dash = QStringLiteral("–");
    QCOMPARE(m_panel->ValueText(0, 0), dash);
    m_panel->SetCursor(start + 3.0);
    QCOMPARE(m_panel->ValueText(0, 0), QStringLiteral("13.0 m"));
    // The record before, not the nearest.
    m_panel->SetCursor(start + 3.9);
    QCOMPARE(m_panel->ValueText(0, 0), QStringLiteral("13.0 m"));
    QCOMPARE(m_panel->ValueText(2, 0), QStringLiteral("1.50 m/s"));
    m_panel->SetCursor(start + 4.0);
    QCOMPARE(m_panel->ValueText(2, 0), dash);
    // A heading without leaps is shown as one.
    m_panel->SetCursor(start + 20.0);
    QCOMPARE(m_panel->ValueText(1, 0), QStringLiteral("10.0°"));
    m_panel->SetCursor(start - 1.0);
    QCOMPARE(m_panel->ValueText(0, 0), dash);
    QCOMPARE(m_panel->ValueText(9, 0), QString());
    QCOMPARE(m_panel->ValueText(0, -1), QString());
}

void tst_ZrPlotPanel::units()
{
    const ZrUnitsState units;
    ZrUnits::SetToImperial();
    m_panel->SetCursor(start);
    QCOMPARE(m_panel->ValueText(0, 0), QStringLiteral("32.8 ft"));
    QCOMPARE(m_panel->ValueText(2, 0), QStringLiteral("2.92 kts"));
}

void tst_ZrPlotPanel::tapTellsTheTime()
{
    const QSignalSpy began(m_panel.get(), &ZrPlotPanel::ScrubBegan);
    const QSignalSpy scrubbed(m_panel.get(), &ZrPlotPanel::Scrubbed);
    const QSignalSpy ended(m_panel.get(), &ZrPlotPanel::ScrubEnded);
    const QRect plot = m_panel->PlotRect(1);
    SendPress(*m_panel, QPoint(plot.x() + plot.width() / 2, plot.center().y()));
    SendMove(*m_panel, QPoint(plot.x(), plot.center().y()));
    SendRelease(*m_panel, QPoint(plot.x(), plot.center().y()));
    QCOMPARE(began.size(), 1);
    QCOMPARE(ended.size(), 1);
    QCOMPARE(scrubbed.size(), 2);
    QVERIFY(std::fabs(scrubbed[0][0].toDouble() - (start + 49.5)) < 0.2);
    QCOMPARE(scrubbed[1][0].toDouble(), start);
}

void tst_ZrPlotPanel::tapInTheSecondColumn()
{
    m_panel->resize(1200, 300);
    const QRect first = m_panel->PlotRect(0);
    const QRect second = m_panel->PlotRect(1);
    QCOMPARE(second.y(), first.y());
    QVERIFY(second.x() > first.right());
    const QSignalSpy scrubbed(m_panel.get(), &ZrPlotPanel::Scrubbed);
    SendPress(*m_panel, QPoint(second.x() + second.width() / 4, second.center().y()));
    QVERIFY(std::fabs(scrubbed[0][0].toDouble() - (start + 24.75)) < 0.3);
}

void tst_ZrPlotPanel::wheelAsksForZoom()
{
    const QSignalSpy zoomed(m_panel.get(), &ZrPlotPanel::ZoomWanted);
    const QSignalSpy panned(m_panel.get(), &ZrPlotPanel::PanWanted);
    const QRect plot = m_panel->PlotRect(0);
    for (const Qt::KeyboardModifiers modifiers :
        {Qt::KeyboardModifiers(), Qt::KeyboardModifiers(Qt::ShiftModifier)}) {
        QWheelEvent event(plot.center(), m_panel->mapToGlobal(plot.center()), QPoint(), QPoint(0, 240),
            Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(m_panel.get(), &event);
    }
    QCOMPARE(zoomed.size(), 1);
    QCOMPARE(zoomed[0][0].toDouble(), 1.25 * 1.25);
    QVERIFY(std::fabs(zoomed[0][1].toDouble() - 0.5) < 0.01);
    QCOMPARE(panned.size(), 1);
    QCOMPARE(panned[0][0].toDouble(), -0.2);
}

void tst_ZrPlotPanel::asManyPlotsAsHaveRoom()
{
    QCOMPARE(m_panel->ShownPlots(), 3);
    m_panel->resize(600, 130);
    QCOMPARE(m_panel->ShownPlots(), 2);
    m_panel->resize(600, 10);
    QCOMPARE(m_panel->ShownPlots(), 1);
    QCOMPARE(m_panel->PlotRect(1), QRect());
    m_panel->resize(1200, 130);
    QCOMPARE(m_panel->ShownPlots(), 3);
    // A narrower one has a second column only where the first leaves some out.
    m_panel->resize(700, 300);
    QCOMPARE(m_panel->PlotRect(1).x(), m_panel->PlotRect(0).x());
    m_panel->resize(700, 130);
    QCOMPARE(m_panel->ShownPlots(), 3);
    QVERIFY(m_panel->PlotRect(1).x() > m_panel->PlotRect(0).right());
}

/// A painting of a million records looks at no more than one of ten thousand, but for logarithms.
void tst_ZrPlotPanel::looksDoNotGrowWithTheLog()
{
    std::size_t looks[2] = {};
    for (int i = 0; i < 2; ++i) {
        m_panel->SetTimeLine(nullptr);
        m_panel->SetPlots({});
        m_data = std::make_unique<Data>(i == 0 ? 10000 : 1000000);
        Show();
        Painted(*m_panel);
        looks[i] = m_panel->Looks();
    }
    QVERIFY(looks[0] > 0);
    QVERIFY2(looks[1] < 4 * looks[0] && looks[1] < 300000,
        qPrintable(QStringLiteral("%1 and %2").arg(looks[0]).arg(looks[1])));
}

void tst_ZrPlotPanel::paintsOnlyChanges()
{
    ZrPaintCounter paints(*m_panel);
    paints.Take();
    m_panel->SetCursor(start + 1.0);
    QCOMPARE(paints.Take(), 1);
    m_panel->SetCursor(start + 1.0);
    QCOMPARE(paints.Take(), 0);
}

/// While the cursor alone moves nothing is looked at; with anything else the curves are what they are in a
/// panel that paints them for the first time.
void tst_ZrPlotPanel::curvesAreKept()
{
    const auto isAsNew = [this] {
        const QImage kept = Painted(*m_panel);
        const QVector<ZrPlotPanel::Plot> plots = m_panel->Plots();
        m_panel->SetPlots(plots);
        return kept == Painted(*m_panel);
    };
    Painted(*m_panel);
    QVERIFY(isAsNew());
    QVERIFY(m_panel->Looks() > 0);
    m_panel->SetCursor(start + 7.0);
    Painted(*m_panel);
    QCOMPARE(m_panel->Looks(), std::size_t(0));
    QVERIFY(isAsNew());
    const std::function<void()> changes[] = {
        [this] { m_data->line.Show(start + 20.0, start + 60.0); },
        [this] { m_data->line.SetLongestStep(0.5); },
        [this] { m_data->depth.Append(80.0F); },
        [this] { m_panel->resize(500, 380); },
        [] { ZrTheme::ctrlHighlightCol = QColor(1, 2, 3); },
        [] { ZrUnits::SetToImperial(); },
    };
    const ZrUnitsState units;
    ZrUnits::SetToMetric();
    m_data->times->Append(start + 100.0); // which has no value yet
    m_data->line.ShowAll();
    for (const std::function<void()>& change : changes) {
        Painted(*m_panel);
        change();
        Painted(*m_panel);
        QVERIFY(m_panel->Looks() > 0);
        QVERIFY2(isAsNew(), qPrintable(QString::number(&change - changes)));
    }
}

void tst_ZrPlotPanel::nothingToShow()
{
    const QSignalSpy scrubbed(m_panel.get(), &ZrPlotPanel::Scrubbed);
    m_panel->SetTimeLine(nullptr);
    QTest::mouseClick(m_panel.get(), Qt::LeftButton, Qt::NoModifier, QPoint(300, 60));
    QVERIFY(!Painted(*m_panel).isNull());
    const ZrTimeLine none;
    m_panel->SetTimeLine(&none);
    QTest::mouseClick(m_panel.get(), Qt::LeftButton, Qt::NoModifier, QPoint(300, 60));
    QVERIFY(!Painted(*m_panel).isNull());
    QCOMPARE(scrubbed.size(), 0);
    // Nothing but unknown values.
    ZrPlotSeries empty(m_data->times);
    for (int i = 0; i < 100; ++i)
        empty.Append(static_cast<float>(unknown));
    m_panel->SetTimeLine(&m_data->line);
    m_panel->SetPlots(
        {{QStringLiteral("Nothing"), ZrPlotPanel::number, false, {{&empty, QColor(), QString()}}}});
    QVERIFY(!Painted(*m_panel).isNull());
    m_panel->SetPlots({});
    m_panel->resize(1, 1);
    QVERIFY(!Painted(*m_panel).isNull());
}

/// The axis is in the units in force at every painting.
void tst_ZrPlotPanel::unitsArePainted()
{
    const ZrUnitsState units;
    ZrUnits::SetToMetric();
    const QImage metric = Painted(*m_panel);
    ZrUnits::SetToImperial();
    QVERIFY(Painted(*m_panel) != metric);
    ZrUnits::SetToMetric();
    QCOMPARE(Painted(*m_panel), metric);
}

void tst_ZrPlotPanel::everyAxisHasNumbers_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<int>("quantity");
    QTest::addColumn<bool>("isDown");
    for (const bool isDown : {false, true}) {
        const char* way = isDown ? "down" : "up";
        QTest::addRow("between ticks, %s", way) << 201.3 << 248.7 << int(ZrPlotPanel::angle) << isDown;
        QTest::addRow("one tick, %s", way) << 1.31 << 2.27 << int(ZrPlotPanel::speed) << isDown;
        QTest::addRow("constant, %s", way) << 1.53 << 1.53 << int(ZrPlotPanel::speed) << isDown;
        QTest::addRow("through zero, %s", way) << -4.1 << 3.9 << int(ZrPlotPanel::tilt) << isDown;
        QTest::addRow("wide, %s", way) << 0.0 << 8848.0 << int(ZrPlotPanel::length) << isDown;
    }
}

/// A curve without a number beside it says nothing, however little room it has.
void tst_ZrPlotPanel::everyAxisHasNumbers()
{
    QFETCH(double, low);
    QFETCH(double, high);
    QFETCH(int, quantity);
    QFETCH(bool, isDown);
    ZrPlotSeries series(m_data->times);
    for (int i = 0; i < 100; ++i)
        series.Append(static_cast<float>(low + (high - low) * i / 99.0));
    const ZrPlotPanel::Plot plot{QStringLiteral("Curve"), quantity, isDown, {{&series, QColor(), QString()}}};
    m_panel->SetPlots({plot, plot, plot, plot});
    for (const QSize& size : {QSize(600, 400), QSize(600, 280), QSize(1200, 130), QSize(1200, 700)}) {
        m_panel->resize(size);
        for (int i = 0; i < m_panel->ShownPlots(); ++i) {
            const QVector<ZrPlotPanel::Label> labels = m_panel->Labels(i);
            QVERIFY2(labels.size() >= 2, qPrintable(QString::number(labels.size())));
            for (int at = 0; at < labels.size(); ++at) {
                const ZrPlotPanel::Label& label = labels[at];
                QVERIFY(!label.text.isEmpty());
                QVERIFY(label.rect.right() < m_panel->PlotRect(i).x());
                QVERIFY(label.rect.bottom() < m_panel->height() + label.rect.height() / 2);
                for (int other = 0; other < at; ++other) {
                    QVERIFY(label.text != labels[other].text);
                    QVERIFY(!label.rect.intersects(labels[other].rect));
                    const bool isBelow = label.rect.y() > labels[other].rect.y();
                    QCOMPARE(isBelow, (label.value > labels[other].value) == isDown);
                }
            }
        }
        // They are painted.
        const QImage image = Painted(*m_panel);
        for (const ZrPlotPanel::Label& label : m_panel->Labels(0)) {
            const QRgb back = image.pixel(1, 1);
            bool isPainted = false;
            const QRect rect = label.rect & image.rect();
            for (int y = rect.top(); y <= rect.bottom() && !isPainted; ++y)
                for (int x = rect.left(); x <= rect.right(); ++x)
                    isPainted = isPainted || image.pixel(x, y) != back;
            QVERIFY2(isPainted, qPrintable(label.text));
        }
    }
}

/// The ends of the axis are for where the data has no room for others.
void tst_ZrPlotPanel::numbersOfAllTicks()
{
    m_panel->resize(600, 700);
    const QVector<ZrPlotPanel::Label> labels = m_panel->Labels(0);
    QStringList texts;
    for (const ZrPlotPanel::Label& label : labels)
        texts << label.text;
    QCOMPARE(texts,
        QStringList({QStringLiteral("10"), QStringLiteral("11"), QStringLiteral("12"), QStringLiteral("13"),
            QStringLiteral("14"), QStringLiteral("15"), QStringLiteral("16")}));
    QVERIFY(m_panel->Labels(-1).isEmpty());
    QVERIFY(m_panel->Labels(9).isEmpty());
    m_panel->SetTimeLine(nullptr);
    QVERIFY(m_panel->Labels(0).isEmpty());
}

void tst_ZrPlotPanel::headings_data()
{
    QTest::addColumn<double>("from"); // of the curve, which has no leaps
    QTest::addColumn<double>("to");
    QTest::addColumn<int>("height");
    QTest::addColumn<QString>("expected"); // from below

    QTest::newRow("lines to and fro") << 80.4 << 268.3 << 100 << QStringLiteral("90 180");
    QTest::newRow("higher") << 80.4 << 268.3 << 200 << QStringLiteral("90 120 150 180 210 240");
    QTest::newRow("round") << 0.0 << 360.0 << 200 << QStringLiteral("0 90 180 270 0");
    QTest::newRow("round, low") << 0.0 << 360.0 << 100 << QStringLiteral("0 180 0");
    QTest::newRow("over north") << 345.0 << 366.0 << 100 << QStringLiteral("345 0");
    QTest::newRow("about north") << -12.0 << 12.0 << 200 << QStringLiteral("350 355 0 5 10");
    QTest::newRow("about north, in other turns") << 343.0 << 375.0 << 100 << QStringLiteral("345 0 15");
    QTest::newRow("just before north") << 359.91 << 359.99 << 100 << QStringLiteral("359.90 0.00");
    QTest::newRow("over north, mostly behind it") << 350.0 << 400.0 << 100 << QStringLiteral("0 30");
    QTest::newRow("west of north") << -100.0 << -5.0 << 100 << QStringLiteral("270 330");
    QTest::newRow("after many turns") << 3690.0 << 3870.0 << 100 << QStringLiteral("90 180 270");
    QTest::newRow("two turns") << 725.0 << 1450.0 << 100 << QStringLiteral("0 0");
}

/// An axis says what the value at the cursor says, also where the curve runs over north.
void tst_ZrPlotPanel::headings()
{
    QFETCH(double, from);
    QFETCH(double, to);
    QFETCH(int, height);
    QFETCH(QString, expected);
    ZrPlotSeries series(m_data->times);
    for (int i = 0; i < 100; ++i)
        series.Append(static_cast<float>(from + (to - from) * i / 99.0));
    m_panel->SetPlots(
        {{QStringLiteral("Heading"), ZrPlotPanel::angle, false, {{&series, QColor(), QString()}}}});
    m_panel->resize(600, height);
    QVector<ZrPlotPanel::Label> labels = m_panel->Labels(0);
    std::sort(
        labels.begin(), labels.end(), [](const auto& a, const auto& b) { return a.rect.y() > b.rect.y(); });
    QStringList texts;
    for (const ZrPlotPanel::Label& label : qAsConst(labels)) {
        // Nothing but whole turns is left out.
        QVERIFY(std::fabs(std::remainder(label.value - label.text.toDouble(), 360.0)) < 1e-6);
        QVERIFY2(label.text.toDouble() >= 0.0 && label.text.toDouble() < 360.0, qPrintable(label.text));
        texts << label.text;
    }
    QCOMPARE(texts.join(QLatin1Char(' ')), expected);
    for (const double second : {0.0, 99.0}) {
        m_panel->SetCursor(start + second);
        const double shown = m_panel->ValueText(0, 0).chopped(1).toDouble();
        QVERIFY2(shown >= 0.0 && shown < 360.0, qPrintable(m_panel->ValueText(0, 0)));
        QVERIFY(std::fabs(std::remainder(shown - (second > 0.0 ? to : from), 360.0)) < 0.051);
    }
}

/// Where colours say little, as at night, a curve is dashed, and so is the piece of it beside its value.
void tst_ZrPlotPanel::curvesOfOneColour()
{
    ZrPlotSeries flat(m_data->times);
    for (int i = 0; i < 100; ++i)
        flat.Append(3.0F);
    const QColor red(255, 0, 0);
    ZrPlotPanel::Plot plot{QStringLiteral("Both"), ZrPlotPanel::number, false,
        {{&m_data->depth, QColor(0, 255, 0), QStringLiteral("a")}, {&flat, red, QStringLiteral("b")}}};
    const auto longest = [&](const QRect& area) {
        // Of the rows in it, in one go, where it is red.
        const QImage image = Painted(*m_panel);
        int most = 0;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            int run = 0;
            for (int x = area.left(); x <= area.right(); ++x) {
                const QColor colour = image.pixelColor(x, y);
                run = colour.red() > 100 && colour.green() < 90 && colour.blue() < 90 ? run + 1 : 0;
                most = std::max(most, run);
            }
        }
        return most;
    };
    m_panel->SetPlots({plot});
    const QRect curves = m_panel->PlotRect(0);
    const QRect head(curves.x() + 60, 0, curves.width() - 60, curves.y());
    QVERIFY(longest(curves) > curves.width() / 2);
    const int solid = longest(head);
    QVERIFY2(solid >= 12, qPrintable(QString::number(solid)));
    plot.curves[1].style = Qt::DashLine;
    m_panel->SetPlots({plot});
    QVERIFY2(longest(curves) < 20, qPrintable(QString::number(longest(curves))));
    QVERIFY(longest(head) < solid);
}

QTEST_MAIN(tst_ZrPlotPanel)
#include "tst_ZrPlotPanel.moc"
