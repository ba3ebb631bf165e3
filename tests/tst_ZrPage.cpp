// The base of an application's pages, and the empty panel that it paints.

#include "ZrUiChecks.h"
#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrPage.h"
#include "ZrUtil/ZrSetApp.h"

#include <QProcess>
#include <QResource>
#include <QTemporaryDir>
#include <QtTest>

static_assert(std::is_base_of_v<QWidget, ZrPage>);
static_assert(std::is_base_of_v<zr::IPersistable, ZrPage>);

class tst_ZrPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asMade();
    void cornersOfTheApplication();
    void viewIsTheParent();
    void defaultsDoNothing();
    void blank();
    void blankWithCorners();
    void blankWithoutRoom_data();
    void blankWithoutRoom();
    void painterIsAsBefore();
};

void tst_ZrPage::asMade()
{
    ZrPage page(nullptr);
    QVERIFY(page.m_hasBackground);
    QVERIFY(!page.m_view);
    // The corners are the application's; this program has none.
    QVERIFY(page.m_topLeft.isNull());
    QVERIFY(page.m_topRight.isNull());
    QVERIFY(page.m_bottomLeft.isNull());
    QVERIFY(page.m_bottomRight.isNull());
}

/// Images of these names, among the resources of the application, become the corners.
void tst_ZrPage::cornersOfTheApplication()
{
    const QTemporaryDir dir;
    QFile list(dir.filePath(QStringLiteral("corners.qrc")));
    QVERIFY(list.open(QIODevice::WriteOnly));
    list.write("<RCC><qresource prefix=\"/\">");
    int side = 1;
    for (const char* name : {"top_left", "top_right", "bottom_left", "bottom_right"}) {
        const QByteArray file = QByteArray("blank_") + name + ".png";
        QImage corner(side, 10 * side, QImage::Format_ARGB32);
        corner.fill(Qt::red);
        QVERIFY(corner.save(dir.filePath(QString::fromLatin1(file))));
        list.write("<file>" + file + "</file>");
        ++side;
    }
    list.write("</qresource></RCC>");
    list.close();
    const QString compiled = dir.filePath(QStringLiteral("corners.rcc"));
    QCOMPARE(QProcess::execute(QStringLiteral(ZR_RCC),
                 {QStringLiteral("--binary"), list.fileName(), QStringLiteral("-o"), compiled}),
        0);
    QVERIFY(QResource::registerResource(compiled));
    const ZrPage page(nullptr);
    QVERIFY(QResource::unregisterResource(compiled));
    QCOMPARE(page.m_topLeft.size(), QSize(1, 10));
    QCOMPARE(page.m_topRight.size(), QSize(2, 20));
    QCOMPARE(page.m_bottomLeft.size(), QSize(3, 30));
    QCOMPARE(page.m_bottomRight.size(), QSize(4, 40));
}

void tst_ZrPage::viewIsTheParent()
{
    QWidget other;
    QVERIFY(!ZrPage(&other).m_view);
    ZrAppView view(
        nullptr, std::chrono::milliseconds(40), ZrAppView::updateTimer, std::chrono::milliseconds(0));
    ZrPage page(&view);
    QCOMPARE(page.m_view, &view);
    QCOMPARE(page.parentWidget(), &view);
}

void tst_ZrPage::defaultsDoNothing()
{
    ZrPage page(nullptr);
    page.zr_initializeGL();
    page.zr_resizeGL(10, 10);
    page.zr_paintGL();
    page.OnPageOpen();
    page.OnPageClose();
    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(page);
    QVERIFY(stored.root.isEmpty());
}

void tst_ZrPage::blank()
{
    const ZrThemeState theme;
    ZrPage page(nullptr);
    QImage image(100, 80, QImage::Format_RGB32);
    image.fill(Qt::red);
    QPainter painter(&image);
    page.Blank(painter, QRect(10, 10, 60, 50), 5);
    painter.end();
    const QRgb middle = image.pixel(40, 35);
    QVERIFY(middle != QColor(Qt::red).rgb());
    QCOMPARE(image.pixel(15, 35), middle);
    QCOMPARE(image.pixel(64, 35), middle);
    QCOMPARE(image.pixel(40, 15), middle);
    QCOMPARE(image.pixel(40, 54), middle);
    for (const QPoint& outside : {QPoint(14, 35), QPoint(65, 35), QPoint(40, 14), QPoint(40, 55)})
        QCOMPARE(image.pixelColor(outside), QColor(Qt::red));
}

void tst_ZrPage::blankWithCorners()
{
    const ZrThemeState theme;
    ZrPage page(nullptr);
    const auto square = [](const QColor& colour) {
        QImage corner(4, 3, QImage::Format_ARGB32);
        corner.fill(colour);
        return corner;
    };
    page.m_topLeft = square(Qt::red);
    page.m_topRight = square(Qt::green);
    page.m_bottomLeft = square(Qt::blue);
    page.m_bottomRight = square(Qt::yellow);
    QImage image(100, 80, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    page.Blank(painter, QRect(10, 10, 60, 50), 5);
    painter.end();
    QCOMPARE(image.pixelColor(15, 15), QColor(Qt::red));
    QCOMPARE(image.pixelColor(18, 17), QColor(Qt::red));
    QVERIFY(image.pixelColor(19, 17) != QColor(Qt::red));
    QCOMPARE(image.pixelColor(64, 15), QColor(Qt::green));
    QCOMPARE(image.pixelColor(61, 17), QColor(Qt::green));
    QCOMPARE(image.pixelColor(15, 54), QColor(Qt::blue));
    QCOMPARE(image.pixelColor(18, 52), QColor(Qt::blue));
    QCOMPARE(image.pixelColor(64, 54), QColor(Qt::yellow));
    QCOMPARE(image.pixelColor(61, 52), QColor(Qt::yellow));
}

void tst_ZrPage::blankWithoutRoom_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<int>("margin");
    QTest::newRow("empty") << QRect() << 0;
    QTest::newRow("negative") << QRect(10, 10, -5, -5) << 0;
    QTest::newRow("all margin") << QRect(10, 10, 20, 20) << 10;
    QTest::newRow("more margin") << QRect(10, 10, 20, 20) << 1000;
}

void tst_ZrPage::blankWithoutRoom()
{
    QFETCH(QRect, rect);
    QFETCH(int, margin);
    const ZrThemeState theme;
    ZrPage page(nullptr);
    QImage image(50, 50, QImage::Format_RGB32);
    image.fill(Qt::red);
    const QImage before = image;
    QPainter painter(&image);
    page.Blank(painter, rect, margin);
    painter.end();
    QCOMPARE(image, before);
}

void tst_ZrPage::painterIsAsBefore()
{
    const ZrThemeState theme;
    ZrPage page(nullptr);
    QImage image(50, 50, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setPen(Qt::red);
    painter.setBrush(Qt::green);
    page.Blank(painter, QRect(0, 0, 50, 50), 2);
    QCOMPARE(painter.pen().color(), QColor(Qt::red));
    QCOMPARE(painter.brush().color(), QColor(Qt::green));
    QVERIFY(!painter.testRenderHint(QPainter::Antialiasing));
}

QTEST_MAIN(tst_ZrPage)
#include "tst_ZrPage.moc"
