#include "TouchOn.h"
#include "ZrInputChecks.h"

#include <QImage>
#include <QPainter>

#include <cmath>
#include <limits>
#include <map>
#include <memory>
#include <unordered_map>

using input::KeyAt;
using input::Press;
using input::Type;
using input::U;

namespace {

struct Layout
{
    const char* name;
    int kind;
};

const Layout layouts[]
    = {{"int", 0}, {"float", 1}, {"unit", 7}, {"lat", 4}, {"lng", 5}, {"text", 3}, {"std", 13}};

double Luminance(const QColor& c)
{
    const auto part = [](double v) { return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
    return 0.2126 * part(c.redF()) + 0.7152 * part(c.greenF()) + 0.0722 * part(c.blueF());
}

double Contrast(QRgb a, QRgb b)
{
    const double la = Luminance(QColor(a)) + 0.05;
    const double lb = Luminance(QColor(b)) + 0.05;
    return std::max(la, lb) / std::min(la, lb);
}

/// What \p part of \p image is painted with.
struct Ink
{
    QRgb ground = 0; ///< the commonest colour
    double contrast = 1.0; ///< the highest one of any other colour against it
};

Ink InkOf(const QImage& image, const QRect& part)
{
    std::unordered_map<QRgb, int> counts;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x)
            ++counts[image.pixel(x, y)];
    }
    Ink ink;
    int most = 0;
    for (const auto& [colour, count] : counts) {
        if (count > most) {
            most = count;
            ink.ground = colour;
        }
    }
    for (const auto& [colour, count] : counts)
        ink.contrast = std::max(ink.contrast, Contrast(ink.ground, colour));
    return ink;
}

} // namespace

/// The layouts of the keyboard on the screen, fingers on them, and how it is painted.
class tst_ZrInputDlgKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    // Layouts
    void laysKeysOnAGrid_data();
    void laysKeysOnAGrid();
    void keepsKeysLargeEnough_data();
    void keepsKeysLargeEnough();
    void survivesAbsurdScales_data();
    void survivesAbsurdScales();
    void offersAllOfAscii();
    void closesHemispheresThatDoNotFit();
    void offersTheExponentToPlainNumbers();
    void namesThePictures();

    // Fingers and mouse
    void entersWithTwoFingers();
    void entersWithManyFingers();
    void ignoresSynthesizedMouse();
    void closesAtTheRelease();
    void dropsCancelledTouches();
    void repeatsDelete();
    void stopsRepeating_data();
    void stopsRepeating();
    void repeatsUnderAFinger();
    void leavesNoGapsBetweenKeys();
    void takesPressesBetweenKeys();
    void rebuildsUnderAFinger();

    // Painting
    void paintsReadableKeys_data();
    void paintsReadableKeys();
    void paintsReadableStrips_data();
    void paintsReadableStrips();
    void showsStatesOnKeys();
    void hoveredKeysHaveWiderEdges();
    void paintsPicturesSmoothly();
    void showsTheRefusal();
    void showsTheCursor();
    void slidesLongTexts();
    void paintsOddTexts_data();
    void paintsOddTexts();

private:
    ZrInput* Make(int kind);
    ZrInputDlg* Open(int kind);
    QTest::QTouchEventSequence Touch();
    QPoint There(const ZrInputDlg& dlg, const QPoint& p) const;

    std::unique_ptr<ZrTabletState> m_state;
    std::unique_ptr<QWidget> m_top;
    QTouchDevice* m_device = nullptr;
};

void tst_ZrInputDlgKeys::init()
{
    if (!m_device)
        m_device = QTest::createTouchDevice();
    m_state = std::make_unique<ZrTabletState>();
    m_top = std::make_unique<QWidget>();
    m_top->resize(1280, 1000);
    m_top->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_top.get()));
    m_top->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_top.get()));
}

void tst_ZrInputDlgKeys::cleanup()
{
    m_top.reset();
    m_state.reset();
}

ZrInput* tst_ZrInputDlgKeys::Make(int kind)
{
    auto* in = new ZrInput(m_top.get());
    in->kind = kind;
    in->caption = QStringLiteral("Caption");
    if (kind == ZrInput::kindText)
        in->SetText(QStringLiteral("text"));
    else
        in->SetValue(5.0);
    in->show();
    return in;
}

ZrInputDlg* tst_ZrInputDlgKeys::Open(int kind)
{
    ZrInputDlg::s_keepInside = true;
    return Press(*Make(kind));
}

/// Points of a touch are in the window: the keyboard gets what falls on it.
QTest::QTouchEventSequence tst_ZrInputDlgKeys::Touch()
{
    return TouchOn(m_top.get(), m_device, false);
}

QPoint tst_ZrInputDlgKeys::There(const ZrInputDlg& dlg, const QPoint& p) const
{
    return dlg.mapTo(m_top.get(), p);
}

