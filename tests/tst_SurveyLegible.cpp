// Every text of the application can be read: no letter below 14 pixels, none cut off, at every size of the
// window, scale of the theme and pixel ratio.

#include "DrawnText.h"
#include "SurveyWindow.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrToolRun.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrInputDlg.h"
#include "apps/ZrSurvey/FormRecording.h"
#include "apps/ZrSurvey/FormSources.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QAbstractItemView>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QWheelEvent>

#include <algorithm>

class tst_SurveyLegible : public SurveyWindow
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void scaleOfTheTheme_data();
    void scaleOfTheTheme();
    void pages_data();
    void pages();

    void forms_data() { sizes(); }

    void forms();

    void keyboard_data() { sizes(); }

    void keyboard();
    void keysInEveryColour_data();
    void keysInEveryColour();
    void catchesWhatIsNot();
    void atTwoPixels();

private:
    static void sizes();
    static QStringList Flaws(QWidget& top);
    QStringList FlawsOf(ZrForm& form);
    void Look(QWidget& top, const QString& name);
    void LookAtPlan();
    void LookAtReview();
    void Note(const QStringList& flaws, const QString& where);
    void Tell();
    void OpenAt(const QSize& size, int scale);
    void Keep(const QString& name) const;

    QTemporaryDir m_data;
    QString m_log;
    QStringList m_flaws;
};

void tst_SurveyLegible::initTestCase()
{
    m_log = m_data.filePath(S("wreck ö.log"));
    const ToolResult result = RunTool(
        {S("log"), S("import"), S(ZR_SOURCE_DIR "/data/sidescan-xtf/iver2-scotsman-pings0-299.xtf"), m_log});
    QVERIFY2(result.code == 0, result.Text());
}

void tst_SurveyLegible::cleanup()
{
    m_flaws.clear();
    Close();
}

void tst_SurveyLegible::OpenAt(const QSize& size, int scale)
{
    Open();
    QVERIFY(QDir().mkpath(Recordings()));
    QVERIFY(QFile::copy(m_log, Recordings() + S("/wreck ö.log")));
    m_view->SettingsEdited();
    m_view->resize(size);
    auto* app = Form<ZrFmApp>();
    switch (scale) {
    case 2:
        app->OnSmallest();
        break;
    case 1:
        app->OnSmall();
        break;
    default:
        app->OnLargest();
        break;
    }
    QTRY_COMPARE(m_view->Page()->size(), size);
    Settle();
}

/// For people to look at, in the folder that ZR_LEGIBLE_PICTURES names.
void tst_SurveyLegible::Keep(const QString& name) const
{
    const QString folder = qEnvironmentVariable("ZR_LEGIBLE_PICTURES");
    if (folder.isEmpty())
        return;
    const QString path
        = S("%1/%2-%3.png")
              .arg(folder,
                  QString::fromLatin1(QTest::currentDataTag()).replace(QLatin1Char(' '), QLatin1Char('-')),
                  name);
    QVERIFY(m_view->grab().save(path));
}

