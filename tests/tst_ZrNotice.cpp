// The panel that tells a person something.

#include "ZrKit/ui/ZrNotice.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrBtn.h"

#include <QPointer>
#include <QtTest>

#include <memory>

class tst_ZrNotice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void shown();
    void staysInTheWindow_data();
    void staysInTheWindow();
    void longText();
    void longWords();
    void okCloses();
    void returnCloses();
    void followsTheWindow();
    void standsAboveOthers();
    void pressesStay();
    void goesWithTheWindow();

private:
    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<QWidget> m_window;
};

void tst_ZrNotice::init()
{
    m_theme = std::make_unique<ZrThemeState>();
    m_window = std::make_unique<QWidget>();
    m_window->resize(1000, 700);
    m_window->show();
}

void tst_ZrNotice::cleanup()
{
    m_window.reset();
    m_theme.reset();
}

void tst_ZrNotice::shown()
{
    const QString text = QStringLiteral("The settings cannot be read.");
    auto* notice = new ZrNotice(m_window.get(), text);
    QVERIFY(notice->isVisible());
    QCOMPARE(notice->Text(), text);
    QCOMPARE(notice->ShownText(), text);
    QCOMPARE(notice->toolTip(), text);
    QCOMPARE(notice->accessibleName(), text);
    const QImage image = Painted(*notice);
    QVERIFY(HasColour(image, ZrTheme::warnCol));
    QVERIFY(HasColour(image, ZrTheme::ctrlCol));
    QVERIFY(Contrast(ZrTheme::ctrlCol, image.pixelColor(image.width() / 2, 6)) >= 4.5);
}

void tst_ZrNotice::staysInTheWindow_data()
{
    QTest::addColumn<double>("dp");
    QTest::addColumn<QSize>("size");
    QTest::newRow("900 x 600") << 0.625 << QSize(900, 600);
    QTest::newRow("small scale") << 0.47 << QSize(900, 600);
    QTest::newRow("large scale") << 1.40625 << QSize(1440, 900);
    QTest::newRow("narrow") << 1.0 << QSize(300, 900);
}

void tst_ZrNotice::staysInTheWindow()
{
    QFETCH(double, dp);
    QFETCH(QSize, size);
    const ZrThemeState theme(dp);
    m_window->resize(size);
    auto* notice = new ZrNotice(m_window.get(), QStringLiteral("A word. ").repeated(30));
    QVERIFY(m_window->rect().contains(notice->geometry()));
    const auto* ok = notice->findChild<ZrBtn*>();
    QVERIFY(notice->rect().contains(ok->geometry()));
    QVERIFY(ok->width() >= 44 && ok->height() >= 44);
}

void tst_ZrNotice::longText()
{
    const QString text = QStringLiteral("A word. ").repeated(20000);
    auto* notice = new ZrNotice(m_window.get(), text);
    QVERIFY(notice->height() <= m_window->height() / 2);
    QVERIFY(notice->ShownText().endsWith(QChar(0x2026)));
    QVERIFY(notice->ShownText().size() > 100);
    QCOMPARE(notice->Text(), text);
}

/// A path breaks between folders; nothing of it is cut off at the edge.
void tst_ZrNotice::longWords()
{
    const QString word = QStringLiteral("W").repeated(200);
    auto* one = new ZrNotice(m_window.get(), QStringLiteral("W"));
    auto* many = new ZrNotice(m_window.get(), word);
    QVERIFY(many->height() > one->height());
    QCOMPARE(many->ShownText(), word);
    const QImage image = Painted(*many);
    const int left = many->findChild<ZrBtn*>()->x() - 4;
    for (int y = 4; y < image.height() - 4; ++y)
        QCOMPARE(image.pixelColor(left, y), QColor(Qt::black));
}

void tst_ZrNotice::okCloses()
{
    const QPointer<ZrNotice> notice = new ZrNotice(m_window.get(), QStringLiteral("x"));
    QTest::mouseClick(notice->findChild<ZrBtn*>(), Qt::LeftButton);
    QVERIFY(notice->isHidden());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!notice);
}

void tst_ZrNotice::returnCloses()
{
    QApplication::setActiveWindow(m_window.get());
    const QPointer<ZrNotice> notice = new ZrNotice(m_window.get(), QStringLiteral("x"));
    QVERIFY(QApplication::focusWidget() == notice->findChild<ZrBtn*>());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!notice);
}

void tst_ZrNotice::followsTheWindow()
{
    auto* notice = new ZrNotice(m_window.get(), QStringLiteral("A word. ").repeated(30));
    m_window->resize(500, 640);
    Settle();
    QVERIFY(m_window->rect().contains(notice->geometry()));
    QCOMPARE(notice->geometry().center().x(), m_window->rect().center().x());
    QCOMPARE(notice->geometry().bottom(), 640 - 20 - 1);
}

void tst_ZrNotice::standsAboveOthers()
{
    auto* notice = new ZrNotice(m_window.get(), QStringLiteral("x"));
    auto* panel = new QWidget(m_window.get());
    panel->setGeometry(m_window->rect());
    panel->show();
    QCOMPARE(m_window->childAt(notice->geometry().center()), panel);
    m_window->resize(1001, 700);
    Settle();
    QCOMPARE(m_window->childAt(notice->geometry().center()), notice);
}

void tst_ZrNotice::pressesStay()
{
    class Window : public QWidget
    {
    public:
        int m_presses = 0;

        void mousePressEvent(QMouseEvent* /*event*/) override { ++m_presses; }

        void mouseDoubleClickEvent(QMouseEvent* /*event*/) override { ++m_presses; }
    };

    Window window;
    window.resize(800, 600);
    window.show();
    ZrNotice notice(&window, QStringLiteral("x"));
    SendPress(notice, QPoint(5, 5));
    SendMouse(notice, QEvent::MouseButtonDblClick, QPoint(5, 5));
    QCOMPARE(window.m_presses, 0);
}

void tst_ZrNotice::goesWithTheWindow()
{
    const QPointer<ZrNotice> notice = new ZrNotice(m_window.get(), QStringLiteral("x"));
    m_window->resize(600, 500);
    m_window.reset();
    QVERIFY(!notice);
    Settle();
}

QTEST_MAIN(tst_ZrNotice)
#include "tst_ZrNotice.moc"