void tst_ZrInputDlgKeys::laysKeysOnAGrid_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<float>("dp");
    QTest::addColumn<bool>("symbols");
    for (const Layout& layout : layouts) {
        for (float dp : {0.3F, 0.625F, 0.75F, 1.0F, 1.1F, 1.35F, 1.5F, 2.0F, 3.0F}) {
            QTest::addRow("%s %g", layout.name, static_cast<double>(dp)) << layout.kind << dp << false;
            if (layout.kind == ZrInput::kindText)
                QTest::addRow("symbols %g", static_cast<double>(dp)) << layout.kind << dp << true;
        }
    }
}

void tst_ZrInputDlgKeys::laysKeysOnAGrid()
{
    QFETCH(int, kind);
    QFETCH(float, dp);
    QFETCH(bool, symbols);
    ZrTheme::dp = dp;
    ZrTheme::SetStdStyle();
    ZrInputDlg* dlg = Press(*Make(kind));
    QVERIFY(dlg);
    if (symbols)
        input::Click(*dlg, zriSymbols);
    const auto& items = dlg->Items();
    const QRect all(0, 0, dlg->dlgWidth, dlg->dlgHeight);
    QVERIFY(!items.empty());
    const int pitch = dlg->Bx(1) - dlg->Bx(0);
    QCOMPARE(dlg->By(1) - dlg->By(0), pitch);
    QRect bounds;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const QRect r = items[i].rect;
        bounds |= r;
        QVERIFY(all.contains(r, true));
        // Every key begins and ends with a column and a row.
        QCOMPARE((r.left() - dlg->Bx(0)) % pitch, 0);
        QCOMPARE((r.top() - dlg->By(0)) % pitch, 0);
        QCOMPARE(dlg->Bx((r.left() - dlg->Bx(0)) / pitch), r.left());
        QCOMPARE(dlg->By((r.top() - dlg->By(0)) / pitch), r.top());
        QCOMPARE(r.height(), items[0].rect.height());
        QCOMPARE((r.width() - r.height()) % pitch, 0);
        for (std::size_t j = 0; j < i; ++j) {
            QVERIFY(!r.intersects(items[j].rect));
            QVERIFY2(items[i].action != zriKey || items[j].action != zriKey || items[i].ch != items[j].ch,
                qPrintable(QString(items[i].ch)));
        }
    }
    // No holes: keys and gaps fill the rectangle around them; the margin is the same on three sides.
    int columns = 0;
    for (const ZrInputItem& item : items)
        columns += (item.rect.width() + pitch - item.rect.height()) / pitch;
    QCOMPARE(columns,
        ((bounds.width() + pitch - items[0].rect.height()) / pitch)
            * ((bounds.height() + pitch - items[0].rect.height()) / pitch));
    QCOMPARE(bounds.left(), dlg->Bx(0));
    QCOMPARE(dlg->dlgWidth - 1 - bounds.right(), bounds.left());
    QCOMPARE(dlg->dlgHeight - 1 - bounds.bottom(), bounds.left());
}

void tst_ZrInputDlgKeys::keepsKeysLargeEnough_data()
{
    QTest::addColumn<float>("dp");
    for (float dp : {0.1F, 0.5F, 0.61F, 0.625F, 0.8F, 1.0F, 1.5F, 2.0F})
        QTest::addRow("%g", static_cast<double>(dp)) << dp;
}

/// 60 design pixels, and never less than a finger needs.
void tst_ZrInputDlgKeys::keepsKeysLargeEnough()
{
    QFETCH(float, dp);
    ZrTheme::dp = dp;
    ZrTheme::SetStdStyle();
    for (const Layout& layout : layouts) {
        ZrInputDlg* dlg = Press(*Make(layout.kind));
        for (const ZrInputItem& item : dlg->Items()) {
            QVERIFY2(item.rect.width() >= 44 && item.rect.height() >= 44, layout.name);
            QVERIFY2(static_cast<float>(item.rect.width()) >= 60.0F * dp, layout.name);
            QVERIFY2(static_cast<float>(item.rect.height()) >= 60.0F * dp, layout.name);
        }
    }
}

void tst_ZrInputDlgKeys::survivesAbsurdScales_data()
{
    QTest::addColumn<float>("dp");
    QTest::newRow("zero") << 0.0F;
    QTest::newRow("negative") << -3.0F;
    QTest::newRow("infinite") << std::numeric_limits<float>::infinity();
    QTest::newRow("not a number") << std::numeric_limits<float>::quiet_NaN();
    QTest::newRow("huge") << 1e30F;
}

void tst_ZrInputDlgKeys::survivesAbsurdScales()
{
    QFETCH(float, dp);
    ZrTheme::dp = dp;
    ZrInputDlg dlg;
    dlg.BuildQwerty();
    QVERIFY(dlg.dlgWidth >= 44 * 12 && dlg.dlgWidth < 1000000);
    QVERIFY(dlg.dlgHeight >= 44 * 5 && dlg.dlgHeight < 1000000);
    dlg.FitInto(QSize(400, 300));
    QVERIFY(dlg.dlgWidth <= 400 || dp > 1e6F);
    dlg.resize(400, 300);
    dlg.text = QStringLiteral("5");
    QVERIFY(!dlg.grab().isNull());
}

