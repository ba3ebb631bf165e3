// The application's window on screens with more than one device pixel for each pixel of the layout. The
// ratio is fixed when a program starts: this one starts itself for each.

#include "GlTest.h"
#include "ZrGlPages.h"

#include <QProcess>
#include <QRegularExpression>

/// What a started program checks, at the ratio of its environment.
class AtRatio : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void ratioIsTheOneAskedFor();
    void pagesGetDevicePixels();
    void latePageGetsDevicePixels();
    void themeGetsLogicalPixels();
    void controlsLieInside_data();
    void controlsLieInside();
    void controlsAreOnTop();
    void frameIsFilled();
    void titleBandIsLogical();

private:
    static double Ratio() { return qEnvironmentVariable("QT_SCALE_FACTOR").toDouble(); }

    static QSize Pixels(const QSize& logical)
    {
        return {qRound(logical.width() * Ratio()), qRound(logical.height() * Ratio())};
    }

    void Resize(const QSize& size);

    std::unique_ptr<ZrAppState> m_state;
    std::unique_ptr<ZrGlView> m_view;
    ZrGlPage* m_page = nullptr;
};

void AtRatio::init()
{
    m_state = std::make_unique<ZrAppState>();
    m_view = std::make_unique<ZrGlView>();
    m_view->resize(901, 601);
    m_page = m_view->Add(QStringLiteral("Home"));
    m_page->m_hasBackground = false;
    QVERIFY(m_view->Open());
}

void AtRatio::cleanup()
{
    m_view.reset();
    m_state.reset();
}

void AtRatio::Resize(const QSize& size)
{
    m_view->resize(size);
    QTRY_COMPARE(m_view->size(), size);
    QTRY_COMPARE(m_page->m_pixels, Pixels(size));
}

void AtRatio::ratioIsTheOneAskedFor()
{
    QCOMPARE(m_view->devicePixelRatioF(), Ratio());
}

void AtRatio::pagesGetDevicePixels()
{
    QCOMPARE(m_page->m_pixels, Pixels(QSize(901, 601)));
    ZrGlPage* hidden = m_view->Add(QStringLiteral("Hidden"));
    // Odd numbers do not divide.
    Resize(QSize(947, 633));
    QCOMPARE(hidden->m_pixels, Pixels(QSize(947, 633)));
    QCOMPARE(m_page->geometry(), QRect(0, 0, 947, 633));
    QCOMPARE(m_view->Background().m_viewport, QRect(QPoint(0, 0), Pixels(QSize(947, 633))));
    QCOMPARE(m_view->Background().m_pixelFactor, qRound(Ratio()));
}

void AtRatio::latePageGetsDevicePixels()
{
    const ZrGlPage* late = m_view->Add(QStringLiteral("Late"));
    QCOMPARE(late->m_pixels, Pixels(QSize(901, 601)));
    QCOMPARE(late->geometry(), QRect(0, 0, 901, 601));
}

void AtRatio::themeGetsLogicalPixels()
{
    Resize(QSize(950, 650));
    QCOMPARE(ZrTheme::dp, std::min(950.0F / 1440.0F, 650.0F / 900.0F));
    ZrTheme::designWidth = 940;
    ZrTheme::designHeight = 700;
    Resize(QSize(940, 640));
    QCOMPARE(ZrTheme::dp, 1.0F);
}

void AtRatio::controlsLieInside_data()
{
    QTest::addColumn<QSize>("design");
    QTest::addColumn<QSize>("window");
    QTest::newRow("smaller than the design") << QSize(1440, 900) << QSize(900, 600);
    QTest::newRow("wide") << QSize(1440, 900) << QSize(955, 610);
    QTest::newRow("as wide as the design") << QSize(930, 900) << QSize(930, 620);
    QTest::newRow("larger than the design") << QSize(320, 240) << QSize(900, 600);
    QTest::newRow("design of a wall") << QSize(7680, 4320) << QSize(900, 600);
    QTest::newRow("no design") << QSize(0, 0) << QSize(920, 620);
}