/// What is too small to be read, cut off, or written over something else.
QStringList tst_SurveyLegible::Flaws(QWidget& top)
{
    constexpr double rounding = 1.0;
    QStringList flaws;
    QVector<QWidget*> widgets{&top};
    widgets += top.findChildren<QWidget*>().toVector();
    for (QWidget* widget : qAsConst(widgets)) {
        if (!widget->isVisible() || widget->size().isEmpty() || qobject_cast<QOpenGLWidget*>(widget))
            continue;
        // What is typed slides below the cursor.
        const bool isTyped = qobject_cast<QLineEdit*>(widget) || qobject_cast<ZrInputDlg*>(widget);
        const bool isList = qobject_cast<QAbstractItemView*>(widget->parentWidget());
        const QVector<DrawnText> texts = TextDevice::Of(*widget);
        for (int i = 0; i < texts.size(); ++i) {
            const DrawnText& drawn = texts[i];
            if (drawn.text.trimmed().isEmpty())
                continue;
            const QString who = S("%1 %2 \"%3\"")
                                    .arg(QString::fromLatin1(widget->metaObject()->className()),
                                        widget->objectName(), drawn.text);
            if (drawn.pixels < ZrLegible::LeastText)
                flaws.append(S("%1 has %2 pixels").arg(who).arg(drawn.pixels));
            if (isTyped)
                continue;
            // A list is scrolled to what is half in view.
            if (isList && (drawn.ink.top() < 0.0 || drawn.ink.bottom() > widget->height()))
                continue;
            if (!drawn.room.adjusted(-rounding, -rounding, rounding, rounding).contains(drawn.ink))
                flaws.append(S("%1 is cut").arg(who));
            if (drawn.text.contains(QChar(0x2026)) && !drawn.text.endsWith(S(" …")))
                flaws.append(S("%1 is shortened").arg(who));
            const QRectF inner = drawn.ink.adjusted(rounding, rounding, -rounding, -rounding);
            for (int j = 0; j < i; ++j) {
                if (!texts[j].text.trimmed().isEmpty() && texts[j].ink.intersects(inner))
                    flaws.append(S("%1 is over \"%2\"").arg(who, texts[j].text));
            }
        }
    }
    flaws.removeDuplicates();
    return flaws;
}

/// Of a form that scrolls by itself only what is not to be seen at either end.
QStringList tst_SurveyLegible::FlawsOf(ZrForm& form)
{
    QStringList flaws = Flaws(m_view->forms());
    if (!qobject_cast<ZrFmApp*>(&form))
        return flaws;
    const QPointF at(form.rect().center());
    for (const int angle : {-12000, 12000}) {
        QWheelEvent wheel(at, form.mapToGlobal(at.toPoint()), QPoint(), QPoint(0, angle), Qt::NoButton,
            Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&form, &wheel);
        Settle();
        const QStringList there = Flaws(m_view->forms());
        const auto isFine = [&there](const QString& flaw) { return !there.contains(flaw); };
        flaws.erase(std::remove_if(flaws.begin(), flaws.end(), isFine), flaws.end());
    }
    return flaws;
}

void tst_SurveyLegible::Look(QWidget& top, const QString& name)
{
    Settle();
    Keep(name);
    Note(Flaws(top), name);
}

void tst_SurveyLegible::Note(const QStringList& flaws, const QString& where)
{
    for (const QString& flaw : flaws)
        m_flaws.append(where + S(": ") + flaw);
}

/// Each in a line, then none must have been.
void tst_SurveyLegible::Tell()
{
    for (const QString& flaw : qAsConst(m_flaws))
        qWarning().noquote() << flaw;
    QCOMPARE(m_flaws.size(), 0);
}

void tst_SurveyLegible::sizes()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("scale");
    QTest::newRow("900x600") << QSize(900, 600) << 1;
    QTest::newRow("900x600 small") << QSize(900, 600) << -2;
    QTest::newRow("900x600 large") << QSize(900, 600) << 2;
    QTest::newRow("1280x800") << QSize(1280, 800) << 1;
    QTest::newRow("1920x1080") << QSize(1920, 1080) << 1;
    QTest::newRow("2560x1440") << QSize(2560, 1440) << 1;
    QTest::newRow("2560x1440 large") << QSize(2560, 1440) << 2;
}

void tst_SurveyLegible::scaleOfTheTheme_data()
{
    sizes();
}

/// Body text has its size, and the design that was chosen stays the user's.
void tst_SurveyLegible::scaleOfTheTheme()
{
    QFETCH(QSize, size);
    QFETCH(int, scale);
    OpenAt(size, scale);
    const QSize design = scale == 2 ? QSize(1024, 640) : scale == 1 ? QSize(1280, 800) : QSize(1920, 1200);
    QCOMPARE(QSize(ZrTheme::designWidth, ZrTheme::designHeight), design);
    const float chosen = std::min(static_cast<float>(size.width()) / static_cast<float>(design.width()),
        static_cast<float>(size.height()) / static_cast<float>(design.height()));
    QVERIFY(std::fabs(ZrTheme::dp - std::max(chosen, ZrLegible::LeastScale)) < 1e-3F);
    for (const QFont* font : {&ZrTheme::font, &ZrTheme::bodyFont, &ZrTheme::ctrlFont})
        QVERIFY(font->pixelSize() >= 14);
}

