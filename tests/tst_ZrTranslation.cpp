#include "ZrKit/import/ZrImporter.h"
#include "ZrKit/ui/ZrTranslation.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

/// "%1: the file is empty" of ZrImporter in German, as lrelease writes it.
const QByteArray german = QByteArray::fromHex(
    "3cb86418caef9c95cd211cbf60a1bddda7000000026465420000000805f4fd99000000006900000060030000002c0025"
    "0031003a002000640069006500200044006100740065006900200069007300740020006c006500650072080000000006"
    "0000001525313a207468652066696c6520697320656d707479070000000a5a72496d706f727465720188000000020101");

QString Text()
{
    return QCoreApplication::translate("ZrImporter", "%1: the file is empty");
}

} // namespace

class tst_ZrTranslation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void language();
    void firstFolderWins();
    void none_data();
    void none();
    void folders();

private:
    QString Folder(const char* name, const char* file, const QByteArray& content);

    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_ZrTranslation::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
}

void tst_ZrTranslation::cleanup()
{
    qDeleteAll(QCoreApplication::instance()->findChildren<QTranslator*>());
}

QString tst_ZrTranslation::Folder(const char* name, const char* file, const QByteArray& content)
{
    const QString folder = m_dir->filePath(S(name));
    QDir().mkpath(folder);
    QFile out(folder + S("/") + S(file));
    if (!out.open(QIODevice::WriteOnly) || out.write(content) != content.size())
        qFatal("cannot write");
    return folder;
}

void tst_ZrTranslation::language()
{
    const QString folder = Folder("übersetzt", "App_de.qm", german);
    QVERIFY(ZrTranslation::Install(S("App"), {folder}, QLocale(S("de_AT"))));
    QCOMPARE(Text(), S("%1: die Datei ist leer"));

    // The kit asks for it by itself.
    QString error;
    const QString empty = Folder("empty", "a.xtf", QByteArray()) + S("/a.xtf");
    QVERIFY(!ZrImporter::Create(empty, S("auto"), {}, &error));
    QVERIFY2(error.endsWith(S("die Datei ist leer")), qPrintable(error));
}

void tst_ZrTranslation::firstFolderWins()
{
    QByteArray other = german;
    other.replace(QByteArray("\0l\0e\0e\0r", 8), QByteArray("\0L\0E\0E\0R", 8));
    QVERIFY(other != german);
    const QString first = Folder("first", "App_de.qm", other);
    const QString second = Folder("second", "App_de.qm", german);
    QVERIFY(
        ZrTranslation::Install(S("App"), {m_dir->filePath(S("missing")), first, second}, QLocale(S("de"))));
    QCOMPARE(Text(), S("%1: die Datei ist LEER"));
}

void tst_ZrTranslation::none_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("other language") << S("App") << S("fr") << german;
    QTest::newRow("other application") << S("Other") << S("de") << german;
    QTest::newRow("empty file") << S("App") << S("de") << QByteArray();
    QTest::newRow("no translation") << S("App") << S("de") << QByteArray(200, 'x');
    QTest::newRow("cut off") << S("App") << S("de") << german.left(20);
}

void tst_ZrTranslation::none()
{
    QFETCH(QString, name);
    QFETCH(QString, language);
    QFETCH(QByteArray, content);
    const QString folder = Folder("folder", "App_de.qm", content);
    QVERIFY(!ZrTranslation::Install(name, {folder}, QLocale(language)));
    QCOMPARE(Text(), S("%1: the file is empty"));
    QVERIFY(QCoreApplication::instance()->findChildren<QTranslator*>().isEmpty());
}

void tst_ZrTranslation::folders()
{
    const QStringList folders = ZrTranslation::Folders(S("App"));
    QCOMPARE(folders.size(), 2);
    QCOMPARE(folders[0], QCoreApplication::applicationDirPath() + S("/translations"));
    QVERIFY(folders[1].endsWith(S("/../share/App/translations")));
}

QTEST_GUILESS_MAIN(tst_ZrTranslation)
#include "tst_ZrTranslation.moc"
