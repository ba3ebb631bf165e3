// The colour button and its modal dialog.

#include "TouchOn.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrColBtn.h"
#include "ZrUtil/ZrCtrlLook.h"

#include <QColorDialog>
#include <QPointer>
#include <QtTest>

#include <algorithm>
#include <functional>
#include <memory>

static_assert(std::is_base_of_v<ZrBtn, ZrColBtn>);
static_assert(std::is_same_v<decltype(ZrColBtn::colour), QColor*>);

namespace {

const QPoint inside(20, 30);

} // namespace

class tst_ZrColBtn : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void asMade();
    void choosing();
    void choosingAlpha();
    void cancelling();
    void withoutColour();
    void invalidColour();
    void storedBeforeTheSignal();
    void pressedStateEnds_data();
    void pressedStateEnds();
    void dialogHasTheButtonAsParent();
    void byTouch();
    void byKey();
    void disabledOpensNothing();
    void dialogIsGoneAfterwards();

    void deletedWhileTheDialogIsOpen();
    void windowDeletedWhileTheDialogIsOpen();
    void dialogDeletedFromOutside();
    void deletedInSlot();
    void linkCutWhileTheDialogIsOpen();

    void swatch();
    void swatchBesideText();
    void chequerBehindAlpha();
    void chequerIsSeen();
    void disabledLooksDisabledInside();
    void mirrored();

private:
    /// Has \p act done to the dialog as soon as it is open. Without one the test fails, it does not hang.
    void InDialog(std::function<void(QColorDialog&)> act);

    std::unique_ptr<QWidget> m_window;
    QPointer<ZrColBtn> m_button;
    QColor m_colour;
    QList<QColor> m_log;
    int m_dialogs = 0;
};

void tst_ZrColBtn::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    m_window = std::make_unique<QWidget>();
    m_window->resize(300, 200);
    m_button = new ZrColBtn(m_window.get());
    m_button->setGeometry(0, 0, 100, 60);
    m_colour = QColor(10, 20, 30, 40);
    m_button->colour = &m_colour;
    m_log.clear();
    m_dialogs = 0;
    connect(m_button, &ZrColBtn::ColourChanged, this, [this](const QColor& colour) { m_log += colour; });
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void tst_ZrColBtn::cleanup()
{
    m_window.reset();
}

void tst_ZrColBtn::InDialog(std::function<void(QColorDialog&)> act)
{
    QTimer::singleShot(0, this, [this, act] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        ++m_dialogs;
        act(*dialog);
    });
}

void tst_ZrColBtn::asMade()
{
    const ZrColBtn button(m_window.get());
    QCOMPARE(button.type, ZrBtn::typeStd);
    QCOMPARE(int(button.type), 0);
    QVERIFY(!button.colour);
    QVERIFY(ZrColBtn::staticMetaObject.indexOfSignal("ColourChanged(QColor)") >= 0);
    QVERIFY(ZrColBtn::staticMetaObject.indexOfMethod("OnPressed()") >= 0);
    QCOMPARE(ZrColBtn::staticMetaObject.className(), "ZrColBtn");
}

void tst_ZrColBtn::choosing()
{
    QColor offered;
    InDialog([&offered](QColorDialog& dialog) {
        offered = dialog.currentColor();
        dialog.setCurrentColor(QColor(200, 100, 50));
        dialog.accept();
    });
    SendPress(*m_button, inside);
    QCOMPARE(m_dialogs, 1);
    QCOMPARE(offered, QColor(10, 20, 30, 40));
    QCOMPARE(m_colour, QColor(200, 100, 50));
    QCOMPARE(m_log, QList<QColor>({QColor(200, 100, 50)}));
}

void tst_ZrColBtn::choosingAlpha()
{
    InDialog([](QColorDialog& dialog) {
        dialog.setCurrentColor(QColor(1, 2, 3, 99));
        dialog.accept();
    });
    m_button->OnPressed();
    QCOMPARE(m_colour, QColor(1, 2, 3, 99));
}

void tst_ZrColBtn::cancelling()
{
    InDialog([](QColorDialog& dialog) {
        dialog.setCurrentColor(Qt::red);
        dialog.reject();
    });
    SendPress(*m_button, inside);
    QCOMPARE(m_dialogs, 1);
    QCOMPARE(m_colour, QColor(10, 20, 30, 40));
    QVERIFY(m_log.isEmpty());
}

void tst_ZrColBtn::withoutColour()
{
    m_button->colour = nullptr;
    QColor offered;
    InDialog([&offered](QColorDialog& dialog) {
        offered = dialog.currentColor();
        dialog.setCurrentColor(Qt::red);
        dialog.accept();
    });
    SendPress(*m_button, inside);
    QCOMPARE(offered, QColor(Qt::white));
    QCOMPARE(m_log, QList<QColor>({QColor(Qt::red)}));
    QCOMPARE(m_colour, QColor(10, 20, 30, 40));
    Painted(*m_button);
}

