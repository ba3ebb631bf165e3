// Exports of a recording: pings, events and targets of the part, as they are shown, and how pictures look.

#include "SurveyExportLine.h"
#include "ZrKit/sonar/ZrSonarPalette.h"

#include <QImage>
#include <QtTest>

#include <cmath>
#include <functional>
#include <limits>

using sonar_test::SonarLine;
using survey_export::S;
using survey_export::startTime;

namespace {

const double unknown = std::numeric_limits<double>::quiet_NaN();

} // namespace

class tst_ZrSurveyExportShown : public QObject, private survey_export::LineFolder
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase() { MakeOriginal(); }

    void init() { Begin(); }

    void sonarOutsideTheRecords();
    void eventsOutsideTheRecords();
    void segmentOfSonarOutsideTheRecords();
    void noPingInThePart();
    void targetsOfThePart();
    void eventsOfThatMoment();
    void unsavedEvents();
    void looksOfAPicture();
    void doneToAPicture();
    void widePicture();
};

/// A part may hold pings alone: those before the first record and behind the last one.
void tst_ZrSurveyExportShown::sonarOutsideTheRecords()
{
    SonarLine line;
    line.pings = 80;
    line.hasNav = [](int ping) { return ping >= 20 && ping < 50; };
    const QString log = File(S("early.log"));
    QVERIFY(WriteLine(log, line));
    const auto recording = Opened(log);
    QVERIFY(recording);
    const auto pings = [&](int from, int to, int kind) {
        ZrSurveyExport part(recording, line.TimeOf(from) - 0.01, line.TimeOf(to) + 0.01);
        return part.Run(kind, OutOf(kind)) == ZrSurveyExport::Done ? static_cast<int>(part.Items()) : -1;
    };
    for (const int kind : {ZrSurveyExport::waterfall, ZrSurveyExport::mosaic}) {
        QCOMPARE(pings(0, 79, kind), 80);
        QCOMPARE(pings(10, 30, kind), 21);
        QCOMPARE(pings(45, 79, kind), 35);
    }
    QCOMPARE(pings(0, 9, ZrSurveyExport::waterfall), 10);
    QCOMPARE(pings(70, 79, ZrSurveyExport::waterfall), 10);
    QCOMPARE(pings(45, 79, ZrSurveyExport::records), 5);
    ZrLogEvt evt(line.TimeOf(75), esUser, S("behind the last record"));
    QVERIFY(recording->Events().Add(evt));
    QCOMPARE(pings(70, 79, ZrSurveyExport::events), 1);
    QVERIFY(Content(OutOf(ZrSurveyExport::events)).contains("behind the last record"));
    ZrSurveyExport part(recording, line.TimeOf(60), line.TimeOf(70));
    for (const int kind : {ZrSurveyExport::segment, ZrSurveyExport::track, ZrSurveyExport::records}) {
        QCOMPARE(part.Run(kind, OutOf(kind) + S("x")), ZrSurveyExport::Failed);
        QCOMPARE(part.Error(), S("There is no record in this part"));
    }
    // Without events as where there are records: the heading alone.
    ZrSurveyExport records(recording, line.TimeOf(22), line.TimeOf(30));
    for (ZrSurveyExport* const from : {&part, &records}) {
        QCOMPARE(from->Run(ZrSurveyExport::events, File(S("none.csv"))), ZrSurveyExport::Done);
        QCOMPARE(from->Items(), u64(0));
        QCOMPARE(Content(File(S("none.csv"))).count('\n'), 1);
    }
}

