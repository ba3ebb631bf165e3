// The start of the application: what is built for the first frame, what is read, and what is said.

#include "LongLog.h"
#include "SurveyWindow.h"
#include "ZrKit/ui/ZrPaletteBtn.h"
#include "ZrLogFixture.h"
#include "apps/ZrSurvey/ReviewPage.h"

#include <QProcess>

namespace {

QProcessEnvironment WithoutDisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    return environment;
}

} // namespace

class tst_SurveyStart : public SurveyWindow
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void mapsAreReadOnce(); // first: they stay in memory
    void firstFrameIsHome();
    void pagesWhenNeeded();
    void settingsWhenNeeded();
    void namesThatAreNoPage();
    void draftIsRestored();
    void process();
    void processWithoutDisplay();
    void answersWithoutDisplay_data();
    void answersWithoutDisplay();

private:
    /// A view that has not been shown yet.
    void Make()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_theme = std::make_unique<ZrThemeState>();
        m_units = std::make_unique<ZrUnitsState>();
        m_view = std::make_unique<SurveyView>(m_folder->path());
        m_view->resize(1280, 800);
    }

    static int Readings(const QStringList& lines)
    {
        return static_cast<int>(std::count_if(lines.begin(), lines.end(),
            [](const QString& line) { return line.startsWith(QLatin1String("Reading:")); }));
    }
};

void tst_SurveyStart::cleanup()
{
    Close();
}

/// The forms come behind it, by themselves; pages that nobody wants to see do not.
void tst_SurveyStart::firstFrameIsHome()
{
    Make();
    const QStringList home({QStringLiteral("Home")});
    QCOMPARE(m_view->m_pages.keys(), home);
    const int before = m_view->forms().m_forms.size();
    int atFrame = 0;
    connect(m_view.get(), &SurveyView::FramePainted, this, [&] {
        if (atFrame == 0)
            atFrame = m_view->forms().m_forms.size();
    });
    m_view->show();
    QTRY_VERIFY(m_view->IsComplete());
    QCOMPARE(atFrame, before);
    QCOMPARE(m_view->m_pages.keys(), home);
    QCOMPARE(m_view->forms().m_forms.size(), before + 5);
}

void tst_SurveyStart::pagesWhenNeeded()
{
    Make();
    m_view->Show(QStringLiteral("Record"));
    QCOMPARE(m_view->m_pages.keys(), QStringList({QStringLiteral("Home"), QStringLiteral("Record")}));
    ZrPage* const record = m_view->Page();
    m_view->show();
    QTRY_VERIFY(m_view->IsComplete());
    for (const char* name : {"Plan", "Record", "Review", "Scene", "Home"}) {
        m_view->Show(QLatin1String(name));
        ZrPage* const shown = m_view->Page();
        QCOMPARE(shown, m_view->m_pages.value(QLatin1String(name)));
        QTRY_VERIFY(shown->isVisible());
        QCOMPARE(shown->size(), m_view->size());
        // It draws: what it has on the graphics card is there.
        QSignalSpy frames(m_view.get(), &SurveyView::FramePainted);
        m_view->Update();
        QTRY_VERIFY(!frames.isEmpty());
    }
    // None is built twice.
    QCOMPARE(m_view->GetPage(QStringLiteral("Record")), record);
    QCOMPARE(m_view->findChildren<SurveyPage*>(QString(), Qt::FindDirectChildrenOnly).size(), 5);
}

void tst_SurveyStart::settingsWhenNeeded()
{
    Make();
    m_view->ShowSettings(QStringLiteral("Sonar"));
    QVERIFY(m_view->forms().m_form);
    QCOMPARE(m_view->forms().m_form->m_name, QStringLiteral("Sonar"));
    QCOMPARE(m_view->m_pages.size(), 1);
    const int forms = m_view->forms().m_forms.size();
    m_view->show();
    QTRY_VERIFY(m_view->IsComplete());
    QCOMPARE(m_view->forms().m_forms.size(), forms);
}

void tst_SurveyStart::namesThatAreNoPage()
{
    Make();
    for (const char* name : {"", "home", "Nowhere", " "})
        QVERIFY2(!m_view->GetPage(QLatin1String(name)), name);
    ZrPage* const page = m_view->Page();
    m_view->Show(QStringLiteral("Nowhere"));
    QCOMPARE(static_cast<ZrPage*>(m_view->Page()), page);
    QCOMPARE(m_view->m_pages.size(), 1);
}

