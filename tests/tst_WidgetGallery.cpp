// The widget gallery: that it reflows, switches, and rests.

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCheck.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrInputDlg.h"
#include "ZrUtil/ZrProgress.h"
#include "ZrUtil/ZrRadio.h"
#include "ZrUtil/ZrSlider.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "examples/widget_gallery/CellGrid.h"
#include "examples/widget_gallery/Gallery.h"

#include <QApplication>
#include <QScrollArea>
#include <QScrollBar>
#include <QtTest>

#include <algorithm>

namespace {

/// Counts what is painted anywhere in the application.
class PaintCounter : public QObject
{
public:
    int count = 0;

    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        const bool isPaint = event->type() == QEvent::Paint || event->type() == QEvent::UpdateRequest
            || event->type() == QEvent::UpdateLater;
        count += isPaint ? 1 : 0;
        return false;
    }
};

/// The grid that shows the widgets, below the bar.
CellGrid* Content(Gallery& gallery)
{
    return qobject_cast<CellGrid*>(gallery.findChild<QScrollArea*>()->widget());
}

QList<QWidget*> CellsOf(const CellGrid& grid)
{
    return grid.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
}

void Click(QWidget* widget)
{
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, widget->rect().center());
    QCoreApplication::processEvents();
}

} // namespace

class tst_WidgetGallery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void idleGalleryPaintsNothing();
    void reflows_data();
    void reflows();
    void unitsSwitchLive();
    void unitsAndBackKeepTheValues();
    void scaleButtonsSwitch();
    void keysSwitch();
    void toolTipsTellTheKeys();
    void newScaleKeepsWhatWasEntered();
    void tabletModeOpensKeyboards_data();
    void tabletModeOpensKeyboards();
    void samplesAreInert();
    void targetsAreLargeEnough();
    void workShowsProgress();
    void workStopsWithTheWidgets();
};

void tst_WidgetGallery::initTestCase()
{
    QApplication::setStyle(QStringLiteral("Fusion"));
    ZrInputDlg::s_keepInside = true;
}

void tst_WidgetGallery::init()
{
    ZrTheme::tabletMode = false;
}

void tst_WidgetGallery::cleanup()
{
    ZrTheme::tabletMode = false;
    ZrUnits::SetToMetric();
}

void tst_WidgetGallery::idleGalleryPaintsNothing()
{
    Gallery gallery;
    gallery.resize(1280, 800);
    gallery.show();
    QVERIFY(QTest::qWaitForWindowExposed(&gallery));
    QTest::qWait(300);
    PaintCounter counter;
    qApp->installEventFilter(&counter);
    QTest::qWait(1000);
    QCOMPARE(counter.count, 0);
    // It would have been seen.
    gallery.Input(ZrInput::kindInt)->update();
    QTRY_VERIFY(counter.count > 0);
}

void tst_WidgetGallery::reflows_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize size : {QSize(900, 600), QSize(1024, 640), QSize(1280, 800), QSize(1920, 1080),
             QSize(900, 1400), QSize(3840, 2160)})
        QTest::addRow("%d x %d", size.width(), size.height()) << size;
}

void tst_WidgetGallery::reflows()
{
    QFETCH(QSize, size);
    Gallery gallery;
    gallery.resize(size);
    gallery.show();
    for (int scale = 0; scale < int(Gallery::Scales().size()); ++scale) {
        gallery.SetScale(scale);
        const CellGrid* content = Content(gallery);
        const QList<QWidget*> cells = CellsOf(*content);
        QVERIFY(cells.size() > 80);
        const QRect inside(QPoint(), content->size());
        QVERIFY(content->width() <= size.width());
        for (int i = 0; i < cells.size(); ++i) {
            const QRect cell = cells[i]->geometry();
            QVERIFY2(inside.contains(cell), cells[i]->metaObject()->className());
            QVERIFY(cell.width() >= 44 && cell.height() > 0);
            for (int k = i + 1; k < cells.size(); ++k)
                QVERIFY(!cell.intersects(cells[k]->geometry()));
        }
    }
}