void tst_ZrInputDlgKeys::offersAllOfAscii()
{
    ZrInputDlg* dlg = Open(ZrInput::kindText);
    QString offered;
    const auto add = [&] {
        for (const ZrInputItem& item : dlg->Items()) {
            if (item.action == zriKey)
                offered
                    += dlg->Label(item) == QStringLiteral("space") ? QStringLiteral(" ") : dlg->Label(item);
        }
    };
    add();
    input::Click(*dlg, zriCaps);
    add();
    input::Click(*dlg, zriSymbols);
    add();
    for (char c = ' '; c < 127; ++c)
        QVERIFY2(offered.contains(QLatin1Char(c)), qPrintable(QString(QLatin1Char(c))));
}

void tst_ZrInputDlgKeys::closesHemispheresThatDoNotFit()
{
    const auto open = [&](int kind) {
        QString usable;
        ZrInputDlg* dlg = Open(kind);
        for (const ZrInputItem& item : dlg->Items()) {
            if (item.action == zriKey && QStringLiteral("NSEW").contains(item.ch) && item.enabled)
                usable += item.ch;
        }
        return usable;
    };
    QCOMPARE(open(ZrInput::kindLat), QStringLiteral("NS"));
    QCOMPARE(open(ZrInput::kindLng), QStringLiteral("EW"));
    ZrInputDlg* dlg = Open(ZrInput::kindLat);
    const QString before = dlg->text;
    Type(*dlg, QStringLiteral("E"));
    QCOMPARE(dlg->text, before);
    Type(*dlg, QStringLiteral("N"));
    QCOMPARE(dlg->text, QStringLiteral("N"));
    // By itself the layout offers all four.
    ZrInputDlg own;
    own.BuildGeo();
    for (const QChar c : QStringLiteral("NSEW")) {
        Type(own, QString(c));
        QVERIFY(own.text.endsWith(c));
    }
}

void tst_ZrInputDlgKeys::offersTheExponentToPlainNumbers()
{
    for (int kind = 0; kind <= 12; ++kind) {
        if (kind == ZrInput::kindText)
            continue;
        const bool isPlain = kind == ZrInput::kindDouble || kind == ZrInput::kindFloat;
        QCOMPARE(!KeyAt(*Open(kind), zriKey, QLatin1Char('e')).isNull(), isPlain);
    }
    ZrInputDlg own;
    own.BuildFloat();
    QVERIFY(!KeyAt(own, zriKey, QLatin1Char('e')).isNull());
}

void tst_ZrInputDlgKeys::namesThePictures()
{
    const std::map<eZriAction, QString> names
        = {{zriLeft, QStringLiteral(":/input_left.png")}, {zriRight, QStringLiteral(":/input_right.png")},
            {zriStart, QStringLiteral(":/input_start.png")}, {zriEnd, QStringLiteral(":/input_end.png")},
            {zriNegate, QStringLiteral(":/input_neg.png")}, {zriDelete, QStringLiteral(":/input_del.png")}};
    for (const Layout& layout : layouts) {
        for (const ZrInputItem& item : Open(layout.kind)->Items()) {
            const auto found = names.find(item.action);
            QCOMPARE(item.img, found == names.end() ? QString() : found->second);
        }
    }
}

/// Fast typing: the second finger is down before the first one is up.
void tst_ZrInputDlgKeys::entersWithTwoFingers()
{
    ZrInputDlg* dlg = Open(ZrInput::kindInt);
    const QPoint one = There(*dlg, KeyAt(*dlg, zriKey, QLatin1Char('1')));
    const QPoint two = There(*dlg, KeyAt(*dlg, zriKey, QLatin1Char('2')));
    auto touch = Touch();
    touch.press(0, one, m_top.get()).commit();
    QCOMPARE(dlg->text, QStringLiteral("1"));
    touch.stationary(0).press(1, two, m_top.get()).commit();
    QCOMPARE(dlg->text, QStringLiteral("12"));
    touch.release(0, one, m_top.get()).stationary(1).commit();
    touch.press(0, one, m_top.get()).stationary(1).commit();
    QCOMPARE(dlg->text, QStringLiteral("121"));
    touch.release(0, one, m_top.get()).release(1, two, m_top.get()).commit();
    QCOMPARE(dlg->text, QStringLiteral("121"));
    // OK by touch while the other hand rests on a key.
    auto next = Touch();
    const QPoint ok = There(*dlg, KeyAt(*dlg, zriOk));
    next.press(0, two, m_top.get()).commit();
    next.stationary(0).press(1, ok, m_top.get()).commit();
    QVERIFY(dlg->isVisible());
    next.stationary(0).release(1, ok, m_top.get()).commit();
    QVERIFY(!dlg->isVisible());
    next.release(0, two, m_top.get()).commit();
    QCOMPARE(dlg->text, QStringLiteral("1212"));
}

