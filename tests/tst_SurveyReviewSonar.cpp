// The page "Review": targets are measured in the waterfall, the bottom line is corrected there.

#include "SurveyReviewWindow.h"
#include "ZrKit/geo/ZrPositionShown.h"
#include "ZrKit/review/ZrTimeText.h"
#include "ZrKit/sonar/ZrBottomFile.h"
#include "ZrKit/sonar/ZrSonarBlanking.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrSonarTestLog.h"
#include "apps/ZrSurvey/ReviewBottom.h"
#include "apps/ZrSurvey/ReviewEvents.h"
#include "apps/ZrSurvey/ReviewExport.h"
#include "apps/ZrSurvey/ReviewLook.h"
#include "apps/ZrSurvey/ReviewMeasure.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

class tst_SurveyReviewSonar : public SurveyReviewWindow
{
    Q_OBJECT

private Q_SLOTS:
    void measuresAsTheTool();
    void targetsAreEvents();
    void targetsAreExported();
    void bottomIsDrawn();
    void bottomIsUsedAtOnce();
    void bottomStepsBack();
    void bottomIsDetected();
    void bottomOutlives();
    void bottomCannotBeSaved();
    void toolKeysWithoutCtrl();
    void oneToolAtATime();
    void toolAfterTheLook();
    void pulseIsDark();
    void pictureWithoutAltitude();

private:
    /// Draws the bottom line at an altitude on both lines \p from and \p to, on the starboard side.
    void Draw(std::size_t from, std::size_t to, double altitude);
    void MarkTarget(std::size_t line, double sample);
    QColor PixelAt(const QPoint& at); ///< of the waterfall
};

void tst_SurveyReviewSonar::Draw(std::size_t from, std::size_t to, double altitude)
{
    const auto place = [&](std::size_t line) {
        const ZrSonarChannel channel = Rec().Pings().Side(line, sideStarboard);
        return PixelOf({line, sideStarboard, altitude / channel.SampleLength() - 0.5});
    };
    Drag(Page().Sonar().Panel(), place(from), place(to));
}

void tst_SurveyReviewSonar::MarkTarget(std::size_t line, double sample)
{
    ReviewMeasure& measure = Page().Sonar().Measure();
    measure.SetOn(true);
    ZrWaterfallPanel& panel = Page().Sonar().Panel();
    const QPoint at = PixelOf({line, sideStarboard, sample});
    Drag(panel, at, at + QPoint(30, -25));
    QVERIFY2(measure.Target() && measure.Extent(), qPrintable(Toast()));
    // What was measured is told beside it.
    QVERIFY(measure.isVisible() && !measure.geometry().contains(panel.pos() + at));
    QTest::keyClick(m_view.get(), Qt::Key_Return);
}

QColor tst_SurveyReviewSonar::PixelAt(const QPoint& at)
{
    return m_view->grab().toImage().pixelColor(Page().Sonar().Panel().pos() + at);
}

