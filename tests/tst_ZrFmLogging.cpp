// The settings form of the debug log: its controls follow the switches and change them.

#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrFmLogging.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrSetApp.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QDesktopServices>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QtTest>

#include <memory>

static_assert(std::is_base_of_v<ZrForm, ZrFmLogging>);

class tst_ZrFmLogging : public QObject
{
    Q_OBJECT

public Q_SLOTS:

    void opened(const QUrl& url) { m_opened.append(url); } ///< in place of the desktop

private Q_SLOTS:
    void init();
    void cleanup();

    void asMade();
    void designerNames();
    void texts();
    void shownAtFirst();
    void slidersSet();
    void flushSets();
    void checksSet();
    void outOfRangeIsNotWrittenBack_data();
    void outOfRangeIsNotWrittenBack();
    void shownWhenDisplayed();
    void stored();
    void loaded();
    void loadedPartly();
    void loadedDamaged();
    void path();
    void pathChosen();
    void pathNotChosen();
    void fileShown();
    void fileShownByTheFolder();
    void noFileBrowserAtAll();
    void noFileYet();
    void formGoesWhileAsking();
    void labelsKeepTheirWidth();
    void targets_data();
    void targets();

private:
    template <class T> T& Control(const char* name)
    {
        T* control = m_form->findChild<T*>(QLatin1String(name));
        if (!control)
            qFatal("no control %s", name);
        return *control;
    }

    /// Gives the program called in place of the message bus a text of its own.
    void MakeBus(const QByteArray& script);
    QString OpenLog(const QString& folder);

    std::unique_ptr<QTemporaryDir> m_dir;
    QByteArray m_path;
    int m_switches[5] = {};
    QList<QUrl> m_opened;
    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<QWidget> m_window;
    ZrFormMgr* m_mgr = nullptr;
    ZrFmLogging* m_form = nullptr;
};

void tst_ZrFmLogging::init()
{
    m_switches[0] = zr_debug_log_level;
    m_switches[1] = zr_debug_log_flush_level;
    m_switches[2] = zr_debug_log_to_file;
    m_switches[3] = zr_debug_log_to_dbg;
    m_switches[4] = zr_debug_terminate_on_critical;
    zr_debug_log_level = 2;
    zr_debug_log_flush_level = 1;
    zr_debug_log_to_file = 0;
    zr_debug_log_to_dbg = 1;
    zr_debug_terminate_on_critical = 0;
    m_dir = std::make_unique<QTemporaryDir>();
    m_path = qgetenv("PATH");
    m_opened.clear();
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "opened");
    m_theme = std::make_unique<ZrThemeState>();
    m_window = std::make_unique<QWidget>();
    m_window->resize(1400, 900);
    m_mgr = new ZrFormMgr(m_window.get());
    m_mgr->setGeometry(0, 0, 850, 600);
    m_form = new ZrFmLogging(m_mgr);
    m_mgr->AddNewForm(m_form);
}

void tst_ZrFmLogging::cleanup()
{
    m_window.reset();
    m_theme.reset();
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    qputenv("PATH", m_path);
    zr_debug_log_set_base_path(nullptr);
    zr_debug_log_level = m_switches[0];
    zr_debug_log_flush_level = m_switches[1];
    zr_debug_log_to_file = m_switches[2];
    zr_debug_log_to_dbg = m_switches[3];
    zr_debug_terminate_on_critical = m_switches[4];
}

void tst_ZrFmLogging::MakeBus(const QByteArray& script)
{
    const QString file = m_dir->filePath(QStringLiteral("dbus-send"));
    QFile out(file);
    QVERIFY(out.open(QIODevice::WriteOnly));
    out.write("#!/bin/sh\ncd '" + m_dir->path().toUtf8() + "'\n" + script);
    out.close();
    out.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("PATH", m_dir->path().toUtf8() + ":" + m_path);
}

/// Has a log file opened in \p folder; its path.
QString tst_ZrFmLogging::OpenLog(const QString& folder)
{
    zr_debug_log_set_base_path(folder.toUtf8().constData());
    zr_debug_log_to_file = 1;
    zr_debug_log_to_dbg = 0;
    zr_debug_log_modern(1, "f", 1, "g", "c", 0, 0, "x");
    char path[ZR_DEBUG_LOG_PATH_SIZE] = {};
    zr_debug_log_get_cur_path(path);
    return QString::fromUtf8(path);
}