void tst_SurveyLegible::pages_data()
{
    sizes();
}

void tst_SurveyLegible::pages()
{
    QFETCH(QSize, size);
    QFETCH(int, scale);
    OpenAt(size, scale);
    auto& recordings = *m_view->Page()->findChild<ZrTouchList*>();
    QTRY_COMPARE(recordings.Items().size(), 1);
    Look(*m_view->Page(), S("home"));
    LookAtPlan();
    m_view->Show(S("Record"));
    QTRY_VERIFY(m_view->Page()->isVisible());
    Look(*m_view->Page(), S("record"));
    LookAtReview();
    m_view->Show(S("Scene"));
    Look(*m_view->Page(), S("scene"));
    Tell();
}

/// Empty, and with a route, each of its panels open.
void tst_SurveyLegible::LookAtPlan()
{
    m_view->Show(S("Plan"));
    Look(*m_view->Page(), S("plan"));
    auto& plan = m_view->Model().plan;
    for (int i = 0; i < 3; ++i)
        plan.History().Add(48.4 + 0.01 * (i % 2), -68.8 + 0.01 * i, eZrWptBlue, ZrWpts::eAddTail);
    plan.Edited();
    for (const char* name : {"tab_list", "tab_target", "tab_warning", "tool_area", "tool_pattern"}) {
        auto* button = m_view->Page()->findChild<ZrBtn*>(S(name));
        QVERIFY2(button, name);
        Click(button);
        Look(*m_view->Page(), S("plan-") + S(name));
    }
}

/// With all that opens on it.
void tst_SurveyLegible::LookAtReview()
{
    m_view->OpenLog(m_log);
    auto& review = *static_cast<ReviewPage*>(m_view->GetPage(S("Review")));
    QTRY_VERIFY_WITH_TIMEOUT(!review.IsLoading(), 60000);
    review.GoTo(review.Recording()->TimeOfPing(150.0));
    Look(review, S("review"));
    for (const char* name : {"palette", "measure", "events", "export"}) {
        auto* button = review.findChild<ZrBtn*>(S(name));
        QVERIFY2(button, name);
        Click(button);
        Look(*m_view, S("review-") + S(name));
        if (S(name) == S("export"))
            QTest::keyClick(m_view.get(), Qt::Key_Escape);
        else
            Click(button);
    }
}

void tst_SurveyLegible::forms()
{
    QFETCH(QSize, size);
    QFETCH(int, scale);
    OpenAt(size, scale);
    for (ZrForm* form : m_view->forms().m_forms) {
        m_view->ShowSettings(form->m_name);
        auto* sources = qobject_cast<FormSources*>(form);
        for (int source = 0; source <= (sources ? int(SurveySettings::LastSource) : 0); ++source) {
            if (sources) {
                for (ZrBtn* button : form->findChildren<ZrBtn*>()) {
                    if (button->text == SurveySource::Name(source))
                        Click(button);
                }
            }
            const QString name = form->m_name + QString::number(source);
            Settle();
            Keep(name);
            Note(FlawsOf(*form), name);
        }
    }
    Tell();
}

void tst_SurveyLegible::keyboard()
{
    QFETCH(QSize, size);
    QFETCH(int, scale);
    OpenAt(size, scale);
    ZrTheme::tabletMode = true;
    int shown = 0;
    m_view->ShowSettings(Form<FormRecording>()->m_name);
    Settle();
    for (ZrInput* input : Form<FormRecording>()->findChildren<ZrInput*>()) {
        if (!input->isVisible() || input->visibleRegion().isEmpty())
            continue;
        Click(input);
        auto* keys = m_view->findChild<ZrInputDlg*>();
        if (!keys)
            continue;
        ++shown;
        Look(*keys, S("keys-") + QString::number(shown));
        delete keys;
        Settle();
    }
    QVERIFY(shown >= 1);
    Tell();
}

