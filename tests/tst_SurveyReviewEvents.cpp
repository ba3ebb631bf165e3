// The page "Review": events, and what is exported of a recording.

#include "DrawnText.h"
#include "SurveyReviewWindow.h"
#include "ZrKit/geo/ZrPositionShown.h"
#include "ZrKit/review/ZrEventFile.h"
#include "ZrKit/review/ZrTimeText.h"
#include "ZrKit/sonar/ZrMosaicFile.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/survey/ZrTargetEvent.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrSurveyLog.h"
#include "apps/ZrSurvey/ReviewEvents.h"
#include "apps/ZrSurvey/ReviewExport.h"
#include "apps/ZrSurvey/ReviewText.h"
#include "apps/ZrSurvey/StateBanner.h"

class tst_SurveyReviewEvents : public SurveyReviewWindow
{
    Q_OBJECT

private Q_SLOTS:
    void events();
    void eventsOutlive();
    void timeOfAnEvent_data();
    void timeOfAnEvent();
    void timeOfAnEventIsChecked();
    void timeOfATargetStays();
    void eventsThatCannotBeSaved();
    void flagsAreTheirEvents();
    void positionsAreInTheStyle();
    void keysAreForTheEventAtTheCursor();
    void choiceEndsWithTheCursor();
    void rowsOfTheList();
    void exports();
    void pictureIsAsShown();

private:
    ZrTextPanel* Panel() const
    {
        for (ZrTextPanel* panel : m_view->findChildren<ZrTextPanel*>()) {
            if (panel->isVisible())
                return panel;
        }
        return nullptr;
    }
};

void tst_SurveyReviewEvents::events()
{
    Open(m_log);
    ZrEventList& events = Rec().Events();
    QCOMPARE(events.Count(), std::size_t(0));
    const double at = Rec().TimeOfPing(100.0);
    Page().GoTo(at);
    Page().Act(ReviewTransport::addEvent);
    TypeText(QStringLiteral("Wreck"));
    QCOMPARE(events.Count(), std::size_t(1));
    QCOMPARE(events.At(0).text, QStringLiteral("Wreck"));
    QVERIFY(std::fabs(Rec().TimeOf(events.At(0)) - at) < 1e-6);
    QCOMPARE(Page().Events().List().Items().size(), 1);
    Page().GoTo(Rec().TimeOfPing(200.0));
    Page().Events().Add(Page().Clock().Time(), QStringLiteral("Rope"));
    Page().Events().Edit(0);
    TypeText(QStringLiteral("Wreck, bow"));
    QCOMPARE(events.At(0).text, QStringLiteral("Wreck, bow"));
    // To the one before and behind.
    Page().Act(ReviewTransport::previousEvent);
    QVERIFY(std::fabs(Page().Clock().Time() - at) < 1e-6);
    Page().Act(ReviewTransport::previousEvent);
    QVERIFY(std::fabs(Page().Clock().Time() - at) < 1e-6);
    Page().Act(ReviewTransport::nextEvent);
    QVERIFY(std::fabs(Page().Clock().Time() - Rec().TimeOfPing(200.0)) < 1e-6);
    Page().Events().Remove(0);
    QCOMPARE(events.Count(), std::size_t(1));
    Page().Events().Undo();
    QCOMPARE(events.Count(), std::size_t(2));
    QCOMPARE(events.At(0).text, QStringLiteral("Wreck, bow"));
    Page().Events().Undo();
    QCOMPARE(events.At(0).text, QStringLiteral("Wreck"));
    Page().Events().Redo();
    QCOMPARE(events.At(0).text, QStringLiteral("Wreck, bow"));
    // An empty text is refused in words.
    Page().Events().Edit(0);
    for (ZrTextPanel* panel : m_view->findChildren<ZrTextPanel*>()) {
        if (!panel->isVisible())
            continue;
        panel->Input().selectAll();
        QTest::keyClick(&panel->Input(), Qt::Key_Delete);
        panel->Accept();
        QVERIFY(panel->isVisible());
        QVERIFY(!panel->Problem().isEmpty());
        panel->Cancel();
    }
}

void tst_SurveyReviewEvents::eventsOutlive()
{
    Open(m_log);
    Page().Events().Add(Rec().TimeOfPing(100.0), QStringLiteral("Wreck"), QStringLiteral("long"));
    Open(m_log);
    QCOMPARE(Rec().Events().Count(), std::size_t(1));
    QCOMPARE(Rec().Events().At(0).text, QStringLiteral("Wreck"));
    ZrEventFile file;
    QCOMPARE(file.Read(m_log), ZrEventFile::Whole);
    QCOMPARE(file.events.size(), std::size_t(1));
    QCOMPARE(file.events[0].detail, QStringLiteral("long"));
    QCOMPARE(file.events[0].src, esUser);
}