/// Events are of a part by their times, not by the records nearest to them.
void tst_ZrSurveyExportShown::eventsOutsideTheRecords()
{
    SonarLine line;
    line.pings = 80;
    line.hasNav = [](int ping) { return ping >= 20 && ping < 50; };
    const QString log = File(S("early.log"));
    QVERIFY(WriteLine(log, line));
    const auto recording = Opened(log);
    QVERIFY(recording);
    for (const int ping : {5, 15, 30, 55, 75})
        QVERIFY(recording->Events().Add(ZrLogEvt(line.TimeOf(ping), esUser, S("at %1.").arg(ping))));
    QVERIFY(recording->Events().Add(ZrLogEvt(unknown, esUser, S("at any time."))));
    QVERIFY(recording->Events().Add(ZrLogEvt(startTime + 1e6, esUser, S("far away."))));
    const QStringList all{
        S("at 5."), S("at 15."), S("at 30."), S("at 55."), S("at 75."), S("far away."), S("at any time.")};
    const auto held = [&](int from, int to, int kind) {
        ZrSurveyExport part(recording, line.TimeOf(from) - 0.01, line.TimeOf(to) + 0.01);
        const bool isDone = part.Run(kind, OutOf(kind)) == ZrSurveyExport::Done;
        const QByteArray written = Content(OutOf(kind));
        QStringList texts;
        for (const QString& text : all) {
            if (written.contains(text.toUtf8()))
                texts << text;
        }
        return isDone ? texts : QStringList{part.Error()};
    };
    for (const int kind : {ZrSurveyExport::events, ZrSurveyExport::track}) {
        QCOMPARE(held(20, 49, kind), QStringList{S("at 30.")});
        QCOMPARE(held(10, 60, kind), (QStringList{S("at 15."), S("at 30."), S("at 55.")}));
        // What has no place cannot be in a track for other programs.
        QCOMPARE(held(0, 79, kind), all.mid(0, kind == ZrSurveyExport::events ? 7 : 6));
        QCOMPARE(held(1, 79, kind), all.mid(0, 6)); // one without a time belongs to the whole
    }
    QCOMPARE(held(50, 60, ZrSurveyExport::events), QStringList{S("at 55.")});
    // Without any record too.
    line.hasNav = [](int) { return false; };
    QVERIFY(WriteLine(File(S("alone.log")), line));
    const auto alone = Opened(File(S("alone.log")));
    QVERIFY(alone);
    QVERIFY(alone->Events().Add(ZrLogEvt(unknown, esUser, S("at any time."))));
    ZrSurveyExport part(alone, alone->Times()->Begin(), alone->Times()->End());
    QCOMPARE(part.Run(ZrSurveyExport::events, File(S("alone.csv"))), ZrSurveyExport::Done);
    QVERIFY(Content(File(S("alone.csv"))).contains("at any time."));
}

/// A log of its own has the pings of the part, and its events, also where no record tells the end of it.
void tst_ZrSurveyExportShown::segmentOfSonarOutsideTheRecords()
{
    SonarLine line;
    line.pings = 120;
    line.hasNav = [](int ping) { return (ping >= 20 && ping < 50) || (ping >= 90 && ping < 100); };
    const QString log = File(S("early.log"));
    QVERIFY(WriteLine(log, line));
    const auto recording = Opened(log);
    QVERIFY(recording);
    QVERIFY(recording->Events().Add(ZrLogEvt(line.TimeOf(80), esUser, S("behind the part"))));
    const auto pings = [&](int from, int to) {
        ZrSurveyExport part(recording, line.TimeOf(from) - 0.01, line.TimeOf(to) + 0.01);
        const QString out = OutOf(ZrSurveyExport::segment);
        const auto segment
            = part.Run(ZrSurveyExport::segment, out) == ZrSurveyExport::Done ? Opened(out) : nullptr;
        const std::size_t count = segment ? segment->Pings().size() : 0;
        if (count == 0 || (segment->Events().Count() > 0) != (from <= 80 && to >= 80))
            return QVector<int>();
        const auto number = [&](std::size_t i) {
            return static_cast<int>(std::lround((segment->Pings().Time(i) - line.TimeOf(0)) / line.interval));
        };
        return QVector<int>{number(0), number(count - 1), static_cast<int>(count)};
    };
    QCOMPARE(pings(0, 119), (QVector<int>{0, 119, 120}));
    // Behind the first record the ping in front of the part is its state.
    QCOMPARE(pings(20, 49), (QVector<int>{19, 49, 31}));
    QCOMPARE(pings(10, 60), (QVector<int>{10, 60, 51}));
    QCOMPARE(pings(15, 30), (QVector<int>{15, 30, 16}));
    QCOMPARE(pings(30, 119), (QVector<int>{29, 119, 91}));
    QCOMPARE(pings(95, 110), (QVector<int>{94, 110, 17}));
}

/// Between two pings, which are 0.1 s apart: neither of them is drawn.
void tst_ZrSurveyExportShown::noPingInThePart()
{
    for (const int kind : {ZrSurveyExport::waterfall, ZrSurveyExport::mosaic}) {
        ZrSurveyExport part(m_recording, m_begin + 10.02, m_begin + 10.08);
        QCOMPARE(part.Run(kind, OutOf(kind)), ZrSurveyExport::Failed);
        QCOMPARE(part.Error(), S("There is no side-scan ping in this part"));
        QCOMPARE(part.Items(), u64(0));
        QVERIFY(!QFile::exists(OutOf(kind)));
    }
    ZrSurveyExport part(m_recording, m_begin + 10.02, m_begin + 10.08);
    QCOMPARE(part.Run(ZrSurveyExport::targets, OutOf(ZrSurveyExport::targets)), ZrSurveyExport::Done);
    ZrSurveyExport one(m_recording, m_begin + 9.95, m_begin + 10.05);
    QCOMPARE(one.Run(ZrSurveyExport::waterfall, OutOf(ZrSurveyExport::waterfall)), ZrSurveyExport::Done);
    QCOMPARE(one.Items(), u64(1));
}

