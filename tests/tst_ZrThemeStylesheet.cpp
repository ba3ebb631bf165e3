// Style sheets with tokens of the theme.

#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrTheme.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <string>
#include <vector>

namespace {

struct Line
{
    int level;
    std::string category;
    std::string message;
};

std::vector<Line> lines;

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

} // namespace

// Takes the place of the library's function: what the theme reports is seen here.
void zr_debug_log_modern(int level, const char* /*source_file*/, int /*source_line*/,
    const char* /*function*/, const char* category, int /*reserved*/, int64_t /*steady_time_ns*/,
    const char* message)
{
    lines.push_back({level, category, message});
}

class tst_ZrThemeStylesheet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void tokens_data();
    void tokens();
    void tokensFollowTheScale();
    void tokensFollowTheColours();
    void sizes_data();
    void sizes();
    void keptAsItIs_data();
    void keptAsItIs();
    void manyTokens();
    void firstSheet();
    void signOfTheEncodingGoes();

    void missingFile();
    void folder();
    void emptyPath();
    void missingFileBelowTheLevel();
    void emptyFile();

private:
    /// The style sheet that the theme makes of \p bytes.
    QString Sheet(const QByteArray& bytes);

    QTemporaryDir m_folder;
};

void tst_ZrThemeStylesheet::init()
{
    lines.clear();
    zr_debug_log_level = 2;
    zr_debug_log_to_dbg = 1;
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
}

