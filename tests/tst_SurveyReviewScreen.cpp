// The page "Review": what is on the screen at every size, colour and scale; keys; what is drawn and read.

#include "DrawnText.h"
#include "SurveyReviewWindow.h"
#include "ZrKit/geo/ZrPositionShown.h"
#include "ZrKit/map/ZrGridLayer.h"
#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrPaletteBtn.h"
#include "ZrKit/ui/ZrPlotPanel.h"
#include "ZrUtil/ZrSlider.h"
#include "apps/ZrSurvey/ReviewBottom.h"
#include "apps/ZrSurvey/ReviewEvents.h"
#include "apps/ZrSurvey/ReviewLook.h"
#include "apps/ZrSurvey/ReviewMap.h"
#include "apps/ZrSurvey/ReviewMeasure.h"
#include "apps/ZrSurvey/ReviewText.h"

#include <QProcess>

class tst_SurveyReviewScreen : public SurveyReviewWindow
{
    Q_OBJECT

private Q_SLOTS:
    void idlePageDrawsNothing();
    void readsOnlyWhatIsShown();
    void keys();
    void everySize();
    void everyColour();
    void headersAreNeverEmpty_data();
    void headersAreNeverEmpty();
    void marksShowAtNight();
    void lookLeavesTheWaterfall();
    void toolsAtEverySize();
    void nightPalettes();
    void messagesLeaveControls();
    void hits();
    void hitsAtTwoPixels();
    void keysAreInToolTips();
};

void tst_SurveyReviewScreen::idlePageDrawsNothing()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(100.0));
    WaitForLines();
    QTest::qWait(50);
    Settle();
    QSignalSpy frames(m_view.get(), &SurveyView::FramePainted);
    ZrPaintCounter page(Page());
    QTest::qWait(500);
    QCOMPARE(frames.size(), 0);
    QCOMPARE(page.Take(), 0);
    // One step, few frames, and still again.
    Page().Act(ReviewTransport::recordForward);
    QTRY_VERIFY(frames.size() > 0);
    WaitForLines();
    QTest::qWait(100);
    frames.clear();
    QTest::qWait(300);
    QCOMPARE(frames.size(), 0);
}

/// Of the tiles of 256 lines those in view, each once.
void tst_SurveyReviewScreen::readsOnlyWhatIsShown()
{
    Open(m_log);
    WaitForLines();
    const ZrWaterfallLoader& loader = *Page().Sonar().Loader();
    const i64 first = loader.LinesRead();
    QVERIFY2(first > 0 && first <= 256, qPrintable(QString::number(first)));
    for (double ping = 0.0; ping < 100.0; ping += 10.0)
        Page().GoTo(Rec().TimeOfPing(ping));
    WaitForLines();
    QVERIFY(loader.LinesRead() <= 300);
    Page().GoTo(Rec().TimeOfPing(299.0));
    WaitForLines();
    QCOMPARE(loader.LinesRead(), i64(300));
    Page().GoTo(Rec().TimeOfPing(0.0));
    WaitForLines();
    QCOMPARE(loader.LinesRead(), i64(300));
}