void tst_SurveyReviewEvents::timeOfAnEvent_data()
{
    QTest::addColumn<QString>("typed"); // %1 is date and time
    QTest::addColumn<double>("seconds"); // that it is moved by
    QTest::newRow("later") << "+20" << 20.0;
    QTest::newRow("earlier") << "-2.5" << -2.5;
    QTest::newRow("as it was") << "" << 0.0;
    QTest::newRow("date and time") << "%1" << 20.0;
}

/// Typed in the list's editor; undo and redo take it back and forth, and it is saved.
void tst_SurveyReviewEvents::timeOfAnEvent()
{
    QFETCH(QString, typed);
    QFETCH(double, seconds);
    Open(m_log);
    ZrEventList& events = Rec().Events();
    Page().Events().Add(Rec().TimeOfPing(100.0), QStringLiteral("Wreck"));
    Page().Events().Add(Rec().TimeOfPing(110.0), QStringLiteral("Rope"));
    const double before = events.At(0).time;
    const double second = events.At(1).time;
    QVERIFY(second - before > 0.0 && second - before < 20.0);
    Page().GoTo(Rec().TimeOf(events.At(0)));
    QCOMPARE(Page().Events().Current(), 0);
    Page().Events().Edit(0);
    ZrTextPanel* panel = Panel();
    QVERIFY(panel);
    ZrInput& time = panel->MoreInput();
    QCOMPARE(static_cast<QLineEdit&>(time).text(), ZrTimeText::DateClock(before, 3));
    if (!typed.isEmpty())
        time.SetText(
            QString(typed).replace(QStringLiteral("%1"), ZrTimeText::DateClock(before + seconds, 3)));
    TypeText(QStringLiteral("Wreck, bow"));
    const auto at = [&events](const QString& text) {
        for (std::size_t i = 0; i < events.Count(); ++i) {
            if (events.At(i).text == text)
                return events.At(i).time;
        }
        return std::nan("");
    };
    const double now = at(QStringLiteral("Wreck, bow"));
    QVERIFY2(std::fabs(now - before - seconds) < 0.001, qPrintable(QString::number(now - before)));
    if (seconds == 0.0)
        QCOMPARE(now, before); // to the last bit, though less is shown
    // In order; the list stays with it,
    QCOMPARE(events.At(seconds > 10.0 ? 1 : 0).text, QStringLiteral("Wreck, bow"));
    // and the cursor goes along.
    QCOMPARE(Page().Events().Current(), seconds > 10.0 ? 1 : 0);
    QVERIFY(std::fabs(Page().Clock().Time() - Rec().TimeOf(events.At(seconds > 10.0 ? 1 : 0))) < 1e-6);
    QVERIFY2(Toast().contains(QStringLiteral("changed")), qPrintable(Toast()));
    ZrEventFile file;
    QCOMPARE(file.Read(m_log), ZrEventFile::Whole);
    QCOMPARE(file.events[seconds > 10.0 ? 1 : 0].time, now);
    Page().Events().Undo();
    QCOMPARE(at(QStringLiteral("Wreck")), before);
    Page().Events().Redo();
    QCOMPARE(at(QStringLiteral("Wreck, bow")), now);
}

void tst_SurveyReviewEvents::timeOfAnEventIsChecked()
{
    Open(m_log);
    Page().Events().Add(Rec().TimeOfPing(100.0), QStringLiteral("Wreck"));
    const double before = Rec().Events().At(0).time;
    for (const char* typed : {"noon", "1999-01-01 12:00", "+1000000", ""}) {
        Page().Events().Edit(0);
        ZrTextPanel* panel = Panel();
        QVERIFY(panel);
        panel->MoreInput().SetText(QString::fromLatin1(typed));
        panel->Accept();
        QVERIFY2(panel->isVisible() && !panel->Problem().isEmpty(), typed);
        panel->Cancel();
    }
    QCOMPARE(Rec().Events().At(0).time, before);
    QCOMPARE(Rec().Events().UndoText(), QStringLiteral("Add event \"Wreck\""));
}

