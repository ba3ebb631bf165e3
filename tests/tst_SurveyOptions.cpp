// What the command line of ZrSurvey is understood as, and what is refused: without any display.

#include "apps/ZrSurvey/SurveyOptions.h"

#include <QtTest>

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

SurveyOptions Read(const char* line)
{
    return SurveyOptions::Read(
        QStringList(S("ZrSurvey")) + S(line).split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

} // namespace

class tst_SurveyOptions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothing();
    void window();
    void tour();
    void version_data();
    void version();
    void asked_data();
    void asked();
    void refused_data();
    void refused();
    void emptyFolder();
    void optionsOfQt_data();
    void optionsOfQt();
};

void tst_SurveyOptions::nothing()
{
    const SurveyOptions options = Read("");
    QVERIFY(!options.IsAnswered());
    QCOMPARE(options.size, QSize(1280, 800));
    QVERIFY(!options.data.isEmpty());
    QVERIFY(options.file.isEmpty() && options.page.isEmpty() && options.screenshot.isEmpty());
    QVERIFY(!options.isTour && !options.isTimed);
}

void tst_SurveyOptions::window()
{
    const SurveyOptions options
        = Read("--data dir/ä --screenshot a.png --page Scene --size 900x600 --time-start -- -dive.log");
    QVERIFY2(!options.IsAnswered(), qPrintable(options.error));
    QCOMPARE(options.data, S("dir/ä"));
    QCOMPARE(options.screenshot, S("a.png"));
    QCOMPARE(options.page, S("Scene"));
    QCOMPARE(options.size, QSize(900, 600));
    QCOMPARE(options.file, S("-dive.log"));
    QVERIFY(options.isTimed);
}

void tst_SurveyOptions::tour()
{
    const SurveyOptions options = Read("--tour out --tour-line line.xtf --size 1920x1080");
    QVERIFY2(!options.IsAnswered(), qPrintable(options.error));
    QVERIFY(options.isTour);
    QCOMPARE(options.tour, S("out"));
    QCOMPARE(options.tourLine, S("line.xtf"));
    QCOMPARE(options.size, QSize(1920, 1080));
}

void tst_SurveyOptions::version_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("long") << S("--version");
    QTest::newRow("short") << S("-v");
    QTest::newRow("of what would be wrong") << S("--version --size 1x1");
}

void tst_SurveyOptions::version()
{
    QFETCH(QString, line);
    const SurveyOptions options = Read(line.toUtf8().constData());
    QCOMPARE(options.exitCode, 0);
    const QRegularExpression wanted(S("^ZrSurvey [0-9]+\\.[0-9]+\\.[0-9]+\n$"));
    QVERIFY2(wanted.match(options.output).hasMatch(), qPrintable(options.output));
    QCOMPARE(options.error, QString());
}

void tst_SurveyOptions::asked_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("said");
    QTest::newRow("help") << S("--help") << S("--tour-line <FILE>");
    QTest::newRow("help, short") << S("-h") << S("--version");
    QTest::newRow("help of what would be wrong") << S("--help --size 1x1 --tour a b c") << S("--data <DIR>");
}

void tst_SurveyOptions::asked()
{
    QFETCH(QString, line);
    QFETCH(QString, said);
    const SurveyOptions options = Read(line.toUtf8().constData());
    QCOMPARE(options.exitCode, 0);
    QVERIFY2(options.output.contains(said), qPrintable(options.output));
    QCOMPARE(options.error, QString());
}

void tst_SurveyOptions::refused_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("said");
    QTest::newRow("no option") << S("--bogus") << S("Unknown option 'bogus'");
    QTest::newRow("no value") << S("--data") << S("Missing value after '--data'");
    QTest::newRow("two files") << S("a.log b.log") << S("Unexpected argument b.log");
    for (const char* size :
        {"1280", "x", "1280x", "0x0", "319x800", "800x239", "-900x600", "900x600x2", "9e9x600"})
        QTest::newRow(size) << S("--size %1").arg(S(size)) << S("%1 is no size of a window").arg(S(size));
    QTest::newRow("no page") << S("--page home") << S("There is no page home");
    QTest::newRow("tour and data") << S("--tour out --data d") << S("--data cannot be used with --tour");
    QTest::newRow("tour and page") << S("--tour out --page Plan") << S("--page cannot be used with --tour");
    QTest::newRow("tour and screenshot")
        << S("--screenshot p.png --tour out") << S("--screenshot cannot be used with --tour");
    QTest::newRow("tour and time") << S("--tour out --time-start")
                                   << S("--time-start cannot be used with --tour");
    QTest::newRow("tour and file") << S("--tour out a.log") << S("a.log cannot be opened with --tour");
    QTest::newRow("line without tour") << S("--tour-line a.xtf") << S("--tour-line is for --tour only");
}

void tst_SurveyOptions::refused()
{
    QFETCH(QString, line);
    QFETCH(QString, said);
    const SurveyOptions options = Read(line.toUtf8().constData());
    QCOMPARE(options.exitCode, 1);
    QVERIFY2(options.error.startsWith(said), qPrintable(options.error));
    QVERIFY(options.error.endsWith(QLatin1Char('\n')));
    QCOMPARE(options.output, QString());
}

/// It would be the folder that the program happens to be started in.
void tst_SurveyOptions::emptyFolder()
{
    const SurveyOptions options = SurveyOptions::Read({S("ZrSurvey"), S("--tour"), QString()});
    QCOMPARE(options.exitCode, 1);
    QCOMPARE(options.error, S("--tour needs the name of a folder\n"));
}

void tst_SurveyOptions::optionsOfQt_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("value") << S("-platform offscreen a.log");
    QTest::newRow("two hyphens") << S("--platform offscreen a.log");
    QTest::newRow("with its value") << S("-style=fusion a.log");
    QTest::newRow("no value") << S("-widgetcount a.log");
    QTest::newRow("several") << S("-display :7 a.log -reverse -geometry 100x100+0+0");
    QTest::newRow("value is missing") << S("a.log -platform");
}

void tst_SurveyOptions::optionsOfQt()
{
    QFETCH(QString, line);
    const SurveyOptions options = Read(line.toUtf8().constData());
    QVERIFY2(!options.IsAnswered(), qPrintable(options.error));
    QCOMPARE(options.file, S("a.log"));
}

QTEST_GUILESS_MAIN(tst_SurveyOptions)
#include "tst_SurveyOptions.moc"