void tst_SurveyReviewScreen::keys()
{
    Open(m_log);
    QTest::keyClick(m_view.get(), Qt::Key_End);
    QCOMPARE(Page().Clock().Time(), Rec().Times()->End());
    QTest::keyClick(m_view.get(), Qt::Key_Home);
    QCOMPARE(Page().Clock().Time(), Rec().Times()->Begin());
    QTest::keyClick(m_view.get(), Qt::Key_Right, Qt::ShiftModifier);
    QVERIFY(std::fabs(Page().Clock().Time() - Rec().Times()->Begin() - 1.0) < 1e-6);
    // Also when the finger was on a panel last.
    QTest::keyClick(&Page().Sonar().Panel(), Qt::Key_Left, Qt::ShiftModifier);
    QCOMPARE(Page().Clock().Time(), Rec().Times()->Begin());
    QTest::keyClick(m_view.get(), Qt::Key_A);
    QCOMPARE(Page().Bar().RangeA(), Rec().Times()->Begin());
    QTest::keyClick(m_view.get(), Qt::Key_End);
    QTest::keyClick(m_view.get(), Qt::Key_B);
    QCOMPARE(Page().Bar().RangeB(), Rec().Times()->End());
    QTest::keyClick(m_view.get(), Qt::Key_Home);
    QTest::keyClick(m_view.get(), Qt::Key_Space);
    QVERIFY(Page().Clock().IsPlaying());
    QTest::keyClick(m_view.get(), Qt::Key_Space);
    QVERIFY(!Page().Clock().IsPlaying());
    const bool slant = m_view->Model().settings.slant;
    QTest::keyClick(m_view.get(), Qt::Key_S);
    QCOMPARE(m_view->Model().settings.slant, !slant);
    QTest::keyClick(m_view.get(), Qt::Key_2);
    QVERIFY(!Page().Plots().isVisible() && Page().Sonar().Panel().isVisible());
    QTest::keyClick(m_view.get(), Qt::Key_Escape);
    QVERIFY(Page().Plots().isVisible());
}

/// At every size of a window nothing of the page lies outside of it, nor on another control, and fingers hit
/// everything.
void tst_SurveyReviewScreen::everySize()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    for (const QSize size : {QSize(900, 600), QSize(1280, 800), QSize(1920, 1080), QSize(2560, 1440)}) {
        m_view->resize(size);
        QTRY_COMPARE(Page().size(), size);
        WaitForLines();
        const QString name = QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
        QVector<ZrBtn*> buttons;
        for (ZrBtn* button : Page().findChildren<ZrBtn*>()) {
            if (button->isVisible())
                buttons.append(button);
        }
        QVERIFY(buttons.size() > 20);
        const auto place = [this](const QWidget* w) { return QRect(w->mapTo(&Page(), QPoint()), w->size()); };
        for (int i = 0; i < buttons.size(); ++i) {
            const QRect at = place(buttons[i]);
            const QString who = name + QLatin1Char(' ') + buttons[i]->accessibleName();
            QVERIFY2(Page().rect().contains(at), qPrintable(who));
            QVERIFY2(at.width() >= 44 && at.height() >= 44, qPrintable(who));
            for (int j = 0; j < i; ++j)
                QVERIFY2(!at.intersects(place(buttons[j])),
                    qPrintable(who + QStringLiteral(" and ") + buttons[j]->accessibleName()));
        }
        const QImage picture = m_view->grab().toImage();
        QCOMPARE(picture.size(), size);
        // The waterfall is there, and not of one colour.
        const QRect panel = Page().Sonar().Panel().geometry();
        const QColor middle = picture.pixelColor(panel.center() + QPoint(panel.width() / 3, -20));
        QVERIFY(middle != picture.pixelColor(panel.center() + QPoint(panel.width() / 3 + 9, -31)));
        if (qEnvironmentVariableIsSet("ZR_REVIEW_PICTURES"))
            picture.save(qEnvironmentVariable("ZR_REVIEW_PICTURES") + QLatin1Char('/') + name
                + QStringLiteral(".png"));
    }
}

