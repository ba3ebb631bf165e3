// The forms of the application: what is given by hand reaches the settings, and stays after a restart.

#include "SurveyFormsWindow.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrNotice.h"
#include "ZrKit/ui/ZrPaletteBtn.h"
#include "ZrUtil/ZrCheck.h"
#include "ZrUtil/ZrSlider.h"
#include "apps/ZrSurvey/FormAbout.h"
#include "apps/ZrSurvey/FormDisplay.h"
#include "apps/ZrSurvey/FormRecording.h"
#include "apps/ZrSurvey/FormSonar.h"
#include "apps/ZrSurvey/FormSources.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QFile>
#include <QRegularExpression>

class tst_SurveyForms : public SurveyFormsWindow
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Open(); }

    void cleanup() { Close(); }

    void colours();
    void recording();
    void outOfRange();
    void badPrefix();
    void events();
    void sonar();
    void changedElsewhere();
    void about();
    void folder();
    void savedAtOnce();
    void damagedSettings();
};

void tst_SurveyForms::colours()
{
    auto* form = Shown<FormDisplay>();
    for (const int scheme : {ZrColourScheme::night, ZrColourScheme::day, ZrColourScheme::dusk}) {
        QSignalSpy changed(m_view.get(), &SurveyView::ColoursChanged);
        ZrBtn* button = Button(*form, ZrColourScheme::Name(scheme));
        Click(button);
        QCOMPARE(Settings().colours, scheme);
        QCOMPARE(ZrColourScheme::Current(), scheme);
        QVERIFY(changed.count() > 0);
        QVERIFY(button->on);
        int on = 0;
        for (const ZrBtn* other : form->findChildren<ZrBtn*>())
            on += other->on ? 1 : 0;
        QCOMPARE(on, 1);
    }
    Click(Button(*form, ZrColourScheme::Name(ZrColourScheme::night)));
    Restart();
    QCOMPARE(Settings().colours, int(ZrColourScheme::night));
    QCOMPARE(ZrColourScheme::Current(), int(ZrColourScheme::night));
}

void tst_SurveyForms::recording()
{
    auto* form = Shown<FormRecording>();
    QSignalSpy changed(m_view.get(), &SurveyView::SettingsChanged);
    Type(Input(*form, QStringLiteral("Name")), QStringLiteral("nord"));
    QCOMPARE(Settings().recordPrefix, QStringLiteral("nord"));
    QVERIFY(changed.count() > 0);
    Type(Input(*form, QStringLiteral("Largest file, MB")), QStringLiteral("650"));
    Type(Input(*form, QStringLiteral("Longest file, min")), QStringLiteral("45"));
    Type(Input(*form, QStringLiteral("Keep free, MB")), QStringLiteral("900"));
    QCOMPARE(Settings().splitMegabytes, 650);
    QCOMPARE(Settings().splitMinutes, 45);
    QCOMPARE(Settings().stopBelowMegabytes, 900);
    Restart();
    QCOMPARE(Settings().recordPrefix, QStringLiteral("nord"));
    QCOMPARE(Settings().splitMegabytes, 650);
    QCOMPARE(Settings().splitMinutes, 45);
    QCOMPARE(Settings().stopBelowMegabytes, 900);
    form = Shown<FormRecording>();
    QCOMPARE(Input(*form, QStringLiteral("Keep free, MB"))->QLineEdit::text(), QStringLiteral("900"));
    QCOMPARE(Input(*form, QStringLiteral("Name"))->QLineEdit::text(), QStringLiteral("nord"));
}

void tst_SurveyForms::outOfRange()
{
    auto* form = Shown<FormRecording>();
    ZrInput* input = Input(*form, QStringLiteral("Keep free, MB"));
    Type(input, QStringLiteral("12"));
    QCOMPARE(Settings().stopBelowMegabytes, 500);
    QVERIFY(RowWithProblem(*form).contains(QStringLiteral("50")));
    Type(input, QStringLiteral("abc"));
    QVERIFY(!RowWithProblem(*form).isEmpty());
    Type(input, QStringLiteral("50"));
    QCOMPARE(Settings().stopBelowMegabytes, 50);
    QCOMPARE(RowWithProblem(*form), QString());
    // What was refused is gone when the form comes again.
    Type(input, QStringLiteral("7"));
    QVERIFY(!RowWithProblem(*form).isEmpty());
    Shown<FormDisplay>();
    Shown<FormRecording>();
    QCOMPARE(RowWithProblem(*form), QString());
    QCOMPARE(input->QLineEdit::text(), QStringLiteral("50"));
}

void tst_SurveyForms::badPrefix()
{
    auto* form = Shown<FormRecording>();
    ZrInput* input = Input(*form, QStringLiteral("Name"));
    Type(input, QStringLiteral("a/b"));
    QCOMPARE(Settings().recordPrefix, QStringLiteral("a")); // as far as it was a name
    QVERIFY(RowWithProblem(*form).contains(QLatin1Char('/')));
    Type(input, QString::fromUtf8("süd"));
    QCOMPARE(Settings().recordPrefix, QString::fromUtf8("süd"));
    QCOMPARE(RowWithProblem(*form), QString());
}

void tst_SurveyForms::events()
{
    auto* form = Shown<FormRecording>();
    QCOMPARE(Input(*form, QStringLiteral("Event 1"))->QLineEdit::text(), Settings().eventLabels.value(0));
    Type(Input(*form, QStringLiteral("Event 2")), QString());
    Type(Input(*form, QStringLiteral("Event 8")), QString::fromUtf8("Wrack ß"));
    const QStringList expected({QStringLiteral("Target"), QStringLiteral("Line end"),
        QStringLiteral("Remark"), QString::fromUtf8("Wrack ß")});
    QCOMPARE(Settings().eventLabels, expected);
    Restart();
    QCOMPARE(Settings().eventLabels, expected);
}