void tst_ZrFmLogging::asMade()
{
    QCOMPARE(m_form->m_name, QStringLiteral("Logging Settings"));
    QVERIFY(!m_form->m_icon.isNull());
    QCOMPARE(m_form->m_icon, QImage(QStringLiteral(":/settings_logging.png")));
    QCOMPARE(m_form->styleSheet(), ZrTheme::GetStylesheet(QStringLiteral(":/css/forms.css")));
    QVERIFY(!m_form->styleSheet().isEmpty());
}

void tst_ZrFmLogging::designerNames()
{
    QVERIFY(m_form->findChild<QGridLayout*>(QStringLiteral("gridLayout")));
    QVERIFY(m_form->findChild<QHBoxLayout*>(QStringLiteral("horizontalLayout")));
    Control<QCheckBox>("toFile");
    Control<QCheckBox>("toDbg");
    Control<QSlider>("level");
    Control<QSlider>("flush");
    Control<QLineEdit>("logFilePath");
    Control<QAbstractButton>("logFileBtn");
    Control<QAbstractButton>("openLogPath");
    for (const char* name : {"levelLbl", "flushLbl", "label", "label_2", "label_3", "label_4", "label_5"})
        Control<QLabel>(name);
}

void tst_ZrFmLogging::texts()
{
    QCOMPARE(Control<QCheckBox>("toFile").text(), QStringLiteral("Log to File"));
    QCOMPARE(Control<QCheckBox>("toDbg").text(), QStringLiteral("Output to Debug"));
    QStringList captions;
    for (const QLabel* label : m_form->findChildren<QLabel*>())
        captions.append(label->text());
    for (const QString& caption :
        {QStringLiteral("Log Level"), QStringLiteral("Quick Log"), QStringLiteral("Path")})
        QVERIFY2(captions.contains(caption), qPrintable(caption));
    for (const char* name : {"level", "flush"}) {
        QCOMPARE(Control<QSlider>(name).minimum(), 0);
        QCOMPARE(Control<QSlider>(name).maximum(), 5);
    }
}

void tst_ZrFmLogging::shownAtFirst()
{
    QCOMPARE(Control<QSlider>("level").value(), 2);
    QCOMPARE(Control<QSlider>("flush").value(), 1);
    QCOMPARE(Control<QLabel>("levelLbl").text(), QStringLiteral("Warning"));
    QCOMPARE(Control<QLabel>("flushLbl").text(), QStringLiteral("Error"));
    QVERIFY(!Control<QCheckBox>("toFile").isChecked());
    QVERIFY(Control<QCheckBox>("toDbg").isChecked());
    QCOMPARE(Control<QLineEdit>("logFilePath").text(), ZrFmLogging::cur_log_path());
}

void tst_ZrFmLogging::slidersSet()
{
    const QStringList names{QStringLiteral("Critical"), QStringLiteral("Error"), QStringLiteral("Warning"),
        QStringLiteral("Info"), QStringLiteral("Debug"), QStringLiteral("Trace")};
    for (const int level : {0, 1, 3, 4, 5, 2}) {
        Control<QSlider>("level").setValue(level);
        QCOMPARE(zr_debug_log_level, level);
        QCOMPARE(Control<QLabel>("levelLbl").text(), names[level]);
        QCOMPARE(zr_debug_log_flush_level, 1);
    }
}

void tst_ZrFmLogging::flushSets()
{
    const QStringList names{QStringLiteral("Critical"), QStringLiteral("Error"), QStringLiteral("Warning"),
        QStringLiteral("Info"), QStringLiteral("Debug"), QStringLiteral("Trace")};
    for (const int level : {0, 2, 3, 4, 5}) {
        Control<QSlider>("flush").setValue(level);
        QCOMPARE(zr_debug_log_flush_level, level);
        QCOMPARE(Control<QLabel>("flushLbl").text(), names[level]);
        QCOMPARE(zr_debug_log_level, 2);
    }
}