void tst_SurveyReviewEvents::timeOfATargetStays()
{
    Open(m_log);
    ZrSonarTarget target;
    target.time = Rec().Times()->LogTime(Rec().TimeOfPing(100.0));
    Page().Events().Add(ZrTargetEvent::ToEvent(target, QStringLiteral("Target 1")));
    Page().Events().Edit(0);
    ZrTextPanel* panel = Panel();
    QVERIFY(panel);
    QVERIFY(!panel->MoreInput().isVisible());
    TypeText(QStringLiteral("Boiler"));
    QCOMPARE(Rec().Events().At(0).text, QStringLiteral("Boiler"));
}

/// Said until it is seen, beside the list, with the way out; what is exported is what is in memory.
void tst_SurveyReviewEvents::eventsThatCannotBeSaved()
{
    // A folder in place of the file: that cannot be written by anybody.
    QVERIFY(QDir().mkpath(m_log + QStringLiteral(".evt/in the way")));
    Open(m_log);
    QVERIFY(!Page().Events().isVisible());
    Page().Events().Add(Rec().TimeOfPing(100.0), QStringLiteral("Wreck"));
    QVERIFY(Page().Events().isVisible());
    auto* banner = Page().Events().findChild<StateBanner*>();
    QVERIFY(banner && banner->isVisible());
    QVERIFY2(banner->Text().contains(QStringLiteral("1 event of wreck ö.log is in memory only: ")),
        qPrintable(banner->Text()));
    QVERIFY2(banner->Advice().contains(QStringLiteral("Export them")), qPrintable(banner->Advice()));
    QVERIFY(!banner->geometry().intersects(Page().Events().List().geometry()));
    Page().Events().Add(Rec().TimeOfPing(200.0), QStringLiteral("Rope"));
    QVERIFY(banner->Text().startsWith(QStringLiteral("2 events of ")));
    // Still told when another recording is looked at, and on the first page.
    Open(m_source);
    QVERIFY(banner->Text().startsWith(QStringLiteral("2 events of ")));
    auto* home = m_view->GetPage(QStringLiteral("Home"))->findChild<StateBanner*>();
    QCOMPARE(home->Text(), banner->Text());
    // Given up by mistake.
    Q_EMIT banner->findChild<ZrBtn*>(QStringLiteral("dismiss"))->Clicked();
    QVERIFY(m_view->Model().unsaved.IsEmpty());
    QVERIFY(home->IsEmpty());
    auto* toast = m_view->findChild<ZrToast*>();
    QTest::mouseClick(toast->findChild<ZrBtn*>(), Qt::LeftButton);
    QCOMPARE(m_view->Model().unsaved.Count(), std::size_t(2));
    // The way out.
    const QString path = m_folder.filePath(QStringLiteral("kept.csv"));
    QTest::mouseClick(banner->Buttons().first(), Qt::LeftButton);
    auto* files = m_view->findChild<ZrFilePanel*>(QStringLiteral("export unsaved events"));
    QVERIFY(files && files->isVisible());
    files->Cancel();
    Q_EMIT files->FileChosen(m_folder.filePath(QStringLiteral("no folder/kept.csv")));
    QVERIFY2(Toast().contains(QStringLiteral("Cannot write")), qPrintable(Toast()));
    QVERIFY(!banner->IsEmpty());
    Q_EMIT files->FileChosen(path);
    QVERIFY(banner->IsEmpty() && !banner->isVisible());
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray table = file.readAll();
    QVERIFY(table.contains("Wreck") && table.contains("Rope"));
    QVERIFY(QDir(m_log + QStringLiteral(".evt")).removeRecursively());
}