void tst_SurveyForms::sonar()
{
    auto* form = Shown<FormSonar>();
    const auto palettes = form->findChildren<ZrPaletteBtn*>();
    QCOMPARE(palettes.size(), SurveySettings::LastPalette + 1);
    Click(palettes[4]);
    QCOMPARE(Settings().palette, 4);
    QVERIFY(palettes[4]->on);
    QVERIFY(!palettes[1]->on);
    const auto sliders = form->findChildren<ZrSlider*>();
    QCOMPARE(sliders.size(), 2);
    sliders[0]->setFocus();
    QTest::keyClick(sliders[0], Qt::Key_Right);
    QCOMPARE(Settings().gain, 0.5);
    QTest::keyClick(sliders[1], Qt::Key_End);
    QCOMPARE(Settings().contrast, 4.0);
    const auto checks = form->findChildren<ZrCheck*>();
    QCOMPARE(checks.size(), 2);
    Click(checks[0]);
    Click(checks[1]);
    QCOMPARE(Settings().slant, true);
    QCOMPARE(Settings().bottom, false);
    Restart();
    QCOMPARE(Settings().palette, 4);
    QCOMPARE(Settings().gain, 0.5);
    QCOMPARE(Settings().contrast, 4.0);
    QCOMPARE(Settings().slant, true);
    QCOMPARE(Settings().bottom, false);
    form = Shown<FormSonar>();
    QCOMPARE(form->findChildren<ZrSlider*>()[1]->Value(), 4.0);
    QVERIFY(form->findChildren<ZrPaletteBtn*>()[4]->on);
}

/// An open form shows what an Undo, a shortcut or another window has changed; what is being typed stays.
void tst_SurveyForms::changedElsewhere()
{
    auto* sources = Shown<FormSources>();
    Settings().source = SurveySource::udp;
    Settings().udpPort = 4711;
    m_view->SettingsEdited();
    Settle();
    QVERIFY(Button(*sources, SurveySource::Name(SurveySource::udp))->on);
    QVERIFY(!Button(*sources, SurveySource::Name(SurveySource::simulator))->on);
    ZrInput* port = Input(*sources, QStringLiteral("Port"));
    QCOMPARE(port->QLineEdit::text(), QStringLiteral("4711"));
    Type(port, QStringLiteral("123"));
    QCOMPARE(Settings().udpPort, 123);
    QCOMPARE(port->cursorPosition(), 3);
    Type(port, QStringLiteral("99999"));
    QCOMPARE(port->QLineEdit::text(), QStringLiteral("99999"));
    QVERIFY(!RowWithProblem(*sources).isEmpty());

    auto* sonar = Shown<FormSonar>();
    auto* gain = sonar->findChild<ZrSlider*>();
    Settings().gain = 6.0;
    m_view->SettingsEdited();
    QCOMPARE(gain->Value(), 6.0);
}

void tst_SurveyForms::about()
{
    auto* form = Shown<FormAbout>();
    QStringList helps;
    for (int row = 0; row < form->RowCount(); ++row)
        helps.append(form->Help(row));
    const QString all = helps.join(QLatin1Char('|'));
    QVERIFY(all.contains(QString::fromLatin1(qVersion())));
    QVERIFY(all.contains(QStringLiteral("OpenGL ")));
    QVERIFY(all.contains(m_folder->path()));
    Click(Button(*form, QStringLiteral("Debug log")));
    QVERIFY(m_view->forms().m_form->m_isTiered);
    QVERIFY(m_view->forms().m_form->isVisible());
    QCOMPARE(m_view->forms().CurrentPosition(), m_view->forms().NonTieredCount() - 1);
}

void tst_SurveyForms::folder()
{
    auto* form = Shown<FormRecording>();
    QVERIFY(QDir().mkpath(Recordings()));
    Click(Button(*form, QStringLiteral("Choose the folder")));
    ZrFilePanel* panel = nullptr;
    for (ZrFilePanel* each : m_view->findChildren<ZrFilePanel*>()) {
        if (each->isVisible())
            panel = each;
    }
    QVERIFY(panel);
    QCOMPARE(panel->Folder(), Recordings());
    panel->SetFolder(m_folder->path());
    panel->Accept();
    QCOMPARE(Settings().recordDir, m_folder->path());
    QCOMPARE(form->Help(0), m_folder->path());
}

/// A crash later on loses nothing.
void tst_SurveyForms::savedAtOnce()
{
    auto* form = Shown<FormSonar>();
    Click(form->findChildren<ZrPaletteBtn*>()[7]);
    const auto saved = [this] {
        QFile file(m_folder->filePath(QStringLiteral("settings.json")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    QTRY_VERIFY(saved().contains("\"palette\": \"7\"") || saved().contains("\"palette\": 7"));
}

void tst_SurveyForms::damagedSettings()
{
    m_view.reset();
    QFile file(m_folder->filePath(QStringLiteral("settings.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("{ \"survey\": ");
    file.close();
    Start();
    const auto notices = m_view->findChildren<ZrNotice*>();
    QCOMPARE(notices.size(), 1);
    QVERIFY(notices[0]->Text().contains(QStringLiteral("settings.json")));
    QCOMPARE(Settings().stopBelowMegabytes, 500);
}

GL_TEST_MAIN(tst_SurveyForms)
#include "tst_SurveyForms.moc"