void tst_ZrFmLogging::checksSet()
{
    Control<QCheckBox>("toFile").click();
    QCOMPARE(zr_debug_log_to_file, 1);
    QCOMPARE(zr_debug_log_to_dbg, 1);
    Control<QCheckBox>("toDbg").click();
    QCOMPARE(zr_debug_log_to_dbg, 0);
    QCOMPARE(zr_debug_log_to_file, 1);
    Control<QCheckBox>("toFile").click();
    QCOMPARE(zr_debug_log_to_file, 0);
}

void tst_ZrFmLogging::outOfRangeIsNotWrittenBack_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("shown");
    QTest::newRow("above") << 9 << 5;
    QTest::newRow("far above") << 2147483647 << 5;
    QTest::newRow("below") << -1 << 0;
}

void tst_ZrFmLogging::outOfRangeIsNotWrittenBack()
{
    QFETCH(int, level);
    QFETCH(int, shown);
    zr_debug_log_level = level;
    zr_debug_log_flush_level = level;
    zr_debug_log_to_file = 7;
    zr_debug_log_to_dbg = -1;
    m_form->update_bindings();
    QCOMPARE(zr_debug_log_level, level);
    QCOMPARE(zr_debug_log_flush_level, level);
    QCOMPARE(zr_debug_log_to_file, 7);
    QCOMPARE(zr_debug_log_to_dbg, -1);
    QCOMPARE(Control<QSlider>("level").value(), shown);
    QCOMPARE(Control<QSlider>("flush").value(), shown);
    QCOMPARE(Control<QLabel>("levelLbl").text(), QStringLiteral("Unknown"));
    QCOMPARE(Control<QLabel>("flushLbl").text(), QStringLiteral("Unknown"));
    QVERIFY(Control<QCheckBox>("toFile").isChecked());
    QVERIFY(Control<QCheckBox>("toDbg").isChecked());
}

void tst_ZrFmLogging::shownWhenDisplayed()
{
    zr_debug_log_level = 4;
    m_mgr->SetToForm(m_form->m_name);
    QCOMPARE(Control<QSlider>("level").value(), 4);
    QCOMPARE(Control<QLabel>("levelLbl").text(), QStringLiteral("Debug"));
}

void tst_ZrFmLogging::stored()
{
    zr_debug_log_level = 4;
    zr_debug_terminate_on_critical = 1;
    zr::ZrSetApp settings(zr::ePersistStoring);
    settings.synchronise(*m_form);
    QCOMPARE(settings.root,
        (QJsonObject{{QStringLiteral("level"), QStringLiteral("4")},
            {QStringLiteral("terminate on critical"), true}, {QStringLiteral("log to file"), false},
            {QStringLiteral("log to debug"), true},
            {QStringLiteral("flush if above"), QStringLiteral("1")}}));
}

void tst_ZrFmLogging::loaded()
{
    zr::ZrSetApp settings(zr::ePersistLoading);
    settings.root = QJsonObject{{QStringLiteral("level"), QStringLiteral("5")},
        {QStringLiteral("terminate on critical"), true}, {QStringLiteral("log to file"), true},
        {QStringLiteral("log to debug"), false}, {QStringLiteral("flush if above"), QStringLiteral("3")}};
    settings.synchronise(*m_form);
    QCOMPARE(zr_debug_log_level, 5);
    QCOMPARE(zr_debug_terminate_on_critical, 1);
    QCOMPARE(zr_debug_log_to_file, 1);
    QCOMPARE(zr_debug_log_to_dbg, 0);
    QCOMPARE(zr_debug_log_flush_level, 3);
    QCOMPARE(Control<QSlider>("level").value(), 5);
    QCOMPARE(Control<QLabel>("flushLbl").text(), QStringLiteral("Info"));
    QVERIFY(Control<QCheckBox>("toFile").isChecked());
    QVERIFY(!Control<QCheckBox>("toDbg").isChecked());
}

void tst_ZrFmLogging::loadedPartly()
{
    zr::ZrSetApp settings(zr::ePersistLoading);
    settings.root = QJsonObject{{QStringLiteral("flush if above"), QStringLiteral("4")}};
    settings.synchronise(*m_form);
    QCOMPARE(zr_debug_log_level, 2);
    QCOMPARE(zr_debug_log_flush_level, 4);
    QCOMPARE(zr_debug_log_to_dbg, 1);
    QCOMPARE(zr_debug_terminate_on_critical, 0);
}

