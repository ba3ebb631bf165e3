// The whole tree of settings of an application: stored by one process, in force in the next one.

#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrFmApp.h"
#include "ZrUtil/ZrFmLogging.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrPage.h"
#include "ZrUtil/ZrSetApp.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrUnits.h"

#include <QCheckBox>
#include <QJsonDocument>
#include <QLabel>
#include <QProcess>
#include <QSlider>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>
#include <cstring>

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

class ChartPage : public ZrPage
{
public:
    double m_zoom = 1.0;

    using ZrPage::ZrPage;

    void settings(zr::ZrSetModule& module) override { module.item(S("zoom"), m_zoom); }
};

/// An application as any other: one page, both forms.
class App : public ZrAppView
{
public:
    ChartPage* m_page = new ChartPage(this);
    ZrFmApp* m_app = new ZrFmApp(&forms());
    ZrFmLogging* m_log = new ZrFmLogging(&forms());

    App()
        : ZrAppView(nullptr, std::chrono::milliseconds(1000), updateTimer, std::chrono::milliseconds(1000))
    {
        AddPage(S("Home"), m_page, true);
        forms().AddNewForm(m_app);
        forms().AddNewForm(m_log);
    }
};

/// Everything that the tree holds, as one text.
QString State(const App& app)
{
    return QStringList(
        {ZrUnits::GetShortLengthString(10.0, 3, true), ZrUnits::GetTinyLengthString(1.0, 3, true),
            ZrUnits::GetLongLengthString(1000.0, 3, true), ZrUnits::GetSpeedString(1.0, 3, true),
            ZrUnits::GetTemperatureString(20.0, 3, true), QString::number(ZrUnits::GetGeoStyle()),
            S("scale %1, made for %2 x %3")
                .arg(app.m_app->m_scale)
                .arg(ZrTheme::designWidth)
                .arg(ZrTheme::designHeight),
            S("tablet %1").arg(ZrTheme::tabletMode), S("path ") + app.last_path(),
            S("log %1 %2 %3 %4 %5")
                .arg(zr_debug_log_level)
                .arg(zr_debug_log_flush_level)
                .arg(zr_debug_log_to_file)
                .arg(zr_debug_log_to_dbg)
                .arg(zr_debug_terminate_on_critical),
            S("zoom %1").arg(app.m_page->m_zoom)})
        .join(S("; "));
}

/// What a person may have set, other than at any start.
void Change(App& app)
{
    app.m_app->OnUom(1);
    app.m_app->OnCs(3);
    app.m_app->OnLarge();
    ZrTheme::tabletMode = true;
    app.set_last_path(S("/data/Tauchgänge/深度 12"));
    zr_debug_log_level = 4;
    zr_debug_log_flush_level = 3;
    zr_debug_log_to_file = 0;
    zr_debug_log_to_dbg = 0;
    zr_debug_terminate_on_critical = 1;
    app.m_page->m_zoom = 2.75;
}

/// Another run of this program: says the state that \p path gives.
QString StateInNewProcess(const QString& path, int format)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {S("--state-of"), path, QString::number(format)});
    if (!process.waitForFinished(60000) || process.exitCode() != 0)
        return S("failed: ") + QString::fromUtf8(process.readAllStandardError());
    return QString::fromUtf8(process.readAllStandardOutput());
}

int PrintState(const char* path, const char* format)
{
    ZrTheme::SetDesignScale(1440, 900);
    ZrTheme::SetStdStyle();
    App app;
    zr::ZrSetApp loaded(zr::ePersistLoading);
    if (*path != '\0') {
        if (!loaded.load_from_file(QString::fromLocal8Bit(path), zr::ZrSetApp::eFmt(std::atoi(format))))
            return 2;
        loaded.synchronise(app);
    }
    std::fputs(State(app).toUtf8().constData(), stdout);
    return 0;
}

} // namespace

class tst_SettingsRestart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void restart_data();
    void restart();
    void binaryDoesNotLoad();
    void secondView();
    void whatIsShownAfterwards();
    void storedAgainItIsTheSame();

private:
    QTemporaryDir m_dir;
};