/// Colours change at once, with the measuring panel and the list of events open.
void tst_SurveyReviewScreen::everyColour()
{
    Open(m_log);
    Page().Events().Add(Rec().TimeOfPing(120.0), QStringLiteral("Wreck"));
    Page().GoTo(Rec().TimeOfPing(150.0));
    QTest::keyClick(m_view.get(), Qt::Key_L, Qt::ControlModifier);
    QTest::keyClick(m_view.get(), Qt::Key_M);
    QVERIFY(Page().Events().isVisible());
    WaitForLines();
    QImage before;
    for (int scheme = 0; scheme < 3; ++scheme) {
        m_view->SetColours(scheme);
        Settle();
        const QImage picture = m_view->grab().toImage();
        QVERIFY(picture != before);
        // The tool bars are not opaque: as light as the scheme, whatever lies below.
        const QColor band = picture.pixelColor(Page().Bar().geometry().topLeft() + QPoint(2, 2));
        QVERIFY2((band.lightness() > 127) == ZrColourScheme::IsLight(), qPrintable(band.name()));
        before = picture;
        if (qEnvironmentVariableIsSet("ZR_REVIEW_PICTURES"))
            picture.save(QStringLiteral("%1/colour%2.png")
                             .arg(qEnvironmentVariable("ZR_REVIEW_PICTURES"))
                             .arg(scheme));
    }
}

void tst_SurveyReviewScreen::headersAreNeverEmpty_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("hasList");
    QTest::addColumn<int>("style");
    for (const QSize size : {QSize(900, 600), QSize(1280, 800), QSize(2560, 1440)}) {
        for (const bool hasList : {false, true}) {
            for (const int style : {int(eGeoDeg), int(eGeoDMSFrac), int(eGeoUTM)})
                QTest::addRow("%dx%d, list %d, style %d", size.width(), size.height(), int(hasList), style)
                    << size << hasList << style;
        }
    }
}

/// The position and the line of the waterfall stand above their panes, whole, in one line or in two.
void tst_SurveyReviewScreen::headersAreNeverEmpty()
{
    QFETCH(QSize, size);
    QFETCH(bool, hasList);
    QFETCH(int, style);
    ZrUnits::SetGeoStyle(eGeoStyle(style));
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    if (hasList)
        QTest::keyClick(m_view.get(), Qt::Key_L, Qt::ControlModifier);
    m_view->resize(size);
    QTRY_COMPARE(Page().size(), size);
    Settle();
    const ZrGeoPoint at = Rec().PositionAt(Page().Clock().Time());
    const QString bottom = review::length_text(Rec().Bottom().Altitude(150), 1);
    QStringList texts[2]; // of the map, of the waterfall
    const QRect panes[2] = {Page().Map().Panel().geometry(), Page().Sonar().Panel().geometry()};
    for (const DrawnText& drawn : TextDevice::Of(Page(), {})) {
        for (int pane = 0; pane < 2; ++pane) {
            const QRect above(panes[pane].x(), panes[pane].y() - 44, panes[pane].width(), 44);
            if (!QRectF(above).contains(drawn.ink.center()))
                continue;
            texts[pane] << drawn.text;
            QVERIFY2(drawn.pixels >= 14, qPrintable(drawn.text));
            QVERIFY2(
                drawn.ink.right() < panes[pane].right() - (pane == 0 ? 3 : 6) * 44, qPrintable(drawn.text));
        }
    }
    const QString position = ZrPositionShown::Text(at.lat, at.lng);
    QCOMPARE(texts[0].join(QStringLiteral("  ")), position);
    const QString line = texts[1].join(QLatin1Char(' '));
    const bool isShort = line == QStringLiteral("Bottom ") + bottom;
    QVERIFY2(isShort || line == QStringLiteral("Line 151 of 300, bottom at ") + bottom
            || line == QStringLiteral("Line 151 of 300 bottom at ") + bottom,
        qPrintable(line));
    QVERIFY(!isShort || size.width() < 1200);
}

