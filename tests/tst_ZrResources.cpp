// The resources of the library: their names, the images behind them, the style sheets.

#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrTheme.h"

#include <QDir>
#include <QDirIterator>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>
#include <QtWidgets>

#include <algorithm>

namespace {

/// A re-rendered image differs from the committed one by at most this, of 255: versions of the renderer
/// differ in how they smooth edges.
constexpr int renderTolerance = 16;

QStringList s_messages;

void Collect(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text)
{
    s_messages << text;
}

QStringList ImageNames()
{
    QStringList names;
    QDirIterator it(
        QStringLiteral(":/"), {QStringLiteral("*.png")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString name = it.next();
        if (!name.startsWith(QLatin1String(":/qt")))
            names << name;
    }
    names.sort();
    return names;
}

QColor Over(const QColor& under, const QColor& over)
{
    return ZrCtrlLook::Mixed(under, over, over.alphaF());
}

double Luminance(const QColor& c)
{
    const auto linear
        = [](double v) { return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(c.redF()) + 0.7152 * linear(c.greenF()) + 0.0722 * linear(c.blueF());
}

double Contrast(const QColor& a, const QColor& b)
{
    const double la = Luminance(a);
    const double lb = Luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

/// The colour of \p property in \p block, "rgba(r, g, b, a)"; invalid where there is none.
QColor ColourOf(const QString& block, const QString& property)
{
    const QRegularExpression pattern(
        QStringLiteral("(?:^|[;{\\s])%1: rgba\\((\\d+), (\\d+), (\\d+), ([\\d.]+)\\)")
            .arg(QRegularExpression::escape(property)));
    const QRegularExpressionMatch match = pattern.match(block);
    if (!match.hasMatch())
        return {};
    return {match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt(),
        qRound(match.captured(4).toDouble() * 255)};
}

} // namespace

class tst_ZrResources : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void imageIsThere_data();
    void imageIsThere();
    void imageIsAMask_data();
    void imageIsAMask();
    void palettesAreBands();
    void honeycombRepeats();
    void cornersAreTheApplications();
    void imagesAgreeWithTheirSources_data();
    void imagesAgreeWithTheirSources();
    void sheetHasOnlyKnownTokens_data();
    void sheetHasOnlyKnownTokens();
    void sheetIsUnderstood_data();
    void sheetIsUnderstood();
    void damagedSheetIsNoticed();
    void sheetNamesImagesThatExist_data();
    void sheetNamesImagesThatExist();
    void sheetTextCanBeRead_data();
    void sheetTextCanBeRead();
    void sheetHasTheFixedRules();
    void controlsAreAsLargeAsAFinger();

private:
    static void Sheets();
};

void tst_ZrResources::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
}

void tst_ZrResources::cleanup()
{
    qApp->setStyleSheet(QString());
}

void tst_ZrResources::imageIsThere_data()
{
    QTest::addColumn<QSize>("size");
    const QSize icon(96, 96);
    for (const char* name : {":/btn_close.png", ":/form_default.png", ":/settings_application.png",
             ":/settings_logging.png", ":/input_left.png", ":/input_right.png", ":/input_start.png",
             ":/input_end.png", ":/input_neg.png", ":/input_del.png", ":/css/tick.png", ":/css/arrow_up.png",
             ":/css/arrow_down.png", ":/marker_alpha.png", ":/marker_arrow.png", ":/marker_square.png",
             ":/marker_circle.png", ":/marker_crosshair.png", ":/marker_waypoint.png", ":/marker_vector.png",
             ":/marker_pin.png", ":/handle_rotate.png", ":/handle_stretch.png", ":/handle_tick.png",
             ":/handle_trash.png", ":/handle_pan.png", ":/handle_a.png", ":/handle_b.png"})
        QTest::newRow(name) << icon;
    QTest::newRow(":/back_hex.png") << QSize(754, 434);
    QTest::newRow(":/back_fade.png") << QSize(512, 320);
    QTest::newRow(":/back_light.png") << QSize(512, 320);
}

void tst_ZrResources::imageIsThere()
{
    QFETCH(QSize, size);
    const QImage image(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(!image.isNull());
    QCOMPARE(image.size(), size);
    QVERIFY(image.hasAlphaChannel());
}

void tst_ZrResources::imageIsAMask_data()
{
    QTest::addColumn<QString>("name");
    const QStringList names = ImageNames();
    for (const QString& name : names) {
        if (name != QLatin1String(":/palettes.png"))
            QTest::newRow(qPrintable(name)) << name;
    }
}

void tst_ZrResources::imageIsAMask()
{
    QFETCH(QString, name);
    const QImage image = QImage(name).convertToFormat(QImage::Format_RGBA8888);
    // The fade darkens what lies below it.
    const int level = name == QLatin1String(":/back_fade.png") ? 0 : 255;
    int visible = 0;
    int clear = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (c.alpha() == 0) {
                ++clear;
                continue;
            }
            ++visible;
            QVERIFY2(c.red() == level && c.green() == level && c.blue() == level,
                qPrintable(QStringLiteral("%1, %2: %3").arg(x).arg(y).arg(c.name(QColor::HexArgb))));
        }
    }
    QVERIFY(visible > 0);
    QVERIFY(clear > 0);
}