void tst_ZrInputDlgKeys::entersWithManyFingers()
{
    ZrInputDlg* dlg = Open(ZrInput::kindText);
    const QString word = QStringLiteral("sonar");
    auto touch = Touch();
    for (int i = 0; i < word.size(); ++i)
        touch.press(i, There(*dlg, KeyAt(*dlg, zriKey, word[i])), m_top.get());
    touch.commit();
    QCOMPARE(dlg->text.size(), word.size());
    QString sorted = dlg->text;
    std::sort(sorted.begin(), sorted.end());
    QCOMPARE(sorted, QStringLiteral("anors"));
    for (int i = 0; i < word.size(); ++i)
        touch.release(i, There(*dlg, KeyAt(*dlg, zriKey, word[i])), m_top.get());
    touch.commit();
    QCOMPARE(dlg->text.size(), word.size());
}

void tst_ZrInputDlgKeys::ignoresSynthesizedMouse()
{
    ZrInputDlg* dlg = Open(ZrInput::kindInt);
    const auto send = [dlg](QEvent::Type type, const QPoint& p, Qt::MouseEventSource source) {
        QMouseEvent event(
            type, p, p, dlg->mapToGlobal(p), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier, source);
        QApplication::sendEvent(dlg, &event);
    };
    const QPoint one = KeyAt(*dlg, zriKey, QLatin1Char('1'));
    const QPoint cancel = KeyAt(*dlg, zriCancel);
    send(QEvent::MouseButtonPress, one, Qt::MouseEventSynthesizedBySystem);
    send(QEvent::MouseButtonRelease, one, Qt::MouseEventSynthesizedBySystem);
    QCOMPARE(dlg->text, QStringLiteral("5"));
    send(QEvent::MouseButtonPress, cancel, Qt::MouseEventSynthesizedBySystem);
    send(QEvent::MouseButtonRelease, cancel, Qt::MouseEventSynthesizedBySystem);
    QVERIFY(dlg->isVisible());
    // A tablet's pen comes as a mouse that Qt makes.
    send(QEvent::MouseButtonPress, one, Qt::MouseEventSynthesizedByQt);
    QCOMPARE(dlg->text, QStringLiteral("1"));
}

void tst_ZrInputDlgKeys::closesAtTheRelease()
{
    ZrInputDlg* dlg = Open(ZrInput::kindInt);
    const QPoint ok = There(*dlg, KeyAt(*dlg, zriOk));
    const QPoint aside = There(*dlg, KeyAt(*dlg, zriKey, QLatin1Char('5')));
    auto slid = Touch();
    slid.press(0, ok, m_top.get()).commit();
    slid.move(0, aside, m_top.get()).commit();
    slid.release(0, aside, m_top.get()).commit();
    QVERIFY(dlg->isVisible());
    QCOMPARE(dlg->text, QStringLiteral("5"));
    auto back = Touch();
    back.press(0, ok, m_top.get()).commit();
    back.move(0, aside, m_top.get()).commit();
    back.move(0, ok, m_top.get()).commit();
    back.release(0, ok, m_top.get()).commit();
    QVERIFY(!dlg->isVisible());
}

void tst_ZrInputDlgKeys::dropsCancelledTouches()
{
    ZrInputDlg* dlg = Open(ZrInput::kindInt);
    const QPoint cancel = There(*dlg, KeyAt(*dlg, zriCancel));
    auto touch = Touch();
    touch.press(0, cancel, m_top.get()).commit();
    QTouchEvent lost(QEvent::TouchCancel, m_device);
    QApplication::sendEvent(dlg, &lost);
    touch.release(0, cancel, m_top.get()).commit();
    QVERIFY(dlg->isVisible());
}

void tst_ZrInputDlgKeys::repeatsDelete()
{
    auto* in = Make(ZrInput::kindText);
    in->SetText(QString(12, QLatin1Char('x')));
    ZrInputDlg* dlg = Press(*in);
    const QPoint del = KeyAt(*dlg, zriDelete);
    input::Mouse(*dlg, QEvent::MouseButtonPress, del);
    QCOMPARE(dlg->text.size(), 11);
    QTRY_VERIFY_WITH_TIMEOUT(dlg->text.isEmpty(), 10000);
    input::Mouse(*dlg, QEvent::MouseButtonRelease, del);
    QCOMPARE(dlg->cursor, 0);
    // The cursor runs likewise, letters do not.
    dlg->OnCancel();
    dlg = Press(*in);
    const QPoint left = KeyAt(*dlg, zriLeft);
    input::Mouse(*dlg, QEvent::MouseButtonPress, left);
    QTRY_COMPARE_WITH_TIMEOUT(dlg->cursor, 0, 10000);
    input::Mouse(*dlg, QEvent::MouseButtonRelease, left);
    const QPoint letter = KeyAt(*dlg, zriKey, QLatin1Char('q'));
    input::Mouse(*dlg, QEvent::MouseButtonPress, letter);
    QTest::qWait(700);
    input::Mouse(*dlg, QEvent::MouseButtonRelease, letter);
    QCOMPARE(dlg->text, QStringLiteral("q") + QString(12, QLatin1Char('x')));
}

void tst_ZrInputDlgKeys::stopsRepeating_data()
{
    QTest::addColumn<QString>("how");
    for (const char* how : {"release", "slide off", "hide", "focus", "another key"})
        QTest::newRow(how) << U(how);
}