/// Events and targets over the waterfall are brighter than anything of it at night, and have a dark edge.
void tst_SurveyReviewScreen::marksShowAtNight()
{
    Open(m_log);
    Page().Events().Add(Rec().TimeOfPing(150.0), QStringLiteral("Wreck"));
    Page().GoTo(Rec().TimeOfPing(170.0));
    m_view->SetColours(ZrColourScheme::night);
    WaitForLines();
    const QImage picture = m_view->grab().toImage();
    const QRect panel = Page().Sonar().Panel().geometry();
    const int y = panel.y() + qRound(Page().Sonar().Panel().YOf(150.0) / m_view->devicePixelRatioF());
    const auto light = [&](const QRect& area) {
        int most = 0;
        for (int row = area.top(); row <= area.bottom(); ++row)
            for (int x = area.left(); x <= area.right(); ++x)
                most = std::max(most, qGray(picture.pixel(x, row)));
        return most;
    };
    const int mark = light(QRect(panel.x() + 2, y - 2, 20, 5));
    const int other = light(QRect(panel.x() + 60, y - 20, 150, 40));
    QVERIFY2(mark >= 150 && mark > other + 40, qPrintable(QStringLiteral("%1 %2").arg(mark).arg(other)));
    Keep(QStringLiteral("night"));
}

/// Beside the list of events and over one pane alone as well; nothing shows through it.
void tst_SurveyReviewScreen::lookLeavesTheWaterfall()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    const ReviewLook& look = Page().Sonar().Look();
    const ZrWaterfallPanel& panel = Page().Sonar().Panel();
    for (const QSize size : {QSize(900, 600), QSize(1280, 800), QSize(2560, 1440)}) {
        m_view->resize(size);
        QTRY_COMPARE(Page().size(), size);
        for (const bool hasList : {false, true}) {
            Page().Events().setVisible(hasList);
            QTest::keyClick(m_view.get(), Qt::Key_P);
            WaitForLines();
            const QString name = QStringLiteral("look-%1-%2").arg(size.width()).arg(int(hasList));
            QVERIFY2(!look.geometry().intersects(panel.geometry()),
                qPrintable(name + QStringLiteral(": %1").arg(look.y() - panel.geometry().bottom())));
            QVERIFY(!hasList || look.geometry().right() < Page().Events().x());
            // Between the palettes and the sliders lies its own colour alone.
            const QImage picture = m_view->grab().toImage();
            const int x = look.x() + look.findChildren<ZrSlider*>().first()->x() - ZrTheme::DpI(12);
            for (int y = look.y() + 8; y < look.geometry().bottom() - 8; ++y)
                QCOMPARE(picture.pixelColor(x, y), ZrTheme::formBack);
            Keep(name);
            QTest::keyClick(m_view.get(), Qt::Key_2);
            QVERIFY2(look.y() - panel.y() > panel.height() / 2, qPrintable(name));
            Keep(name + QStringLiteral("-large"));
            QTest::keyClick(m_view.get(), Qt::Key_2);
            QTest::keyClick(m_view.get(), Qt::Key_P);
            QVERIFY(!look.isVisible());
        }
    }
}

/// The panels over the waterfall fit into it, and fingers hit what is in them.
void tst_SurveyReviewScreen::toolsAtEverySize()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    for (const QSize size : {QSize(900, 600), QSize(1280, 800), QSize(1920, 1080), QSize(2560, 1440)}) {
        m_view->resize(size);
        QTRY_COMPARE(Page().size(), size);
        WaitForLines();
        const QString name = QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
        for (const int key : {int(Qt::Key_K), int(Qt::Key_P)}) {
            QTest::keyClick(m_view.get(), static_cast<Qt::Key>(key));
            QWidget* panel = key == Qt::Key_K ? static_cast<QWidget*>(&Page().Sonar().Bottom())
                                              : static_cast<QWidget*>(&Page().Sonar().Look());
            QVERIFY(panel->isVisible());
            // Drawn on is the waterfall; what its look is chosen by leaves all of it in sight.
            const QRect waterfall = Page().Sonar().Panel().geometry();
            if (key == Qt::Key_K)
                QVERIFY2(waterfall.contains(panel->geometry()), qPrintable(name));
            else
                QVERIFY2(
                    !panel->geometry().intersects(waterfall) && panel->geometry().bottom() < Page().Bar().y(),
                    qPrintable(name));
            const QList<ZrBtn*> buttons = panel->findChildren<ZrBtn*>();
            QVERIFY(buttons.size() >= 3);
            for (int i = 0; i < buttons.size(); ++i) {
                const QString who = name + QLatin1Char(' ') + buttons[i]->accessibleName();
                QVERIFY2(panel->rect().contains(buttons[i]->geometry()), qPrintable(who));
                QVERIFY2(buttons[i]->width() >= 44 && buttons[i]->height() >= 44, qPrintable(who));
                for (int j = 0; j < i; ++j)
                    QVERIFY2(!buttons[i]->geometry().intersects(buttons[j]->geometry()), qPrintable(who));
            }
            Keep(QStringLiteral("tool%1-%2").arg(key == Qt::Key_K ? 'K' : 'P').arg(name));
            QTest::keyClick(m_view.get(), static_cast<Qt::Key>(key));
            QVERIFY(!panel->isVisible());
        }
    }
}

