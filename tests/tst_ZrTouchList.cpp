// A list for fingers.

#include "DrawnText.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrTheme.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QScroller>
#include <QSignalSpy>
#include <QtTest>

namespace {

QVector<ZrListItem> Items(int count, bool isTall = false)
{
    QVector<ZrListItem> items;
    for (int i = 0; i < count; ++i) {
        ZrListItem item;
        item.title = QStringLiteral("Zeile %1 港").arg(i);
        if (isTall)
            item.subtitle = QStringLiteral("more of it");
        item.detail = QStringLiteral("%1 m").arg(i);
        items.append(item);
    }
    return items;
}

QRect RowRect(const ZrTouchList& list, int row)
{
    return list.visualRect(list.model()->index(row, 0));
}

void Tap(ZrTouchList& list, int row)
{
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, RowRect(list, row).center());
}

/// A finger that goes from one point to another and is lifted.
void Stroke(ZrTouchList& list, const QPoint& from, const QPoint& to, int steps = 4)
{
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, from);
    for (int i = 1; i <= steps; ++i) {
        const QPointF at = QPointF(from) + QPointF(to - from) * i / steps;
        QMouseEvent move(QEvent::MouseMove, at, list.viewport()->mapToGlobal(at.toPoint()), Qt::NoButton,
            Qt::LeftButton, {});
        QTest::qWait(10); // a speed needs a time
        QCoreApplication::sendEvent(list.viewport(), &move);
    }
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, to);
}

} // namespace

class tst_ZrTouchList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void tapChooses();
    void tapUnderAnotherWindow();
    void tapNearTheEdgeOfARow();
    void dragScrolls();
    void tapStopsCoasting();
    void doubleTapChoosesOnce();
    void otherRowsUnderTheFinger();
    void otherMadeRowsUnderTheFinger();
    void hiddenUnderTheFinger();
    void heldChoosesNothing();
    void keysChoose();
    void shortcutsPass();
    void setCurrentTellsNobody();
    void itemsKeepTheCurrentRow();
    void rowsAreTallEnough();
    void contextMenuIsHeld();
    void wrongRows();
    void emptyText();
    void paintsWithoutRoom();
    void picturesOfRowsInView();
    void textIsNeverTiny();
    void linesInTheMiddle_data();
    void linesInTheMiddle();

    void moreLines_data() { linesInTheMiddle_data(); }

    void moreLines();
    void manyRows();
    void rowsAreMadeWhenSeen();
    void rowsInsteadOfItems();
    void accessibleText();
};

void tst_ZrTouchList::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
}

void tst_ZrTouchList::tapChooses()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    list.SetItems(Items(5));
    list.show();
    QSignalSpy chosen(&list, &ZrTouchList::Chosen);
    QSignalSpy changed(&list, &ZrTouchList::CurrentChanged);
    Tap(list, 3);
    QTRY_COMPARE(chosen.count(), 1);
    QCOMPARE(chosen[0][0].toInt(), 3);
    QCOMPARE(list.Current(), 3);
    QCOMPARE(changed.count(), 1);
}

/// Of another program, or one that lets taps through, such as a message or one that dims the screen. Rows
/// that do not fit are those that a finger might scroll.
void tst_ZrTouchList::tapUnderAnotherWindow()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    list.SetItems(Items(50));
    list.show();
    QWidget other;
    other.setGeometry(list.geometry());
    other.show();
    other.raise();
    QVERIFY(QTest::qWaitForWindowExposed(&other));
    QVERIFY(QApplication::widgetAt(list.viewport()->mapToGlobal(RowRect(list, 3).center())) == &other);
    QSignalSpy chosen(&list, &ZrTouchList::Chosen);
    Tap(list, 3);
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen[0][0].toInt(), 3);
    QCOMPARE(list.Current(), 3);
}

/// A finger rolls a little; one that goes to another row chooses none.
void tst_ZrTouchList::tapNearTheEdgeOfARow()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    list.SetItems(Items(50));
    list.show();
    QSignalSpy chosen(&list, &ZrTouchList::Chosen);
    const QPoint edge(100, RowRect(list, 2).bottom() - 1);
    Stroke(list, edge, edge + QPoint(1, 6));
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen[0][0].toInt(), 2);
    // None of these could be scrolled.
    list.SetItems(Items(4));
    Stroke(list, RowRect(list, 0).center(), RowRect(list, 2).center());
    Stroke(list, RowRect(list, 3).center(), QPoint(100, 400));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, QPoint(100, 400));
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(list.Current(), 2);
}