void tst_ZrInputDlgKeys::stopsRepeating()
{
    QFETCH(QString, how);
    auto* in = Make(ZrInput::kindText);
    in->SetText(QString(300, QLatin1Char('x')));
    ZrInputDlg::s_keepInside = true;
    ZrInputDlg* dlg = Press(*in);
    const QPoint del = KeyAt(*dlg, zriDelete);
    input::Mouse(*dlg, QEvent::MouseButtonPress, del);
    QTRY_VERIFY_WITH_TIMEOUT(dlg->text.size() < 299, 10000);
    if (how == QStringLiteral("release")) {
        input::Mouse(*dlg, QEvent::MouseButtonRelease, del);
    } else if (how == QStringLiteral("slide off")) {
        input::Mouse(*dlg, QEvent::MouseMove, QPoint(3, 3));
    } else if (how == QStringLiteral("hide")) {
        dlg->OnCancel();
    } else if (how == QStringLiteral("focus")) {
        in->setFocus();
    } else {
        auto touch = Touch();
        const QPoint caps = There(*dlg, KeyAt(*dlg, zriCaps));
        touch.press(0, caps, m_top.get()).commit();
        touch.release(0, caps, m_top.get()).commit();
    }
    const int left = dlg->text.size();
    QTest::qWait(250);
    QCOMPARE(dlg->text.size(), left);
}

void tst_ZrInputDlgKeys::repeatsUnderAFinger()
{
    auto* in = Make(ZrInput::kindText);
    in->SetText(QStringLiteral("xxxxxx"));
    ZrInputDlg::s_keepInside = true;
    ZrInputDlg* dlg = Press(*in);
    auto touch = Touch();
    const QPoint del = There(*dlg, KeyAt(*dlg, zriDelete));
    touch.press(0, del, m_top.get()).commit();
    QCOMPARE(dlg->text.size(), 5);
    QTRY_VERIFY_WITH_TIMEOUT(dlg->text.isEmpty(), 10000);
    touch.release(0, del, m_top.get()).commit();
}

void tst_ZrInputDlgKeys::leavesNoGapsBetweenKeys()
{
    ZrInputDlg* dlg = Open(ZrInput::kindInt);
    const QPoint seven = KeyAt(*dlg, zriKey, QLatin1Char('7'));
    const QPoint eight = KeyAt(*dlg, zriKey, QLatin1Char('8'));
    for (int x = seven.x(); x <= eight.x(); ++x) {
        const int before = dlg->text.size();
        input::Mouse(*dlg, QEvent::MouseButtonPress, QPoint(x, seven.y()));
        input::Mouse(*dlg, QEvent::MouseButtonRelease, QPoint(x, seven.y()));
        QVERIFY2(x == seven.x() || dlg->text.size() == before + 1, qPrintable(QString::number(x)));
    }
    QVERIFY(dlg->text.startsWith(QLatin1Char('7')));
    QVERIFY(dlg->text.endsWith(QLatin1Char('8')));
    QCOMPARE(dlg->text.count(QLatin1Char('7')), dlg->text.lastIndexOf(QLatin1Char('7')) + 1);
}

/// Nothing goes through to the page behind.
void tst_ZrInputDlgKeys::takesPressesBetweenKeys()
{
    class Behind : public QWidget
    {
    public:
        using QWidget::QWidget;
        int m_seen = 0;

    protected:
        void mousePressEvent(QMouseEvent* /*event*/) override { ++m_seen; }

        void wheelEvent(QWheelEvent* /*event*/) override { ++m_seen; }

        void contextMenuEvent(QContextMenuEvent* /*event*/) override { ++m_seen; }
    };

    Behind behind;
    ZrInputDlg dlg(&behind);
    dlg.BuildInt();
    dlg.Open(QRect(0, 0, dlg.dlgWidth, dlg.dlgHeight));
    QTest::mouseClick(&dlg, Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
    QWheelEvent wheel(QPointF(2, 2), QPointF(2, 2), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
        Qt::NoScrollPhase, false);
    QApplication::sendEvent(&dlg, &wheel);
    QContextMenuEvent menu(QContextMenuEvent::Mouse, QPoint(2, 2));
    QApplication::sendEvent(&dlg, &menu);
    QCOMPARE(behind.m_seen, 0);
}

/// The page of symbols comes while a finger is down: its release means no key of the new page.
void tst_ZrInputDlgKeys::rebuildsUnderAFinger()
{
    ZrInputDlg* dlg = Open(ZrInput::kindText);
    const QPoint ok = There(*dlg, KeyAt(*dlg, zriOk));
    const QPoint symbols = There(*dlg, KeyAt(*dlg, zriSymbols));
    auto touch = Touch();
    touch.press(0, ok, m_top.get()).commit();
    touch.stationary(0).press(1, symbols, m_top.get()).commit();
    touch.release(0, ok, m_top.get()).release(1, symbols, m_top.get()).commit();
    QVERIFY(dlg->isVisible());
    QVERIFY(!KeyAt(*dlg, zriKey, QLatin1Char('@')).isNull());
}

void tst_ZrInputDlgKeys::paintsReadableKeys_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<float>("dp");
    QTest::addColumn<QString>("state");
    for (const Layout& layout : layouts) {
        for (float dp : {0.5F, 0.75F, 1.0F, 1.5F}) {
            QTest::addRow("%s %g", layout.name, static_cast<double>(dp)) << layout.kind << dp << QString();
            if (layout.kind == ZrInput::kindText) {
                for (const char* state : {"caps", "symbols"})
                    QTest::addRow("%s %s %g", layout.name, state, static_cast<double>(dp))
                        << layout.kind << dp << U(state);
            } else if (layout.kind < 13) {
                QTest::addRow("%s error %g", layout.name, static_cast<double>(dp))
                    << layout.kind << dp << QStringLiteral("error");
            }
        }
    }
    QTest::newRow("fitted") << 3 << 0.2F << QStringLiteral("fit");
}

