// A message within a page: what it tells, its buttons, and that no text of it is cut.

#include "ZrKit/ui/ZrBanner.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

const QString text = QStringLiteral("Recording stopped before the disk is full: 59 MB free in /data/logs");
const QString advice = QStringLiteral("Free some space, or choose another folder.");

} // namespace

class tst_ZrBanner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void emptyAtFirst();
    void staysUntilTouchedAway();
    void actions();
    void another();
    void fits_data();
    void fits();
    void longWords();
    void isPainted();

private:
    ZrBtn* Close() const { return m_banner->findChild<ZrBtn*>(QStringLiteral("dismiss")); }

    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<QWidget> m_page;
    ZrBanner* m_banner = nullptr;
};

void tst_ZrBanner::init()
{
    m_theme = std::make_unique<ZrThemeState>();
    m_page = std::make_unique<QWidget>();
    m_page->resize(1280, 800);
    m_banner = new ZrBanner(m_page.get());
    m_page->show();
}

void tst_ZrBanner::cleanup()
{
    m_page.reset();
    m_theme.reset();
}

void tst_ZrBanner::emptyAtFirst()
{
    QVERIFY(m_banner->IsEmpty());
    QVERIFY(!m_banner->isVisible());
    QCOMPARE(m_banner->HeightFor(1000), 0);
    QSignalSpy changed(m_banner, &ZrBanner::Changed);
    m_banner->Clear();
    QCOMPARE(changed.size(), 0);
}

void tst_ZrBanner::staysUntilTouchedAway()
{
    QSignalSpy changed(m_banner, &ZrBanner::Changed);
    QSignalSpy dismissed(m_banner, &ZrBanner::Dismissed);
    m_banner->Show(ZrBanner::error, text, advice);
    QCOMPARE(changed.size(), 1);
    m_banner->resize(1000, m_banner->HeightFor(1000));
    QVERIFY(m_banner->isVisible());
    QCOMPARE(m_banner->Kind(), ZrBanner::error);
    QCOMPARE(m_banner->Text(), text);
    QCOMPARE(m_banner->Advice(), advice);
    QCOMPARE(m_banner->accessibleName(), text + QLatin1Char('\n') + advice);
    QVERIFY(Close()->width() >= 44 && Close()->height() >= 44);
    // No time of its own ends it.
    QVERIFY(m_banner->findChildren<QTimer*>().isEmpty());
    // Only the button closes it: a finger that misses another one does not.
    QTest::mouseClick(m_banner, Qt::LeftButton, Qt::NoModifier, m_banner->rect().center());
    QVERIFY(m_banner->isVisible());
    QTest::mouseClick(Close(), Qt::LeftButton);
    QVERIFY(!m_banner->isVisible());
    QVERIFY(m_banner->IsEmpty());
    QCOMPARE(dismissed.size(), 1);
    QCOMPARE(changed.size(), 2);
    QCOMPARE(m_banner->HeightFor(1000), 0);
}

void tst_ZrBanner::actions()
{
    int settings = 0;
    int others = 0;
    m_banner->Show(ZrBanner::warning, text, advice,
        {{QStringLiteral("Settings"), [&settings] { ++settings; }},
            {QStringLiteral("Another"), [&] {
                 ++others;
                 m_banner->Show(ZrBanner::info, QStringLiteral("next"), QString());
             }}});
    m_banner->resize(1000, m_banner->HeightFor(1000));
    QCOMPARE(m_banner->Buttons().size(), 2);
    QTest::mouseClick(m_banner->Buttons()[0], Qt::LeftButton);
    QCOMPARE(settings, 1);
    QVERIFY(m_banner->isVisible());
    // One that replaces the banner it is of.
    QTest::mouseClick(m_banner->Buttons()[1], Qt::LeftButton);
    QCOMPARE(others, 1);
    QCOMPARE(m_banner->Text(), QStringLiteral("next"));
    QVERIFY(m_banner->Buttons().isEmpty());
}