void tst_WidgetGallery::unitsSwitchLive()
{
    Gallery gallery;
    gallery.resize(1280, 800);
    gallery.show();
    ZrInput* depth = gallery.Input(ZrInput::kindShortLength);
    QCOMPARE(depth->displayText(), QStringLiteral("120.00"));
    const auto button
        = [&gallery](const char* name) { return gallery.findChild<ZrBtn*>(QString::fromLatin1(name)); };
    Click(button("imperial"));
    QCOMPARE(gallery.Input(ZrInput::kindShortLength), depth);
    QCOMPARE(depth->displayText(), QStringLiteral("393.70"));
    QCOMPARE(gallery.Input(ZrInput::kindTemperature)->displayText(), QStringLiteral("40.10"));
    QCOMPARE(gallery.Input(ZrInput::kindInt)->displayText(), QStringLiteral("42"));
    QVERIFY(button("imperial")->on && !button("metric")->on);
    Click(button("metric"));
    QCOMPARE(depth->displayText(), QStringLiteral("120.00"));
    QVERIFY(!button("imperial")->on && button("metric")->on);
}

void tst_WidgetGallery::unitsAndBackKeepTheValues()
{
    Gallery gallery;
    QStringList before;
    for (int kind = 0; kind < Gallery::kinds; ++kind)
        before << gallery.Input(kind)->displayText();
    for (int i = 0; i < 10; ++i) {
        gallery.SetImperial(true);
        gallery.SetScale(i % 4);
        gallery.SetImperial(false);
    }
    for (int kind = 0; kind < Gallery::kinds; ++kind)
        QCOMPARE(gallery.Input(kind)->displayText(), before[kind]);
}

void tst_WidgetGallery::scaleButtonsSwitch()
{
    Gallery gallery;
    gallery.resize(1280, 800);
    gallery.show();
    const float expected[] = {1280.0F / 1920.0F, 1280.0F / 1440.0F, 1.0F, 1.25F};
    for (int i = 0; i < 4; ++i) {
        const QList<ZrBtn*> buttons = gallery.findChildren<ZrBtn*>();
        const auto at
            = std::find_if(buttons.begin(), buttons.end(), [i](const ZrBtn* b) { return b->id == i; });
        QVERIFY(at != buttons.end());
        Click(*at);
        QCOMPARE(gallery.CurrentScale(), i);
        QCOMPARE(ZrTheme::dp, expected[i]);
    }
}

void tst_WidgetGallery::keysSwitch()
{
    Gallery gallery;
    gallery.resize(1280, 800);
    gallery.show();
    QApplication::setActiveWindow(&gallery);
    QVERIFY(QTest::qWaitForWindowActive(&gallery));
    for (int i = 0; i < 4; ++i) {
        QTest::keyClick(&gallery, Qt::Key(Qt::Key_1 + i), Qt::ControlModifier);
        QCOMPARE(gallery.CurrentScale(), i);
    }
    QTest::keyClick(&gallery, Qt::Key_I, Qt::ControlModifier);
    QCOMPARE(ZrUnits::GetShortLengthUnits(), QStringLiteral("ft"));
    QTest::keyClick(&gallery, Qt::Key_M, Qt::ControlModifier);
    QCOMPARE(ZrUnits::GetShortLengthUnits(), QStringLiteral("m"));
    QTest::keyClick(&gallery, Qt::Key_T, Qt::ControlModifier);
    QVERIFY(ZrTheme::tabletMode);
    QVERIFY(gallery.findChild<ZrBtn*>(QStringLiteral("tablet"))->on);
}

void tst_WidgetGallery::toolTipsTellTheKeys()
{
    Gallery gallery;
    QStringList keys;
    const QList<ZrBtn*> buttons = gallery.findChildren<ZrBtn*>();
    for (const ZrBtn* button : buttons) {
        const QString tip = button->toolTip();
        if (!tip.isEmpty())
            keys << tip.mid(tip.lastIndexOf(QLatin1Char('(')));
    }
    QCOMPARE(keys.join(QLatin1Char(' ')),
        QStringLiteral("(Ctrl+1) (Ctrl+2) (Ctrl+3) (Ctrl+4) (Ctrl+M) (Ctrl+I) (Ctrl+T)"));
}

void tst_WidgetGallery::newScaleKeepsWhatWasEntered()
{
    Gallery gallery;
    gallery.resize(1280, 800);
    gallery.show();
    gallery.Input(ZrInput::kindSpeed)->OnCommit(QStringLiteral("7.25"));
    gallery.Input(ZrInput::kindText)->OnCommit(QStringLiteral("Øst"));
    ZrCheck* check = gallery.findChild<ZrCheck*>();
    QVERIFY(check->get());
    Click(check);
    gallery.SetScale(3);
    QCOMPARE(gallery.Input(ZrInput::kindSpeed)->value, 7.25);
    QCOMPARE(gallery.Input(ZrInput::kindSpeed)->displayText(), QStringLiteral("7.25"));
    QCOMPARE(gallery.Input(ZrInput::kindText)->displayText(), QStringLiteral("Øst"));
    QVERIFY(!gallery.findChild<ZrCheck*>()->get());
}