/// A target, its length and its height are what `zr sonar target` tells for the same samples, but for the
/// pixel that a finger hits.
void tst_SurveyReviewSonar::measuresAsTheTool()
{
    const ZrUnitsState units;
    Open(m_log);
    const std::size_t line = 150;
    Page().GoTo(Rec().TimeOfPing(static_cast<double>(line)));
    WaitForLines();
    ZrWaterfallPanel& panel = Page().Sonar().Panel();
    ReviewMeasure& measure = Page().Sonar().Measure();
    QTest::keyClick(m_view.get(), Qt::Key_M);
    QVERIFY(measure.IsOn() && measure.isVisible());
    const ZrSonarSpot from{line, sideStarboard, 600.0};
    const ZrSonarSpot to{line + 20, sideStarboard, 640.0};
    const QPoint a = PixelOf(from);
    const QPoint b = PixelOf(to);
    QVERIFY2(panel.rect().contains(a) && panel.rect().contains(b),
        qPrintable(QStringLiteral("%1, %2 to %3, %4").arg(a.x()).arg(a.y()).arg(b.x()).arg(b.y())));
    SendPress(panel, a);
    SendMove(panel, (a + b) / 2);
    SendMove(panel, b);
    SendRelease(panel, b);
    QVERIFY(measure.Target() && measure.Extent());
    measure.ShadowButton().on = false;
    QTest::mouseClick(&measure.ShadowButton(), Qt::LeftButton);
    const QPoint shadow = PixelOf({line, sideStarboard, 700.0});
    SendPress(panel, shadow);
    SendRelease(panel, shadow);
    QVERIFY2(measure.Shadow(), qPrintable(Toast()));

    const auto number = [](std::size_t value) { return QString::number(value); };
    const u32 port = Rec().Pings()[line].sides[sidePort].sampleCount;
    const ToolResult result = RunTool({QStringLiteral("sonar"), QStringLiteral("target"), m_log,
        QStringLiteral("--line"), number(line), QStringLiteral("--column"), number(port + 600),
        QStringLiteral("--to-line"), number(line + 20), QStringLiteral("--to-column"), number(port + 640),
        QStringLiteral("--shadow-column"), number(port + 700), QStringLiteral("--json")});
    QVERIFY2(result.code == 0, result.Text());
    const QJsonObject tool = result.Json();
    // A pixel is some 9 cm here.
    const double pixel = panel.Layout().MetresPerPixel();
    QVERIFY(pixel > 0.0 && pixel < 0.15);
    const auto isNear = [&tool](const char* key, double value, double within) {
        const double expected = tool.value(QLatin1String(key)).toDouble();
        if (std::fabs(value - expected) <= within)
            return true;
        qWarning("%s: %g instead of %g", key, value, expected);
        return false;
    };
    QVERIFY(isNear("slant_range", measure.Target()->slantRange, pixel));
    QVERIFY(isNear("ground_range", measure.Target()->groundRange, 2.0 * pixel));
    QVERIFY(isNear("altitude", measure.Target()->altitude, 0.05));
    QVERIFY(isNear("latitude", measure.Target()->position.lat, 5e-6));
    QVERIFY(isNear("longitude", measure.Target()->position.lng, 5e-6));
    QVERIFY(isNear("distance", measure.Extent()->distance, 0.4));
    QVERIFY(isNear("height", measure.Shadow()->height, 0.15));

    // Kept as an event at the time of the ping.
    QTest::mouseClick(&measure.StoreButton(), Qt::LeftButton);
    QCOMPARE(Rec().Events().Count(), std::size_t(1));
    QVERIFY(std::fabs(Rec().Events().At(0).time - Rec().Pings()[measure.Target()->spot.ping].time) < 1e-3);
    QVERIFY(Rec().Events().At(0).detail.contains(QStringLiteral("height")));
    // The water column is refused in words, and what was measured stays.
    const QPoint water = PixelOf({line, sideStarboard, 60.0});
    SendPress(panel, water);
    SendRelease(panel, water);
    QVERIFY(!Toast().isEmpty());
    QVERIFY(measure.Extent());
    QTest::keyClick(m_view.get(), Qt::Key_Escape);
    QVERIFY(!measure.IsOn());
}

/// Numbered, listed with their size in the units in force, shown where they are, taken back in one step.
void tst_SurveyReviewSonar::targetsAreEvents()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    WaitForLines();
    MarkTarget(150, 600.0);
    MarkTarget(160, 500.0);
    QCOMPARE(Rec().Targets().size(), std::size_t(2));
    QCOMPARE(Rec().Targets()[0].name, QStringLiteral("Target 1"));
    QCOMPARE(Rec().Targets()[1].name, QStringLiteral("Target 2"));
    const ZrSonarTarget target = Rec().Targets()[0];
    QVERIFY(std::fabs(target.position.lat - 48.445) < 0.01);
    QVERIFY(target.length > 0.5 && target.width > 0.5);
    const auto subtitle = [this] { return Page().Events().List().Items()[0].subtitle; };
    // When, how large, and below that where.
    const QString shown = QStringLiteral("%1  %2 × %3 m\n%4")
                              .arg(ZrTimeText::Clock(target.time, 1))
                              .arg(target.length, 0, 'f', 2)
                              .arg(target.width, 0, 'f', 2)
                              .arg(ZrPositionShown::Text(target.position.lat, target.position.lng));
    QCOMPARE(subtitle(), shown);
    // Its name is edited as that of any event; it stays a target.
    Page().Events().Edit(0);
    TypeText(QStringLiteral("Anchor"));
    QCOMPARE(Rec().Targets()[0].name, QStringLiteral("Anchor"));
    QCOMPARE(Rec().Targets()[0].length, target.length);
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Rec().Targets().size(), std::size_t(1));
    Keep(QStringLiteral("targets"));
}