/// Every key has something on it that can be read, and that stays clear of its edge.
void tst_ZrInputDlgKeys::paintsReadableKeys()
{
    QFETCH(int, kind);
    QFETCH(float, dp);
    QFETCH(QString, state);
    ZrTheme::dp = dp;
    ZrTheme::SetStdStyle();
    ZrInputDlg* dlg = Press(*Make(kind));
    if (state == QStringLiteral("caps"))
        input::Click(*dlg, zriCaps);
    else if (state == QStringLiteral("symbols"))
        input::Click(*dlg, zriSymbols);
    else if (state == QStringLiteral("error"))
        Type(*dlg, QStringLiteral("--"));
    else if (state == QStringLiteral("fit"))
        dlg->FitInto(QSize(420, 300));
    dlg->resize(dlg->dlgWidth, dlg->dlgHeight);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(dlg, &leave);
    const QImage image = dlg->grab().toImage();
    for (const ZrInputItem& item : dlg->Items()) {
        const QString name = QStringLiteral("action %1 '%2'").arg(int(item.action)).arg(item.ch);
        // Inside the outline and the round corners.
        const int inset = 3 + item.rect.height() / 16;
        const QRect inner = item.rect.adjusted(inset, inset, -inset, -inset);
        const Ink ink = InkOf(image, inner);
        const QRgb ground = ink.ground;
        QVERIFY2(ink.contrast >= 4.5, qPrintable(name + QString::number(ink.contrast)));
        const bool hasBar = item.action == zriCaps && state == QStringLiteral("caps");
        for (int x = inner.left(); x <= inner.right(); ++x) {
            QVERIFY2(image.pixel(x, inner.top()) == ground, qPrintable(name));
            QVERIFY2(hasBar || image.pixel(x, inner.bottom()) == ground, qPrintable(name));
        }
        for (int y = inner.top(); y <= inner.bottom(); ++y) {
            QVERIFY2(image.pixel(inner.left(), y) == ground, qPrintable(name));
            QVERIFY2(image.pixel(inner.right(), y) == ground, qPrintable(name));
        }
    }
}

void tst_ZrInputDlgKeys::paintsReadableStrips_data()
{
    QTest::addColumn<float>("dp");
    QTest::addColumn<QString>("typed");
    for (float dp : {0.5F, 0.75F, 1.0F, 1.5F}) {
        for (const char* typed : {"", "7", "99", "--"})
            QTest::addRow("'%s' %g", typed, static_cast<double>(dp)) << dp << U(typed);
    }
}

void tst_ZrInputDlgKeys::paintsReadableStrips()
{
    QFETCH(float, dp);
    QFETCH(QString, typed);
    ZrTheme::dp = dp;
    ZrTheme::SetStdStyle();
    auto* in = Make(ZrInput::kindShortLength);
    in->SetRange(0, 10);
    ZrInputDlg* dlg = Press(*in);
    Type(*dlg, typed);
    const QImage image = dlg->grab().toImage();
    const int margin = dlg->Bx(0);
    const int bottom = dlg->By(0) - margin;
    const int high = bottom - margin;
    const int line = high * 28 / 128;
    const QRect head(margin, margin, dlg->width() / 2 - margin, line);
    const QRect foot(margin, bottom - line, dlg->width() - 2 * margin, line);
    const QRect field(margin + 6, margin + line + high / 10, dlg->width() / 2, high - 2 * line - high / 5);
    const QRect unit = field.translated(dlg->width() / 2 - margin - 12, 0);
    for (const QRect& part : {head, foot, field, unit}) {
        const double contrast = InkOf(image, part).contrast;
        QVERIFY2(contrast >= 4.5, qPrintable(QString::number(contrast)));
    }
    // The head's right half holds the word for an error, and nothing without one.
    const QRect badge(dlg->width() / 2 + margin, margin, dlg->width() / 2 - 3 * margin, line);
    const bool isError = typed == QStringLiteral("99") || typed == QStringLiteral("--");
    if (isError)
        QVERIFY(InkOf(image, badge).contrast >= 4.5);
    else
        QCOMPARE(InkOf(image, badge).contrast, 1.0);
}