void tst_ZrSurveyExportShown::targetsOfThePart()
{
    const QString out = File(S("targets.csv"));
    const auto names = [&](double from, double to) {
        ZrSurveyExport part(m_recording, m_begin + from, m_begin + to);
        if (part.Run(ZrSurveyExport::targets, out) != ZrSurveyExport::Done)
            return -1;
        return static_cast<int>(part.Items());
    };
    QCOMPARE(names(0.0, 29.0), 2);
    QCOMPARE(names(2.0, 15.0), 2);
    QCOMPARE(names(2.1, 14.9), 0);
    QCOMPARE(Content(out).count('\n'), 1);
    // Those of the moment at which it was made.
    ZrSurveyExport part(m_recording, m_begin, m_begin + 29.0);
    ZrSonarTarget late;
    late.time = startTime + 5.0;
    QVERIFY(m_recording->Events().Add(ZrTargetEvent::ToEvent(late)));
    QCOMPARE(part.Run(ZrSurveyExport::targets, out), ZrSurveyExport::Done);
    QCOMPARE(part.Items(), u64(2));
}

/// Those of the moment at which it was made, like the targets.
void tst_ZrSurveyExportShown::eventsOfThatMoment()
{
    const QString out = File(S("events.csv"));
    ZrSurveyExport part(m_recording, m_begin + 10.0, m_begin + 29.0);
    QCOMPARE(part.Run(ZrSurveyExport::events, out), ZrSurveyExport::Done);
    QCOMPARE(part.Items(), u64(3));
    ZrLogEvt evt(startTime + 11.0, esUser, S("added later"));
    QVERIFY(m_recording->Events().Add(evt));
    QVERIFY(m_recording->Events().Save());
    QCOMPARE(part.Run(ZrSurveyExport::events, out), ZrSurveyExport::Done);
    QCOMPARE(part.Items(), u64(3));
    ZrSurveyExport next(m_recording, m_begin + 10.0, m_begin + 29.0);
    QCOMPARE(next.Run(ZrSurveyExport::events, out), ZrSurveyExport::Done);
    QCOMPARE(next.Items(), u64(4));
    QVERIFY(Content(out).contains("added later") && !Content(out).contains("event at 1,"));
}

/// They are what is shown, whether they could be saved or not.
void tst_ZrSurveyExportShown::unsavedEvents()
{
    QVERIFY(QFile::remove(m_log + S(".evt")) && QDir().mkpath(m_log + S(".evt/in the way")));
    ZrEventList& events = m_recording->Events();
    events.Add(ZrLogEvt(startTime + 11.0, esUser, S("unsaved wreck")));
    for (std::size_t i = events.Count(); i-- > 0;) {
        if (events.At(i).text == S("event at 12"))
            QVERIFY(events.Remove(events.Id(i)));
    }
    QVERIFY(!events.Save());
    ZrSurveyExport part(m_recording, m_begin, m_begin + 29.0);
    for (const QString& name : {S("a.gpx"), S("a.kml"), S("a.geojson"), S("a.csv")}) {
        QCOMPARE(part.Run(ZrSurveyExport::track, File(name)), ZrSurveyExport::Done);
        QVERIFY2(Content(File(name)).contains("unsaved wreck"), qPrintable(name));
        QVERIFY(!Content(File(name)).contains("event at 12"));
    }
    QCOMPARE(part.Run(ZrSurveyExport::events, File(S("events.csv"))), ZrSurveyExport::Done);
    QVERIFY(Content(File(S("events.csv"))).contains("unsaved wreck"));
    QVERIFY(!Content(File(S("events.csv"))).contains("event at 12"));
    QCOMPARE(part.Run(ZrSurveyExport::segment, File(S("part.log"))), ZrSurveyExport::Done);
    const auto segment = Opened(File(S("part.log")));
    QVERIFY(segment);
    QStringList texts;
    for (std::size_t i = 0; i < segment->Events().Count(); ++i)
        texts << segment->Events().At(i).text;
    QCOMPARE(texts,
        (QStringList{
            S("event at 1"), S("target at 2"), S("unsaved wreck"), S("target at 15"), S("event at 25")}));
}