void tst_SurveyReviewSonar::targetsAreExported()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    WaitForLines();
    MarkTarget(150, 600.0);
    MarkTarget(160, 500.0);
    Page().Events().Add(Rec().TimeOfPing(155.0), QStringLiteral("Remark"));
    QSignalSpy done(&Page().Export(), &ReviewExport::Done);
    // The first alone is in the part.
    Page().Export().SetPart(Page().Recording(), Rec().TimeOfPing(140.0), Rec().TimeOfPing(156.0));
    const QString path = m_folder.filePath(QStringLiteral("targets.geojson"));
    QVERIFY(Page().Export().Write(ZrSurveyExport::targets, path));
    QVERIFY(done.wait(patience) && done.last()[0].toBool());
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonArray features
        = QJsonDocument::fromJson(file.readAll()).object()[QStringLiteral("features")].toArray();
    QCOMPARE(features.size(), 1);
    const QJsonObject properties = features[0].toObject()[QStringLiteral("properties")].toObject();
    QCOMPARE(properties[QStringLiteral("ping")].toInt(), 150);
    QVERIFY(std::fabs(properties[QStringLiteral("length")].toDouble() - Rec().Targets()[0].length) < 1e-3);
}

void tst_SurveyReviewSonar::bottomIsDrawn()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    WaitForLines();
    ReviewBottom& bottom = Page().Sonar().Bottom();
    // Without the tool a drag scrubs and draws nothing.
    Draw(140, 160, 6.0);
    QCOMPARE(bottom.Editor().EditedCount(0, 299), std::size_t(0));
    Page().GoTo(Rec().TimeOfPing(150.0));
    WaitForLines();
    QTest::keyClick(m_view.get(), Qt::Key_K);
    QVERIFY(bottom.IsOn() && bottom.isVisible());
    Draw(140, 160, 6.0);
    const double pixel = Page().Sonar().Panel().Layout().MetresPerPixel();
    const std::size_t edited = bottom.Editor().EditedCount(0, 299);
    QVERIFY2(edited >= 18 && edited <= 24, qPrintable(QString::number(edited)));
    for (std::size_t ping = 142; ping <= 158; ++ping)
        QVERIFY(std::fabs(Rec().Bottom().Altitude(ping) - 6.0) <= pixel);
    // The cursor has not moved by it, and the line stands out.
    QVERIFY(std::fabs(Page().Sonar().Panel().Cursor() - 150.0) < 1e-6);
    Keep(QStringLiteral("bottom"));
    // On the port side as well; outside of the picture nothing is drawn.
    ZrWaterfallPanel& panel = Page().Sonar().Panel();
    const double before = Rec().Bottom().Altitude(150);
    const QPoint port = PixelOf({150, sidePort, 80.0});
    Drag(panel, port, port + QPoint(0, 30));
    QVERIFY(std::fabs(Rec().Bottom().Altitude(149) - before) > pixel);
    QTest::keyClick(m_view.get(), Qt::Key_Escape);
    QVERIFY(!bottom.IsOn() && !bottom.isVisible());
}

/// By slant correction, the altitude told, targets and pictures.
void tst_SurveyReviewSonar::bottomIsUsedAtOnce()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    WaitForLines();
    ZrWaterfallPanel& panel = Page().Sonar().Panel();
    QTest::keyClick(m_view.get(), Qt::Key_S);
    QVERIFY(panel.Layout().IsSlantCorrected());
    const ZrSonarSpot spot{150, sideStarboard, 600.0};
    const QPoint corrected = PixelOf(spot);
    const double ground = Rec().Geo().GroundRange(spot);
    QTest::keyClick(m_view.get(), Qt::Key_K);
    // The line is drawn where the echoes came from.
    QVERIFY(!panel.Layout().IsSlantCorrected());
    Draw(130, 170, 18.0);
    WaitForLines();
    QTest::keyClick(m_view.get(), Qt::Key_Escape);
    QVERIFY(panel.Layout().IsSlantCorrected());
    QVERIFY(Rec().Geo().GroundRange(spot) < ground - 1.0);
    QVERIFY2(PixelOf(spot).x() < corrected.x() - 5,
        qPrintable(QStringLiteral("%1 %2").arg(PixelOf(spot).x()).arg(corrected.x())));
    MarkTarget(150, 650.0);
    QVERIFY(std::fabs(Rec().Targets().at(0).altitude - 18.0) < 0.1);
    // Only the tiles in view were read once more.
    QVERIFY(Page().Sonar().Loader()->LinesRead() <= 900);
}