void tst_ZrColBtn::invalidColour()
{
    m_colour = QColor();
    Painted(*m_button);
    InDialog([](QColorDialog& dialog) {
        dialog.setCurrentColor(Qt::blue);
        dialog.accept();
    });
    SendPress(*m_button, inside);
    QCOMPARE(m_colour, QColor(Qt::blue));
}

void tst_ZrColBtn::storedBeforeTheSignal()
{
    QColor seen;
    connect(m_button, &ZrColBtn::ColourChanged, this, [&] { seen = m_colour; });
    InDialog([](QColorDialog& dialog) {
        dialog.setCurrentColor(Qt::green);
        dialog.accept();
    });
    SendPress(*m_button, inside);
    QCOMPARE(seen, QColor(Qt::green));
}

void tst_ZrColBtn::pressedStateEnds_data()
{
    QTest::addColumn<bool>("accept");
    QTest::newRow("accepted") << true;
    QTest::newRow("cancelled") << false;
}

// The release goes to the dialog.
void tst_ZrColBtn::pressedStateEnds()
{
    QFETCH(bool, accept);
    int clicks = 0;
    connect(m_button, &ZrBtn::Clicked, this, [&clicks] { ++clicks; });
    InDialog([accept](QColorDialog& dialog) { accept ? dialog.accept() : dialog.reject(); });
    SendPress(*m_button, inside);
    QVERIFY(!m_button->down);
    QCOMPARE(m_button->hover, 0U);
    SendRelease(*m_button, inside);
    QCOMPARE(clicks, 0);
}

void tst_ZrColBtn::dialogHasTheButtonAsParent()
{
    QPointer<QWidget> parent;
    bool hasAlpha = false;
    QString title;
    InDialog([&](QColorDialog& dialog) {
        parent = dialog.parentWidget();
        hasAlpha = dialog.testOption(QColorDialog::ShowAlphaChannel);
        title = dialog.windowTitle();
        dialog.reject();
    });
    SendPress(*m_button, inside);
    QCOMPARE(parent.data(), static_cast<QWidget*>(m_button.data()));
    QVERIFY(hasAlpha);
    QVERIFY(!title.isEmpty());
}

void tst_ZrColBtn::byTouch()
{
    InDialog([](QColorDialog& dialog) {
        dialog.setCurrentColor(Qt::cyan);
        dialog.accept();
    });
    auto touch = TouchOn(m_button, QTest::createTouchDevice(), false);
    touch.press(0, inside, m_button).commit();
    QCOMPARE(m_colour, QColor(Qt::cyan));
    QVERIFY(!m_button->down);
    touch.release(0, inside, m_button).commit();
    QCOMPARE(m_dialogs, 1);
}

void tst_ZrColBtn::byKey()
{
    InDialog([](QColorDialog& dialog) { dialog.accept(); });
    QTest::keyClick(m_button, Qt::Key_Space);
    QCOMPARE(m_dialogs, 1);
    QCOMPARE(m_colour, QColor(10, 20, 30, 40));
    QCOMPARE(m_log.size(), 1); // accepted as it was
}

void tst_ZrColBtn::disabledOpensNothing()
{
    m_button->setEnabled(false);
    InDialog([](QColorDialog& dialog) { dialog.reject(); });
    SendPress(*m_button, inside);
    QCoreApplication::processEvents();
    QCOMPARE(m_dialogs, 0);
}

void tst_ZrColBtn::dialogIsGoneAfterwards()
{
    for (int i = 0; i < 3; ++i) {
        InDialog([](QColorDialog& dialog) { dialog.accept(); });
        SendPress(*m_button, inside);
    }
    QCOMPARE(m_dialogs, 3);
    QVERIFY(m_button->findChildren<QDialog*>().isEmpty());
}

void tst_ZrColBtn::deletedWhileTheDialogIsOpen()
{
    InDialog([this](QColorDialog&) { delete m_button.data(); });
    SendPress(*m_button, inside);
    QVERIFY(!m_button);
    QCOMPARE(m_dialogs, 1);
    QCOMPARE(m_colour, QColor(10, 20, 30, 40));
    QVERIFY(m_log.isEmpty());
    QVERIFY(!QApplication::activeModalWidget());
}

void tst_ZrColBtn::windowDeletedWhileTheDialogIsOpen()
{
    InDialog([this](QColorDialog&) { m_window.reset(); });
    m_button->OnPressed();
    QVERIFY(!m_button);
    QVERIFY(m_log.isEmpty());
}