/// The clock was set back: the list is by the time of the log, the time bar by what came first. One event has
/// no time.
void tst_SurveyReviewEvents::flagsAreTheirEvents()
{
    const QString path = m_folder.filePath(QStringLiteral("set back.log"));
    LogBytes log;
    for (int i = 0; i < 60; ++i)
        log.Add(survey::NavItem(i));
    survey::Nav nav;
    nav.latitude = 44.1;
    nav.longitude = -63.0;
    for (int i = 0; i < 60; ++i)
        log.Add(survey::NavItem(survey::startTime - 1000.0 + i, nav));
    QVERIFY(WriteWhole(path, log.Bytes()));
    QVERIFY(WriteWhole(path + QStringLiteral(".evt"),
        survey::EventFile({{survey::startTime - 970.0, QStringLiteral("Later"), survey::Uid(1)},
            {survey::startTime + 20.0, QStringLiteral("Earlier"), survey::Uid(2)},
            {std::nan(""), QStringLiteral("Never"), survey::Uid(3)}})));
    Open(path);
    QVERIFY2(Page().Recording(), qPrintable(Toast()));
    QCOMPARE(Rec().Events().Count(), std::size_t(3));
    QCOMPARE(Rec().Events().At(0).text, QStringLiteral("Later"));
    ZrTimeBar& bar = Page().Bar();
    QTest::keyClick(m_view.get(), Qt::Key_L, Qt::ControlModifier);
    Settle();
    for (int event = 0; event < 2; ++event) {
        const double at = Rec().TimeOf(Rec().Events().At(static_cast<std::size_t>(event)));
        Page().GoTo(Rec().Times()->Begin());
        Page().Events().List().SetCurrent(-1);
        const QPoint flag(qRound(bar.XOf(at)), 4);
        SendPress(bar, flag);
        SendRelease(bar, flag);
        QCOMPARE(Page().Events().Current(), event);
        QCOMPARE(Page().Clock().Time(), at);
        // From the list the same flag stands out, and its own.
        const QImage tapped = Painted(bar);
        Page().GoTo(Rec().Times()->Begin());
        Q_EMIT Page().Events().Chosen(1 - event);
        QVERIFY(Painted(bar) != tapped);
        Q_EMIT Page().Events().Chosen(event);
        QCOMPARE(Page().Clock().Time(), at);
        QCOMPARE(Painted(bar), tapped);
        bar.SetCurrentEvent(1 - event); // the flags stand the other way round
        QCOMPARE(Painted(bar), tapped);
    }
    // With the keys too.
    Page().GoTo(Rec().Times()->Begin());
    Page().Act(ReviewTransport::nextEvent);
    const int current = Page().Events().Current();
    const QImage stepped = Painted(bar);
    bar.SetCurrentEvent(1 - current);
    QCOMPARE(Painted(bar), stepped);
}

/// What a recording notes with an event is shown as any other position.
void tst_SurveyReviewEvents::positionsAreInTheStyle()
{
    Open(m_log);
    const QString noted = QStringLiteral("48.4457404, -68.8281234");
    Page().Events().Add(Rec().TimeOfPing(100.0), QStringLiteral("Wreck"), noted);
    Page().Events().Add(Rec().TimeOfPing(200.0), QStringLiteral("Rope"), QStringLiteral("thick"));
    QTest::keyClick(m_view.get(), Qt::Key_L, Qt::ControlModifier);
    Settle();
    const auto subtitle = [this](int row) { return Page().Events().List().Items()[row].subtitle; };
    for (const int style : {int(eGeoDeg), int(eGeoUTM)}) {
        ZrUnits::SetGeoStyle(eGeoStyle(style));
        m_view->SettingsEdited();
        const QString shown = ZrPositionShown::Text(48.4457404, -68.8281234);
        const QString lines = ZrTimeText::DateClock(Rec().Events().At(0).time, 1) + QLatin1Char('\n') + shown;
        QTRY_COMPARE(subtitle(0), lines);
        QVERIFY(subtitle(1).endsWith(QStringLiteral("thick")));
        const int room = Page().Events().List().viewport()->width() - ZrTheme::DpI(30);
        const int wide = QFontMetrics(ZrLegible::Font(15)).horizontalAdvance(shown);
        QVERIFY2(wide <= room, qPrintable(QStringLiteral("%1 of %2").arg(wide).arg(room)));
    }
    QCOMPARE(Rec().Events().At(0).detail, noted);
}

/// F6 and Delete never change what is elsewhere, whichever event was chosen or added last.
void tst_SurveyReviewEvents::keysAreForTheEventAtTheCursor()
{
    Open(m_log);
    const ZrEventList& events = Rec().Events();
    for (const double ping : {100.0, 200.0})
        Page().Events().Add(Rec().TimeOfPing(ping), QString::number(ping));
    // Added away from the cursor, and the list is hidden.
    Page().GoTo(Rec().TimeOfPing(20.0));
    QCOMPARE(Page().Events().Current(), -1);
    QTest::keyClick(m_view.get(), Qt::Key_Delete);
    QCOMPARE(events.Count(), std::size_t(2));
    QCOMPARE(Toast(), QStringLiteral("No event at the cursor"));
    QTest::keyClick(m_view.get(), Qt::Key_F6);
    QVERIFY(!Panel());
    // Scrubbed onto the second, but for a little.
    Page().GoTo(Rec().TimeOfPing(200.0) + 0.8 * ReviewEvents::AtCursor);
    QCOMPARE(Page().Events().Current(), 1);
    QTest::keyClick(m_view.get(), Qt::Key_F6);
    QVERIFY(Panel());
    QCOMPARE(static_cast<QLineEdit&>(Panel()->Input()).text(), QStringLiteral("200"));
    Panel()->Cancel();
    QTest::keyClick(m_view.get(), Qt::Key_Delete);
    QCOMPARE(events.Count(), std::size_t(1));
    QCOMPARE(events.At(0).text, QStringLiteral("100"));
    // What is next in the list is not what is at the cursor.
    QCOMPARE(Page().Events().Current(), -1);
    QTest::keyClick(m_view.get(), Qt::Key_Delete);
    QCOMPARE(events.Count(), std::size_t(1));
    // Taken back it is there again, and the current one.
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(events.Count(), std::size_t(2));
    QCOMPARE(Page().Events().Current(), 1);
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Page().Events().Current(), -1);
}