void tst_SurveyLegible::keysInEveryColour_data()
{
    QTest::addColumn<int>("scheme");
    QTest::newRow("day") << int(ZrColourScheme::day);
    QTest::newRow("dusk") << int(ZrColourScheme::dusk);
    QTest::newRow("night") << int(ZrColourScheme::night);
}

/// The word on the key that ends typing against what is behind it.
void tst_SurveyLegible::keysInEveryColour()
{
    QFETCH(int, scheme);
    OpenAt(QSize(1280, 800), 1);
    m_view->SetColours(scheme);
    ZrTheme::tabletMode = true;
    m_view->ShowSettings(Form<FormRecording>()->m_name);
    Settle();
    ZrInput* least = nullptr;
    for (ZrInput* input : Form<FormRecording>()->findChildren<ZrInput*>())
        least = input->caption == S("Keep free, MB") ? input : least;
    QVERIFY(least);
    Click(least);
    auto* keys = m_view->findChild<ZrInputDlg*>();
    QVERIFY(keys);
    // What is behind is beside the letters; the frame is of a third colour.
    const auto contrast = [](const QImage& image, const QRect& rect) {
        const QRect inner = rect.adjusted(6, 6, -6, -6);
        const QColor behind = image.pixelColor(inner.left(), inner.center().y());
        double most = 1.0;
        for (int y = inner.top(); y <= inner.bottom(); ++y) {
            for (int x = inner.left(); x <= inner.right(); ++x)
                most = std::max(most, Contrast(image.pixelColor(x, y), behind));
        }
        return most;
    };
    const auto ok = std::find_if(keys->Items().begin(), keys->Items().end(),
        [](const ZrInputItem& item) { return item.action == zriOk; });
    QVERIFY(ok != keys->Items().end());
    const double found = contrast(keys->grab().toImage().convertToFormat(QImage::Format_RGB32), ok->rect);
    QVERIFY2(found >= 4.5, qPrintable(QString::number(found)));
    delete keys;
}

void tst_SurveyLegible::catchesWhatIsNot()
{
    Open();
    ZrBtn button(m_view.get(), ZrBtn::typeStd);
    button.text = S("Left behind");
    button.resize(300, 80);
    button.Changed();
    button.show();
    QCOMPARE(Flaws(button), QStringList());
    button.font.setPixelSize(13);
    button.Changed();
    QVERIFY(Flaws(button).join(QLatin1Char('\n')).contains(S("has 13 pixels")));
    QLabel label(S("Longer than it is wide"), m_view.get());
    label.resize(60, 40);
    label.show();
    QVERIFY(Flaws(label).join(QLatin1Char('\n')).contains(S("is cut")));
    label.resize(400, 6);
    QVERIFY(Flaws(label).join(QLatin1Char('\n')).contains(S("is cut")));
}

void tst_SurveyLegible::atTwoPixels()
{
    if (qEnvironmentVariable("QT_SCALE_FACTOR") == QLatin1String("2")) {
        Open();
        QCOMPARE(m_view->devicePixelRatioF(), 2.0);
        return;
    }
    QProcess self;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(S("QT_SCALE_FACTOR"), S("2"));
    self.setProcessEnvironment(environment);
    self.setProcessChannelMode(QProcess::MergedChannels);
    // The largest windows take minutes to draw.
    self.start(QCoreApplication::applicationFilePath(),
        {S("atTwoPixels"), S("pages:900x600"), S("pages:900x600 large"), S("pages:1280x800"),
            S("forms:900x600"), S("forms:1280x800"), S("keyboard:900x600"), S("pages:2560x1440")});
    QVERIFY(self.waitForFinished(400000));
    const QByteArray output = self.readAll();
    QVERIFY2(self.exitStatus() == QProcess::NormalExit && self.exitCode() == 0, output.constData());
    QVERIFY2(output.contains("atTwoPixels"), output.constData());
}

GL_TEST_MAIN(tst_SurveyLegible)
#include "tst_SurveyLegible.moc"