void tst_ZrColBtn::dialogDeletedFromOutside()
{
    InDialog([](QColorDialog& dialog) { delete &dialog; });
    SendPress(*m_button, inside);
    QCOMPARE(m_dialogs, 1);
    QVERIFY(m_log.isEmpty());
    QVERIFY(!m_button->down);
}

void tst_ZrColBtn::deletedInSlot()
{
    connect(m_button, &ZrColBtn::ColourChanged, this, [this] { delete m_button.data(); });
    InDialog([](QColorDialog& dialog) {
        dialog.setCurrentColor(Qt::red);
        dialog.accept();
    });
    SendPress(*m_button, inside);
    QVERIFY(!m_button);
    QCOMPARE(m_colour, QColor(Qt::red));
}

void tst_ZrColBtn::linkCutWhileTheDialogIsOpen()
{
    InDialog([this](QColorDialog& dialog) {
        m_button->colour = nullptr;
        dialog.setCurrentColor(Qt::red);
        dialog.accept();
    });
    SendPress(*m_button, inside);
    QCOMPARE(m_colour, QColor(10, 20, 30, 40));
    QCOMPARE(m_log.size(), 1);
}

void tst_ZrColBtn::swatch()
{
    m_colour = QColor(200, 100, 50);
    const QImage image = Painted(*m_button);
    QCOMPARE(image.pixelColor(50, 30), m_colour);
    QCOMPARE(image.pixelColor(15, 15), m_colour);
    QCOMPARE(image.pixelColor(85, 45), m_colour);
    QVERIFY(image.pixelColor(4, 30) != m_colour);
    // Seen on black too: it has an outline.
    m_colour = Qt::black;
    QVERIFY(HasColour(Painted(*m_button), ZrTheme::ctrlCol));
}

void tst_ZrColBtn::swatchBesideText()
{
    m_colour = QColor(200, 100, 50);
    m_button->text = QStringLiteral("Track");
    m_button->resize(m_button->sizeHint());
    m_button->Changed();
    const QImage image = Painted(*m_button);
    QCOMPARE(image.pixelColor(20, m_button->height() / 2), m_colour);
    QVERIFY(!HasColour(image.copy(m_button->textRect.toRect()), m_colour));
    QVERIFY(m_button->textRect.width() >= QFontMetrics(m_button->font).horizontalAdvance(m_button->text));
}

void tst_ZrColBtn::chequerBehindAlpha()
{
    m_colour = QColor(255, 0, 0, 128);
    const QImage image = Painted(*m_button);
    QSet<QRgb> colours;
    for (int x = 20; x < 80; ++x)
        colours += image.pixel(x, 30);
    QCOMPARE(colours.size(), 2);
    m_colour = QColor(255, 0, 0);
    QCOMPARE(Painted(*m_button).pixelColor(40, 30), m_colour);
}

void tst_ZrColBtn::mirrored()
{
    m_colour = QColor(200, 100, 50);
    m_button->text = QStringLiteral("Track");
    m_button->resize(160, 60);
    m_button->setLayoutDirection(Qt::RightToLeft);
    const QImage image = Painted(*m_button);
    QCOMPARE(image.pixelColor(140, 30), m_colour);
    QVERIFY(!HasColour(image.copy(0, 0, 80, 60), m_colour));
    QVERIFY(m_button->textRect.right() < 120);
}

/// Through a colour that is nearly opaque too.
void tst_ZrColBtn::chequerIsSeen()
{
    m_colour = QColor(90, 160, 180, 200);
    const QImage image = Painted(*m_button);
    int least = 255;
    int most = 0;
    for (int x = 20; x < 80; ++x) {
        least = std::min(least, image.pixelColor(x, 30).red());
        most = std::max(most, image.pixelColor(x, 30).red());
    }
    QVERIFY2(most - least >= 32, qPrintable(QString::number(most - least)));
}

void tst_ZrColBtn::disabledLooksDisabledInside()
{
    for (const QColor& colour : {QColor(200, 100, 50), QColor(Qt::white), QColor(90, 160, 180, 200)}) {
        m_colour = colour;
        m_button->setEnabled(true);
        const QColor usual = Painted(*m_button).pixelColor(50, 30);
        m_button->setEnabled(false);
        const QColor dim = Painted(*m_button).pixelColor(50, 30);
        QVERIFY(dim.red() < usual.red() * 3 / 4);
        QVERIFY(dim != ZrCtrlLook::Of(ZrCtrlState()).fill); // the colour can still be told
    }
}

QTEST_MAIN(tst_ZrColBtn)
#include "tst_ZrColBtn.moc"