QString tst_ZrThemeStylesheet::Sheet(const QByteArray& bytes)
{
    const QString path = m_folder.filePath(S("a sheet.css"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
    file.close();
    return ZrTheme::GetStylesheet(path);
}

void tst_ZrThemeStylesheet::tokens_data()
{
    QTest::addColumn<QString>("text");

    const struct
    {
        const char* name;
        const char* text;
    } rows[] = {
        {"fontTiny", "8px"},
        {"fontSmall", "12px"},
        {"font", "18px"},
        {"fontLarge", "24px"},
        {"fontHuge", "36px"},
        {"rxy", "6"},
        {"ctrlOutlineCol", "rgba(125, 125, 125, 1)"},
        {"ctrlActiveCol", "rgba(0, 0, 125, 1)"},
        {"ctrlHighlightCol", "rgba(0, 120, 120, 1)"},
        {"ctrlCheckCol", "rgba(90, 160, 180, 0.588235)"},
        {"ctrlHintCol", "rgba(0, 255, 0, 0.0784314)"},
        {"ctrlCol", "rgba(255, 255, 255, 1)"},
        {"titleCol", "rgba(255, 255, 255, 1)"},
        {"bodyCol", "rgba(200, 200, 200, 1)"},
        {"formBdr", "rgba(255, 255, 255, 1)"},
        {"formMgr", "rgba(100, 100, 100, 0.784314)"},
        {"formBack", "rgba(0, 0, 0, 0.941176)"},
        {"goodCol", "rgba(0, 255, 0, 1)"},
        {"warnCol", "rgba(255, 255, 0, 1)"},
        {"errorCol", "rgba(255, 0, 0, 1)"},
        {"gridCol", "rgba(128, 128, 128, 0.501961)"},
        {"toolBack", "rgba(51, 51, 51, 0.862745)"},
        {"darken", "rgba(0, 0, 0, 0.196078)"},
        {"lighten", "rgba(255, 255, 255, 0.196078)"},
        {"sea", "rgba(35, 55, 75, 1)"},
        {"seabed", "rgba(90, 160, 180, 1)"},
        {"track", "rgba(255, 0, 0, 1)"},
        {"vehicle", "rgba(200, 200, 50, 1)"},
        {"posA", "rgba(200, 50, 50, 1)"},
        {"posB", "rgba(50, 200, 50, 1)"},
        {"posC", "rgba(50, 50, 200, 1)"},
        {"marker", "rgba(150, 150, 150, 1)"},
        {"waypoint", "rgba(150, 150, 150, 1)"},
        {"route", "rgba(0, 200, 0, 1)"},
    };

    for (const auto& row : rows)
        QTest::newRow(row.name) << S(row.text);
}

void tst_ZrThemeStylesheet::tokens()
{
    QFETCH(QString, text);
    const QByteArray token = QByteArray("<") + QTest::currentDataTag() + ">";
    QCOMPARE(Sheet(token), text);
    QCOMPARE(Sheet("a" + token + token + "b\n" + token), S("a") + text + text + S("b\n") + text);
}

void tst_ZrThemeStylesheet::tokensFollowTheScale()
{
    const ZrThemeState state(1.5);
    QCOMPARE(Sheet("<fontTiny> <fontSmall> <font> <fontLarge> <fontHuge> <rxy> <DpI(12)>"),
        S("12px 18px 27px 36px 54px 9 18"));
    // The corner radius is the one in force, sizes follow the scale at once.
    ZrTheme::dp = 1.0F;
    QCOMPARE(Sheet("<rxy> <font> <DpI(12)>"), S("9 27px 12"));
}

void tst_ZrThemeStylesheet::tokensFollowTheColours()
{
    ZrTheme::sea = QColor(1, 2, 3, 0);
    ZrTheme::route = QColor(4, 5, 6, 1);
    QCOMPARE(Sheet("<sea>|<route>"), S("rgba(1, 2, 3, 0)|rgba(4, 5, 6, 0.00392157)"));
}

void tst_ZrThemeStylesheet::sizes_data()
{
    QTest::addColumn<double>("dp");
    QTest::addColumn<QString>("text");
    QTest::newRow("<DpI(12)>") << 1.5 << S("18");
    QTest::newRow("<DpI(2)>") << 1.25 << S("3");
    QTest::newRow("<DpI(0.3)>") << 1.0 << S("0");
    QTest::newRow("<DpI(.5)>") << 1.0 << S("1");
    QTest::newRow("<DpI(-2)>") << 1.0 << S("-1");
    QTest::newRow("<DpI(+2)>") << 1.0 << S("2");
    QTest::newRow("<DpI(007)>") << 1.0 << S("7");
    // No decimal numbers: they stay.
    for (const char* text : {"<DpI(x)>", "<DpI()>", "<DpI(1e3)>", "<DpI(0x10)>", "<DpI(1,5)>", "<DpI( 2 )>",
             "<DpI(2>", "<DpI 2)>", "<DpI(2))>", "<DpI(nan)>", "<DpI(inf)>", "<DpI(1-2)>", "<DpI(--1)>",
             "<dpi(2)>", "<DpF(2)>", "<DpI>", "<DpI(\xD9\xA2)>"})
        QTest::newRow(text) << 1.0 << S(text);
}

void tst_ZrThemeStylesheet::sizes()
{
    QFETCH(double, dp);
    QFETCH(QString, text);
    const ZrThemeState state(dp);
    QCOMPARE(Sheet(QTest::currentDataTag()), text);
}

void tst_ZrThemeStylesheet::keptAsItIs_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const auto row = [](const char* name, const QByteArray& bytes) { QTest::newRow(name) << bytes; };
    row("no token", "QFrame { color: red; }\n");
    row("line ends", "a\r\nb\rc\n\n\td  \n");
    row("unicode", "/* \xC3\xBC \xE2\x98\x83 \xF0\x9F\x90\x9F */");
    row("zero bytes", QByteArray("a\0b\0", 4));
    row("unknown token", "<unknown> <ctrlcol> <CTRLCOL> <fontHuge2> <scaleDisplay>");
    row("suffix", "<ctrlCol|suffix> <ctrlCol|>");
    row("blanks", "< ctrlCol> <ctrlCol > < rxy >");
    row("empty token", "<> << >>");
    row("open", "<ctrlCol");
    row("closed only", "ctrlCol>");
    row("markup", "<b>bold</b> a < b > c");
    row("child selector", "QWidget > QFrame { margin: 0; }");
}

void tst_ZrThemeStylesheet::keptAsItIs()
{
    QFETCH(QByteArray, bytes);
    QCOMPARE(Sheet(bytes).toUtf8(), bytes);
    // The same beside tokens.
    const QString text = QString::fromUtf8(bytes.constData(), bytes.size());
    QCOMPARE(Sheet("<rxy>" + bytes + "<rxy>"), S("6") + text + S("6"));
    QVERIFY(lines.empty());
}

void tst_ZrThemeStylesheet::manyTokens()
{
    QCOMPARE(Sheet("<<rxy>>"), S("<6>"));
    QCOMPARE(Sheet("<x<rxy>"), S("<x6"));
    QCOMPARE(Sheet("a<b<rxy>c>d"), S("a<b6c>d"));
    QByteArray many;
    QString expected;
    for (int i = 0; i < 20000; ++i) {
        many += "x<rxy><";
        expected += S("x6<");
    }
    QCOMPARE(Sheet(many), expected);
}

void tst_ZrThemeStylesheet::firstSheet()
{
    const QByteArray sheet = "* { color: <ctrlCol>; }\n"
                             "QFrame { background-color: <formMgr>; border: <DpI(2)>px solid <formBdr>; "
                             "border-radius: <rxy>px; }\n"
                             "QToolButton:hover { border: <DpI(2)>px solid <ctrlHighlightCol>; }\n";
    const ZrThemeState state(1.5);
    QCOMPARE(Sheet(sheet),
        S("* { color: rgba(255, 255, 255, 1); }\n"
          "QFrame { background-color: rgba(100, 100, 100, 0.784314); border: 3px solid "
          "rgba(255, 255, 255, 1); border-radius: 9px; }\n"
          "QToolButton:hover { border: 3px solid rgba(0, 120, 120, 1); }\n"));
}

void tst_ZrThemeStylesheet::signOfTheEncodingGoes()
{
    QCOMPARE(Sheet("\xEF\xBB\xBF* { }"), S("* { }"));
}

void tst_ZrThemeStylesheet::missingFile()
{
    const QString path = m_folder.filePath(S("nicht d\u00E4.css"));
    QVERIFY(ZrTheme::GetStylesheet(path).isEmpty());
    QCOMPARE(int(lines.size()), 1);
    QCOMPARE(lines[0].level, 2);
    QCOMPARE(lines[0].category, std::string("ZrUtil-ZrTheme"));
    QCOMPARE(QString::fromStdString(lines[0].message), S("Failed opening stylesheet \"%1\"").arg(path));
}

void tst_ZrThemeStylesheet::folder()
{
    QVERIFY(ZrTheme::GetStylesheet(m_folder.path()).isEmpty());
    QCOMPARE(int(lines.size()), 1);
}

void tst_ZrThemeStylesheet::emptyPath()
{
    QVERIFY(ZrTheme::GetStylesheet(QString()).isEmpty());
    QCOMPARE(int(lines.size()), 1);
    QCOMPARE(lines[0].message, std::string("Failed opening stylesheet \"\""));
}

void tst_ZrThemeStylesheet::missingFileBelowTheLevel()
{
    zr_debug_log_level = 1;
    QVERIFY(ZrTheme::GetStylesheet(m_folder.filePath(S("none"))).isEmpty());
    QVERIFY(lines.empty());
}

void tst_ZrThemeStylesheet::emptyFile()
{
    QVERIFY(Sheet(QByteArray()).isEmpty());
    QVERIFY(lines.empty());
}

QTEST_MAIN(tst_ZrThemeStylesheet)
#include "tst_ZrThemeStylesheet.moc"
