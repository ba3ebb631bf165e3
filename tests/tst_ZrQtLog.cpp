#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrKit/ui/ZrQtLog.h"

#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QtTest>

#include <thread>

namespace {

int s_before = 0; ///< messages that the handler before got

void Count(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*text*/)
{
    ++s_before;
}

} // namespace

class tst_ZrQtLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void levels_data();
    void levels();
    void unwantedLevels();
    void categoryAndPlace();
    void otherThreads();
    void handlerBefore();

private:
    QString Lines() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QtMessageHandler m_handler = nullptr;
};

void tst_ZrQtLog::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    zr_debug_log_set_base_path(QFile::encodeName(m_folder->path()).constData());
    zr_debug_log_to_file = 1;
    zr_debug_log_to_dbg = 0;
    zr_debug_log_level = ZR_DEBUG_LOG_TRACE;
    zr_debug_log_flush_level = ZR_DEBUG_LOG_TRACE;
    s_before = 0;
    m_handler = qInstallMessageHandler(&Count);
}

void tst_ZrQtLog::cleanup()
{
    qInstallMessageHandler(m_handler);
    zr_debug_log_to_file = 0;
    zr_debug_log_set_base_path(nullptr);
}

QString tst_ZrQtLog::Lines() const
{
    char path[ZR_DEBUG_LOG_PATH_SIZE] = {};
    zr_debug_log_get_cur_path(path);
    QFile file(QFile::decodeName(path));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void tst_ZrQtLog::levels_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("name");
    QTest::newRow("debug") << int(QtDebugMsg) << "Debug ";
    QTest::newRow("info") << int(QtInfoMsg) << "Info ";
    QTest::newRow("warning") << int(QtWarningMsg) << "Warning ";
    QTest::newRow("critical") << int(QtCriticalMsg) << "Error ";
}

void tst_ZrQtLog::levels()
{
    QFETCH(int, type);
    QFETCH(QString, name);
    {
        const ZrQtLog log;
        qt_message_output(static_cast<QtMsgType>(type), QMessageLogContext(), QStringLiteral("Tiefe äß"));
    }
    const QString lines = Lines();
    QVERIFY2(lines.startsWith(name), qPrintable(lines));
    QVERIFY2(lines.trimmed().endsWith(QStringLiteral("Tiefe äß")), qPrintable(lines));
    QCOMPARE(lines.count(QLatin1Char('\n')), 1);
    QCOMPARE(s_before, 0);
}

/// The level of the debug log counts, and nothing goes elsewhere.
void tst_ZrQtLog::unwantedLevels()
{
    zr_debug_log_level = ZR_DEBUG_LOG_WARNING;
    const ZrQtLog log;
    qDebug("details");
    qInfo("news");
    QCOMPARE(Lines(), QString());
    qWarning("trouble");
    QVERIFY(Lines().contains(QStringLiteral("trouble")));
    QCOMPARE(s_before, 0);
}

void tst_ZrQtLog::categoryAndPlace()
{
    const ZrQtLog log;
    const QLoggingCategory category("survey.map");
    qCWarning(category, "off the map");
    const QMessageLogContext context("chart.cpp", 12, "void Draw()", nullptr);
    qt_message_output(QtWarningMsg, context, QStringLiteral("no ink\nat all"));
    const QStringList lines = Lines().trimmed().split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 2);
    QVERIFY2(lines[0].contains(QStringLiteral("| Qt-survey.map |")), qPrintable(lines[0]));
    for (const char* part : {"| Qt-default |", "chart.cpp:12", "void Draw()", "no ink\\nat all"})
        QVERIFY2(lines[1].contains(QLatin1String(part)), qPrintable(lines[1]));
}

void tst_ZrQtLog::otherThreads()
{
    {
        const ZrQtLog log;
        std::thread a([] {
            for (int i = 0; i < 100; ++i)
                qWarning("one %d", i);
        });
        std::thread b([] {
            for (int i = 0; i < 100; ++i)
                qWarning("two %d", i);
        });
        a.join();
        b.join();
    }
    QCOMPARE(Lines().count(QLatin1Char('\n')), 200);
}

void tst_ZrQtLog::handlerBefore()
{
    {
        const ZrQtLog log;
        qWarning("into the log");
    }
    QCOMPARE(s_before, 0);
    qWarning("as before");
    QCOMPARE(s_before, 1);
    QVERIFY(!Lines().contains(QStringLiteral("as before")));
}

QTEST_GUILESS_MAIN(tst_ZrQtLog)
#include "tst_ZrQtLog.moc"