void tst_WidgetGallery::tabletModeOpensKeyboards_data()
{
    QTest::addColumn<int>("kind");
    for (int kind = 0; kind < Gallery::kinds; ++kind)
        QTest::addRow("%d", kind) << kind;
}

void tst_WidgetGallery::tabletModeOpensKeyboards()
{
    QFETCH(int, kind);
    Gallery gallery;
    gallery.resize(1280, 800);
    gallery.show();
    Click(gallery.Input(kind));
    QVERIFY(!gallery.findChild<ZrInputDlg*>());
    gallery.SetTabletMode(true);
    Click(gallery.Input(kind));
    auto* keyboard = gallery.findChild<ZrInputDlg*>();
    QVERIFY(keyboard && keyboard->isVisible());
    QVERIFY(gallery.rect().contains(keyboard->geometry()));
    QCOMPARE(keyboard->text, gallery.Input(kind)->displayText());
    keyboard->OnKey(QLatin1Char('7'));
    keyboard->OnOk();
    QVERIFY(!keyboard->isVisible());
    QCOMPARE(gallery.Input(kind)->text, QStringLiteral("7"));
}

void tst_WidgetGallery::samplesAreInert()
{
    // The pointer reaches what may be tried, and goes through what only shows a state.
    Gallery gallery;
    gallery.resize(1280, 800);
    gallery.show();
    int inert = 0;
    int alive = 0;
    const QList<QWidget*> cells = CellsOf(*Content(gallery));
    for (QWidget* cell : cells) {
        const bool isReached = Content(gallery)->childAt(cell->geometry().center()) != nullptr;
        QCOMPARE(isReached, !cell->testAttribute(Qt::WA_TransparentForMouseEvents));
        ++(isReached ? alive : inert);
    }
    QVERIFY(inert > 40);
    QVERIFY(alive > 20);
}

void tst_WidgetGallery::workShowsProgress()
{
    Gallery gallery;
    gallery.resize(1280, 800);
    gallery.show();
    auto* progress = gallery.findChild<ZrProgress*>();
    QCOMPARE(progress->percent, 40);
    const QList<ZrBtn*> buttons = gallery.findChildren<ZrBtn*>();
    for (ZrBtn* button : buttons) {
        if (button->text == QLatin1String("Start work")) {
            // A second press while it runs does not make two of it.
            Click(button);
            Click(button);
        }
    }
    QVERIFY(progress->percent < 40);
    QTRY_COMPARE_WITH_TIMEOUT(progress->percent, 100, 20000);
    QTest::qWait(200);
    QCOMPARE(progress->percent, 100);
    QVERIFY(progress->isVisible());
}

void tst_WidgetGallery::workStopsWithTheWidgets()
{
    Gallery gallery;
    gallery.show();
    const QList<ZrBtn*> buttons = gallery.findChildren<ZrBtn*>();
    for (ZrBtn* button : buttons) {
        if (button->text == QLatin1String("Start work"))
            Click(button);
    }
    gallery.SetScale(0);
    QTest::qWait(200);
    QCOMPARE(gallery.findChild<ZrProgress*>()->percent, 40);
}

/// At every scale, as laid out.
void tst_WidgetGallery::targetsAreLargeEnough()
{
    Gallery gallery;
    gallery.resize(1280, 800);
    gallery.show();
    for (int scale = 0; scale < int(Gallery::Scales().size()); ++scale) {
        gallery.SetScale(scale);
        gallery.SetTabletMode(true);
        QCoreApplication::processEvents();
        int targets = 0;
        const auto check = [&targets](const QWidget& widget, int width, int height) {
            QVERIFY2(width >= 44 && height >= 44,
                qPrintable(QStringLiteral("%1: %2 × %3")
                               .arg(QString::fromLatin1(widget.metaObject()->className()))
                               .arg(width)
                               .arg(height)));
            ++targets;
        };
        for (const ZrBtn* button : gallery.findChildren<ZrBtn*>())
            check(*button, button->width(), button->height());
        for (const ZrCheck* box : gallery.findChildren<ZrCheck*>())
            check(*box, box->width(), box->height());
        for (const ZrSlider* slider : gallery.findChildren<ZrSlider*>())
            check(*slider, slider->width(), slider->height());
        for (const ZrRadio* radio : gallery.findChildren<ZrRadio*>())
            check(*radio, radio->width(), radio->itemHeight);
        QVERIFY(targets > 40);
    }
    gallery.SetTabletMode(false);
}

QTEST_MAIN(tst_WidgetGallery)
#include "tst_WidgetGallery.moc"