void tst_SurveyReviewSonar::bottomStepsBack()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    WaitForLines();
    ReviewBottom& bottom = Page().Sonar().Bottom();
    QTest::keyClick(m_view.get(), Qt::Key_K);
    QVERIFY(!bottom.UndoButton().isEnabled());
    const double before = Rec().Geo().Altitude(150);
    Draw(140, 160, 6.0);
    const double drawn = Rec().Geo().Altitude(150);
    QVERIFY(drawn != before);
    QTest::mouseClick(&bottom.UndoButton(), Qt::LeftButton);
    QCOMPARE(Rec().Geo().Altitude(150), before);
    QTest::keyClick(m_view.get(), Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(Rec().Geo().Altitude(150), drawn);
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Rec().Geo().Altitude(150), before);
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(m_view.get(), Qt::Key_Delete);
    QCOMPARE(Rec().Geo().Altitude(150), before);
    QCOMPARE(bottom.Editor().EditedCount(0, 299), std::size_t(0));
    QTest::keyClick(m_view.get(), Qt::Key_Delete);
    QVERIFY2(Toast().contains(QStringLiteral("Nothing was drawn")), qPrintable(Toast()));
    // With the tool off these keys are those of the events again.
    QTest::keyClick(m_view.get(), Qt::Key_Escape);
    Page().Events().Add(Rec().TimeOfPing(100.0), QStringLiteral("Wreck"));
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Rec().Events().Count(), std::size_t(0));
}

void tst_SurveyReviewSonar::bottomIsDetected()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    WaitForLines();
    ReviewBottom& bottom = Page().Sonar().Bottom();
    QTest::keyClick(m_view.get(), Qt::Key_K);
    const double before = Rec().Geo().Altitude(150);
    Draw(140, 160, before + 1.0);
    QSignalSpy tracked(&bottom.Editor(), &ZrBottomEditor::Tracked);
    QTest::mouseClick(&bottom.DetectButton(), Qt::LeftButton);
    QTRY_COMPARE_WITH_TIMEOUT(tracked.size(), 1, patience);
    QVERIFY(tracked[0][0].toBool());
    QCOMPARE(bottom.Editor().EditedCount(0, 299), std::size_t(0));
    QVERIFY(std::fabs(Rec().Geo().Altitude(150) - before) < 0.4);
    // The cover of the window has gone with the work.
    bottom.SetSides(ReviewBottom::portAlone);
    QTest::keyClick(m_view.get(), Qt::Key_D);
    QTRY_COMPARE_WITH_TIMEOUT(tracked.size(), 2, patience);
}

/// Who copies does not throw away what was measured.
void tst_SurveyReviewSonar::toolKeysWithoutCtrl()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    WaitForLines();
    MarkTarget(150, 500.0);
    ReviewMeasure& measure = Page().Sonar().Measure();
    const ZrBtn& shadow = measure.ShadowButton();
    const bool wantsShadow = shadow.on;
    QTest::keyClick(m_view.get(), Qt::Key_C, Qt::ControlModifier);
    QTest::keyClick(m_view.get(), Qt::Key_H, Qt::ControlModifier);
    QVERIFY(measure.Target() && measure.Extent());
    QCOMPARE(shadow.on, wantsShadow);
    QTest::keyClick(m_view.get(), Qt::Key_H);
    QCOMPARE(shadow.on, !wantsShadow);
    QTest::keyClick(m_view.get(), Qt::Key_C);
    QVERIFY(!measure.Target());

    QTest::keyClick(m_view.get(), Qt::Key_K);
    ReviewBottom& bottom = Page().Sonar().Bottom();
    QVERIFY(bottom.IsOn());
    const int sides = bottom.Sides();
    QTest::keyClick(m_view.get(), Qt::Key_D, Qt::ControlModifier);
    QVERIFY(!bottom.Editor().IsTracking());
    QTest::keyClick(m_view.get(), Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(bottom.Sides(), sides);
    QTest::keyClick(m_view.get(), Qt::Key_D, Qt::ShiftModifier);
    QVERIFY(bottom.Sides() != sides);
}

