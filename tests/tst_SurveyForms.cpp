// The forms of the application: what is given by hand reaches the settings, and stays after a restart.

#include "SurveyWindow.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrNotice.h"
#include "ZrKit/ui/ZrPaletteBtn.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCheck.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrSlider.h"
#include "apps/ZrSurvey/FormAbout.h"
#include "apps/ZrSurvey/FormDisplay.h"
#include "apps/ZrSurvey/FormRecording.h"
#include "apps/ZrSurvey/FormSonar.h"
#include "apps/ZrSurvey/FormSources.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QFile>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QTcpServer>
#include <QUdpSocket>

class tst_SurveyForms : public SurveyWindow
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void colours();
    void recording();
    void outOfRange();
    void badPrefix();
    void events();
    void sources();
    void stateOfTheSource();
    void wordsOfTheState_data();
    void wordsOfTheState();
    void unitOfTheCurrent();
    void sonar();
    void about();
    void folder();
    void savedAtOnce();
    void damagedSettings();
    void layout_data();
    void layout();
    void inputsAreReadable_data();
    void inputsAreReadable();
    void scrolls();

private:
    ZrBtn* Button(QWidget& form, const QString& text);
    ZrInput* Input(QWidget& form, const QString& caption);
    static void Type(ZrInput* input, const QString& text);
    template <class T> T* Shown();
    QString RowWithProblem(const ZrRowForm& form);
};

void tst_SurveyForms::init()
{
    Open();
}

void tst_SurveyForms::cleanup()
{
    Close();
}

template <class T> T* tst_SurveyForms::Shown()
{
    T* form = Form<T>();
    m_view->ShowSettings(form->m_name);
    Settle();
    return form;
}

ZrBtn* tst_SurveyForms::Button(QWidget& form, const QString& text)
{
    for (ZrBtn* button : form.findChildren<ZrBtn*>()) {
        if (button->text == text && button->isVisible())
            return button;
    }
    qFatal("no such button: %s", qPrintable(text));
}

ZrInput* tst_SurveyForms::Input(QWidget& form, const QString& caption)
{
    for (ZrInput* input : form.findChildren<ZrInput*>()) {
        if (input->caption == caption && input->isVisible())
            return input;
    }
    qFatal("no such input: %s", qPrintable(caption));
}

/// As a person does at a keyboard.
void tst_SurveyForms::Type(ZrInput* input, const QString& text)
{
    input->setFocus();
    QTest::keyClick(input, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(input, Qt::Key_Delete);
    for (const QChar c : text)
        QTest::sendKeyEvent(QTest::Click, input, Qt::Key_unknown, QString(c), Qt::NoModifier);
    Settle();
}

QString tst_SurveyForms::RowWithProblem(const ZrRowForm& form)
{
    for (int row = 0; row < form.RowCount(); ++row) {
        if (!form.Problem(row).isEmpty())
            return form.Problem(row);
    }
    return QString();
}

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
    Type(Input(*form, QStringLiteral("New file after, MB")), QStringLiteral("650"));
    Type(Input(*form, QStringLiteral("New file after, minutes")), QStringLiteral("45"));
    Type(Input(*form, QStringLiteral("Stop below, MB")), QStringLiteral("900"));
    QCOMPARE(Settings().splitMegabytes, 650);
    QCOMPARE(Settings().splitMinutes, 45);
    QCOMPARE(Settings().stopBelowMegabytes, 900);
    Restart();
    QCOMPARE(Settings().recordPrefix, QStringLiteral("nord"));
    QCOMPARE(Settings().splitMegabytes, 650);
    QCOMPARE(Settings().splitMinutes, 45);
    QCOMPARE(Settings().stopBelowMegabytes, 900);
    form = Shown<FormRecording>();
    QCOMPARE(Input(*form, QStringLiteral("Stop below, MB"))->QLineEdit::text(), QStringLiteral("900"));
    QCOMPARE(Input(*form, QStringLiteral("Name"))->QLineEdit::text(), QStringLiteral("nord"));
}

