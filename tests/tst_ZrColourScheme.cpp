// The colours of the three schemes: what must be readable is.

#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrUtil/ZrTheme.h"

#include <QtTest>

#include <cmath>

namespace {

double Linear(double c)
{
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& c)
{
    return 0.2126 * Linear(c.redF()) + 0.7152 * Linear(c.greenF()) + 0.0722 * Linear(c.blueF());
}

double Contrast(const QColor& a, const QColor& b)
{
    const double la = Luminance(a);
    const double lb = Luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

} // namespace

class tst_ZrColourScheme : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { ZrTheme::SetStdStyle(); }

    void textIsReadable_data();
    void textIsReadable();
    void wayAndWhatIsToCome_data();
    void wayAndWhatIsToCome();
    void statesDiffer_data();
    void statesDiffer();
    void pensFollow();
    void noSchemeIsDusk();
    void names();
    void nightIsDim();
    void sizesStay();
    void overPictures();

private:
    void Schemes();
};

void tst_ZrColourScheme::Schemes()
{
    QTest::addColumn<int>("scheme");
    for (int i = 0; i < ZrColourScheme::Count; ++i)
        QTest::newRow(qPrintable(ZrColourScheme::Name(i))) << i;
}

void tst_ZrColourScheme::textIsReadable_data()
{
    Schemes();
}

void tst_ZrColourScheme::textIsReadable()
{
    QFETCH(int, scheme);
    ZrColourScheme::Apply(scheme);
    QCOMPARE(ZrColourScheme::Current(), scheme);
    const double wanted = scheme == ZrColourScheme::day ? 7.0 : 4.5;
    for (const QColor& back : {ZrTheme::formBack, ZrTheme::toolBack, ZrTheme::formMgr}) {
        for (const QColor& text : {ZrTheme::ctrlCol, ZrTheme::titleCol, ZrTheme::bodyCol})
            QVERIFY2(Contrast(text, back) >= wanted, qPrintable(text.name() + back.name()));
    }
    for (const QColor& text :
        {ZrTheme::goodCol, ZrTheme::warnCol, ZrTheme::errorCol, ZrTheme::ctrlHighlightCol})
        QVERIFY2(Contrast(text, ZrTheme::formBack) >= 3.0, qPrintable(text.name()));
    QVERIFY(Contrast(ZrTheme::ctrlCol, ZrTheme::ctrlActiveCol) >= 4.5);
    // Lines and symbols on the water.
    for (const QColor& line : {ZrTheme::track, ZrTheme::route, ZrTheme::vehicle, ZrTheme::waypoint})
        QVERIFY2(Contrast(line, ZrTheme::sea) >= 3.0, qPrintable(line.name()));
}

void tst_ZrColourScheme::wayAndWhatIsToCome_data()
{
    Schemes();
}

/// By lightness: at night, when all colours are of one hue, by nothing else; there are eyes that see few.
void tst_ZrColourScheme::wayAndWhatIsToCome()
{
    QFETCH(int, scheme);
    ZrColourScheme::Apply(scheme);
    const QColor ahead = ZrColourScheme::TrackAhead();
    const double least = scheme == ZrColourScheme::night ? 1.8 : 1.5;
    QVERIFY2(Contrast(ZrTheme::track, ahead) >= least, qPrintable(ahead.name()));
    QVERIFY2(Contrast(ahead, ZrTheme::sea) >= 3.0, qPrintable(ahead.name()));
    QVERIFY2(Contrast(ZrTheme::track, ZrTheme::sea) >= 4.5, qPrintable(ZrTheme::track.name()));
}

void tst_ZrColourScheme::statesDiffer_data()
{
    Schemes();
}

void tst_ZrColourScheme::statesDiffer()
{
    QFETCH(int, scheme);
    ZrColourScheme::Apply(scheme);
    QVERIFY(ZrTheme::goodCol != ZrTheme::warnCol);
    QVERIFY(ZrTheme::warnCol != ZrTheme::errorCol);
    QVERIFY(ZrTheme::track != ZrTheme::route);
    QVERIFY(ZrTheme::ctrlActiveCol != ZrTheme::formBack);
}