void tst_SurveyReviewSonar::bottomOutlives()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    WaitForLines();
    QTest::keyClick(m_view.get(), Qt::Key_K);
    Draw(140, 160, 6.0);
    const double drawn = Rec().Bottom().Altitude(150);
    // Beside the log at once, in one step.
    QTRY_VERIFY_WITH_TIMEOUT(Page().Sonar().Bottom().Editor().IsSaved(), patience);
    ZrBottomFile file(m_log);
    ZrBottomLine line;
    QVERIFY2(file.Load(Rec().Pings(), line), qPrintable(file.Error()));
    QCOMPARE(line.Altitude(150), drawn);
    Open(m_log);
    QVERIFY(!Page().Sonar().Bottom().IsOn());
    QCOMPARE(Rec().Bottom().Altitude(150), drawn);
    QVERIFY(Rec().Bottom().IsEdited(150));
}

void tst_SurveyReviewSonar::bottomCannotBeSaved()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    WaitForLines();
    const QString path = m_log + QStringLiteral(".bottom.json");
    QVERIFY(QDir().mkdir(path));
    QTest::keyClick(m_view.get(), Qt::Key_K);
    Draw(140, 160, 6.0);
    QTRY_VERIFY2_WITH_TIMEOUT(Toast().contains(path), qPrintable(Toast()), patience);
    QVERIFY(Toast().contains(QStringLiteral("not saved")));
    QVERIFY(std::fabs(Rec().Geo().Altitude(150) - 6.0) < 0.2);
    QVERIFY(QDir().rmdir(path));
}

void tst_SurveyReviewSonar::oneToolAtATime()
{
    Open(m_log);
    WaitForLines();
    ReviewMeasure& measure = Page().Sonar().Measure();
    ReviewBottom& bottom = Page().Sonar().Bottom();
    const ZrWaterfallPanel& panel = Page().Sonar().Panel();
    QTest::keyClick(m_view.get(), Qt::Key_M);
    QVERIFY(measure.IsOn() && !bottom.IsOn() && panel.m_isPointing);
    QTest::keyClick(m_view.get(), Qt::Key_K);
    QVERIFY(!measure.IsOn() && bottom.IsOn() && panel.m_isPointing);
    QTest::keyClick(m_view.get(), Qt::Key_M);
    QVERIFY(measure.IsOn() && !bottom.IsOn() && panel.m_isPointing);
    QTest::keyClick(m_view.get(), Qt::Key_Escape);
    QVERIFY(!measure.IsOn() && !bottom.IsOn() && !panel.m_isPointing);
    // Another log ends it.
    QTest::keyClick(m_view.get(), Qt::Key_K);
    Open(m_log);
    QVERIFY(!bottom.IsOn() && !panel.m_isPointing);
}

/// The stripe in the middle of the waterfall is as recorded, or dark; the setting is kept, and the picture
/// that is exported is as the one on the screen.
void tst_SurveyReviewSonar::pulseIsDark()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    WaitForLines();
    const QPoint middle = PixelOf({165, sideStarboard, 2.0});
    const QPoint seabed = PixelOf({165, sideStarboard, 500.0});
    SurveySettings& settings = m_view->Model().settings;
    QCOMPARE(settings.blanking, int(ZrSonarBlanking::pulse));
    QVERIFY2(PixelAt(middle).lightness() < 20, qPrintable(PixelAt(middle).name()));
    QTest::keyClick(m_view.get(), Qt::Key_W); // dark
    QCOMPARE(settings.blanking, int(ZrSonarBlanking::water));
    WaitForLines();
    QVERIFY(PixelAt(middle).lightness() < 20);
    QTest::keyClick(m_view.get(), Qt::Key_W); // as recorded
    QCOMPARE(settings.blanking, int(ZrSonarBlanking::none));
    QTRY_VERIFY2_WITH_TIMEOUT(
        PixelAt(middle).lightness() > 100, qPrintable(PixelAt(middle).name()), patience);
    WaitForLines();
    QVERIFY(PixelAt(seabed).isValid());

    QSignalSpy done(&Page().Export(), &ReviewExport::Done);
    const auto exported = [&](int blanking) {
        settings.blanking = blanking;
        Page().Export().SetPart(Page().Recording(), Rec().TimeOfPing(0.0), Rec().TimeOfPing(299.0));
        const QString path = m_folder.filePath(QStringLiteral("water%1.png").arg(blanking));
        const bool isDone = Page().Export().Write(ZrSurveyExport::waterfall, path) && done.wait(patience);
        const QImage image(isDone ? path : QString());
        return image.isNull() ? QColor() : image.pixelColor(image.width() / 2 + 2, image.height() / 2);
    };
    QVERIFY(exported(ZrSonarBlanking::none).lightness() > 100);
    QVERIFY(!Toast().contains(QStringLiteral("pulse")));
    const QColor dark = exported(ZrSonarBlanking::pulse);
    QVERIFY2(dark.isValid() && dark.lightness() < 40, qPrintable(dark.name()));
    QVERIFY2(Toast().contains(QStringLiteral("without the outgoing pulse")), qPrintable(Toast()));
}