/// Palettes do not shine at night, have names, and are chosen with a tap.
void tst_SurveyReviewScreen::nightPalettes()
{
    Open(m_log);
    m_view->SetColours(ZrColourScheme::night);
    QTest::keyClick(m_view.get(), Qt::Key_P);
    ReviewLook& look = Page().Sonar().Look();
    QVERIFY(look.isVisible());
    Settle();
    // As it lies over the page: its own corners are clear.
    const QImage image = m_view->grab(QRect(look.mapTo(m_view.get(), QPoint()), look.size())).toImage();
    int brightest = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            brightest = std::max(brightest, qGray(image.pixel(x, y)));
    QVERIFY2(brightest < 140, qPrintable(QString::number(brightest)));
    const QList<ZrPaletteBtn*> palettes = look.findChildren<ZrPaletteBtn*>();
    QCOMPARE(palettes.size(), ZrSonarPalette::Names().size());
    for (int i = 0; i < palettes.size(); ++i) {
        QTest::mouseClick(palettes[i], Qt::LeftButton);
        QCOMPARE(m_view->Model().settings.palette, i);
        for (int j = 0; j < palettes.size(); ++j)
            QCOMPARE(palettes[j]->on, i == j);
        QCOMPARE(palettes[i]->text.toLower(), ZrSonarPalette::Names()[i].toLower());
    }
}