void AtRatio::controlsLieInside()
{
    QFETCH(QSize, design);
    QFETCH(QSize, window);
    ZrTheme::designWidth = design.width();
    ZrTheme::designHeight = design.height();
    // The size of before would be none of the rows.
    Resize(QSize(902, 602));
    Resize(window);
    const QRect inside(QPoint(0, 0), window);
    const QRect close = m_view->CloseButton().geometry();
    const QRect forms = m_view->forms().geometry();
    const QRect progress = m_view->progress().geometry();
    QVERIFY(inside.contains(close));
    QVERIFY(forms.isEmpty() || inside.contains(forms));
    QVERIFY(progress.isEmpty() || inside.contains(progress));
    // Large enough for a finger, in the upper right corner, and free of the forms.
    QVERIFY(close.width() >= 44 && close.height() >= 44);
    QVERIFY(close.left() > window.width() / 2 && close.top() < window.height() / 2);
    QVERIFY(!close.intersects(forms));
    if (!design.isEmpty()) {
        QVERIFY(forms.width() >= std::min(ZrTheme::DpI(850) - 1, window.width() / 2));
        QVERIFY(forms.height() > window.height() / 2);
        QVERIFY(progress.height() >= std::min(ZrTheme::DpI(160), window.height() / 2));
        QVERIFY(std::abs(progress.center().x() - window.width() / 2) <= 1);
        QVERIFY(std::abs(progress.center().y() - window.height() / 2) <= 1);
    }
}

void AtRatio::controlsAreOnTop()
{
    m_view->Add(QStringLiteral("Above"), true);
    Resize(QSize(960, 640));
    const QObjectList& children = m_view->children();
    QCOMPARE(children.last(), &m_view->progress());
    QCOMPARE(children[children.size() - 2], &m_view->forms());
    QCOMPARE(children[children.size() - 3], &m_view->CloseButton());
    QCOMPARE(m_view->childAt(m_view->CloseButton().geometry().center()), &m_view->CloseButton());
    m_view->ToggleSettings();
    // A place where the forms have no child of their own.
    const QPoint corner = m_view->forms().geometry().bottomLeft() + QPoint(2, -2);
    QCOMPARE(m_view->childAt(corner), &m_view->forms());
    m_view->ToggleSettings();
    m_view->progress().show();
    QCOMPARE(m_view->childAt(m_view->rect().center()), &m_view->progress());
}

void AtRatio::frameIsFilled()
{
    GLint viewport[4] = {};
    m_page->m_onPaint = [&] {
        m_view->glGetIntegerv(GL_VIEWPORT, viewport);
        m_view->glClearColor(0, 1, 0, 1);
        m_view->glClear(GL_COLOR_BUFFER_BIT);
    };
    const QImage image = m_view->grabFramebuffer();
    QCOMPARE(image.size(), Pixels(QSize(901, 601)));
    QCOMPARE(QSize(viewport[2], viewport[3]), image.size());
    QCOMPARE(image.pixelColor(image.width() - 1, 0), QColor(0, 255, 0));
    QCOMPARE(image.pixelColor(0, image.height() - 1), QColor(0, 255, 0));
}

void AtRatio::titleBandIsLogical()
{
    // Computed before the theme learns of the new size: the scale of the size before holds.
    Resize(QSize(1000, 650));
    Resize(QSize(1010, 660));
    const int band = qRound(100.0 * 650 / 900);
    QVERIFY(!m_view->isFullScreen());
    QTest::mouseDClick(m_view.get(), Qt::LeftButton, Qt::NoModifier, QPoint(400, band + 10));
    QVERIFY(!m_view->isFullScreen());
    QTest::mouseDClick(m_view.get(), Qt::LeftButton, Qt::NoModifier, QPoint(400, band - 10));
    QVERIFY(m_view->isFullScreen());
}

class tst_ZrAppViewScale : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void atRatio_data();
    void atRatio();
};

void tst_ZrAppViewScale::atRatio_data()
{
    QTest::addColumn<QString>("ratio");
    for (const char* ratio : {"1", "1.5", "2"})
        QTest::newRow(ratio) << QString::fromLatin1(ratio);
}

void tst_ZrAppViewScale::atRatio()
{
    QFETCH(QString, ratio);
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_SCALE_FACTOR"), ratio);
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(QCoreApplication::applicationFilePath(), QStringList());
    QVERIFY(program.waitForFinished(120000));
    const QByteArray output = program.readAll();
    const bool isGood = program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0;
    // Messages of a test are cut short.
    if (!isGood)
        std::fputs(output.constData(), stderr);
    QVERIFY(isGood);
    // It did check something.
    const auto totals = QRegularExpression(QStringLiteral("Totals: (\\d+) passed, 0 failed, 0 skipped"))
                            .match(QString::fromLocal8Bit(output));
    QVERIFY(totals.captured(1).toInt() >= 10);
}

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsSet("QT_SCALE_FACTOR"))
        return gl::Main<QApplication, AtRatio>(argc, argv);
    return gl::Main<QApplication, tst_ZrAppViewScale>(argc, argv);
}

#include "tst_ZrAppViewScale.moc"