void tst_ZrBanner::another()
{
    m_banner->Show(ZrBanner::error, text, advice, {{QStringLiteral("Settings"), [] {}}});
    const int high = m_banner->HeightFor(500);
    m_banner->Show(ZrBanner::info, QStringLiteral("short"), QString());
    QVERIFY(m_banner->HeightFor(500) < high);
    QCOMPARE(m_banner->accessibleName(), QStringLiteral("short"));
}

void tst_ZrBanner::fits_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<double>("dp");
    for (const double dp : {0.5, 1.0, 2.0}) {
        for (const int width : {320, 420, 700, 1240, 2500})
            QTest::addRow("%d at %.1f", width, dp) << width << dp;
    }
}

/// Every text and button has its room at every width and scale, and none covers another.
void tst_ZrBanner::fits()
{
    QFETCH(int, width);
    QFETCH(double, dp);
    ZrTheme::dp = static_cast<float>(dp);
    ZrTheme::SetStdStyle();
    m_banner->Show(ZrBanner::error, text, advice,
        {{QStringLiteral("Export events"), [] {}}, {QStringLiteral("Settings"), [] {}}});
    m_banner->resize(width, m_banner->HeightFor(width));
    QVector<ZrBtn*> buttons = m_banner->Buttons();
    buttons.append(Close());
    for (int i = 0; i < buttons.size(); ++i) {
        const QRect at = buttons[i]->geometry();
        QVERIFY2(m_banner->rect().contains(at), qPrintable(buttons[i]->accessibleName()));
        QVERIFY(at.height() >= 44 && at.width() >= 44);
        for (int j = i + 1; j < buttons.size(); ++j)
            QVERIFY(!at.intersects(buttons[j]->geometry()));
    }
    // Where a word of the text lies is no button: pictures with and without the text differ beside them only.
    const auto picture = [this] {
        QImage image(m_banner->size(), QImage::Format_RGB32);
        image.fill(Qt::black);
        m_banner->render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
        return image;
    };
    const QImage with = picture();
    const QColor ink = ZrTheme::ctrlCol;
    int words = 0;
    for (int y = 0; y < with.height(); ++y) {
        for (int x = 0; x < with.width(); ++x) {
            if (with.pixelColor(x, y).rgb() != ink.rgb())
                continue;
            ++words;
            for (const ZrBtn* button : qAsConst(buttons))
                QVERIFY2(!button->geometry().contains(x, y), qPrintable(button->accessibleName()));
        }
    }
    QVERIFY(words > 50);
}

/// A path is broken rather than cut.
void tst_ZrBanner::longWords()
{
    QString path = QStringLiteral("/data");
    for (int i = 0; i < 20; ++i)
        path += QStringLiteral("/somewhere-%1").arg(i);
    m_banner->Show(ZrBanner::error, QStringLiteral("Cannot write"), QString());
    const int line = m_banner->HeightFor(260);
    m_banner->Show(ZrBanner::error, path, QString());
    QVERIFY(m_banner->HeightFor(260) > 3 * line);
    QVERIFY(m_banner->HeightFor(260) > m_banner->HeightFor(1200));
}

/// Its kind is told by its edge, in all colours.
void tst_ZrBanner::isPainted()
{
    for (const int scheme : {ZrColourScheme::day, ZrColourScheme::dusk, ZrColourScheme::night}) {
        ZrColourScheme::Apply(scheme);
        m_banner->Show(ZrBanner::warning, text, advice);
        m_banner->resize(700, m_banner->HeightFor(700));
        const QImage image = m_banner->grab().toImage();
        QCOMPARE(image.pixelColor(3, image.height() / 2).rgb(), ZrTheme::warnCol.rgb());
    }
}

QTEST_MAIN(tst_ZrBanner)
#include "tst_ZrBanner.moc"