/// Chosen in the list, in the time line or by the keys of the list, until the cursor leaves it.
void tst_SurveyReviewEvents::choiceEndsWithTheCursor()
{
    Open(m_log);
    const double at = Rec().TimeOfPing(100.0);
    Page().Events().Add(at, QStringLiteral("Wreck"));
    Page().Events().Add(at + 0.4 * ReviewEvents::AtCursor, QStringLiteral("Rope"));
    Page().Events().Add(Rec().TimeOfPing(200.0), QStringLiteral("Buoy"));
    QTest::keyClick(m_view.get(), Qt::Key_L, Qt::ControlModifier);
    Settle();
    ZrTouchList& list = Page().Events().List();
    auto* remove = Page().Events().findChild<ZrBtn*>(QStringLiteral("delete"));
    Page().GoTo(Rec().TimeOfPing(20.0));
    QVERIFY(remove && !remove->isEnabled());
    QCOMPARE(list.Current(), -1);
    // Of two that are near the chosen one, as long as it is.
    Q_EMIT list.Chosen(1);
    QCOMPARE(list.Current(), 1);
    QVERIFY(remove->isEnabled());
    Page().GoTo(at);
    QCOMPARE(Page().Events().Current(), 1);
    Page().GoTo(at - 2.0 * ReviewEvents::AtCursor);
    QCOMPARE(Page().Events().Current(), -1);
    QVERIFY(!remove->isEnabled());
    Page().GoTo(at);
    QCOMPARE(Page().Events().Current(), 0);
    // Down to the next but one.
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_Down);
    QCOMPARE(Page().Events().Current(), 2);
    QVERIFY(std::fabs(Page().Clock().Time() - Rec().TimeOfPing(200.0)) < 1e-6);
    QTest::mouseClick(remove, Qt::LeftButton);
    QCOMPARE(Rec().Events().Count(), std::size_t(2));
    QCOMPARE(Rec().Events().At(1).text, QStringLiteral("Rope"));
    QVERIFY(!remove->isEnabled());
}

/// The time of a target stands first, and no line of it is cut off, in whatever window and units.
void tst_SurveyReviewEvents::rowsOfTheList()
{
    Open(m_log);
    ZrSonarTarget target;
    target.time = Rec().Times()->LogTime(Rec().TimeOfPing(100.0));
    target.position = Rec().PositionAt(Rec().TimeOfPing(100.0));
    target.length = 27.38;
    target.width = 10.48;
    target.height = 11.03;
    Page().Events().Add(ZrTargetEvent::ToEvent(target, QStringLiteral("Target 1")));
    Page().Events().Add(Rec().TimeOfPing(200.0), QStringLiteral("Remark"));
    QTest::keyClick(m_view.get(), Qt::Key_L, Qt::ControlModifier);
    const QString clock = ZrTimeText::Clock(target.time, 1);
    for (const QSize size : {QSize(900, 600), QSize(1280, 800), QSize(2560, 1440)}) {
        m_view->resize(size);
        QTRY_COMPARE(Page().size(), size);
        for (const bool isMetric : {true, false}) {
            isMetric ? ZrUnits::SetToMetric() : ZrUnits::SetToImperial();
            m_view->SettingsEdited();
            const QString first = clock
                + (isMetric ? QStringLiteral("  27.38 × 10.48 × 11.03 m") : QStringLiteral("  89.83"));
            QTRY_VERIFY(Page().Events().List().Items()[0].subtitle.startsWith(first));
            Settle();
            const QVector<DrawnText> drawn = TextDevice::Of(*Page().Events().List().viewport());
            QCOMPARE(drawn.size(), 5); // name, time and size, place; name, time
            for (const DrawnText& text : drawn) {
                QVERIFY2(!text.text.contains(QChar(0x2026)), qPrintable(text.text));
                QVERIFY2(text.room.contains(text.ink), qPrintable(text.text));
            }
            QVERIFY2(drawn[1].text.startsWith(clock), qPrintable(drawn[1].text));
        }
    }
    // Alone, or with a height alone.
    target.length = target.width = std::nan("");
    QVERIFY(
        review::size_text(target.length, target.width, target.height).startsWith(QStringLiteral("– × – × ")));
    QCOMPARE(review::size_text(target.length, target.width, std::nan("")), QString());
}