void tst_ZrSurveyExportShown::looksOfAPicture()
{
    const QString out = File(S("picture.png"));
    QVector<QImage> pictures;
    const auto draw = [&](const char* what, const std::function<void(ZrSurveyExport&)>& change) {
        ZrSurveyExport part(m_recording, m_begin, m_begin + 29.0);
        change(part);
        QCOMPARE(part.Run(ZrSurveyExport::waterfall, out), ZrSurveyExport::Done);
        const QImage picture(out);
        QVERIFY2(!picture.isNull() && !pictures.contains(picture), what);
        pictures << picture;
    };
    draw("as it is", [](ZrSurveyExport&) {});
    draw("slant", [](ZrSurveyExport& part) { part.slant = true; });
    draw("gain", [](ZrSurveyExport& part) { part.gain = 6.0; });
    draw("contrast", [](ZrSurveyExport& part) { part.contrast = 2.0; });
    draw("palette", [](ZrSurveyExport& part) { part.palette = ZrSonarPalette::Names().last(); });
    draw("blanking", [](ZrSurveyExport& part) { part.blanking = ZrSonarBlanking::water; });
    QCOMPARE(pictures.size(), 6);
    ZrSurveyExport wrong(m_recording, m_begin, m_begin + 29.0);
    wrong.palette = S("no such palette");
    for (const int kind : {ZrSurveyExport::waterfall, ZrSurveyExport::mosaic}) {
        QCOMPARE(wrong.Run(kind, out), ZrSurveyExport::Failed);
        QVERIFY2(wrong.Error().contains(S("no such palette")), qPrintable(wrong.Error()));
    }
    QCOMPARE(QImage(out), pictures.last());
}

/// Without any altitude less is done than was asked for, and that is said.
void tst_ZrSurveyExportShown::doneToAPicture()
{
    const QString out = File(S("picture.png"));
    ZrSurveyExport part(m_recording, m_begin, m_begin + 29.0);
    const auto draw = [&](ZrSurveyExport& from, bool isSlant, int blanking) {
        from.slant = isSlant;
        from.blanking = blanking;
        return from.Run(ZrSurveyExport::waterfall, out) == ZrSurveyExport::Done;
    };
    for (int blanking = 0; blanking < ZrSonarBlanking::kindCount; ++blanking) {
        QVERIFY(draw(part, blanking != 1, blanking));
        QCOMPARE(part.IsSlantCorrected(), blanking != 1);
        QCOMPARE(part.Blanking(), blanking);
    }
    QCOMPARE(part.Run(ZrSurveyExport::mosaic, out), ZrSurveyExport::Done);
    QVERIFY(!part.IsSlantCorrected());
    QCOMPARE(part.Blanking(), int(ZrSonarBlanking::none));

    // Neither recorded nor found: no side has an echo.
    const QString log = File(S("deep.log"));
    SonarLine line;
    line.pings = 40;
    line.altitude = unknown;
    line.amplitude = [](int, eSonarSide, u32) { return 0.0; };
    QVERIFY(WriteLine(log, line));
    const auto deep = Opened(log);
    QVERIFY(deep && deep->HasSonar() && std::isnan(deep->Bottom().Altitude(20)));
    ZrSurveyExport without(deep, deep->Times()->Begin(), deep->Times()->End());
    QVERIFY(draw(without, true, ZrSonarBlanking::water));
    QVERIFY(!without.IsSlantCorrected());
    QCOMPARE(without.Blanking(), int(ZrSonarBlanking::pulse));
    QVERIFY(draw(without, true, ZrSonarBlanking::none));
    QCOMPARE(without.Blanking(), int(ZrSonarBlanking::none));
    // What a picture was does not stay when the next one fails.
    QVERIFY(draw(part, true, ZrSonarBlanking::water) && part.IsSlantCorrected());
    part.palette = S("no such palette");
    QVERIFY(!draw(part, true, ZrSonarBlanking::water));
    QVERIFY(!part.IsSlantCorrected());
    QCOMPARE(part.Blanking(), int(ZrSonarBlanking::none));
}

/// More samples than a picture has room for are drawn narrower.
void tst_ZrSurveyExportShown::widePicture()
{
    SonarLine line;
    line.pings = 4;
    line.samples = 20000;
    const QString log = File(S("wide.log"));
    QVERIFY(WriteLine(log, line));
    const auto recording = Opened(log);
    QVERIFY(recording);
    ZrSurveyExport part(recording, recording->Times()->Begin(), recording->Times()->End());
    const QString out = File(S("wide.png"));
    QCOMPARE(part.Run(ZrSurveyExport::waterfall, out), ZrSurveyExport::Done);
    QVERIFY(QImage(out).width() >= 512);
}

QTEST_MAIN(tst_ZrSurveyExportShown)
#include "tst_ZrSurveyExportShown.moc"
