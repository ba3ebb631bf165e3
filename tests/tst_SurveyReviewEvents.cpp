// The page "Review": events, and what is exported of a recording.

#include "SurveyReviewWindow.h"
#include "ZrKit/review/ZrEventFile.h"
#include "ZrKit/sonar/ZrMosaicFile.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "apps/ZrSurvey/ReviewEvents.h"
#include "apps/ZrSurvey/ReviewExport.h"

class tst_SurveyReviewEvents : public SurveyReviewWindow
{
    Q_OBJECT

private Q_SLOTS:
    void events();
    void eventsOutlive();
    void exports();
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
    const QString part = write(ReviewExport::segment, "part.log");
    QVERIFY2(!part.isEmpty(), qPrintable(Toast()));
    ZrSonarLog log;
    QVERIFY(log.Open(part));
    QVERIFY2(log.Pings().size() >= 148 && log.Pings().size() <= 153,
        qPrintable(QString::number(log.Pings().size())));
    QCOMPARE(log.Damage(), QString());
    const QByteArray gpx = content(write(ReviewExport::track, "part.gpx"));
    QVERIFY(gpx.contains("<gpx") && gpx.contains("Wreck") && !gpx.contains("Beyond"));
    QVERIFY(content(write(ReviewExport::records, "records.csv")).count('\n') > 100);
    const QByteArray events = content(write(ReviewExport::events, "events.csv"));
    QVERIFY(events.contains("Wreck") && !events.contains("Beyond"));
    const QImage waterfall(write(ReviewExport::waterfall, "waterfall.png"));
    QVERIFY(waterfall.width() > 500 && waterfall.height() > 100);
    const QString mosaic = write(ReviewExport::mosaic, "mosaic.png");
    QVERIFY(QImage(mosaic).width() > 100);
    QVERIFY(QFile::exists(ZrMosaicFile::WorldFileName(mosaic)));
    // A place that cannot be written: told in words.
    QVERIFY(write(ReviewExport::track, "no folder/part.gpx").isEmpty());
    QVERIFY2(Toast().contains(QStringLiteral("failed")), qPrintable(Toast()));
}

GL_TEST_MAIN(tst_SurveyReviewEvents)
#include "tst_SurveyReviewEvents.moc"
