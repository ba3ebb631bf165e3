// The example with the kit's controls: what a person does in it, and the options of the program.

#include "Desk.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"

#include <QApplication>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class tst_KitGallery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void cleanup() { m_desk.reset(); }

    void removesAndTakesBack();
    void removesAll();
    void typedTime();
    void scrubs();
    void saysWhatIsNotOpened();
    void controlsAreApart_data();
    void controlsAreApart();
    void pictures();
    void badArguments_data();
    void badArguments();

private:
    template <class T> T* Part() const
    {
        return m_desk->findChild<T*>(QString(), Qt::FindDirectChildrenOnly);
    }

    ZrValueTile* Value(int number) const { return m_desk->findChildren<ZrValueTile*>().at(number); }

    static int Run(const QStringList& arguments)
    {
        return QProcess::execute(QStringLiteral(ZR_BIN_DIR "/kit_gallery"), arguments);
    }

    std::unique_ptr<Desk> m_desk;
};

void tst_KitGallery::initTestCase()
{
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
}

void tst_KitGallery::init()
{
    m_desk = std::make_unique<Desk>();
    m_desk->resize(1280, 800);
    m_desk->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_desk.get()));
}

void tst_KitGallery::removesAndTakesBack()
{
    auto* list = Part<ZrTouchList>();
    QCOMPARE(list->Count(), 6);
    Q_EMIT list->Held(1);
    QCOMPARE(list->Count(), 5);
    QCOMPARE(list->Item(1).title, QStringLiteral("Dive 3"));
    auto* toast = Part<ZrToast>();
    QCOMPARE(toast->Text(), QStringLiteral("Dive 2 removed"));
    QVERIFY(toast->FocusAction());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    QCOMPARE(list->Count(), 6);
    QCOMPARE(list->Item(1).title, QStringLiteral("Dive 2"));
    QCOMPARE(list->Current(), 1);
}

void tst_KitGallery::removesAll()
{
    auto* list = Part<ZrTouchList>();
    while (list->Count() > 0)
        Q_EMIT list->Held(0);
    QVERIFY(Value(1)->Value().isEmpty());
    QVERIFY(!Part<ZrEntryBtn>()->isEnabled());
    QVERIFY(!m_desk->grab().isNull());
    QVERIFY(Part<ZrToast>()->FocusAction());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    QCOMPARE(list->Count(), 1);
    QCOMPARE(Value(0)->Value(), QStringLiteral("10:20:00"));
}

void tst_KitGallery::typedTime()
{
    m_desk->AskTime();
    auto* ask = Part<ZrTextPanel>();
    ask->Input().setText(QStringLiteral("half past ten"));
    ask->Accept();
    QVERIFY(ask->isVisible());
    QVERIFY(!ask->Problem().isEmpty());
    ask->Input().setText(QStringLiteral("10:04"));
    ask->Accept();
    QVERIFY(!ask->isVisible());
    QCOMPARE(Value(0)->Value(), QStringLiteral("10:04:00"));
}

void tst_KitGallery::scrubs()
{
    auto* bar = Part<ZrTimeBar>();
    const double time = bar->Line().VisibleBegin() + 300.0;
    Q_EMIT bar->Scrubbed(time);
    QCOMPARE(bar->Cursor(), time);
    QCOMPARE(Value(0)->Value(), QStringLiteral("10:05:00"));
    Q_EMIT bar->EventTapped(1);
    QCOMPARE(Value(0)->Value(), QStringLiteral("10:17:30"));
}

void tst_KitGallery::saysWhatIsNotOpened()
{
    auto* banner = Part<ZrBanner>();
    QVERIFY(banner->IsEmpty());
    const int tiles = Value(0)->y();
    Q_EMIT Part<ZrFilePanel>()->FileChosen(QStringLiteral("/no/such/沈 file.log"));
    QCOMPARE(banner->Text(), QStringLiteral("沈 file.log is not opened"));
    QVERIFY(Value(0)->y() >= banner->geometry().bottom());
    banner->Clear();
    QTRY_COMPARE(Value(0)->y(), tiles);
}

void tst_KitGallery::controlsAreApart_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize& size : {QSize(900, 600), QSize(1280, 800), QSize(2560, 1440)})
        QTest::addRow("%d x %d", size.width(), size.height()) << size;
}

/// None lies over another, and all are in the window.
void tst_KitGallery::controlsAreApart()
{
    QFETCH(QSize, size);
    m_desk->resize(size);
    QVector<QWidget*> shown;
    for (QWidget* child : m_desk->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (child->isVisible() && !qobject_cast<ZrOverlay*>(child))
            shown.append(child);
    }
    QVERIFY(shown.size() >= 10);
    for (int i = 0; i < shown.size(); ++i) {
        QVERIFY2(m_desk->rect().contains(shown[i]->geometry()), shown[i]->metaObject()->className());
        for (int k = 0; k < i; ++k)
            QVERIFY2(
                !shown[i]->geometry().intersects(shown[k]->geometry()), shown[i]->metaObject()->className());
    }
}

void tst_KitGallery::pictures()
{
    QTemporaryDir folder;
    QVector<QImage> pictures;
    for (const QString& name : {QStringLiteral("day"), QStringLiteral("Dusk"), QStringLiteral("night")}) {
        const QString path = folder.filePath(name + QStringLiteral(".png"));
        QCOMPARE(Run({QStringLiteral("--colours"), name, QStringLiteral("--screenshot"), path}), 0);
        const QImage picture(path);
        QCOMPARE(picture.size(), QSize(1280, 800));
        QVERIFY(!pictures.contains(picture));
        pictures.append(picture);
    }
    QVERIFY(qGray(pictures[0].pixel(2, 2)) > 200);
    QVERIFY(qGray(pictures[2].pixel(2, 2)) < 30);
    QCOMPARE(Run({QStringLiteral("--screenshot"), folder.filePath(QStringLiteral("none/a.png"))}), 3);
}

void tst_KitGallery::badArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("colours") << QStringList{QStringLiteral("--colours"), QStringLiteral("noon")};
    QTest::newRow("no colours") << QStringList{QStringLiteral("--colours"), QString()};
    QTest::newRow("file") << QStringList{QStringLiteral("a.log")};
    QTest::newRow("option") << QStringList{QStringLiteral("--colors")};
}

void tst_KitGallery::badArguments()
{
    QFETCH(QStringList, arguments);
    QCOMPARE(Run(arguments), 1);
}

QTEST_MAIN(tst_KitGallery)
#include "tst_KitGallery.moc"