void tst_ZrResources::palettesAreBands()
{
    constexpr int band = 10;
    const QImage image(QStringLiteral(":/palettes.png"));
    QCOMPARE(image.width(), 256);
    QCOMPARE(image.height() % band, 0);
    QVERIFY(image.height() / band >= 12);
    QSet<QByteArray> different;
    for (int top = 0; top < image.height(); top += band) {
        QByteArray row;
        for (int x = 0; x < image.width(); ++x) {
            const QRgb colour = image.pixel(x, top);
            QCOMPARE(qAlpha(colour), 255);
            for (int y = top + 1; y < top + band; ++y)
                QCOMPARE(image.pixel(x, y), colour);
            row.append(reinterpret_cast<const char*>(&colour), sizeof(colour));
        }
        different.insert(row);
    }
    // The table of greys may round to the ramp.
    QVERIFY(different.size() >= image.height() / band - 1);
    for (int x = 0; x < image.width(); ++x) {
        QCOMPARE(image.pixel(x, 0), qRgb(x, x, x));
        QCOMPARE(image.pixel(x, band), qRgb(255 - x, 255 - x, 255 - x));
    }
}

void tst_ZrResources::honeycombRepeats()
{
    // The edges of one tile go on in the next: left and right border are alike, and so are top and bottom.
    const QImage tile(QStringLiteral(":/back_hex.png"));
    const auto alpha = [&tile](int x, int y) { return qAlpha(tile.pixel(x, y)); };
    const int right = tile.width() - 1;
    const int bottom = tile.height() - 1;
    int lines = 0;
    for (int y = 8; y < bottom - 8; ++y) {
        if (alpha(right, y) > 0) {
            ++lines;
            QVERIFY2(alpha(0, y) > 0, qPrintable(QString::number(y)));
        }
    }
    QCOMPARE(lines, 4);
    for (int x = 140; x < 360; ++x) {
        QVERIFY(alpha(x, 0) > 0);
        QCOMPARE(alpha(x, 0), alpha(x, bottom));
    }
}

void tst_ZrResources::cornersAreTheApplications()
{
    for (const char* name :
        {":blank_top_left.png", ":blank_top_right.png", ":blank_bottom_left.png", ":blank_bottom_right.png"})
        QVERIFY2(!QFile::exists(QString::fromLatin1(name)), name);
}

void tst_ZrResources::imagesAgreeWithTheirSources_data()
{
    QTest::addColumn<QString>("images");
    QTest::addColumn<int>("count");
    QTest::newRow("library") << QStringLiteral(ZR_SOURCE_DIR "/ZrUtil/resources/images") << 31;
    QTest::newRow("kit") << QStringLiteral(ZR_SOURCE_DIR "/ZrKit/resources/icons") << 65;
}

