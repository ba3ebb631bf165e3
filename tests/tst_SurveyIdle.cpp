// A page on which nothing happens draws nothing: neither a widget is painted nor a frame is drawn.

#include "SurveyWindow.h"
#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/recording/ZrRecordingSession.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrSurveyLog.h"
#include "ZrUtil/ZrWpts.h"
#include "apps/ZrSurvey/RecordPage.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QMap>
#include <QUdpSocket>

using survey::S;

namespace {

/// All paintings of the program, by the classes of what is painted.
class PaintLog : public QObject
{
public:
    explicit PaintLog(SurveyView& view)
    {
        qApp->installEventFilter(this);
        connect(&view, &SurveyView::FramePainted, this, [this] { ++m_frames; });
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            ++m_paints[QStringLiteral("%1 %2").arg(
                QString::fromLatin1(watched->metaObject()->className()), watched->objectName())];
        return false;
    }

    int Frames() const { return m_frames; }

    QString Text() const
    {
        QStringList parts;
        for (auto it = m_paints.begin(); it != m_paints.end(); ++it)
            parts.append(QStringLiteral("%1: %2").arg(it.key()).arg(it.value()));
        return parts.join(QStringLiteral(", "));
    }

    bool IsClean() const { return m_paints.isEmpty() && m_frames == 0; }

    void Clear()
    {
        m_paints.clear();
        m_frames = 0;
    }

private:
    QMap<QString, int> m_paints;
    int m_frames = 0;
};

constexpr int quietMs = 600;
constexpr int idleMs = 1000;
constexpr int recordIdleMs = 6000; // Record looks at the free space every five seconds

} // namespace

class tst_SurveyIdle : public SurveyWindow
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void idle_data();
    void idle();
    void recordDrawsWhatComes();
    void recordWithASilentSource();

private:
    bool Quiet(PaintLog& log) const;

    RecordPage& Record() { return *static_cast<RecordPage*>(m_view->GetPage(S("Record"))); }

    std::unique_ptr<QTemporaryDir> m_still; ///< on a volume that others hardly write to
};

void tst_SurveyIdle::init()
{
    Open();
    // Free space that changes is painted, as it should be.
    m_still = std::make_unique<QTemporaryDir>(
        QFileInfo(S("/dev/shm")).isWritable() ? S("/dev/shm/zr-idle") : QString());
    if (!m_still->isValid())
        m_still = std::make_unique<QTemporaryDir>();
    Settings().recordDir = m_still->path();
    Settings().source = SurveySource::udp;
    Settings().udpPort = 0; // any free one, to which nobody sends
    m_view->SettingsEdited();
}

void tst_SurveyIdle::cleanup()
{
    Close();
    m_still.reset();
}

/// Waits until nothing was painted for a while.
bool tst_SurveyIdle::Quiet(PaintLog& log) const
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 30000) {
        log.Clear();
        QTest::qWait(quietMs);
        if (log.IsClean() && m_view->findChild<ZrToast*>()->isHidden())
            return true;
    }
    return false;
}

void tst_SurveyIdle::idle_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("what");
    for (const char* page : {"Home", "Plan", "Record", "Review", "Scene"})
        QTest::newRow(page) << S(page) << QString();
    QTest::newRow("Home, recordings") << S("Home") << S("log");
    QTest::newRow("Plan, route") << S("Plan") << S("route");
    QTest::newRow("Record, route") << S("Record") << S("route");
    QTest::newRow("Review, log") << S("Review") << S("log");
    QTest::newRow("Scene, log") << S("Scene") << S("log");
    QTest::newRow("Scene, played") << S("Scene") << S("played");
    QTest::newRow("Settings") << S("Home") << S("settings");
    QTest::newRow("Settings over Record") << S("Record") << S("settings");
}