/// What is said of the picture is what was done to it: without any altitude that is less than was asked for.
void tst_SurveyReviewSonar::pictureWithoutAltitude()
{
    const QString log = m_folder.filePath(QStringLiteral("deep.log"));
    sonar_test::SonarLine line;
    line.altitude = std::nan("");
    line.amplitude = [](int, eSonarSide, u32) { return 0.0; };
    QVERIFY(WriteLine(log, line));
    SurveySettings& settings = m_view->Model().settings;
    settings.slant = true;
    settings.blanking = ZrSonarBlanking::water;
    QSignalSpy done(&Page().Export(), &ReviewExport::Done);
    const auto told = [&](const QString& path) {
        Open(path);
        Page().Export().SetPart(Page().Recording(), Rec().Times()->Begin(), Rec().Times()->End());
        const QString out = m_folder.filePath(QStringLiteral("told.png"));
        return Page().Export().Write(ZrSurveyExport::waterfall, out) && done.wait(patience) ? Toast()
                                                                                            : QString();
    };
    QCOMPARE(told(log), QStringLiteral("told.png was written, without the outgoing pulse"));
    QCOMPARE(told(m_log),
        QStringLiteral("told.png was written, corrected for slant range, with a dark water column"));
}

/// The tool for the bottom line has the room of the look that goes for it, and its hint lies on none of both.
void tst_SurveyReviewSonar::toolAfterTheLook()
{
    Open(m_log);
    for (const QSize size : {QSize(900, 600), QSize(1280, 800), QSize(1920, 1080)}) {
        m_view->resize(size);
        QTRY_COMPARE(Page().size(), size);
        for (const bool isLarge : {false, true}) {
            if (isLarge)
                QTest::keyClick(m_view.get(), Qt::Key_2);
            const QString name = QStringLiteral("%1 %2").arg(size.width()).arg(int(isLarge));
            const ReviewBottom& tool = Page().Sonar().Bottom();
            auto* toast = m_view->findChild<ZrToast*>();
            QTest::keyClick(m_view.get(), Qt::Key_K);
            const QRect place = tool.geometry();
            const QRect hint = toast->geometry();
            QVERIFY2(tool.isVisible() && toast->isVisible() && !hint.intersects(place), qPrintable(name));
            QTest::keyClick(m_view.get(), Qt::Key_K);
            toast->hide();
            QTest::keyClick(m_view.get(), Qt::Key_P);
            QTest::keyClick(m_view.get(), Qt::Key_K);
            QVERIFY2(tool.isVisible() && !Page().Sonar().Look().isVisible(), qPrintable(name));
            QVERIFY2(toast->isVisible(), qPrintable(name));
            QCOMPARE(tool.geometry(), place);
            QCOMPARE(toast->geometry(), hint);
            // Nor do others when the look comes beside it.
            QTest::keyClick(m_view.get(), Qt::Key_P);
            m_view->Tell(QStringLiteral("Event added"), QStringLiteral("Undo"), [] {});
            QVERIFY2(tool.isVisible() && Page().Sonar().Look().isVisible(), qPrintable(name));
            QVERIFY2(!toast->geometry().intersects(tool.geometry()), qPrintable(name));
            QVERIFY2(!toast->geometry().intersects(Page().Sonar().Look().geometry()), qPrintable(name));
            QTest::keyClick(m_view.get(), Qt::Key_P);
            QTest::keyClick(m_view.get(), Qt::Key_K);
            if (isLarge)
                QTest::keyClick(m_view.get(), Qt::Key_2);
        }
    }
}

GL_TEST_MAIN(tst_SurveyReviewSonar)
#include "tst_SurveyReviewSonar.moc"