void tst_ZrResources::imagesAgreeWithTheirSources()
{
    QFETCH(QString, images);
    QFETCH(int, count);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString folder = QStringLiteral(ZR_SOURCE_DIR "/ZrUtil/resources");
    QProcess script;
    script.start(QStringLiteral("python3"),
        {folder + QStringLiteral("/render_images.py"), QStringLiteral("--from"), images,
            QStringLiteral("--out"), dir.path()});
    QVERIFY(script.waitForFinished());
    QVERIFY2(script.exitCode() == 0, script.readAllStandardError().constData());
    const QStringList sources = QDir(images).entryList({QStringLiteral("*.svg")}, QDir::Files);
    QVERIFY(sources.size() >= count);
    for (const QString& source : sources) {
        const QString file = QFileInfo(source).completeBaseName() + QStringLiteral(".png");
        const QImage rendered
            = QImage(dir.filePath(file)).convertToFormat(QImage::Format_RGBA8888_Premultiplied);
        const QImage committed
            = QImage(images + QLatin1Char('/') + file).convertToFormat(QImage::Format_RGBA8888_Premultiplied);
        QVERIFY2(!rendered.isNull(), qPrintable(file));
        QCOMPARE(committed.size(), rendered.size());
        for (int y = 0; y < rendered.height(); ++y) {
            const uchar* a = rendered.constScanLine(y);
            const uchar* b = committed.constScanLine(y);
            for (int i = 0; i < rendered.width() * 4; ++i)
                QVERIFY2(std::abs(a[i] - b[i]) <= renderTolerance,
                    qPrintable(
                        QStringLiteral("%1 at %2, %3; run render_images.py").arg(file).arg(i / 4).arg(y)));
        }
    }
}

void tst_ZrResources::Sheets()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<float>("dp");
    for (const char* name : {":/css/AppView.css", ":/css/forms.css"}) {
        for (const float dp : {0.001F, 0.667F, 1.0F, 1.35F, 4.0F})
            QTest::addRow("%s at %g", name, static_cast<double>(dp)) << QString::fromLatin1(name) << dp;
    }
}

void tst_ZrResources::sheetHasOnlyKnownTokens_data()
{
    Sheets();
}

void tst_ZrResources::sheetHasOnlyKnownTokens()
{
    QFETCH(QString, name);
    QFETCH(float, dp);
    ZrTheme::dp = dp;
    ZrTheme::SetStdStyle();
    const QString sheet = ZrTheme::GetStylesheet(name);
    QVERIFY(sheet.size() > 500);
    QVERIFY2(!sheet.contains(QLatin1Char('<')), qPrintable(sheet));
    // Colours come from the theme alone.
    QFile file(name);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString source = QString::fromUtf8(file.readAll());
    QVERIFY(!source.contains(QLatin1Char('#')));
    QVERIFY(!source.contains(QLatin1String("rgb")));
    // So do sizes in pixels.
    QVERIFY(!source.contains(QRegularExpression(QStringLiteral("[1-9][0-9]*px"))));
}

void tst_ZrResources::sheetIsUnderstood_data()
{
    Sheets();
}

void tst_ZrResources::sheetIsUnderstood()
{
    QFETCH(QString, name);
    QFETCH(float, dp);
    ZrTheme::dp = dp;
    ZrTheme::SetStdStyle();
    s_messages.clear();
    const QtMessageHandler old = qInstallMessageHandler(Collect);
    {
        QWidget form;
        form.setStyleSheet(ZrTheme::GetStylesheet(name));
        auto* column = new QVBoxLayout(&form);
        const QList<QWidget*> controls{new QLabel, new QPushButton, new QToolButton, new QLineEdit,
            new QSpinBox, new QDoubleSpinBox, new QComboBox, new QCheckBox, new QRadioButton,
            new QSlider(Qt::Horizontal), new QListWidget, new QTableWidget(2, 2), new QTreeWidget,
            new QScrollBar, new QTabBar, new QProgressBar, new QGroupBox, new QTextEdit};
        for (QWidget* control : controls)
            column->addWidget(control);
        form.resize(800, 1200);
        QVERIFY(!form.grab().isNull());
    }
    qInstallMessageHandler(old);
    QVERIFY2(s_messages.isEmpty(), qPrintable(s_messages.join(QLatin1Char('\n'))));
}