void tst_SurveyIdle::idle()
{
    QFETCH(QString, page);
    QFETCH(QString, what);
    if (what == S("log") || what == S("played")) {
        const QString path = m_still->filePath(S("dive.log"));
        QVERIFY(WriteWhole(path, survey::SurveyLog(40).Bytes()));
        if (page == S("Review") || page == S("Scene"))
            m_view->OpenLog(path);
        if (page == S("Scene"))
            QTRY_VERIFY(m_view->Model().player.HasRecording());
    }
    if (what == S("route")) {
        ZrPlanDocument& plan = m_view->Model().plan;
        for (int i = 0; i < 6; ++i)
            plan.History().Add(50.33 + 0.001 * i, -4.14 + 0.001 * (i % 2), eZrWptBlue, ZrWpts::eAddTail);
        plan.Edited();
    }
    m_view->Show(page);
    QTRY_VERIFY(m_view->Page()->isVisible());
    if (page == S("Record"))
        QTRY_COMPARE(Record().Session().Source(), ZrRecordingSession::sourceOpen);
    if (what == S("settings"))
        m_view->ShowSettings(QCoreApplication::translate("FormSources", "Source of data"));
    PaintLog log(*m_view);
    if (what == S("played")) {
        QTest::keyClick(m_view.get(), Qt::Key_Space);
        QTRY_VERIFY(m_view->Model().player.IsPlaying() && log.Frames() > 5);
        QTest::keyClick(m_view.get(), Qt::Key_Space);
        QVERIFY(!m_view->Model().player.IsPlaying());
    }
    QVERIFY2(Quiet(log), qPrintable(log.Text()));
    log.Clear();
    QTest::qWait(page == S("Record") ? recordIdleMs : idleMs);
    QVERIFY2(log.IsClean(), qPrintable(QStringLiteral("%1 frames; %2").arg(log.Frames()).arg(log.Text())));
    // What is asked for is drawn: the count counts.
    m_view->Page()->Changed();
    QTRY_VERIFY(log.Frames() > 0);
}

/// Frames while data come, none when there are no more.
void tst_SurveyIdle::recordDrawsWhatComes()
{
    const QString path = m_still->filePath(S("old.log"));
    ZrLogWriter writer;
    QVERIFY(writer.Open(path, 100.0));
    ZrNavRecord nav;
    nav.depth = 7.0F;
    for (int i = 0; i < 20; ++i) {
        nav.latitude = 48.0 + 1e-5 * i;
        nav.longitude = -68.0;
        QVERIFY(writer.Write(zr::rec_type(krtNavigation), 1, ZrNavRecord::Format, 100.0 + 0.05 * i, false,
            zr::bytes_of(nav.Encode())));
    }
    QVERIFY(writer.Commit());
    m_view->Show(S("Record"));
    PaintLog log(*m_view);
    QVERIFY2(Quiet(log), qPrintable(log.Text()));
    log.Clear();
    Settings().source = SurveySource::replay;
    Settings().sourceFile = path;
    QTRY_COMPARE(Record().Session().Source(), ZrRecordingSession::sourceFinished);
    QVERIFY(log.Frames() >= 3);
    // Values grow old once.
    ZrValueTile* depth = nullptr;
    for (ZrValueTile* tile : Record().findChildren<ZrValueTile*>()) {
        if (tile->accessibleName().startsWith(S("Depth")))
            depth = tile;
    }
    QVERIFY(depth);
    QTRY_COMPARE_WITH_TIMEOUT(depth->State(), ZrValueTile::stale, 30000);
    QVERIFY2(Quiet(log), qPrintable(log.Text()));
    log.Clear();
    QTest::qWait(recordIdleMs);
    QVERIFY2(log.IsClean(), qPrintable(log.Text()));
}

/// One that has sent, and sends no more: its age is told by minutes.
void tst_SurveyIdle::recordWithASilentSource()
{
    quint16 port = 0;
    {
        QUdpSocket free;
        QVERIFY(free.bind(QHostAddress(QHostAddress::LocalHost), 0));
        port = free.localPort();
    }
    Settings().udpPort = port;
    m_view->SettingsEdited();
    m_view->Show(S("Record"));
    QTRY_COMPARE(Record().Session().Source(), ZrRecordingSession::sourceOpen);
    QUdpSocket sender;
    sender.writeDatagram("$SDDPT,7.0,0.5\r\n", QHostAddress::LocalHost, port);
    const SurveyFeed& feed = m_view->Model().feed;
    QTRY_COMPARE(feed.State(), ZrSourceFacts::receiving);
    QTRY_COMPARE_WITH_TIMEOUT(feed.State(), ZrSourceFacts::silent, 15000);
    PaintLog log(*m_view);
    QVERIFY2(Quiet(log), qPrintable(log.Text()));
    log.Clear();
    QTest::qWait(recordIdleMs);
    QVERIFY2(log.IsClean(), qPrintable(log.Text()));
}

GL_TEST_MAIN(tst_SurveyIdle)
#include "tst_SurveyIdle.moc"