void tst_ZrFmLogging::loadedDamaged()
{
    zr::ZrSetApp settings(zr::ePersistLoading);
    settings.root = QJsonObject{
        {QStringLiteral("level"), QStringLiteral("99")}, {QStringLiteral("flush if above"), QJsonArray{1}}};
    settings.synchronise(*m_form);
    QCOMPARE(zr_debug_log_level, 99);
    QCOMPARE(zr_debug_log_flush_level, 0);
    QCOMPARE(Control<QSlider>("level").value(), 5);
    QCOMPARE(Control<QLabel>("levelLbl").text(), QStringLiteral("Unknown"));
}

void tst_ZrFmLogging::path()
{
    const QString folder = m_dir->filePath(QString::fromUtf8("Schäre"));
    zr_debug_log_set_base_path(folder.toUtf8().constData());
    QCOMPARE(ZrFmLogging::cur_log_path(), folder);
    m_form->update_bindings();
    QCOMPARE(Control<QLineEdit>("logFilePath").text(), folder);
}

void tst_ZrFmLogging::pathChosen()
{
    zr_debug_log_set_base_path(m_dir->path().toUtf8().constData());
    m_window->show();
    QString title;
    QStringList filters;
    QString start;
    QTimer::singleShot(0, this, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            qFatal("no dialog");
        title = dialog->windowTitle();
        filters = dialog->nameFilters();
        start = dialog->directory().absolutePath();
        QCOMPARE(dialog->acceptMode(), QFileDialog::AcceptSave);
        dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(QStringLiteral("logs"));
        QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
    });
    QTest::mousePress(&Control<QToolButton>("logFileBtn"), Qt::LeftButton);
    QCOMPARE(title, QStringLiteral("Select base debug log file path"));
    QCOMPARE(filters, QStringList{QStringLiteral("All Files (*.*)")});
    QCOMPARE(start, m_dir->path());
    QCOMPARE(ZrFmLogging::cur_log_path(), m_dir->filePath(QStringLiteral("logs")));
    QCOMPARE(Control<QLineEdit>("logFilePath").text(), m_dir->filePath(QStringLiteral("logs")));
    QVERIFY(!Control<QToolButton>("logFileBtn").isDown());
}

void tst_ZrFmLogging::pathNotChosen()
{
    zr_debug_log_set_base_path(m_dir->path().toUtf8().constData());
    m_form->update_bindings();
    m_window->show();
    bool wasThere = false;
    QTimer::singleShot(0, this, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        wasThere = dialog;
        QMetaObject::invokeMethod(dialog, "reject", Qt::QueuedConnection);
    });
    QTest::mousePress(&Control<QToolButton>("logFileBtn"), Qt::LeftButton);
    QVERIFY(wasThere);
    QCOMPARE(ZrFmLogging::cur_log_path(), m_dir->path());
    QCOMPARE(Control<QLineEdit>("logFilePath").text(), m_dir->path());
}

