// Recordings in foreign forms, opened as logs are.

#include "SurveyWindow.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrUtil/ZrBtn.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/SurveyImport.h"

#include <QDir>
#include <QFile>

namespace {

constexpr int patience = 60000; ///< milliseconds
constexpr int headBytes = 1024;
constexpr int pingBytes = 4480;

QString Source(const char* name)
{
    return QStringLiteral(ZR_SOURCE_DIR "/data/") + QString::fromLatin1(name);
}

QString Line()
{
    return Source("sidescan-xtf/iver2-scotsman-pings0-299.xtf");
}

} // namespace

class tst_SurveyImport : public SurveyWindow
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Open(); }

    void cleanup() { Close(); }

    void opens();
    void againAtOnce();
    void newerFile();
    void damaged();
    void nothingInIt();
    void noFolder();
    void cancelled();

private:
    ReviewPage& Page() const { return *static_cast<ReviewPage*>(m_view->GetPage(QStringLiteral("Review"))); }

    QStringList Logs() const { return QDir(Recordings()).entryList({QStringLiteral("*.log")}, QDir::Files); }

    SurveyImport& Import() const { return *m_view->findChild<SurveyImport*>(); }

    ZrToast& Toast() const { return *m_view->findChild<ZrToast*>(); }

    QString Write(const char* name, const QByteArray& bytes) const
    {
        QFile file(m_folder->filePath(QString::fromUtf8(name)));
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? file.fileName()
                                                                                    : QString();
    }

    QByteArray LineBytes() const
    {
        QFile file(Line());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Until the log is there and shown.
    void Finish() const
    {
        QTRY_VERIFY_WITH_TIMEOUT(!Import().IsWorking(), patience);
        QTRY_VERIFY_WITH_TIMEOUT(!Page().IsLoading(), patience);
    }
};

void tst_SurveyImport::opens()
{
    QVERIFY(m_view->Open(Line()));
    Finish();
    QCOMPARE(Logs(), QStringList(QStringLiteral("iver2-scotsman-pings0-299.log")));
    QVERIFY(Page().Recording());
    QCOMPARE(Page().Recording()->Pings().size(), std::size_t(300));
    QCOMPARE(m_view->Page(), static_cast<SurveyPage*>(&Page()));
    // A log is no foreign form, and opened as it is.
    const QString log = QDir(Recordings()).filePath(Logs().front());
    QVERIFY(!ZrImportTask::IsForeign(log));
    QVERIFY(m_view->Open(log));
    Finish();
    QCOMPARE(Logs().size(), 1);
}

/// What was imported before, with the events in it, is opened again; once more if that is wanted.
void tst_SurveyImport::againAtOnce()
{
    QVERIFY(m_view->Open(Line()));
    Finish();
    QVERIFY(m_view->Open(Line()));
    QVERIFY(!Import().IsWorking());
    QVERIFY2(Toast().Text().contains(QStringLiteral("was imported before")), qPrintable(Toast().Text()));
    Finish();
    QCOMPARE(Logs().size(), 1);
    Click(Toast().findChild<ZrBtn*>());
    Finish();
    QCOMPARE(Logs().size(), 2);
    QVERIFY(Page().Recording()->Path().endsWith(QStringLiteral("iver2-scotsman-pings0-299-2.log")));
}

/// Another file of the same name does not become the log of the first.
void tst_SurveyImport::newerFile()
{
    const QString path = Write("line.xtf", LineBytes());
    QVERIFY(m_view->Open(path));
    Finish();
    QFile changed(path);
    QVERIFY(changed.open(QIODevice::ReadWrite));
    QVERIFY(changed.setFileTime(QDateTime::currentDateTime().addSecs(60), QFileDevice::FileModificationTime));
    changed.close();
    QVERIFY(m_view->Open(path));
    QVERIFY(Import().IsWorking());
    Finish();
    QCOMPARE(Logs().size(), 2);
}

void tst_SurveyImport::damaged()
{
    QSignalSpy shown(&Toast(), &ZrToast::Shown);
    QVERIFY(m_view->Open(Write("short.xtf", LineBytes().left(headBytes + 50 * pingBytes + 99))));
    Finish();
    QCOMPARE(Page().Recording()->Pings().size(), std::size_t(50));
    QStringList told;
    for (const auto& arguments : shown)
        told.append(arguments[1].toString());
    QVERIFY2(!told.filter(QStringLiteral("flaws of the file: 1")).isEmpty(),
        qPrintable(told.join(QLatin1Char('\n'))));
}

void tst_SurveyImport::nothingInIt()
{
    QVERIFY(m_view->Open(Write("head.xtf", LineBytes().left(headBytes))));
    Finish();
    QVERIFY2(
        Toast().Text().contains(QStringLiteral("head.xtf cannot be imported")), qPrintable(Toast().Text()));
    QCOMPARE(Toast().Kind(), ZrToast::error);
    QVERIFY(Logs().isEmpty());
    QVERIFY(!Page().Recording());
}

void tst_SurveyImport::noFolder()
{
    Settings().recordDir = Write("a file", "x") + QStringLiteral("/recordings");
    QVERIFY(m_view->Open(Line()));
    QVERIFY(!Import().IsWorking());
    QVERIFY2(Toast().Text().contains(QStringLiteral("cannot be made")), qPrintable(Toast().Text()));
}

void tst_SurveyImport::cancelled()
{
    // So long that it is still at work when it is told to end.
    const QByteArray line = LineBytes();
    QByteArray all = line;
    for (int i = 0; i < 60; ++i)
        all += line.mid(headBytes);
    QVERIFY(m_view->Open(Write("long.xtf", all)));
    QVERIFY(Import().IsWorking());
    Import().Cancel();
    Finish();
    QVERIFY2(
        Toast().Text().contains(QStringLiteral("long.xtf was not imported")), qPrintable(Toast().Text()));
    QVERIFY(Logs().isEmpty());
}

GL_TEST_MAIN(tst_SurveyImport)
#include "tst_SurveyImport.moc"
