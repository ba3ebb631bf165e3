// What the tour lets pass of the complaints of Qt: the machine's alone, each as a whole.

#include "apps/ZrSurvey/tour/TourLog.h"

#include <QTemporaryDir>
#include <QtTest>

class tst_SurveyTourLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ofTheMachine_data();
    void ofTheMachine();
    void taken();
};

void tst_SurveyTourLog::ofTheMachine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isOfTheMachine");
    const auto row = [](const char* text, bool isOfTheMachine) {
        QTest::newRow(text) << QString::fromUtf8(text) << isOfTheMachine;
    };
    row("QStandardPaths: XDG_RUNTIME_DIR not set, defaulting to '/tmp/runtime-root'", true);
    row("QStandardPaths: wrong permissions on runtime directory /run/user/0, 0755 instead of 0700", true);
    row("QStandardPaths: runtime directory '/run/user/0' is not owned by UID 1000, but a directory "
        "permissions 0700 owned by UID 0 GID 0",
        true);
    row("Qt: Session management error: None of the authentication protocols specified are supported", true);
    row("This plugin does not support propagateSizeHints()", true);
    row("QDBusConnection: session D-Bus connection created before QCoreApplication. Application may "
        "misbehave.",
        true);
    row("QXcbConnection: XCB error: 3 (BadWindow), sequence: 812, resource id: 6291469, major code: 40 "
        "(TranslateCoords), minor code: 0",
        true);
    row("QInotifyFileSystemWatcherEngine::addPaths: inotify_add_watch failed: No space left on device", true);
    row("", false);
    row("Could not connect", false);
    row("Could not connect to the vehicle", false);
    row("positioning", false);
    row("The positioning of the panel is wrong", false);
    row("QGeoPositionInfo is not valid", false);
    row("libpng error: Read Error", false);
    row("inotify", false);
    row("XDG_RUNTIME_DIR", false);
    row("The program: QStandardPaths: XDG_RUNTIME_DIR not set, defaulting to '/tmp/runtime-root'", false);
    row("QStandardPaths: XDG_RUNTIME_DIR not set, defaulting to '/tmp/runtime-root', and more", false);
    row("This plugin does not support propagateSizeHints()!", false);
    row("QXcbConnection: XCB error: 8 (BadMatch), sequence: 1, resource id: 2, major code: 42", false);
}

void tst_SurveyTourLog::ofTheMachine()
{
    QFETCH(QString, text);
    QTEST(TourLog::IsOfTheMachine(text), "isOfTheMachine");
}

/// Warnings and errors, each once, in their order; what only informs is no complaint.
void tst_SurveyTourLog::taken()
{
    QTemporaryDir dir;
    TourLog log;
    log.Start(dir.filePath(QStringLiteral("log")));
    QVERIFY(log.Take().isEmpty());
    const QString machine = QStringLiteral("This plugin does not support propagateSizeHints()");
    const QString ours = QStringLiteral("Could not connect to the vehicle");
    const QString other = QString::fromUtf8("positioning ö failed");
    qWarning().noquote() << machine;
    qWarning().noquote() << ours;
    qCritical().noquote() << other;
    qInfo().noquote() << ours;
    qDebug().noquote() << ours;
    QCOMPARE(log.Take(), QStringList({ours, other}));
    QVERIFY(log.Take().isEmpty());
}

QTEST_GUILESS_MAIN(tst_SurveyTourLog)
#include "tst_SurveyTourLog.moc"