void tst_ZrTouchList::dragScrolls()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    list.SetItems(Items(200));
    list.show();
    list.SetCurrent(1);
    QSignalSpy chosen(&list, &ZrTouchList::Chosen);
    QSignalSpy changed(&list, &ZrTouchList::CurrentChanged);
    Stroke(list, QPoint(100, 400), QPoint(100, 100));
    QTRY_VERIFY(list.verticalScrollBar()->value() > 150);
    QCOMPARE(chosen.count(), 0);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(list.Current(), 1);
}

/// A finger on a list that coasts on stops it, and means no row.
void tst_ZrTouchList::tapStopsCoasting()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    list.SetItems(Items(2000));
    list.show();
    QSignalSpy chosen(&list, &ZrTouchList::Chosen);
    QScroller& scroller = *QScroller::scroller(list.viewport());
    for (int i = 0; i < 3; ++i)
        Stroke(list, QPoint(100, 450), QPoint(100, 50), 8);
    QTRY_VERIFY(scroller.state() == QScroller::Scrolling && scroller.velocity().y() != 0.0);
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, QPoint(100, 200));
    QVERIFY(scroller.state() != QScroller::Scrolling);
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, QPoint(100, 200));
    QCOMPARE(chosen.count(), 0);
    QTRY_COMPARE(scroller.state(), QScroller::Inactive);
    Tap(list, list.indexAt(QPoint(100, 250)).row());
    QCOMPARE(chosen.count(), 1);
}

/// What the first tap has opened may lie under the second.
void tst_ZrTouchList::doubleTapChoosesOnce()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    list.SetItems(Items(50));
    list.show();
    QSignalSpy chosen(&list, &ZrTouchList::Chosen);
    const QPoint at = RowRect(list, 2).center();
    Tap(list, 2);
    list.SetItems(Items(20));
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, at);
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(chosen.count(), 1);
}

/// Rows are replaced while a finger is down: it has meant what was there, where that is still there.
void tst_ZrTouchList::otherRowsUnderTheFinger()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    list.SetItems(Items(5));
    list.show();
    QSignalSpy chosen(&list, &ZrTouchList::Chosen);
    const QPoint at = RowRect(list, 1).center();
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, at);
    QVector<ZrListItem> items = Items(5);
    items[1].detail = QStringLiteral("17 m");
    list.SetItems(items);
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen[0][0].toInt(), 1);
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, at);
    items.prepend(Items(7).last());
    list.SetItems(items);
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, at);
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, at);
    list.SetItems({});
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(chosen.count(), 1);
}

/// Rows that are made when they are seen tell what is there now, not what the finger came down on.
void tst_ZrTouchList::otherMadeRowsUnderTheFinger()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    QVector<ZrListItem> rows = Items(5);
    const auto make = [&rows](int row) { return rows.value(row); };
    list.SetRows(5, make);
    list.show();
    QSignalSpy chosen(&list, &ZrTouchList::Chosen);
    const QPoint at = RowRect(list, 1).center();
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, at);
    rows[1].detail = QStringLiteral("17 m");
    list.SetRows(5, make);
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(chosen.count(), 1);
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, at);
    rows.prepend(Items(7).last());
    list.SetRows(6, make);
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(chosen.count(), 1);
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, at);
    rows[1].data = QStringLiteral("another");
    list.SetRows(6, make);
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(chosen.count(), 1);
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, at);
    list.SetRows(1, make);
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(chosen.count(), 1);
}

void tst_ZrTouchList::hiddenUnderTheFinger()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    list.SetItems(Items(50));
    list.show();
    QSignalSpy chosen(&list, &ZrTouchList::Chosen);
    const QPoint at = RowRect(list, 1).center();
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, at);
    list.hide();
    list.show();
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(chosen.count(), 0);
    QCOMPARE(QScroller::scroller(list.viewport())->state(), QScroller::Inactive);
    Tap(list, 1);
    QCOMPARE(chosen.count(), 1);
}

void tst_ZrTouchList::heldChoosesNothing()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    list.SetItems(Items(50));
    list.show();
    QSignalSpy chosen(&list, &ZrTouchList::Chosen);
    QSignalSpy held(&list, &ZrTouchList::Held);
    const QPoint at = RowRect(list, 1).center();
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, at);
    QTRY_COMPARE(held.count(), 1);
    QCOMPARE(held[0][0].toInt(), 1);
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(chosen.count(), 0);
    Tap(list, 1);
    QCOMPARE(chosen.count(), 1);
}