void tst_ZrResources::damagedSheetIsNoticed()
{
    // What the test above waits for does come.
    s_messages.clear();
    const QtMessageHandler old = qInstallMessageHandler(Collect);
    {
        QPushButton button;
        button.setStyleSheet(
            ZrTheme::GetStylesheet(QStringLiteral(":/css/forms.css")) + QStringLiteral("QLabel { color"));
        button.ensurePolished();
    }
    qInstallMessageHandler(old);
    QVERIFY(s_messages.join(QLatin1Char(' ')).contains(QLatin1String("Could not parse")));
}

void tst_ZrResources::sheetNamesImagesThatExist_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("AppView") << QStringLiteral(":/css/AppView.css");
    QTest::newRow("forms") << QStringLiteral(":/css/forms.css");
}

void tst_ZrResources::sheetNamesImagesThatExist()
{
    QFETCH(QString, name);
    const QString sheet = ZrTheme::GetStylesheet(name);
    auto it = QRegularExpression(QStringLiteral("url\\(([^)]*)\\)")).globalMatch(sheet);
    int count = 0;
    while (it.hasNext()) {
        const QString image = it.next().captured(1);
        QVERIFY2(!QImage(image).isNull(), qPrintable(image));
        ++count;
    }
    QCOMPARE(count > 0, name.contains(QLatin1String("forms")));
}

void tst_ZrResources::sheetTextCanBeRead_data()
{
    sheetNamesImagesThatExist_data();
}

void tst_ZrResources::sheetTextCanBeRead()
{
    // Text has 4.5 to 1 against what it stands on, whatever lies below a translucent area: black, or a white
    // window of the system.
    QFETCH(QString, name);
    const QString sheet = ZrTheme::GetStylesheet(name);
    const QStringList blocks = sheet.split(QLatin1Char('}'));
    int checked = 0;
    for (const QString& block : qAsConst(blocks)) {
        const QColor back = ColourOf(block, QStringLiteral("background-color"));
        if (!back.isValid() || block.contains(QLatin1String("::groove"))
            || block.contains(QLatin1String("::sub-page")) || block.contains(QLatin1String("QScrollBar"))
            || block.contains(QLatin1String("QFrame")))
            continue; // without text of their own
        QColor text = ColourOf(block, QStringLiteral("color"));
        if (!text.isValid())
            text = ZrTheme::ctrlCol;
        for (const QColor& under : {QColor(Qt::black), QColor(Qt::white)}) {
            const double contrast = Contrast(text, Over(under, back));
            QVERIFY2(contrast >= 4.5, qPrintable(QStringLiteral("%1: %2").arg(block).arg(contrast)));
        }
        ++checked;
    }
    QVERIFY(checked >= 4);
}

void tst_ZrResources::sheetHasTheFixedRules()
{
    ZrTheme::dp = 1.5F;
    ZrTheme::SetStdStyle();
    const QString sheet = ZrTheme::GetStylesheet(QStringLiteral(":/css/AppView.css"));
    QVERIFY(sheet.contains(QLatin1String("* { color: rgba(255, 255, 255, 1); }\n")));
    QVERIFY(
        sheet.contains(QLatin1String("QFrame { background-color: rgba(100, 100, 100, 0.784314); "
                                     "border: 3px solid rgba(255, 255, 255, 1); border-radius: 9px; }\n")));
    QVERIFY(sheet.contains(QLatin1String("QToolButton:hover { border: 3px solid rgba(0, 120, 120, 1); }\n")));
}

void tst_ZrResources::controlsAreAsLargeAsAFinger()
{
    QWidget form;
    form.setStyleSheet(ZrTheme::GetStylesheet(QStringLiteral(":/css/forms.css")));
    auto* column = new QVBoxLayout(&form);
    auto* combo = new QComboBox;
    combo->addItem(QStringLiteral("x"));
    const QList<QWidget*> controls{new QPushButton(QStringLiteral("x")), new QLineEdit, new QSpinBox, combo,
        new QCheckBox(QStringLiteral("x")), new QRadioButton(QStringLiteral("x")),
        new QSlider(Qt::Horizontal)};
    for (QWidget* control : controls)
        column->addWidget(control);
    form.resize(form.sizeHint());
    form.show();
    for (QWidget* control : controls)
        QVERIFY2(control->height() >= 44, control->metaObject()->className());
}

QTEST_MAIN(tst_ZrResources)
#include "tst_ZrResources.moc"