/// What is in use while a message is shown is not covered by it.
void tst_SurveyReviewScreen::messagesLeaveControls()
{
    Open(m_log);
    for (const QSize size : {QSize(900, 600), QSize(1280, 800), QSize(2560, 1440)}) {
        m_view->resize(size);
        QTRY_COMPARE(Page().size(), size);
        for (const bool isError : {false, true}) {
            if (isError)
                m_view->Warn(QStringLiteral("A long message ").repeated(12));
            else
                m_view->Tell(QStringLiteral("Event added"), QStringLiteral("Undo"), [] {});
            const auto* toast = m_view->findChild<ZrToast*>();
            QVERIFY(toast->isVisible());
            QVERIFY2(toast->geometry().bottom() < Page().Bar().y(),
                qPrintable(QStringLiteral("%1 %2").arg(toast->geometry().bottom()).arg(Page().Bar().y())));
            QVERIFY(m_view->rect().contains(toast->geometry()));
        }
    }
    // Nor is the panel over the waterfall.
    for (const QSize size : {QSize(900, 600), QSize(1280, 800), QSize(1920, 1080)}) {
        m_view->resize(size);
        QTRY_COMPARE(Page().size(), size);
        QTest::keyClick(m_view.get(), Qt::Key_P);
        QVERIFY(Page().Sonar().Look().isVisible());
        m_view->Tell(QStringLiteral("Event added"), QStringLiteral("Undo"), [] {});
        const QRect toast = m_view->findChild<ZrToast*>()->geometry();
        QVERIFY2(!toast.intersects(Page().Sonar().Look().geometry()),
            qPrintable(
                QStringLiteral("%1 %2").arg(toast.y()).arg(Page().Sonar().Look().geometry().bottom())));
        QVERIFY(toast.bottom() < Page().Sonar().Look().y());
        // Whichever came first.
        QTest::keyClick(m_view.get(), Qt::Key_P);
        QVERIFY(m_view->findChild<ZrToast*>()->geometry().bottom() > toast.bottom());
        QTest::keyClick(m_view.get(), Qt::Key_P);
        QCOMPARE(m_view->findChild<ZrToast*>()->geometry(), toast);
        Keep(QStringLiteral("look%1").arg(size.width()));
        QTest::keyClick(m_view.get(), Qt::Key_P);
        // With one pane alone the scale at its lower edge is left in sight.
        for (const int pane : {int(Qt::Key_1), int(Qt::Key_2)}) {
            QTest::keyClick(m_view.get(), static_cast<Qt::Key>(pane));
            m_view->Tell(QStringLiteral("Event added"));
            const QRect told = m_view->findChild<ZrToast*>()->geometry();
            QVERIFY(told.bottom() < Page().Bar().y() - ZrTheme::DpI(ZrGridLayer::ScaleRoom));
            QTest::keyClick(m_view.get(), static_cast<Qt::Key>(pane));
        }
    }
    // Nor are the controls of the list; and the tool has room beside it in the smallest window.
    m_view->resize(900, 600);
    QTRY_COMPARE(Page().size(), QSize(900, 600));
    QTest::keyClick(m_view.get(), Qt::Key_L, Qt::ControlModifier);
    Page().Events().Add(Rec().TimeOfPing(100.0), QStringLiteral("Wreck"));
    QVERIFY(m_view->findChild<ZrToast*>()->geometry().right() < Page().Events().x());
    QTest::keyClick(m_view.get(), Qt::Key_K);
    const QRect tool = Page().Sonar().Bottom().geometry();
    QVERIFY(Page().rect().contains(tool) && !tool.intersects(Page().Events().geometry()));
    for (const ZrBtn* button : Page().Sonar().Bottom().findChildren<ZrBtn*>())
        QVERIFY(Page().Sonar().Bottom().rect().contains(button->geometry()));
    // All plots are there beside it.
    QCOMPARE(Page().Plots().ShownPlots(), 4);
    for (int plot = 0; plot < 4; ++plot)
        QVERIFY(Page().Plots().PlotRect(plot).height() >= 24);
    Keep(QStringLiteral("narrow"));
    // Other pages have nothing there.
    m_view->Show(QStringLiteral("Home"));
    m_view->Tell(QStringLiteral("Hello"));
    const auto* toast = m_view->findChild<ZrToast*>();
    QVERIFY(toast->geometry().bottom() > m_view->height() - 60);
}

