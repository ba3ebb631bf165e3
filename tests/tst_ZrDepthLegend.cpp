// The colours of depths, and the scale that tells what they mean.

#include "ZrKit/scene/ZrDepthColours.h"
#include "ZrKit/scene/ZrDepthLegend.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrUiChecks.h"
#include "ZrUnitsState.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

class tst_ZrDepthLegend : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void deeperIsDarker_data();
    void deeperIsDarker();
    void nightIsRed();
    void between();
    void numbersAreWhereTheirColoursAre_data();
    void numbersAreWhereTheirColoursAre();
    void unitsShowAtOnce();
    void wrongRanges();
    void textsHaveRoom_data();
    void textsHaveRoom();
    void lowBar();
    void mouseGoesThrough();

private:
    void Fit() { m_legend->resize(m_legend->sizeHint()); }

    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<ZrUnitsState> m_units;
    std::unique_ptr<ZrDepthLegend> m_legend;
};

void tst_ZrDepthLegend::init()
{
    m_theme = std::make_unique<ZrThemeState>();
    m_units = std::make_unique<ZrUnitsState>();
    ZrUnits::SetToMetric();
    ZrColourScheme::Apply(ZrColourScheme::day);
    m_legend = std::make_unique<ZrDepthLegend>(nullptr, QStringLiteral("Sea floor"));
}

void tst_ZrDepthLegend::cleanup()
{
    m_legend.reset();
    m_units.reset();
    m_theme.reset();
}

void tst_ZrDepthLegend::deeperIsDarker_data()
{
    QTest::addColumn<int>("scheme");
    for (int scheme = 0; scheme < ZrColourScheme::Count; ++scheme)
        QTest::addRow("%d", scheme) << scheme;
}

void tst_ZrDepthLegend::deeperIsDarker()
{
    QFETCH(int, scheme);
    ZrColourScheme::Apply(scheme);
    for (int i = 1; i <= 100; ++i) {
        const int before = qGray(ZrDepthColours::At((i - 1) / 100.0).rgb());
        const int now = qGray(ZrDepthColours::At(i / 100.0).rgb());
        QVERIFY2(now <= before, qPrintable(QString::number(i)));
    }
    const int range = qGray(ZrDepthColours::At(0.0).rgb()) - qGray(ZrDepthColours::At(1.0).rgb());
    QVERIFY2(range >= 60, qPrintable(QString::number(range)));
}

/// Neither green nor blue lights.
void tst_ZrDepthLegend::nightIsRed()
{
    ZrColourScheme::Apply(ZrColourScheme::night);
    for (const QColor& colour : ZrDepthColours::Stops())
        QVERIFY2(colour.red() > 2 * colour.green() - 10 && colour.green() >= colour.blue(),
            qPrintable(colour.name()));
}

void tst_ZrDepthLegend::between()
{
    const auto stops = ZrDepthColours::Stops();
    QCOMPARE(ZrDepthColours::At(0.0), stops.front());
    QCOMPARE(ZrDepthColours::At(1.0), stops.back());
    QCOMPARE(ZrDepthColours::At(0.5), stops[2]);
    QCOMPARE(ZrDepthColours::At(-3.0), stops.front());
    QCOMPARE(ZrDepthColours::At(HUGE_VAL), stops.back());
    QCOMPARE(ZrDepthColours::At(notANumber), stops.front());
    const QColor half = ZrDepthColours::At(0.125);
    QVERIFY(std::abs(half.red() - (stops[0].red() + stops[1].red()) / 2) <= 1);
}

void tst_ZrDepthLegend::numbersAreWhereTheirColoursAre_data()
{
    QTest::addColumn<double>("shallow");
    QTest::addColumn<double>("deep");
    QTest::newRow("harbour") << 3.2 << 7.9;
    QTest::newRow("flat") << 24.85 << 26.85;
    QTest::newRow("shelf") << 12.0 << 180.0;
    QTest::newRow("ocean") << 900.0 << 5800.0;
    QTest::newRow("dry") << -1.0 << 4.0;
}

void tst_ZrDepthLegend::numbersAreWhereTheirColoursAre()
{
    QFETCH(double, shallow);
    QFETCH(double, deep);
    m_legend->SetRange(shallow, deep);
    Fit();
    const QImage image = Painted(*m_legend);
    const QVector<ZrDepthLegend::Label> labels = m_legend->Labels();
    QVERIFY2(labels.size() >= 2 && labels.size() <= 6, qPrintable(QString::number(labels.size())));
    const QRect bar = m_legend->BarRect();
    for (int i = 0; i < labels.size(); ++i) {
        QCOMPARE(labels[i].text.toDouble(), std::round(labels[i].depth * 100.0) / 100.0);
        QVERIFY(m_legend->rect().contains(labels[i].rect));
        QVERIFY(i == 0 || !labels[i].rect.intersects(labels[i - 1].rect));
        if (i > 0)
            QVERIFY(std::fabs(labels[i].depth - labels[i - 1].depth - m_legend->Step()) < 1e-6);
        const double share = (labels[i].depth - shallow) / (deep - shallow);
        const QColor shown = image.pixelColor(bar.center().x(), bar.y() + qRound(share * (bar.height() - 1)));
        const QColor wanted = ZrDepthColours::At(share);
        QVERIFY2(std::abs(shown.red() - wanted.red()) < 12 && std::abs(shown.blue() - wanted.blue()) < 12,
            qPrintable(shown.name() + wanted.name()));
    }
}