void tst_ZrColourScheme::pensFollow()
{
    ZrColourScheme::Apply(ZrColourScheme::day);
    QCOMPARE(ZrTheme::bodyText.color(), ZrTheme::bodyCol);
    QCOMPARE(ZrTheme::titleText.color(), ZrTheme::titleCol);
    QCOMPARE(ZrTheme::ctrlText.color(), ZrTheme::ctrlCol);
    QCOMPARE(ZrTheme::ctrlOutline.color(), ZrTheme::ctrlOutlineCol);
    QCOMPARE(ZrTheme::ctrlHighlight.color(), ZrTheme::ctrlHighlightCol);
    QCOMPARE(ZrTheme::ctrlActive.color(), ZrTheme::ctrlActiveCol);
    QCOMPARE(ZrTheme::ctrlCheck.color(), ZrTheme::ctrlCheckCol);
    QCOMPARE(ZrTheme::ctrlHint.color(), ZrTheme::ctrlHintCol);
    QVERIFY(ZrColourScheme::IsLight());
    QVERIFY(Luminance(ZrTheme::formBack) > Luminance(ZrTheme::bodyCol));
}

void tst_ZrColourScheme::noSchemeIsDusk()
{
    for (const int scheme : {-1, 3, 1000}) {
        ZrColourScheme::Apply(ZrColourScheme::day);
        ZrColourScheme::Apply(scheme);
        QCOMPARE(ZrColourScheme::Current(), int(ZrColourScheme::dusk));
        QVERIFY(!ZrColourScheme::IsLight());
        QVERIFY(ZrColourScheme::Name(scheme).isEmpty());
    }
}

void tst_ZrColourScheme::names()
{
    QCOMPARE(ZrColourScheme::Name(0), QStringLiteral("Day"));
    QCOMPARE(ZrColourScheme::Name(1), QStringLiteral("Dusk"));
    QCOMPARE(ZrColourScheme::Name(2), QStringLiteral("Night"));
}

void tst_ZrColourScheme::nightIsDim()
{
    ZrColourScheme::Apply(ZrColourScheme::night);
    for (const QColor& c : {ZrTheme::formBack, ZrTheme::toolBack, ZrTheme::sea, ZrTheme::formMgr})
        QVERIFY(Luminance(c) < 0.005);
    for (const QColor& c : {ZrTheme::ctrlCol, ZrTheme::titleCol, ZrTheme::bodyCol, ZrTheme::errorCol}) {
        QVERIFY(Luminance(c) < 0.45);
        QVERIFY(c.red() > c.green() && c.red() > c.blue());
    }
}

void tst_ZrColourScheme::sizesStay()
{
    const int size = ZrTheme::font.pixelSize();
    const int width = ZrTheme::ctrlOutline.width();
    ZrColourScheme::Apply(ZrColourScheme::night);
    QCOMPARE(ZrTheme::font.pixelSize(), size);
    QCOMPARE(ZrTheme::ctrlOutline.width(), width);
}

/// At night no ink is blue or bright; by day and at dusk all are as they are.
void tst_ZrColourScheme::overPictures()
{
    const QVector<QColor> inks{
        Qt::white, QColor(64, 224, 255), QColor(255, 190, 40, 150), QColor(10, 20, 250)};
    for (const int scheme : {ZrColourScheme::day, ZrColourScheme::dusk}) {
        ZrColourScheme::Apply(scheme);
        for (const QColor& ink : inks)
            QCOMPARE(ZrColourScheme::OverPicture(ink), ink);
    }
    ZrColourScheme::Apply(ZrColourScheme::night);
    for (const QColor& ink : inks) {
        const QColor dim = ZrColourScheme::OverPicture(ink);
        QVERIFY2(dim.blue() <= 80 && dim.red() >= dim.green() && dim.red() <= 216, qPrintable(dim.name()));
        QCOMPARE(dim.alpha(), ink.alpha());
    }
    // What was brighter still is.
    QVERIFY(ZrColourScheme::OverPicture(Qt::white).red() > ZrColourScheme::OverPicture(inks[1]).red());
}

QTEST_MAIN(tst_ZrColourScheme)
#include "tst_ZrColourScheme.moc"
