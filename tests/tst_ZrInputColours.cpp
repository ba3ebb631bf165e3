// Lines for typing stay readable in every colour scheme.

#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrInputColours.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrInput.h"

#include <QApplication>
#include <QPointer>
#include <QStyle>
#include <QtTest>

namespace {

/// The colour that most pixels of \p image have.
QColor Background(const QImage& image)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    }
    QRgb most = 0;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
        if (it.value() > counts.value(most))
            most = it.key();
    }
    return QColor(most);
}

/// The highest contrast that a pixel has to the background: that of the middle of a stroke of a letter.
double TextContrast(const QImage& image)
{
    const QColor background = Background(image);
    double most = 0.0;
    for (int y = 4; y < image.height() - 4; ++y) {
        for (int x = 4; x < image.width() - 4; ++x)
            most = std::max(most, Contrast(image.pixelColor(x, y), background));
    }
    return most;
}

} // namespace

class tst_ZrInputColours : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void readable_data();
    void readable();
    void errorIsRed();
    void backAndForth();
    void styleLivesOn();
    void typing();
    void othersKeepTheirs();
    void endsWithItsLife();

private:
    std::unique_ptr<ZrThemeState> m_theme;
};

void tst_ZrInputColours::init()
{
    m_theme.reset();
    m_theme = std::make_unique<ZrThemeState>();
    qApp->setStyleSheet(QString());
}

void tst_ZrInputColours::cleanup()
{
    qApp->setStyleSheet(QString());
}

void tst_ZrInputColours::readable_data()
{
    QTest::addColumn<int>("scheme");
    QTest::addColumn<bool>("isValid");
    for (int scheme = 0; scheme < ZrColourScheme::Count; ++scheme) {
        QTest::addRow("%s", qPrintable(ZrColourScheme::Name(scheme))) << scheme << true;
        QTest::addRow("%s, error", qPrintable(ZrColourScheme::Name(scheme))) << scheme << false;
    }
}

/// Even if it was so before it was shown for the first time.
void tst_ZrInputColours::readable()
{
    QFETCH(int, scheme);
    QFETCH(bool, isValid);
    ZrColourScheme::Apply(scheme);
    qApp->setStyleSheet(ZrTheme::GetStylesheet(QStringLiteral(":/css/AppView.css")));
    const ZrInputColours colours(nullptr);
    ZrInput input(nullptr);
    input.SetText(QStringLiteral("HHHHHHHH"));
    input.SetValid(!isValid);
    input.SetValid(isValid);
    input.resize(200, 60);
    const double contrast = TextContrast(Painted(input));
    QVERIFY2(contrast >= 4.5, qPrintable(QString::number(contrast)));
}

void tst_ZrInputColours::errorIsRed()
{
    const ZrInputColours colours(nullptr);
    ZrInput input(nullptr);
    input.SetText(QStringLiteral("HHHHHHHH"));
    input.SetValid(false);
    input.resize(200, 60);
    const QImage image = Painted(input);
    QCOMPARE(Background(image), QColor(0xaa, 0, 0));
    QVERIFY(HasColour(image, Qt::white));
}

void tst_ZrInputColours::backAndForth()
{
    const ZrInputColours colours(nullptr);
    ZrInput input(nullptr);
    input.ensurePolished();
    for (int i = 0; i < 3; ++i) {
        input.SetValid(false);
        QVERIFY(input.styleSheet().contains(QStringLiteral("#aa0000")));
        QVERIFY(input.styleSheet().contains(QStringLiteral("#ffffff")));
        input.SetValid(false);
        QVERIFY(input.styleSheet().contains(QStringLiteral("#ffffff")));
        input.SetValid(true);
        QVERIFY(!input.styleSheet().contains(QLatin1Char('#')));
    }
}

/// The colours change in the middle of an event that the style of the line sends.
void tst_ZrInputColours::styleLivesOn()
{
    const ZrInputColours colours(nullptr);
    ZrInput input(nullptr);
    input.ensurePolished();
    input.SetValid(false);
    const QPointer<QStyle> style(input.style());
    QVERIFY(style != QApplication::style());
    input.SetValid(true);
    QVERIFY(style);
    QCOMPARE(input.style(), style.data());
}

void tst_ZrInputColours::typing()
{
    const ZrInputColours colours(nullptr);
    ZrInput input(nullptr);
    input.SetValue(7.0);
    input.show();
    input.setFocus();
    input.selectAll();
    QTest::keyClicks(&input, QStringLiteral("x"));
    QVERIFY(input.styleSheet().contains(QStringLiteral("#ffffff")));
    input.selectAll();
    QTest::keyClicks(&input, QStringLiteral("12"));
    QVERIFY(!input.styleSheet().contains(QLatin1Char('#')));
    QCOMPARE(input.value, 12.0);
}

/// What is no such line, or has colours of its own, keeps them.
void tst_ZrInputColours::othersKeepTheirs()
{
    const ZrInputColours colours(nullptr);
    const QString grey = QStringLiteral("QLineEdit { background-color : #515151;}");
    const QString red = QStringLiteral("QLineEdit { background-color : #aa0000;}");
    const QString green = QStringLiteral("QLineEdit { background-color : #00aa00;}");
    QLineEdit line;
    for (const QString& sheet : {grey, red, green}) {
        line.setStyleSheet(sheet);
        QCOMPARE(line.styleSheet(), sheet);
    }
    ZrInput input(nullptr);
    input.setStyleSheet(green);
    QCOMPARE(input.styleSheet(), green);
}

void tst_ZrInputColours::endsWithItsLife()
{
    ZrInput input(nullptr);
    input.ensurePolished();
    {
        QObject owner;
        new ZrInputColours(&owner);
        input.SetValid(false);
        QVERIFY(input.styleSheet().contains(QStringLiteral("#ffffff")));
    }
    input.SetValid(true);
    QVERIFY(input.styleSheet().contains(QStringLiteral("#515151")));
}

QTEST_MAIN(tst_ZrInputColours)
#include "tst_ZrInputColours.moc"