void tst_SurveyForms::outOfRange()
{
    auto* form = Shown<FormRecording>();
    ZrInput* input = Input(*form, QStringLiteral("Stop below, MB"));
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

void tst_SurveyForms::sources()
{
    auto* form = Shown<FormSources>();
    const auto inputs = [form] {
        QStringList captions;
        for (const ZrInput* input : form->findChildren<ZrInput*>()) {
            if (input->isVisible())
                captions.append(input->caption);
        }
        return captions.join(QLatin1Char(','));
    };
    QCOMPARE(inputs(), QStringLiteral("Speed of time,Current,Set"));
    Type(Input(*form, QStringLiteral("Set")), QStringLiteral("275"));
    Click(Button(*form, SurveySource::Name(SurveySource::udp)));
    QCOMPARE(Settings().source, int(SurveySource::udp));
    QCOMPARE(inputs(), QStringLiteral("Port"));
    Type(Input(*form, QStringLiteral("Port")), QStringLiteral("5000"));
    Click(Button(*form, SurveySource::Name(SurveySource::serial)));
    QCOMPARE(inputs(), QStringLiteral("Port"));
    Type(Input(*form, QStringLiteral("Port")), QStringLiteral("/dev/ttyS0"));
    Click(Button(*form, QStringLiteral("38400")));
    QVERIFY(Button(*form, QStringLiteral("38400"))->on);
    QVERIFY(!Button(*form, QStringLiteral("4800"))->on);
    Click(Button(*form, SurveySource::Name(SurveySource::replay)));
    QCOMPARE(inputs(), QString());
    QVERIFY(Button(*form, QStringLiteral("Choose the file"))->isVisible());
    Click(Button(*form, SurveySource::Name(SurveySource::tcp)));
    QCOMPARE(inputs(), QStringLiteral("Host,Port"));
    Type(Input(*form, QStringLiteral("Host")), QStringLiteral("boat"));
    Type(Input(*form, QStringLiteral("Port")), QStringLiteral("70000"));
    QVERIFY(!RowWithProblem(*form).isEmpty());
    Restart();
    QCOMPARE(Settings().source, int(SurveySource::tcp));
    QCOMPARE(Settings().simSet, 275.0);
    QCOMPARE(Settings().udpPort, 5000);
    QCOMPARE(Settings().serialPort, QStringLiteral("/dev/ttyS0"));
    QCOMPARE(Settings().serialBaud, 38400);
    QCOMPARE(Settings().tcpHost, QStringLiteral("boat"));
    QCOMPARE(Settings().tcpPort, 7000); // the last one on the way that was a port
}

/// What is sent arrives, and what cannot be had is told in words.
void tst_SurveyForms::stateOfTheSource()
{
    auto* form = Shown<FormSources>();
    const auto said = [form] {
        QStringList all;
        for (int row = 0; row < form->RowCount(); ++row) {
            if (form->IsRowShown(row))
                all.append(form->Problem(row).isEmpty() ? form->Help(row) : form->Problem(row));
        }
        return all.join(QLatin1Char('|'));
    };
    // A port that is free, and then is not.
    QUdpSocket taken;
    QVERIFY(taken.bind(QHostAddress(QHostAddress::Any), quint16(0)));
    const quint16 port = taken.localPort();
    Click(Button(*form, SurveySource::Name(SurveySource::udp)));
    Type(Input(*form, QStringLiteral("Port")), QString::number(port));
    QVERIFY(said().contains(QStringLiteral("Not opened yet.")));
    Click(Button(*form, QStringLiteral("Test")));
    QTRY_VERIFY2(
        said().contains(QStringLiteral("Cannot listen on UDP port %1").arg(port)), qPrintable(said()));
    QVERIFY(!RowWithProblem(*form).isEmpty());
    taken.close();
    Click(Button(*form, QStringLiteral("Test")));
    QTRY_VERIFY2(said().contains(QStringLiteral("Waiting for data")), qPrintable(said()));
    QCOMPARE(RowWithProblem(*form), QString());
    QUdpSocket sender;
    const auto send = [&](const QByteArray& line) {
        sender.writeDatagram(line, QHostAddress::LocalHost, port);
        return said();
    };
    QTRY_VERIFY2(send("rubbish\r\n").contains(QStringLiteral("Unreadable")), qPrintable(said()));
    Click(Button(*form, SurveySource::Name(SurveySource::simulator)));
    QVERIFY(said().contains(QStringLiteral("Not opened yet.")));
    Click(Button(*form, QStringLiteral("Test")));
    QTRY_VERIFY2(said().contains(QRegularExpression(QStringLiteral("Receiving [0-9.]+ records/s"))),
        qPrintable(said()));
    Click(Button(*form, SurveySource::Name(SurveySource::udp)));
    Click(Button(*form, QStringLiteral("Test")));
    QTRY_VERIFY2(send("$GPGGA,120000.00,5020.000,N,00408.000,W,1,08,1.0,0.0,M,0.0,M,,*4F\r\n")
                     .contains(QRegularExpression(QStringLiteral("Receiving [0-9.]+ sentences/s"))),
        qPrintable(said()));
    // Nobody listens there.
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const quint16 closed = server.serverPort();
    server.close();
    Click(Button(*form, SurveySource::Name(SurveySource::tcp)));
    Type(Input(*form, QStringLiteral("Host")), QStringLiteral("127.0.0.1"));
    Type(Input(*form, QStringLiteral("Port")), QString::number(closed));
    Click(Button(*form, QStringLiteral("Test")));
    QTRY_VERIFY2(RowWithProblem(*form).contains(QStringLiteral("refused")), qPrintable(said()));
    Click(Button(*form, SurveySource::Name(SurveySource::serial)));
    Type(Input(*form, QStringLiteral("Port")), QStringLiteral("/dev/no such port"));
    Click(Button(*form, QStringLiteral("Test")));
    QTRY_VERIFY2(RowWithProblem(*form).contains(QStringLiteral("No such file")), qPrintable(said()));
    QVERIFY(said().contains(QStringLiteral("found.")) || said().contains(QStringLiteral("None found.")));
}

void tst_SurveyForms::wordsOfTheState_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<double>("rate");
    QTest::addColumn<bool>("isText");
    QTest::addColumn<int>("bad");
    QTest::addColumn<QString>("text");
    const double unknown = std::nan("");
    QTest::newRow("just begun") << int(SurveyFeed::receiving) << unknown << true << 0 << "receiving";
    QTest::newRow("few") << int(SurveyFeed::receiving) << 0.96 << true << 0 << "receiving 1.0 sentences/s";
    QTest::newRow("some") << int(SurveyFeed::receiving) << 9.96 << true << 0 << "receiving 10 sentences/s";
    QTest::newRow("many") << int(SurveyFeed::receiving) << 1234.4 << false << 0 << "receiving 1234 records/s";
    QTest::newRow("damaged") << int(SurveyFeed::receiving) << 5.0 << true << 7
                             << "receiving 5.0 sentences/s, 7 bad lines";
    QTest::newRow("silent") << int(SurveyFeed::silent) << 5.0 << true << 0 << "silent for 12 s";
    QTest::newRow("unreadable") << int(SurveyFeed::unreadable) << 0.0 << true << 9
                                << "unreadable: no NMEA sentence in 9 lines";
    QTest::newRow("waiting") << int(SurveyFeed::waiting) << unknown << false << 0 << "waiting for data";
    QTest::newRow("failed") << int(SurveyFeed::failed) << unknown << false << 0 << "Broken";
    QTest::newRow("troubled") << int(SurveyFeed::troubled) << unknown << false << 3 << "Broken";
    QTest::newRow("finished") << int(SurveyFeed::finished) << unknown << false << 0 << "at its end";
    QTest::newRow("none") << int(SurveyFeed::none) << unknown << false << 0 << "no source";
}