/// Although nobody has looked at the page "Plan".
void tst_SurveyStart::draftIsRestored()
{
    Open();
    m_view->Model().plan.History().Add(48.0, -68.0, eZrWptBlue, ZrWpts::eAddTail);
    m_view->Model().plan.Edited();
    m_view->Model().plan.FlushDraft();
    QTRY_VERIFY(QFile::exists(m_folder->filePath(QStringLiteral("plan-draft.json"))));
    // As after a crash: nothing is said to the one before.
    const QString kept = m_folder->filePath(QStringLiteral("kept.json"));
    QVERIFY(QFile::copy(m_folder->filePath(QStringLiteral("plan-draft.json")), kept));
    m_view.reset();
    QFile::remove(m_folder->filePath(QStringLiteral("plan-draft.json")));
    QVERIFY(QFile::copy(kept, m_folder->filePath(QStringLiteral("plan-draft.json"))));
    Start();
    QCOMPARE(m_view->Page()->Title(), QStringLiteral("ZrSurvey"));
    QTRY_COMPARE(m_view->Model().plan.Route().GetCount(), 1);
}

/// None for a start; each once, for whatever shows them.
void tst_SurveyStart::mapsAreReadOnce()
{
    MessageCatcher messages;
    Open();
    QCOMPARE(Readings(messages.Take()), 0);
    for (int i = 0; i < 2; ++i) {
        m_view->ShowSettings(QStringLiteral("Sonar"));
        QVERIFY(!m_view->forms().grab().isNull());
    }
    const long_log::Shape shape{300};
    const QString log = m_folder->filePath(QStringLiteral("short.log"));
    QVERIFY(long_log::Write(log, shape));
    auto& review = *static_cast<ReviewPage*>(m_view->GetPage(QStringLiteral("Review")));
    m_view->OpenLog(log);
    QTRY_VERIFY_WITH_TIMEOUT(!review.IsLoading(), 60000);
    Settle();
    QCOMPARE(Readings(messages.Take()), 13);
}

/// Prints the one line that the measuring waits for, and nothing else.
void tst_SurveyStart::process()
{
    const QTemporaryDir folder;
    QProcess survey;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TMPDIR"), folder.path());
    survey.setProcessEnvironment(environment);
    survey.start(QStringLiteral(ZR_BIN_DIR "/ZrSurvey"),
        {QStringLiteral("--time-start"), QStringLiteral("--data"), folder.filePath(QStringLiteral("data"))});
    QVERIFY(survey.waitForFinished(60000));
    QCOMPARE(survey.exitStatus(), QProcess::NormalExit);
    QCOMPARE(survey.exitCode(), 0);
    QCOMPARE(QString::fromUtf8(survey.readAllStandardOutput()), QStringLiteral("first frame\n"));
    QCOMPARE(QString::fromUtf8(survey.readAllStandardError()), QString());
}

/// What keeps it from starting is said on the terminal all the same.
void tst_SurveyStart::processWithoutDisplay()
{
    QProcess survey;
    survey.setProcessEnvironment(WithoutDisplay());
    survey.start(QStringLiteral(ZR_BIN_DIR "/ZrSurvey"), {QStringLiteral("--time-start")});
    QVERIFY(survey.waitForFinished(60000));
    QVERIFY(survey.exitStatus() == QProcess::CrashExit || survey.exitCode() != 0);
    QVERIFY(!survey.readAllStandardError().isEmpty());
}

void tst_SurveyStart::answersWithoutDisplay_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("said");
    const auto list = [](const char* line) { return QString::fromLatin1(line).split(QLatin1Char(' ')); };
    QTest::newRow("help") << list("--help") << 0 << QStringLiteral("--screenshot <FILE>");
    QTest::newRow("version") << list("--version") << 0 << QStringLiteral("ZrSurvey ");
    QTest::newRow("no option") << list("--bogus") << 1 << QStringLiteral("Unknown option 'bogus'");
    QTest::newRow("no size") << list("--size 10x10") << 1 << QStringLiteral("10x10 is no size");
    QTest::newRow("tour and page") << list("--tour none --page Plan") << 1
                                   << QStringLiteral("--page cannot be used");
}

/// What is asked on a terminal, or is wrong there, is answered on it: on a machine without a screen too.
void tst_SurveyStart::answersWithoutDisplay()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    QFETCH(QString, said);
    QProcess survey;
    survey.setProcessEnvironment(WithoutDisplay());
    survey.start(QStringLiteral(ZR_BIN_DIR "/ZrSurvey"), arguments);
    QVERIFY(survey.waitForFinished(60000));
    QCOMPARE(survey.exitStatus(), QProcess::NormalExit);
    QCOMPARE(survey.exitCode(), code);
    const QString output = QString::fromUtf8(survey.readAllStandardOutput());
    const QString errors = QString::fromUtf8(survey.readAllStandardError());
    QVERIFY2((code == 0 ? output : errors).contains(said), qPrintable(output + errors));
    QCOMPARE(code == 0 ? errors : output, QString());
}

GL_TEST_MAIN(tst_SurveyStart)
#include "tst_SurveyStart.moc"
