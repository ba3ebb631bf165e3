// The smallest application, run as a person runs it: its first screen, settings that stay, damaged settings.
//
// The pictures are held against tests/golden/hello-*.png. After an intended change of the look, with the
// fonts of fonts-liberation installed:
//
//     ZR_GOLDEN_UPDATE=1 xvfb-run -a -s "-screen 0 1920x1080x24" build/dev/bin/tst_HelloView
//
// and look at every one of them before it is committed.

#include "GlTest.h"
#include "GoldenImage.h"

#include <QApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

/// A word that is another one is more than this.
constexpr golden::Tolerance tolerance{24, 0.00005};

} // namespace

class tst_HelloView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void isSmall();
    void firstScreen();
    void settingsStay();
    void damagedSettings_data();
    void damagedSettings();
    void damagedSettingsPicture();
    void wrongKindOfValue();
    void pictureCannotBeWritten();
    void settingsCannotBeSaved();
    void wrongOption();

private:
    /// Runs it in the folder, with settings.json and picture.png unless others are named.
    int Start(const QStringList& arguments = {});
    QByteArray Read(const char* name);
    void Write(const QByteArray& bytes);

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_errors;
};

void tst_HelloView::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
}

int tst_HelloView::Start(const QStringList& arguments)
{
    QProcess process;
    process.setWorkingDirectory(m_dir->path());
    process.start(S(ZR_BIN_DIR "/hello_view"),
        arguments.isEmpty()
            ? QStringList({S("--settings"), S("settings.json"), S("--screenshot"), S("picture.png")})
            : arguments);
    const bool ok = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
    m_errors = QString::fromUtf8(process.readAllStandardError());
    return ok ? process.exitCode() : -1;
}

QByteArray tst_HelloView::Read(const char* name)
{
    QFile file(m_dir->filePath(S(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_HelloView::Write(const QByteArray& bytes)
{
    QFile file(m_dir->filePath(S("settings.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

/// What the document about it promises.
void tst_HelloView::isSmall()
{
    QFile source(S(ZR_SOURCE_DIR "/examples/hello_view/main.cpp"));
    QVERIFY(source.open(QIODevice::ReadOnly));
    QVERIFY(source.readAll().count('\n') < 100);
}

void tst_HelloView::firstScreen()
{
    QCOMPARE(Start(), 0);
    const QString error
        = golden::Compare(QImage(m_dir->filePath(S("picture.png"))), S("hello-first.png"), tolerance);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    QVERIFY(QFile::exists(m_dir->filePath(S("settings.json"))));
    QVERIFY(!QFile::exists(m_dir->filePath(S("settings.json.damaged"))));
}

void tst_HelloView::settingsStay()
{
    QCOMPARE(Start(), 0);
    QJsonObject root = QJsonDocument::fromJson(Read("settings.json")).object();
    QJsonObject globals = root[S("globals")].toObject();
    QJsonObject units = globals[S("units")].toObject();
    units[S("length unit (short)")] = S("ft");
    units[S("length scale (short)")] = 3.28084;
    globals[S("units")] = units;
    globals[S("theme")] = QJsonObject({{S("tablet mode"), true}});
    root[S("globals")] = globals;
    root[S("last path")] = S("/data/Tiefe äß");
    QJsonObject forms = root[S("forms")].toObject();
    forms[S("Application Settings")] = QJsonObject({{S("ScaleValue"), S("2")}});
    root[S("forms")] = forms;
    Write(QJsonDocument(root).toJson());
    // They are in force on the first screen, and are what is saved again.
    for (int run = 0; run < 2; ++run) {
        QCOMPARE(Start(), 0);
        QCOMPARE(QJsonDocument::fromJson(Read("settings.json")).object(), root);
    }
    const QString error
        = golden::Compare(QImage(m_dir->filePath(S("picture.png"))), S("hello-feet-plus2.png"), tolerance);
    QVERIFY2(error.isEmpty(), qPrintable(error));
}

void tst_HelloView::damagedSettings_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("cut") << QByteArray("{ \"forms\": {");
    QTest::newRow("garbage") << QByteArray("\x7f\x45\x4c\x46\x00\x00\xff", 7);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("a number") << QByteArray("17");
}

void tst_HelloView::damagedSettings()
{
    QFETCH(QByteArray, bytes);
    QCOMPARE(Start(), 0);
    const QImage usual(m_dir->filePath(S("picture.png")));
    const QByteArray defaults = Read("settings.json");
    QVERIFY(QFile::remove(m_dir->filePath(S("settings.json.bak"))));
    Write(bytes);
    QCOMPARE(Start(), 0);
    // The person sees it; above the message nothing is different.
    const QImage told(m_dir->filePath(S("picture.png")));
    QCOMPARE(told.size(), usual.size());
    const QRect above(0, 0, 1280, 600);
    QCOMPARE(told.copy(above), usual.copy(above));
    QVERIFY(told != usual);
    QCOMPARE(Read("settings.json.damaged"), bytes);
    QCOMPARE(Read("settings.json"), defaults);
    // And is told once.
    QCOMPARE(Start(), 0);
    QCOMPARE(QImage(m_dir->filePath(S("picture.png"))), usual);
}

void tst_HelloView::damagedSettingsPicture()
{
    Write("{\n    \"forms\": {");
    QCOMPARE(Start(), 0);
    const QString error
        = golden::Compare(QImage(m_dir->filePath(S("picture.png"))), S("hello-damaged.png"), tolerance);
    QVERIFY2(error.isEmpty(), qPrintable(error));
}

void tst_HelloView::wrongKindOfValue()
{
    const QByteArray text("{\"forms\": [], \"globals\": {\"units\": 5, \"theme\": {\"tablet mode\": \"x\"}}, "
                          "\"last path\": {}, \"pages\": null}");
    Write(text);
    QCOMPARE(Start(), 0);
    QCOMPARE(Read("settings.json.damaged"), text);
    const QString error
        = golden::Compare(QImage(m_dir->filePath(S("picture.png"))), S("hello-wrong-kinds.png"), tolerance);
    QVERIFY2(error.isEmpty(), qPrintable(error));
}

void tst_HelloView::pictureCannotBeWritten()
{
    QCOMPARE(Start({S("--settings"), S("settings.json"), S("--screenshot"), S("none/picture.png")}), 3);
    QVERIFY(QFile::exists(m_dir->filePath(S("settings.json"))));
}

void tst_HelloView::settingsCannotBeSaved()
{
    QCOMPARE(Start({S("--settings"), S("/proc/none/settings.json"), S("--screenshot"), S("picture.png")}), 3);
    QVERIFY2(m_errors.contains(S("The settings are not saved. /proc/none")), qPrintable(m_errors));
    QVERIFY(QFile::exists(m_dir->filePath(S("picture.png"))));
}

void tst_HelloView::wrongOption()
{
    QCOMPARE(Start({S("--bogus")}), 1);
    QVERIFY(m_errors.contains(S("bogus")));
    QVERIFY(QDir(m_dir->path()).isEmpty());
}

GL_TEST_MAIN(tst_HelloView)
#include "tst_HelloView.moc"