void tst_SettingsRestart::restart_data()
{
    QTest::addColumn<int>("format");
    QTest::newRow("indented") << int(zr::ZrSetApp::eFmtIndented);
    QTest::newRow("compact") << int(zr::ZrSetApp::eFmtCompact);
}

void tst_SettingsRestart::restart()
{
    QFETCH(int, format);
    App app;
    Change(app);
    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(app);
    const QString path = m_dir.filePath(S("settings %1").arg(format));
    QVERIFY(stored.save_to_file(path, zr::ZrSetApp::eFmt(format)));
    const QString state = State(app);
    const QString fresh = StateInNewProcess(QString(), format);
    // Nothing is what it is at the start.
    const QStringList now = state.split(S("; "));
    const QStringList before = fresh.split(S("; "));
    QCOMPARE(now.size(), before.size());
    for (int i = 0; i < now.size(); ++i)
        QVERIFY2(now[i] != before[i], qPrintable(now[i]));
    QCOMPARE(StateInNewProcess(path, format), state);
}

/// Files are read in text mode, which drops the byte 13, and that is the length of the key "false easting".
/// The file itself is whole.
void tst_SettingsRestart::binaryDoesNotLoad()
{
    App app;
    Change(app);
    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(app);
    const QString path = m_dir.filePath(S("settings.bin"));
    QVERIFY(stored.save_to_file(path, zr::ZrSetApp::eFmtBinary));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    QCOMPARE(QJsonDocument::fromBinaryData(file.readAll()).object(), stored.root);
    QT_WARNING_POP
    zr::ZrSetApp loaded(zr::ePersistLoading);
    QVERIFY(!loaded.load_from_file(path, zr::ZrSetApp::eFmtBinary));
    QVERIFY(loaded.root.isEmpty());
    // An application that does not ask stays as it is.
    const QString state = State(app);
    loaded.synchronise(app);
    QCOMPARE(State(app), state);
}

/// In the same process, everything having been set otherwise in between.
void tst_SettingsRestart::secondView()
{
    QJsonObject root;
    QString state;
    {
        App app;
        Change(app);
        state = State(app);
        zr::ZrSetApp stored(zr::ePersistStoring);
        stored.synchronise(app);
        root = stored.root;
    }
    App app;
    app.m_app->OnUom(0);
    app.m_app->OnCs(0);
    app.m_app->OnSmallest();
    ZrTheme::tabletMode = false;
    zr_debug_log_level = 0;
    zr_debug_log_flush_level = 0;
    zr_debug_log_to_file = 1;
    zr_debug_log_to_dbg = 1;
    zr_debug_terminate_on_critical = 0;
    QVERIFY(State(app) != state);
    zr::ZrSetApp loaded(zr::ePersistLoading);
    loaded.root = root;
    loaded.synchronise(app);
    QCOMPARE(State(app), state);
}

void tst_SettingsRestart::whatIsShownAfterwards()
{
    App first;
    Change(first);
    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(first);
    first.m_app->OnUom(0);
    zr_debug_log_level = 0;

    App app;
    zr::ZrSetApp loaded(zr::ePersistLoading);
    loaded.root = stored.root;
    loaded.synchronise(app);
    QCOMPARE(app.m_log->findChild<QSlider*>(S("level"))->value(), 4);
    QCOMPARE(app.m_log->findChild<QSlider*>(S("flush"))->value(), 3);
    QCOMPARE(app.m_log->findChild<QLabel*>(S("levelLbl"))->text(),
        QString::fromUtf8(zr_debug_log_level_to_string(4)));
    QVERIFY(!app.m_log->findChild<QCheckBox*>(S("toFile"))->isChecked());
}

void tst_SettingsRestart::storedAgainItIsTheSame()
{
    App app;
    Change(app);
    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(app);
    zr::ZrSetApp loaded(zr::ePersistLoading);
    loaded.root = stored.root;
    loaded.synchronise(app);
    zr::ZrSetApp again(zr::ePersistStoring);
    again.synchronise(app);
    QCOMPARE(again.root, stored.root);
}

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    if (argc == 4 && std::strcmp(argv[1], "--state-of") == 0)
        return PrintState(argv[2], argv[3]);
    tst_SettingsRestart test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_SettingsRestart.moc"
