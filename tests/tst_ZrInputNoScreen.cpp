#include "ZrInputChecks.h"

#include <QScreen>

#include <dlfcn.h>

namespace {

bool hasScreen = true;

} // namespace

/// Stands before Qt's own function of this name, which has a screen on every platform that runs tests.
Q_DECL_EXPORT QScreen* QGuiApplication::primaryScreen()
{
    using Function = QScreen* (*)();
    static const auto real
        = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "_ZN15QGuiApplication13primaryScreenEv"));
    return hasScreen ? real() : nullptr;
}

/// The keyboard on the screen where there is none.
class tst_ZrInputNoScreen : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsAndStaysHidden();
};

void tst_ZrInputNoScreen::tellsAndStaysHidden()
{
    const ZrTabletState state;
    QWidget top;
    top.resize(800, 600);
    ZrInput in(&top);
    in.kind = ZrInput::kindInt;
    in.SetValue(5);
    top.show();
    int news = 0;
    connect(&in, &ZrInput::NewInput, this, [&news] { ++news; });
    {
        const ZrDebugLines lines;
        hasScreen = false;
        input::Mouse(in, QEvent::MouseButtonPress, QPoint(3, 3));
        hasScreen = true;
        QCOMPARE(ZrDebugLines::Lines(), QStringList{QStringLiteral("No screen")});
    }
    QCOMPARE(top.findChildren<ZrInputDlg*>().size(), 1);
    QVERIFY(!input::Shown(top));
    QCOMPARE(in.value, 5.0);
    QCOMPARE(news, 0);
    // The next press, with a screen again, opens one, and leaves nothing of the first.
    QVERIFY(input::Press(in));
    QCOMPARE(top.findChildren<ZrInputDlg*>().size(), 1);
}

QTEST_MAIN(tst_ZrInputNoScreen)
#include "tst_ZrInputNoScreen.moc"