void tst_SurveyReviewEvents::exports()
{
    Open(m_log);
    Page().Events().Add(Rec().TimeOfPing(100.0), QStringLiteral("Wreck"));
    Page().Events().Add(Rec().TimeOfPing(290.0), QStringLiteral("Beyond"));
    Page().Export().SetPart(Page().Recording(), Rec().TimeOfPing(200.0), Rec().TimeOfPing(50.0));
    QSignalSpy done(&Page().Export(), &ReviewExport::Done);
    const auto write = [&](int kind, const char* name) {
        const QString path = m_folder.filePath(QLatin1String(name));
        const int before = done.size();
        if (!Page().Export().Write(kind, path) || (done.size() == before && !done.wait(patience))
            || !done.last()[0].toBool())
            return QString();
        return path;
    };
    const auto content = [](const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const QString part = write(ZrSurveyExport::segment, "part.log");
    QVERIFY2(!part.isEmpty(), qPrintable(Toast()));
    ZrSonarLog log;
    QVERIFY(log.Open(part));
    QVERIFY2(log.Pings().size() >= 148 && log.Pings().size() <= 153,
        qPrintable(QString::number(log.Pings().size())));
    QCOMPARE(log.Damage(), QString());
    const QByteArray gpx = content(write(ZrSurveyExport::track, "part.gpx"));
    QVERIFY(gpx.contains("<gpx") && gpx.contains("Wreck") && !gpx.contains("Beyond"));
    QVERIFY(content(write(ZrSurveyExport::records, "records.csv")).count('\n') > 100);
    const QByteArray events = content(write(ZrSurveyExport::events, "events.csv"));
    QVERIFY(events.contains("Wreck") && !events.contains("Beyond"));
    const QImage waterfall(write(ZrSurveyExport::waterfall, "waterfall.png"));
    QVERIFY(waterfall.width() > 500 && waterfall.height() > 100);
    const QString mosaic = write(ZrSurveyExport::mosaic, "mosaic.png");
    QVERIFY(QImage(mosaic).width() > 100);
    QVERIFY(QFile::exists(ZrMosaicFile::WorldFileName(mosaic)));
    // A place that cannot be written: told in words.
    QVERIFY(write(ZrSurveyExport::track, "no folder/part.gpx").isEmpty());
    QVERIFY2(Toast().contains(QStringLiteral("failed")), qPrintable(Toast()));
}

/// A picture has the gain and contrast of the screen.
void tst_SurveyReviewEvents::pictureIsAsShown()
{
    Open(m_log);
    SurveySettings& settings = m_view->Model().settings;
    Page().Export().SetPart(Page().Recording(), Rec().TimeOfPing(50.0), Rec().TimeOfPing(120.0));
    QSignalSpy done(&Page().Export(), &ReviewExport::Done);
    const auto mean = [&](double gain, double contrast) {
        settings.gain = gain;
        settings.contrast = contrast;
        const QString path = m_folder.filePath(QStringLiteral("look.png"));
        const int before = done.size();
        if (!Page().Export().Write(ZrSurveyExport::waterfall, path)
            || (done.size() == before && !done.wait(patience)) || !done.last()[0].toBool())
            return -1.0;
        const QImage image(path);
        double sum = 0.0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                sum += qGray(image.pixel(x, y));
        return sum / (image.width() * image.height());
    };
    const double plain = mean(0.0, 1.0);
    QVERIFY(plain > 10.0);
    QVERIFY(mean(6.0, 1.0) > plain * 1.2);
    QVERIFY(mean(-12.0, 1.0) < plain * 0.6);
    // Much contrast leaves little between black and white: most of a sea floor lies below the middle.
    QVERIFY(mean(0.0, 4.0) < plain * 0.9);
}

GL_TEST_MAIN(tst_SurveyReviewEvents)
#include "tst_SurveyReviewEvents.moc"