/// What a finger may miss does not shrink with the pixels of a screen.
void tst_SurveyReviewScreen::hits()
{
    Open(m_log);
    const double at = Rec().TimeOfPing(150.0);
    Page().GoTo(at);
    WaitForLines();
    ZrWaterfallPanel& panel = Page().Sonar().Panel();
    QSignalSpy scrubs(&panel, &ZrWaterfallPanel::ScrubBegan);
    std::vector<ZrWaterfallPoint> taps;
    connect(&panel, &ZrWaterfallPanel::Tapped, this,
        [&taps](const ZrWaterfallPoint& point) { taps.push_back(point); });
    Drag(panel, QPoint(250, 60), QPoint(255, 64));
    QCOMPARE(taps.size(), std::size_t(1));
    QCOMPARE(scrubs.size(), 0);
    Drag(panel, QPoint(250, 60), QPoint(258, 68));
    QCOMPARE(taps.size(), std::size_t(1));
    QCOMPARE(scrubs.size(), 1);
    // The place that was pointed at, to the pixel.
    Page().GoTo(at);
    WaitForLines();
    const ZrSonarSpot spot{155, sideStarboard, 500.0};
    const QPoint pixel = PixelOf(spot);
    taps.clear();
    SendPress(panel, pixel);
    SendRelease(panel, pixel);
    QCOMPARE(taps.size(), std::size_t(1));
    const ZrWaterfallPoint point = taps[0];
    QVERIFY(std::fabs(point.ping - 155.0) < 2.0);
    const double metres = panel.Layout().MetresPerPixel() * panel.devicePixelRatioF();
    QVERIFY(std::fabs(point.slantRange - Rec().Geo().SlantRange(spot)) <= metres);
    // A flag of the time line.
    Page().Events().Add(Rec().TimeOfPing(100.0), QStringLiteral("Wreck"));
    ZrTimeBar& bar = Page().Bar();
    QSignalSpy flags(&bar, &ZrTimeBar::EventTapped);
    const QPoint flag(qRound(bar.XOf(Rec().TimeOfPing(100.0))) + 18, 6);
    SendPress(bar, flag);
    SendRelease(bar, flag);
    QCOMPARE(flags.size(), 1);
    // And its pin on the map.
    Page().GoTo(at);
    Settle();
    panel.disconnect(this);
    QSignalSpy pins(&Page().Map(), &ReviewMap::Scrubbed);
    const QPoint pin
        = Page().Map().PixelOf(Rec().PositionAt(Rec().TimeOfPing(100.0))).toPoint() + QPoint(0, 19);
    SendPress(Page().Map().Panel(), pin);
    SendRelease(Page().Map().Panel(), pin);
    QCOMPARE(pins.size(), 1);
    QVERIFY(std::fabs(pins[0][0].toDouble() - Rec().TimeOfPing(100.0)) < 1e-6);
}

/// The same in a program of its own, whose screen has two pixels for each.
void tst_SurveyReviewScreen::hitsAtTwoPixels()
{
    if (qEnvironmentVariable("QT_SCALE_FACTOR") == QLatin1String("2")) {
        QCOMPARE(m_view->devicePixelRatioF(), 2.0);
        return;
    }
    QProcess self;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("2"));
    self.setProcessEnvironment(environment);
    self.setProcessChannelMode(QProcess::MergedChannels);
    self.start(QCoreApplication::applicationFilePath(),
        {QStringLiteral("hits"), QStringLiteral("hitsAtTwoPixels"), QStringLiteral("messagesLeaveControls")});
    QVERIFY(self.waitForFinished(patience));
    const QByteArray output = self.readAll();
    QVERIFY2(self.exitStatus() == QProcess::NormalExit && self.exitCode() == 0, output.constData());
    QVERIFY2(output.contains("hitsAtTwoPixels"), output.constData());
}

/// A key for each action, and a hint that names it.
void tst_SurveyReviewScreen::keysAreInToolTips()
{
    Open(m_log);
    QStringList hints;
    for (const ZrBtn* button : Page().findChildren<ZrBtn*>()) {
        hints << button->toolTip();
        QVERIFY2(!button->toolTip().isEmpty(), qPrintable(button->text + button->objectName()));
    }
    for (const char* key : {"Space", "Shift+Space", "Left", "Right", "Shift+Left", "Shift+Right", "−", "+",
             "A", "B", "L", "E", "Shift+E", "Ctrl+E", "T", "Ctrl+O", "Ctrl+L", "Ctrl+S", "F", "Shift+F", "1",
             "2", "3", "P", "S", "O", "W", "K", "M", "G", "F6", "Del", "Ctrl+Z", "Ctrl+Y", "D", "Shift+D",
             "H", "C", "Esc", "Return"}) {
        const QString named = QLatin1Char('(') + QString::fromUtf8(key);
        bool isThere = false;
        for (const QString& hint : hints)
            isThere = isThere || hint.contains(named + QLatin1Char(')'))
                || hint.contains(named + QLatin1Char(' '));
        QVERIFY2(isThere, key);
    }
}

GL_TEST_MAIN(tst_SurveyReviewScreen)
#include "tst_SurveyReviewScreen.moc"