/// A key that is held, hovered, on or refused looks different from itself.
void tst_ZrInputDlgKeys::showsStatesOnKeys()
{
    ZrInputDlg* dlg = Open(ZrInput::kindText);
    const auto look = [dlg](const QPoint& p) {
        for (const ZrInputItem& item : dlg->Items()) {
            if (item.rect.contains(p))
                return dlg->grab(item.rect).toImage();
        }
        return QImage();
    };
    const QPoint q = KeyAt(*dlg, zriKey, QLatin1Char('q'));
    const QPoint caps = KeyAt(*dlg, zriCaps);
    const QImage plain = look(q);
    QVERIFY(!plain.isNull());
    QCOMPARE(look(q), plain);
    input::Mouse(*dlg, QEvent::MouseMove, q);
    const QImage hovered = look(q);
    QVERIFY(hovered != plain);
    input::Mouse(*dlg, QEvent::MouseButtonPress, q);
    const QImage held = look(q);
    QVERIFY(held != plain && held != hovered);
    input::Mouse(*dlg, QEvent::MouseMove, QPoint(2, 2));
    QCOMPARE(look(q), plain);
    input::Mouse(*dlg, QEvent::MouseButtonRelease, QPoint(2, 2));
    const QImage off = look(caps);
    input::Click(*dlg, zriCaps);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(dlg, &leave);
    QVERIFY(look(caps) != off);
    QVERIFY(look(q) != plain); // a capital now

    // Two fingers are shown both.
    ZrInputDlg* number = Open(ZrInput::kindInt);
    const QPoint one = KeyAt(*number, zriKey, QLatin1Char('1'));
    const QPoint two = KeyAt(*number, zriKey, QLatin1Char('2'));
    const QImage before = number->grab().toImage();
    auto touch = Touch();
    touch.press(0, There(*number, one), m_top.get()).press(1, There(*number, two), m_top.get()).commit();
    const QImage during = number->grab().toImage();
    for (const QPoint& p : {one, two}) {
        const QRect part(p - QPoint(25, 25), QSize(8, 8));
        QVERIFY(before.copy(part) != during.copy(part));
    }
    touch.release(0, There(*number, one), m_top.get()).release(1, There(*number, two), m_top.get()).commit();

    // OK is not offered while the text is refused.
    const QImage offered = number->grab().toImage();
    const QPoint ok = KeyAt(*number, zriOk);
    const QRect part(ok - QPoint(60, 20), QSize(120, 40));
    Type(*number, QStringLiteral("--"));
    QVERIFY(number->grab().toImage().copy(part) != offered.copy(part));
}

void tst_ZrInputDlgKeys::showsTheRefusal()
{
    auto* in = Make(ZrInput::kindInt);
    in->SetRange(0, 10);
    ZrInputDlg* dlg = Press(*in);
    const QRect strip(0, 0, dlg->width(), dlg->By(0) - 4);
    Type(*dlg, QStringLiteral("1"));
    const QImage fine = dlg->grab(strip).toImage();
    Type(*dlg, QStringLiteral("1"));
    const QImage range = dlg->grab(strip).toImage();
    Type(*dlg, QStringLiteral("-"));
    const QImage error = dlg->grab(strip).toImage();
    QVERIFY(fine != range && range != error && fine != error);
    // The reason of an error is not the one of the range, beside the text itself.
    const int line = dlg->Bx(0) * 28 / 16;
    const QRect foot(dlg->Bx(0), strip.bottom() - line - dlg->Bx(0), dlg->width() - 2 * dlg->Bx(0), line);
    QVERIFY(range.copy(foot) != error.copy(foot));
    QVERIFY(fine.copy(foot) != range.copy(foot));
}

void tst_ZrInputDlgKeys::showsTheCursor()
{
    ZrInputDlg* dlg = Open(ZrInput::kindText);
    const QRect strip(0, 0, dlg->width(), dlg->By(0) - 4);
    std::vector<QImage> seen;
    dlg->OnStart();
    for (int i = 0; i <= dlg->text.size(); ++i) {
        const QImage image = dlg->grab(strip).toImage();
        QVERIFY(std::find(seen.begin(), seen.end(), image) == seen.end());
        seen.push_back(image);
        dlg->OnRight();
    }
    QCOMPARE(int(seen.size()), 5);
}

/// However long the text is, what is being edited is in view.
void tst_ZrInputDlgKeys::slidesLongTexts()
{
    auto* in = Make(ZrInput::kindText);
    in->SetText(QString(400, QLatin1Char('l')) + QStringLiteral("WWWW"));
    ZrInputDlg* dlg = Press(*in);
    const QRect strip(0, 0, dlg->width(), dlg->By(0) - 4);
    dlg->OnEnd();
    const QImage end = dlg->grab(strip).toImage();
    dlg->OnKey(QLatin1Char('W'));
    QVERIFY(dlg->grab(strip).toImage() != end);
    dlg->OnStart();
    const QImage start = dlg->grab(strip).toImage();
    dlg->OnKey(QLatin1Char('W'));
    QVERIFY(dlg->grab(strip).toImage() != start);
}

