#include "ZrUtil/ZrSys.h"

#include <QProcess>
#include <QtTest>

#include <cstdlib>
#include <cstring>

#ifdef Q_OS_LINUX
#include <sys/ptrace.h>
#endif

namespace {

const QString variable = QStringLiteral("ZR_TST_SYS_VARIABLE");
constexpr const char* variableName = "ZR_TST_SYS_VARIABLE";

constexpr const char* tracedOption = "--query-while-traced";
constexpr int exitUntraced = 40;
constexpr int exitTraced = 41;
constexpr int exitRefused = 42;

/// Body of the child process: lets the parent trace it and answers whether that is seen.
int QueryWhileTraced()
{
    if (sys::is_debugger_attached())
        return exitTraced + 100;
#ifdef Q_OS_LINUX
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
        return exitRefused;
#endif
    return sys::is_debugger_attached() ? exitTraced : exitUntraced;
}

} // namespace

class tst_ZrSys : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { qunsetenv(variableName); }

    void cleanup() { qunsetenv(variableName); }

    void getEnvOfEmptyNameIsEmpty();
    void getEnvOfMissingVariableIsEmpty();
    void getEnvReadsTheProcessEnvironment();
    void setEnvWritesTheProcessEnvironment();
    void setEnvReplacesTheValue();
    void setEnvRefuses_data();
    void setEnvRefuses();
    void setEnvWithEmptyValue();
    void valuesAreLatin1_data();
    void valuesAreLatin1();
    void namesAreLatin1();
    void longValuesAreKeptWhole();
    void valueMayHoldAnEqualsSign();
    void childProcessesSeeTheValue();
    void clearEnvRemovesTheVariable();
    void clearEnvOfMissingOrEmptyNameChangesNothing();
    void nullDeviceSwallowsAndGivesNothing();
    void noDebuggerIsAttached();
    void tracerIsSeen();
};

void tst_ZrSys::getEnvOfEmptyNameIsEmpty()
{
    QVERIFY(sys::get_env(QString()).isEmpty());
    QVERIFY(sys::get_env(QStringLiteral("")).isEmpty());
}

void tst_ZrSys::getEnvOfMissingVariableIsEmpty()
{
    QVERIFY(sys::get_env(variable).isEmpty());
}

void tst_ZrSys::getEnvReadsTheProcessEnvironment()
{
    QVERIFY(qputenv(variableName, "/data/survey 7"));
    QCOMPARE(sys::get_env(variable), QStringLiteral("/data/survey 7"));
}

void tst_ZrSys::setEnvWritesTheProcessEnvironment()
{
    QVERIFY(sys::set_env(variable, QStringLiteral("north")));
    QCOMPARE(std::getenv(variableName), "north");
    QCOMPARE(sys::get_env(variable), QStringLiteral("north"));
}

void tst_ZrSys::setEnvReplacesTheValue()
{
    QVERIFY(sys::set_env(variable, QStringLiteral("a long first value")));
    QVERIFY(sys::set_env(variable, QStringLiteral("b")));
    QCOMPARE(std::getenv(variableName), "b");
}

void tst_ZrSys::setEnvRefuses_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("null") << QString();
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("equals sign at the end") << QStringLiteral("ZR_TST_SYS_VARIABLE=");
    QTest::newRow("equals sign inside") << QStringLiteral("ZR_TST_SYS_VARIABLE=x");
    QTest::newRow("equals sign first") << QStringLiteral("=ZR_TST_SYS_VARIABLE");
    QTest::newRow("equals sign only") << QStringLiteral("=");
}

void tst_ZrSys::setEnvRefuses()
{
    QFETCH(QString, name);
    QVERIFY(qputenv(variableName, "kept"));
    const QStringList before = QProcess::systemEnvironment();
    QVERIFY(!sys::set_env(name, QStringLiteral("value")));
    QCOMPARE(QProcess::systemEnvironment(), before);
}

void tst_ZrSys::setEnvWithEmptyValue()
{
    QVERIFY(sys::set_env(variable, QStringLiteral("x")));
    QVERIFY(sys::set_env(variable, QString()));
    QVERIFY(sys::get_env(variable).isEmpty());
#ifdef Q_OS_WIN
    QVERIFY(!qEnvironmentVariableIsSet(variableName));
#else
    QVERIFY(qEnvironmentVariableIsSet(variableName));
    QCOMPARE(std::getenv(variableName), "");
#endif
}