void tst_ZrDepthLegend::unitsShowAtOnce()
{
    m_legend->SetRange(10.0, 20.0);
    Fit();
    QVERIFY(m_legend->accessibleDescription().endsWith(QLatin1String("m")));
    const double metres = m_legend->Labels().first().text.toDouble();
    ZrUnits::SetToImperial();
    m_legend->Restyle();
    QVERIFY(m_legend->accessibleDescription().endsWith(QLatin1String("ft")));
    const ZrDepthLegend::Label first = m_legend->Labels().first();
    QVERIFY(std::fabs(first.text.toDouble() - first.depth * 3.28084) < 0.01);
    QVERIFY(first.text.toDouble() > 3.0 * metres);
    // Round numbers of feet, not of metres.
    QVERIFY(std::fabs(std::remainder(m_legend->Step() * 3.28084, 1.0)) < 1e-3);
}

void tst_ZrDepthLegend::wrongRanges()
{
    for (const auto& [shallow, deep] : {std::pair(notANumber, 5.0), {5.0, notANumber}, {5.0, 5.0}, {6.0, 5.0},
             {-HUGE_VAL, 5.0}, {5.0, HUGE_VAL}}) {
        m_legend->SetRange(shallow, deep);
        Fit();
        QVERIFY(!m_legend->HasRange());
        QVERIFY(std::isnan(m_legend->Shallow()) && std::isnan(m_legend->Deep()));
        QCOMPARE(m_legend->Step(), 0.0);
        QVERIFY(m_legend->Labels().isEmpty());
        const QImage image = Painted(*m_legend);
        QVERIFY(!HasColour(image, ZrDepthColours::At(0.5)));
    }
    m_legend->resize(1, 1);
    m_legend->SetRange(1.0, 2.0);
    Painted(*m_legend);
}

void tst_ZrDepthLegend::textsHaveRoom_data()
{
    QTest::addColumn<double>("dp");
    for (const double dp : {0.6, 0.75, 1.0, 1.5, 2.0})
        QTest::addRow("%g", dp) << dp;
}

void tst_ZrDepthLegend::textsHaveRoom()
{
    QFETCH(double, dp);
    m_theme.reset();
    m_theme = std::make_unique<ZrThemeState>(dp);
    m_legend->SetRange(900.0, 5800.0);
    Fit();
    const QFontMetrics metrics(ZrLegible::Font(15));
    QVERIFY(metrics.horizontalAdvance(QStringLiteral("Sea floor, m")) <= m_legend->width());
    for (const ZrDepthLegend::Label& label : m_legend->Labels()) {
        QVERIFY2(metrics.horizontalAdvance(label.text) <= label.rect.width(), qPrintable(label.text));
        QVERIFY(label.rect.height() >= metrics.height());
    }
}

/// A bar that is lower than a number has it at its top, a higher one within.
void tst_ZrDepthLegend::lowBar()
{
    const int high = QFontMetrics(ZrLegible::Font(15)).height();
    m_legend->SetRange(3.2, 7.9);
    Fit();
    const int around = m_legend->height() - m_legend->BarRect().height();
    for (const int bar : {1, high / 2, high - 1, high, high + 7}) {
        m_legend->resize(m_legend->width(), around + bar);
        QCOMPARE(m_legend->BarRect().height(), bar);
        QVERIFY(!m_legend->Labels().isEmpty());
        for (const ZrDepthLegend::Label& label : m_legend->Labels()) {
            if (bar <= high)
                QCOMPARE(label.rect.top(), m_legend->BarRect().top());
            else
                QVERIFY(m_legend->BarRect().top() <= label.rect.top()
                    && label.rect.bottom() <= m_legend->BarRect().bottom());
            QCOMPARE(label.rect.height(), high);
        }
    }
}

/// The scene below is turned by fingers on the legend as well.
void tst_ZrDepthLegend::mouseGoesThrough()
{
    QVERIFY(m_legend->testAttribute(Qt::WA_TransparentForMouseEvents));
}

QTEST_MAIN(tst_ZrDepthLegend)
#include "tst_ZrDepthLegend.moc"