void tst_ZrInputDlgKeys::paintsOddTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("cursor");
    QTest::newRow("empty") << "" << 0;
    QTest::newRow("lines") << "a\nb\r\nc" << 2;
    QTest::newRow("separators") << QString(QChar(0x2028)) + QChar(0x2029) << 1;
    QTest::newRow("right to left") << U("שלום") << 2;
    QTest::newRow("half a pair") << QString(QChar(0xD83D)) << 1;
    QTest::newRow("inside a pair") << U("\xF0\x9F\x90\xA0") << 1;
    QTest::newRow("controls") << QString(QChar(0)) + QChar(7) + QChar(0x1B) << 3;
    QTest::newRow("long") << QString(32767, QLatin1Char('W')) << 16000;
    QTest::newRow("cursor beyond") << "abc" << 1000000;
    QTest::newRow("cursor before") << "abc" << -1000000;
}

void tst_ZrInputDlgKeys::paintsOddTexts()
{
    QFETCH(QString, text);
    QFETCH(int, cursor);
    auto* in = Make(ZrInput::kindText);
    in->caption = text;
    ZrInputDlg* dlg = Press(*in);
    dlg->text = text;
    dlg->cursor = cursor;
    dlg->state = 0;
    QVERIFY(!dlg->grab().isNull());
    for (int i = 0; i < 3; ++i) {
        dlg->OnLeft();
        dlg->OnDelete();
        dlg->OnKey(QLatin1Char('z'));
        dlg->OnRight();
    }
    QVERIFY(dlg->cursor >= 0 && dlg->cursor <= dlg->text.size());
    QVERIFY(dlg->text.contains(QLatin1Char('z')) || dlg->text.size() >= 32767);
    // A strip of no size.
    QImage image(10, 10, QImage::Format_ARGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    for (const QRect& rect : {QRect(), QRect(0, 0, 1, 1), QRect(5, 5, -20, -20)})
        dlg->DrawDisplay(painter, rect);
}

void tst_ZrInputDlgKeys::hoveredKeysHaveWiderEdges()
{
    for (const float dp : {0.667F, 0.889F, 1.0F, 1.25F}) {
        ZrTheme::dp = dp;
        ZrTheme::SetStdStyle();
        ZrInputDlg* dlg = Open(ZrInput::kindInt);
        const QPoint at = KeyAt(*dlg, zriKey, QLatin1Char('5'));
        QRect key;
        for (const ZrInputItem& item : dlg->Items()) {
            if (item.rect.contains(at))
                key = item.rect;
        }
        const auto edge = [&] {
            const QImage image = dlg->grab(key).toImage();
            const int y = image.height() / 2;
            int wide = 0;
            while (wide < 20 && image.pixel(wide, y) == image.pixel(0, y))
                ++wide;
            return wide;
        };
        const int usual = edge();
        input::Mouse(*dlg, QEvent::MouseMove, at);
        const int hovered = edge();
        QVERIFY2(hovered > usual, qPrintable(QStringLiteral("%1: %2 %3").arg(dp).arg(usual).arg(hovered)));
        input::Mouse(*dlg, QEvent::MouseButtonPress, at);
        QVERIFY(edge() > hovered);
        input::Mouse(*dlg, QEvent::MouseButtonRelease, at);
    }
}

/// Pictures are several times larger than their place: every one of their pixels counts.
void tst_ZrInputDlgKeys::paintsPicturesSmoothly()
{
    ZrTheme::dp = 0.667F;
    ZrTheme::SetStdStyle();
    ZrInputDlg* dlg = Open(ZrInput::kindInt);
    int pictures = 0;
    for (const ZrInputItem& item : dlg->Items()) {
        if (item.picture.isNull() || !item.label.isEmpty())
            continue;
        ++pictures;
        const QImage key = dlg->grab(item.rect).toImage();
        // The light of the sign, in the middle of the key, against that of the whole picture.
        double painted = 0.0;
        const QColor fill = key.pixelColor(key.width() / 2, 5);
        for (int y = 5; y < key.height() - 5; ++y) {
            for (int x = 5; x < key.width() - 5; ++x)
                painted += (key.pixelColor(x, y).red() - fill.red()) / (255.0 - fill.red());
        }
        double alpha = 0.0;
        for (int y = 0; y < item.picture.height(); ++y) {
            for (int x = 0; x < item.picture.width(); ++x)
                alpha += item.picture.pixelColor(x, y).alphaF();
        }
        const int side = static_cast<int>(0.667F * 34.0F + 0.5F);
        const double expected = alpha * side * side / (item.picture.width() * item.picture.height());
        QVERIFY2(std::abs(painted - expected) < 0.03 * expected,
            qPrintable(QStringLiteral("%1: %2, expected %3").arg(item.img).arg(painted).arg(expected)));
    }
    QCOMPARE(pictures, 6);
}

QTEST_MAIN(tst_ZrInputDlgKeys)
#include "tst_ZrInputDlgKeys.moc"