void tst_ZrSys::valuesAreLatin1_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("readBack");
    const QString degree = QString(QChar(0x00B0));
    QTest::newRow("ASCII") << QStringLiteral("x") << QByteArray("x") << QStringLiteral("x");
    QTest::newRow("degree sign") << degree << QByteArray("\xB0") << degree;
    QTest::newRow("sharp s") << QString(QChar(0x00DF)) << QByteArray("\xDF") << QString(QChar(0x00DF));
    QTest::newRow("outside Latin-1") << QString(QChar(0x6C34)) << QByteArray("?") << QStringLiteral("?");
    QTest::newRow("control characters")
        << QStringLiteral("a\tb\nc") << QByteArray("a\tb\nc") << QStringLiteral("a\tb\nc");
}

void tst_ZrSys::valuesAreLatin1()
{
    QFETCH(QString, value);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, readBack);
    QVERIFY(sys::set_env(variable, value));
    QCOMPARE(QByteArray(std::getenv(variableName)), bytes);
    QCOMPARE(sys::get_env(variable), readBack);
}

void tst_ZrSys::namesAreLatin1()
{
    const QString name = variable + QChar(0x00E9);
    const QByteArray bytes = QByteArray(variableName) + "\xE9";
    QVERIFY(sys::set_env(name, QStringLiteral("v")));
    QCOMPARE(qgetenv(bytes.constData()), QByteArray("v"));
    QCOMPARE(sys::get_env(name), QStringLiteral("v"));
    sys::clear_env(name);
    QVERIFY(!qEnvironmentVariableIsSet(bytes.constData()));
}

void tst_ZrSys::longValuesAreKeptWhole()
{
    const QString value(30000, QLatin1Char('d'));
    QVERIFY(sys::set_env(variable, value));
    QCOMPARE(sys::get_env(variable), value);
}

void tst_ZrSys::valueMayHoldAnEqualsSign()
{
    QVERIFY(sys::set_env(variable, QStringLiteral("a=b=c")));
    QCOMPARE(sys::get_env(variable), QStringLiteral("a=b=c"));
}

void tst_ZrSys::childProcessesSeeTheValue()
{
#ifdef Q_OS_WIN
    QSKIP("uses printenv");
#else
    QVERIFY(sys::set_env(variable, QStringLiteral("inherited")));
    QProcess child;
    child.start(QStringLiteral("printenv"), {variable});
    QVERIFY2(child.waitForFinished(20000), qPrintable(child.errorString()));
    QCOMPARE(child.readAllStandardOutput(), QByteArray("inherited\n"));
#endif
}

void tst_ZrSys::clearEnvRemovesTheVariable()
{
    QVERIFY(sys::set_env(variable, QStringLiteral("x")));
    sys::clear_env(variable);
    QVERIFY(!qEnvironmentVariableIsSet(variableName));
    QVERIFY(std::getenv(variableName) == nullptr);
    QVERIFY(sys::get_env(variable).isEmpty());
}

void tst_ZrSys::clearEnvOfMissingOrEmptyNameChangesNothing()
{
    const QStringList before = QProcess::systemEnvironment();
    sys::clear_env(variable);
    sys::clear_env(QString());
    sys::clear_env(QStringLiteral("="));
    QCOMPARE(QProcess::systemEnvironment(), before);
}

void tst_ZrSys::nullDeviceSwallowsAndGivesNothing()
{
#ifdef Q_OS_WIN
    QCOMPARE(sys::dev_null(), "nul");
#else
    QCOMPARE(sys::dev_null(), "/dev/null");
#endif
    QFile device(QString::fromLatin1(sys::dev_null()));
    QVERIFY(device.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    QCOMPARE(device.write("gone", 4), qint64(4));
    QVERIFY(device.readAll().isEmpty());
}

void tst_ZrSys::noDebuggerIsAttached()
{
#ifdef Q_OS_LINUX
    // Whoever runs this test under a debugger gets the other answer: read it independently.
    QProcess grep;
    grep.start(QStringLiteral("grep"),
        {QStringLiteral("^TracerPid:[[:space:]]*0$"),
            QStringLiteral("/proc/%1/status").arg(QCoreApplication::applicationPid())});
    QVERIFY2(grep.waitForFinished(20000), qPrintable(grep.errorString()));
    QCOMPARE(sys::is_debugger_attached(), grep.exitCode() != 0);
#else
    QVERIFY(!sys::is_debugger_attached());
#endif
}

void tst_ZrSys::tracerIsSeen()
{
#ifdef Q_OS_LINUX
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(tracedOption)});
    QVERIFY2(child.waitForFinished(20000), qPrintable(child.errorString()));
    QCOMPARE(child.exitStatus(), QProcess::NormalExit);
    if (child.exitCode() == exitRefused)
        QSKIP("the system does not let a process be traced");
    QCOMPARE(child.exitCode(), exitTraced);
#else
    QSKIP("uses ptrace");
#endif
}

int main(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], tracedOption) == 0)
        std::_Exit(QueryWhileTraced()); // without exit handlers: a leak checker cannot run while traced
    QCoreApplication app(argc, argv);
    tst_ZrSys test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ZrSys.moc"