void tst_ZrTouchList::keysChoose()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    list.SetItems(Items(5));
    list.show();
    QSignalSpy chosen(&list, &ZrTouchList::Chosen);
    QTest::keyClick(&list, Qt::Key_Return);
    QCOMPARE(chosen.count(), 0);
    list.SetCurrent(1);
    QTest::keyClick(&list, Qt::Key_Down);
    QCOMPARE(list.Current(), 2);
    QTest::keyClick(&list, Qt::Key_Return);
    QTest::keyClick(&list, Qt::Key_Enter);
    QCOMPARE(chosen.count(), 2);
    QCOMPARE(chosen[1][0].toInt(), 2);
}

/// Those of the page around the list, also while it has the focus.
void tst_ZrTouchList::shortcutsPass()
{
    class Page : public QWidget
    {
    public:
        QVector<int> keys;

    protected:
        void keyPressEvent(QKeyEvent* event) override { keys.append(event->key()); }
    };

    Page page;
    auto* list = new ZrTouchList(&page);
    ZrListItem item;
    for (const char* title : {"Alpha", "Pier", "Echo"}) {
        item.title = QString::fromLatin1(title);
        list->SetItems(list->Items() + QVector<ZrListItem>{item});
    }
    list->SetCurrent(0);
    QTest::keyClick(list, Qt::Key_P);
    QTest::keyClick(list, Qt::Key_Space);
    QTest::keyClick(list, Qt::Key_Up, Qt::ControlModifier);
    QTest::keyClick(list, Qt::Key_Delete);
    page.keys.removeAll(Qt::Key_Control); // pressed for the third
    QCOMPARE(page.keys, (QVector<int>{Qt::Key_P, Qt::Key_Space, Qt::Key_Up, Qt::Key_Delete}));
    QCOMPARE(list->Current(), 0);
    QTest::keyClick(list, Qt::Key_Down);
    QCOMPARE(list->Current(), 1);
}

void tst_ZrTouchList::setCurrentTellsNobody()
{
    ZrTouchList list(nullptr);
    list.SetItems(Items(5));
    QSignalSpy changed(&list, &ZrTouchList::CurrentChanged);
    list.SetCurrent(2);
    QCOMPARE(list.Current(), 2);
    list.SetCurrent(-1);
    QCOMPARE(list.Current(), -1);
    QCOMPARE(changed.count(), 0);
}

void tst_ZrTouchList::itemsKeepTheCurrentRow()
{
    ZrTouchList list(nullptr);
    list.resize(400, 200);
    list.SetItems(Items(50));
    list.show();
    list.SetCurrent(20);
    list.verticalScrollBar()->setValue(700);
    const int position = list.verticalScrollBar()->value();
    list.SetItems(Items(50));
    QCOMPARE(list.Current(), 20);
    QCOMPARE(list.verticalScrollBar()->value(), position);
    list.SetItems(Items(10));
    QCOMPARE(list.Current(), 9);
    list.SetItems({});
    QCOMPARE(list.Current(), -1);
}

void tst_ZrTouchList::rowsAreTallEnough()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    list.SetItems(Items(2));
    list.show();
    QCOMPARE(RowRect(list, 0).height(), 56);
    list.SetItems(Items(2, true));
    QTRY_COMPARE(RowRect(list, 0).height(), int(ZrTouchList::RowHeight));
    // A finger does not shrink with the scale.
    ZrTheme::dp = 0.3F;
    ZrTheme::SetStdStyle();
    list.SetItems(Items(2));
    list.Restyle();
    QTRY_COMPARE(RowRect(list, 0).height(), 44);
}

void tst_ZrTouchList::contextMenuIsHeld()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    list.SetItems(Items(5));
    list.show();
    QSignalSpy held(&list, &ZrTouchList::Held);
    const QPoint at = RowRect(list, 1).center();
    QContextMenuEvent mouse(QContextMenuEvent::Mouse, at, list.mapToGlobal(at));
    QCoreApplication::sendEvent(list.viewport(), &mouse);
    QCOMPARE(held.count(), 1);
    QCOMPARE(held[0][0].toInt(), 1);
    list.SetCurrent(4);
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QCoreApplication::sendEvent(list.viewport(), &key);
    QCOMPARE(held.count(), 2);
    QCOMPARE(held[1][0].toInt(), 4);
}