void tst_ZrFmLogging::fileShown()
{
    // It answers only when the file "go" is there, which comes after the press has returned.
    MakeBus("for a in \"$@\"; do echo \"$a\"; done >args.part\n"
            "while [ ! -e go ]; do sleep 0.02; done\nmv args.part args\n");
    const QString file = OpenLog(m_dir->filePath(QStringLiteral("a, b'c\"d $x")));
    QVERIFY(!file.isEmpty());
    QTest::mousePress(&Control<QToolButton>("openLogPath"), Qt::LeftButton);
    QVERIFY(!QFile::exists(m_dir->filePath(QStringLiteral("args"))));
    QFile go(m_dir->filePath(QStringLiteral("go")));
    QVERIFY(go.open(QIODevice::WriteOnly));
    QTRY_VERIFY(QFile::exists(m_dir->filePath(QStringLiteral("args"))));
    QFile args(m_dir->filePath(QStringLiteral("args")));
    QVERIFY(args.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(args.readAll()).split(QLatin1Char('\n'));
    QVERIFY(lines.contains(QStringLiteral("--dest=org.freedesktop.FileManager1")));
    QVERIFY(lines.contains(QStringLiteral("org.freedesktop.FileManager1.ShowItems")));
    const QString given = lines.filter(QStringLiteral("array:string:")).value(0).mid(13);
    QVERIFY(!given.contains(QLatin1Char(',')));
    QCOMPARE(QUrl(given).toLocalFile(), file);
    QTRY_VERIFY(m_form->findChildren<QProcess*>().isEmpty());
    QVERIFY(m_opened.isEmpty());
}

void tst_ZrFmLogging::fileShownByTheFolder()
{
    for (const QByteArray& end : {QByteArray("exit 1\n"), QByteArray("kill -9 $$\n")}) {
        m_opened.clear();
        MakeBus(end);
        OpenLog(m_dir->filePath(QStringLiteral("logs")));
        m_form->browse_log_path();
        QTRY_COMPARE(m_opened, QList<QUrl>{QUrl::fromLocalFile(m_dir->filePath(QStringLiteral("logs")))});
        QTRY_VERIFY(m_form->findChildren<QProcess*>().isEmpty());
    }
}

void tst_ZrFmLogging::noFileBrowserAtAll()
{
    OpenLog(m_dir->filePath(QStringLiteral("logs")));
    qputenv("PATH", m_dir->path().toUtf8());
    m_form->browse_log_path();
    QTRY_COMPARE(m_opened, QList<QUrl>{QUrl::fromLocalFile(m_dir->filePath(QStringLiteral("logs")))});
    QTRY_VERIFY(m_form->findChildren<QProcess*>().isEmpty());
}

void tst_ZrFmLogging::noFileYet()
{
    MakeBus("echo x >args\n");
    zr_debug_log_set_base_path(m_dir->filePath(QStringLiteral("none")).toUtf8().constData());
    m_form->browse_log_path();
    QVERIFY(m_form->findChildren<QProcess*>().isEmpty());
    Settle();
    QVERIFY(m_opened.isEmpty());
}

void tst_ZrFmLogging::formGoesWhileAsking()
{
    MakeBus("while [ ! -e go ]; do sleep 0.02; done\nexit 1\n");
    OpenLog(m_dir->filePath(QStringLiteral("logs")));
    m_form->browse_log_path();
    m_window.reset();
    QFile go(m_dir->filePath(QStringLiteral("go")));
    QVERIFY(go.open(QIODevice::WriteOnly));
    Settle();
    QVERIFY(m_opened.isEmpty());
}

void tst_ZrFmLogging::labelsKeepTheirWidth()
{
    m_window->show();
    Settle();
    zr_debug_log_level = 0;
    m_form->update_bindings();
    Settle();
    const QRect slider = Control<QSlider>("level").geometry();
    for (int level = 1; level <= 6; ++level) {
        zr_debug_log_level = level;
        m_form->update_bindings();
        Settle();
        QCOMPARE(Control<QSlider>("level").geometry(), slider);
        const QLabel& label = Control<QLabel>("levelLbl");
        QVERIFY(label.width() >= label.sizeHint().width());
    }
}

void tst_ZrFmLogging::targets_data()
{
    QTest::addColumn<double>("dp");
    QTest::addColumn<QSize>("size");
    QTest::newRow("1440 x 900") << 1.0 << QSize(850, 800);
    QTest::newRow("1440 x 900, +2") << 1.40625 << QSize(1195, 759);
    QTest::newRow("1440 x 900, -2") << 0.75 << QSize(638, 825);
    QTest::newRow("900 x 600") << 0.625 << QSize(531, 537);
}

void tst_ZrFmLogging::targets()
{
    QFETCH(double, dp);
    QFETCH(QSize, size);
    const ZrThemeState theme(dp);
    m_mgr->resize(size);
    m_window->show();
    Settle();
    for (const char* name :
        {"toFile", "toDbg", "level", "flush", "logFilePath", "logFileBtn", "openLogPath"}) {
        const QWidget& control = Control<QWidget>(name);
        QVERIFY2(control.height() >= 44, name);
        QCOMPARE(control.font().family(), ZrTheme::font.family());
        QVERIFY2(control.width() >= 44, name);
        QVERIFY2(m_form->rect().contains(control.geometry()), name);
    }
    for (const QLabel* label : m_form->findChildren<QLabel*>()) {
        if (!label->wordWrap())
            QVERIFY(label->width() >= label->sizeHint().width());
        QVERIFY(label->height() >= label->heightForWidth(label->width()));
    }
}

QTEST_MAIN(tst_ZrFmLogging)
#include "tst_ZrFmLogging.moc"