void tst_SurveyForms::wordsOfTheState()
{
    QFETCH(int, state);
    QFETCH(double, rate);
    QFETCH(bool, isText);
    QFETCH(int, bad);
    SurveyFeed::Facts facts;
    facts.state = static_cast<SurveyFeed::eState>(state);
    facts.perSecond = rate;
    facts.isText = isText;
    facts.badLines = static_cast<quint64>(bad);
    facts.age = 12.0;
    facts.reason = QStringLiteral("Broken");
    QTEST(SurveyFeed::TextOf(facts), "text");
}

void tst_SurveyForms::unitOfTheCurrent()
{
    Settings().simCurrent = 1.0;
    auto* form = Shown<FormSources>();
    QCOMPARE(Input(*form, QStringLiteral("Current"))->QLineEdit::text(), QStringLiteral("1.00"));
    Form<ZrFmApp>()->OnUom(1);
    QCOMPARE(Input(*form, QStringLiteral("Current"))->QLineEdit::text(), QStringLiteral("1.94"));
    QCOMPARE(Settings().simCurrent, 1.0);
    Type(Input(*form, QStringLiteral("Current")), QStringLiteral("3.88"));
    QVERIFY(std::abs(Settings().simCurrent - 2.0) < 0.01);
    Shown<FormDisplay>();
    Shown<FormSources>();
    QStringList helps;
    for (int row = 0; row < form->RowCount(); ++row)
        helps.append(form->Help(row));
    QVERIFY(helps.join(QLatin1Char('|')).contains(ZrUnits::GetSpeedUnits()));
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

void tst_SurveyForms::layout_data()
{
    QTest::addColumn<int>("scale");
    QTest::addColumn<QSize>("size");
    for (const int scale : {2, 0, -2}) {
        for (const QSize& size : {QSize(900, 600), QSize(1280, 800), QSize(1920, 1080), QSize(2560, 1440)})
            QTest::addRow("%+d %dx%d", scale, size.width(), size.height()) << scale << size;
    }
}

void tst_SurveyForms::layout()
{
    QFETCH(int, scale);
    QFETCH(QSize, size);
    SetScale(scale);
    m_view->resize(size);
    Settle();
    QCOMPARE(m_view->size(), size);
    for (ZrForm* form : qAsConst(m_view->forms().m_forms)) {
        const QByteArray name = form->m_name.toUtf8();
        m_view->ShowSettings(form->m_name);
        Settle();
        if (!form->m_isTiered)
            QVERIFY2(
                !form->m_tab.isEmpty() && m_view->forms().rect().contains(form->m_tab), name.constData());
        auto* rows = qobject_cast<ZrRowForm*>(form);
        if (!rows)
            continue;
        const int last = qobject_cast<FormSources*>(form) ? SurveySettings::LastSource : 0;
        for (int source = 0; source <= last; ++source) {
            if (last > 0)
                Click(Button(*form, SurveySource::Name(source)));
            QVERIFY2(Misplaced(*rows->Body()).isEmpty(), qPrintable(Misplaced(*rows->Body())));
            QVERIFY2(rows->Body()->width() <= form->width(), name.constData());
            for (int row = 0; row < rows->RowCount(); ++row) {
                const QRect text = rows->TextRect(row);
                if (text.isEmpty())
                    continue;
                QVERIFY2(rows->Body()->rect().contains(text), name.constData());
                for (const QWidget* child :
                    rows->Body()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
                    if (child->isVisible())
                        QVERIFY2(!child->geometry().intersects(text), name.constData());
                }
            }
            for (const ZrBtn* button : rows->Body()->findChildren<ZrBtn*>()) {
                if (!button->isVisible())
                    continue;
                QVERIFY2(button->height() >= 44 && button->width() >= 44, qPrintable(button->text));
                const double wide = QFontMetricsF(button->font).horizontalAdvance(button->text);
                QVERIFY2(wide <= button->textRect.width() + 0.5, qPrintable(button->text));
            }
        }
    }
}

void tst_SurveyForms::inputsAreReadable_data()
{
    QTest::addColumn<int>("scheme");
    QTest::newRow("day") << int(ZrColourScheme::day);
    QTest::newRow("dusk") << int(ZrColourScheme::dusk);
    QTest::newRow("night") << int(ZrColourScheme::night);
}

/// The letters against what is behind them, in the picture of the line.
void tst_SurveyForms::inputsAreReadable()
{
    QFETCH(int, scheme);
    m_view->SetColours(scheme);
    auto* form = Shown<FormRecording>();
    ZrInput* input = Input(*form, QStringLiteral("Stop below, MB"));
    const auto contrast = [input] {
        input->clearFocus();
        Settle();
        const QImage image = input->grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QColor behind = image.pixelColor(image.width() * 3 / 4, image.height() / 2);
        double most = 1.0;
        for (int y = image.height() / 4; y < image.height() * 3 / 4; ++y) {
            for (int x = image.width() / 20; x < image.width() / 2; ++x)
                most = std::max(most, Contrast(image.pixelColor(x, y), behind));
        }
        return most;
    };
    const double before = contrast();
    QVERIFY2(before >= 4.5, qPrintable(QString::number(before)));
    Type(input, QStringLiteral("8888"));
    const double valid = contrast();
    QVERIFY2(valid >= 4.5, qPrintable(QString::number(valid)));
    Type(input, QStringLiteral("8888x"));
    const double wrong = contrast();
    QVERIFY2(wrong >= 4.5, qPrintable(QString::number(wrong)));
}

void tst_SurveyForms::scrolls()
{
    SetScale(2);
    m_view->resize(900, 600);
    Settle();
    auto* form = Shown<FormRecording>();
    auto* area = form->findChild<QScrollArea*>();
    QVERIFY(form->Body()->height() > area->viewport()->height());
    const QPoint from(4, area->viewport()->height() - 4);
    const QPoint at = form->Body()->mapFrom(area->viewport(), from);
    QTest::mousePress(form->Body(), Qt::LeftButton, Qt::NoModifier, at);
    SendMove(*form->Body(), at - QPoint(0, 100));
    QCOMPARE(area->verticalScrollBar()->value(), 100);
    QTest::mouseRelease(form->Body(), Qt::LeftButton, Qt::NoModifier, at - QPoint(0, 100));
    // The Tab key brings what has the focus into view.
    ZrInput* last = form->findChildren<ZrInput*>().last();
    Input(*form, QStringLiteral("Name"))->setFocus();
    for (int i = 0; i < 20 && !last->hasFocus(); ++i)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QVERIFY(last->hasFocus());
    QVERIFY(area->viewport()->rect().contains(QRect(last->mapTo(area->viewport(), QPoint()), last->size())));
}

GL_TEST_MAIN(tst_SurveyForms)
#include "tst_SurveyForms.moc"