void tst_ZrTouchList::wrongRows()
{
    ZrTouchList list(nullptr);
    list.SetItems(Items(3));
    list.SetItem(-1, {});
    list.SetItem(3, {});
    QCOMPARE(list.Items().size(), 3);
    list.SetCurrent(99);
    QCOMPARE(list.Current(), -1);
    ZrListItem item;
    item.title = QStringLiteral("other");
    list.SetItem(1, item);
    QCOMPARE(list.Items()[1].title, QStringLiteral("other"));
}

void tst_ZrTouchList::emptyText()
{
    ZrTouchList list(nullptr);
    list.resize(300, 200);
    const QImage without = list.grab().toImage();
    list.m_empty = QStringLiteral("Nothing here");
    QVERIFY(list.grab().toImage() != without);
}

void tst_ZrTouchList::paintsWithoutRoom()
{
    ZrTouchList list(nullptr);
    QVector<ZrListItem> items = Items(3, true);
    items[0].image = QImage(1, 1000, QImage::Format_ARGB32);
    items[1].image = QImage(1000, 1, QImage::Format_ARGB32);
    items[1].isPicture = true;
    items[2].edge = Qt::red;
    items[2].title = QString(10000, QLatin1Char('x'));
    list.SetItems(items);
    list.SetCurrent(2);
    for (const QSize& size : {QSize(1, 1), QSize(20, 300), QSize(600, 300)}) {
        list.resize(size);
        QCOMPARE(list.grab().toImage().size(), list.size());
    }
}

/// Of a long list those in view are made, and not again while they are shown as they are.
void tst_ZrTouchList::picturesOfRowsInView()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    QVector<ZrListItem> items = Items(1000);
    for (ZrListItem& item : items)
        item.isPicture = true;
    items[1].image = QImage(30, 20, QImage::Format_ARGB32);
    items[1].image.fill(Qt::green);
    QSet<int> made;
    list.m_picture = [&made](int row) {
        made.insert(row);
        QImage image(30, 20, QImage::Format_ARGB32);
        image.fill(Qt::magenta);
        return image;
    };
    list.SetItems(items);
    QVERIFY(made.isEmpty());
    list.show();
    const QImage shown = list.grab().toImage();
    QVERIFY(HasColour(shown, Qt::magenta));
    QVERIFY(HasColour(shown, Qt::green)); // its own
    QVERIFY(made.contains(0) && !made.contains(1) && made.size() < 20);
    list.scrollToBottom();
    list.grab();
    QVERIFY(made.contains(999) && !made.contains(500));
}

/// At the smallest scale too, capitals of the second line are those of a text of 14 pixels.
void tst_ZrTouchList::textIsNeverTiny()
{
    const ZrThemeState theme(0.5);
    ZrTouchList list(nullptr);
    list.resize(400, 200);
    ZrListItem item;
    item.subtitle = QStringLiteral("HHH");
    list.SetItems({item});
    const QImage shown = list.grab().toImage();
    int inked = 0;
    for (int y = 0; y < 40; ++y) {
        for (int x = 8; x < 60; ++x) {
            if (shown.pixelColor(x, y) != shown.pixelColor(200, y)) {
                ++inked;
                break;
            }
        }
    }
    QFont font = ZrTheme::font;
    font.setPixelSize(14);
    QVERIFY2(inked >= QFontMetrics(font).capHeight() - 1, qPrintable(QString::number(inked)));
}

void tst_ZrTouchList::linesInTheMiddle_data()
{
    QTest::addColumn<double>("scale");
    for (const double scale : {0.5, 1.0, 1.5, 2.0})
        QTest::newRow(qPrintable(QString::number(scale))) << scale;
}

/// Both lines as one, from the top of the capitals to the line that the lower letters stand on.
void tst_ZrTouchList::linesInTheMiddle()
{
    QFETCH(double, scale);
    const ZrThemeState theme(scale);
    ZrTouchList list(nullptr);
    list.resize(600, 500);
    ZrListItem item;
    item.title = QStringLiteral("HHH");
    item.subtitle = QStringLiteral("HH");
    list.SetItems({item, item});
    for (const int row : {0, 1}) {
        const QRect at = RowRect(list, row);
        QVector<QRectF> inks;
        for (const DrawnText& drawn : TextDevice::Of(*list.viewport())) {
            if (QRectF(at).contains(drawn.ink.center()))
                inks.append(drawn.ink);
        }
        QCOMPARE(inks.size(), 2);
        QVERIFY(inks[0].bottom() < inks[1].top());
        QVERIFY(inks[0].top() >= at.top() && inks[1].bottom() <= at.bottom());
        const double off = (inks[0].top() + inks[1].bottom()) / 2.0 - QRectF(at).center().y();
        QVERIFY2(std::fabs(off) <= 1.5 * std::max(scale, 1.0), qPrintable(QString::number(off)));
    }
}

/// A row with three of them is as tall as they need, and none is cut off; a screen reader has all.
void tst_ZrTouchList::moreLines()
{
    QFETCH(double, scale);
    const ZrThemeState theme(scale);
    ZrTouchList list(nullptr);
    list.resize(600, 500);
    ZrListItem item;
    item.title = QStringLiteral("HHH");
    item.subtitle = QStringLiteral("HH\nH");
    ZrListItem less = item;
    less.subtitle = QStringLiteral("HH");
    list.SetItems({item, less, item});
    QVERIFY(RowRect(list, 0).height() >= RowRect(list, 1).height());
    for (const int row : {0, 2}) {
        const QRect at = RowRect(list, row);
        QVector<DrawnText> lines;
        for (const DrawnText& drawn : TextDevice::Of(*list.viewport())) {
            if (QRectF(at).contains(drawn.ink.center()))
                lines.append(drawn);
        }
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[2].text, QStringLiteral("H"));
        for (int i = 1; i < 3; ++i)
            QVERIFY(lines[i - 1].ink.bottom() < lines[i].ink.top());
        QVERIFY(lines[0].ink.top() >= at.top() + 3 && lines[2].ink.bottom() <= at.bottom() - 3);
        QCOMPARE(lines[1].pixels, lines[2].pixels);
    }
    QCOMPARE(list.model()->index(0, 0).data(Qt::AccessibleTextRole).toString(), QStringLiteral("HHH, HH, H"));
}

void tst_ZrTouchList::manyRows()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    list.SetItems(Items(100000));
    list.show();
    list.SetCurrent(99999);
    QVERIFY(list.viewport()->rect().intersects(RowRect(list, 99999)));
}

/// A row is made for its painting and no other: also where the list shows its end, and where it is replaced.
void tst_ZrTouchList::rowsAreMadeWhenSeen()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    int made = 0;
    const auto make = [&made](int row) {
        ++made;
        ZrListItem item;
        item.title = QStringLiteral("Row %1").arg(row);
        return item;
    };
    list.SetRows(100000, make);
    list.show();
    list.SetCurrent(99999);
    QVERIFY(list.viewport()->rect().intersects(RowRect(list, 99999)));
    Painted(list);
    QVERIFY2(made > 5 && made < 100, qPrintable(QString::number(made)));
    made = 0;
    list.SetRows(99999, make);
    QCOMPARE(list.Current(), 99998);
    Painted(list);
    QVERIFY2(made < 100, qPrintable(QString::number(made)));
    QCOMPARE(list.Count(), 99999);
    QCOMPARE(list.Item(4711).title, QStringLiteral("Row 4711"));
    QCOMPARE(list.Item(99999).title, QString());
    QCOMPARE(list.Item(-1).title, QString());
    QCOMPARE(list.model()->index(7, 0).data(Qt::AccessibleTextRole).toString(), QStringLiteral("Row 7"));
    list.SetRows(-1, make);
    QCOMPARE(list.Count(), 0);
    QCOMPARE(list.Current(), -1);
}

void tst_ZrTouchList::rowsInsteadOfItems()
{
    ZrTouchList list(nullptr);
    list.resize(400, 500);
    list.SetItems(Items(3, true));
    const int tall = RowRect(list, 0).height();
    list.SetRows(2, [](int) { return ZrListItem(); });
    QVERIFY(list.Items().isEmpty());
    QCOMPARE(list.Count(), 2);
    QVERIFY(RowRect(list, 0).height() < tall);
    // Those that are made are nobody's to set.
    list.SetItem(0, Items(1).front());
    QCOMPARE(list.Item(0).title, QString());
    list.SetItems(Items(3, true));
    QCOMPARE(list.Count(), 3);
    QCOMPARE(list.Item(2).title, list.Items()[2].title);
    QCOMPARE(RowRect(list, 0).height(), tall);
}

void tst_ZrTouchList::accessibleText()
{
    ZrTouchList list(nullptr);
    list.SetItems(Items(2, true));
    QCOMPARE(list.model()->index(1, 0).data(Qt::AccessibleTextRole).toString(),
        QStringLiteral("Zeile 1 港, more of it, 1 m"));
}

QTEST_MAIN(tst_ZrTouchList)
#include "tst_ZrTouchList.moc"
