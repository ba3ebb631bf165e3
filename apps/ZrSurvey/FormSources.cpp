#include "apps/ZrSurvey/FormSources.h"

#include "ZrKit/recording/ZrSerialSource.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/SourceMaker.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveySource.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QFileInfo>

FormSources::FormSources(SurveyView& view)
    : SurveyForm(view)
    , m_files(new ZrFilePanel(&view, tr("File to replay")))
    , m_ports(new ZrChoicePanel(&view, tr("Serial port")))
{
    m_name = tr("Source of data");
    m_icon = QImage(QStringLiteral(":/icons/source.png"));
    m_files->SetMode(ZrFilePanel::openFile);
    m_files->hide();
    m_ports->hide();
    QVector<ZrBtn*> kinds;
    for (int i = 0; i < SurveySource::Count; ++i)
        kinds.append(Button(SurveySource::Name(i)));
    AddChoice(
        tr("Source"), tr("Where the vehicle's data come from."), kinds, 3,
        [this] { return Settings().source; },
        [this](int kind) {
            Settings().source = kind;
            Edited();
        });
    ZrBtn* test = Button(tr("Test"), QStringLiteral("source"));
    test->setToolTip(tr("Opens the source and tells what it gives"));
    connect(test, &ZrBtn::Clicked, this, [this] {
        View().GetPage(QStringLiteral("Record")); // opens it, and may not have been needed yet
        View().Model().feed.Want();
    });
    m_stateRow = AddRow(tr("State"), QString(), {test}, beside);

    const auto notEmpty
        = [](const QString& text) { return text.trimmed().isEmpty() ? tr("A name") : QString(); };
    const int pace = AddNumber(tr("Speed of time"), tr("The simulator's time runs so many times as fast."),
        &SurveySettings::simSpeed, ZrInput::kindDouble, 1, SurveySettings::LeastSimSpeed,
        SurveySettings::MostSimSpeed);
    SetUnit(pace, QChar(0x00D7)); // "×"
    m_currentRow = AddNumber(tr("Current"), tr("Speed of the water over the ground."),
        &SurveySettings::simCurrent, ZrInput::kindSpeed, 2, 0.0, SurveySettings::MostSimCurrent);
    // Other units make another text of it.
    for (ZrInput* input : Body()->findChildren<ZrInput*>()) {
        if (input->kind == ZrInput::kindSpeed)
            connect(input, &ZrInput::textChanged, this,
                [this] { SetUnit(m_currentRow, ZrUnits::GetSpeedUnits()); });
    }
    const int set = AddNumber(tr("Set"), tr("True direction in which the current runs."),
        &SurveySettings::simSet, ZrInput::kindDouble, 0, 0.0, 360.0);
    SetUnit(set, ZrUnits::degrees);
    for (const int row : {pace, m_currentRow, set})
        m_fields.append({SurveySource::simulator, row});
    m_fields.append({SurveySource::udp,
        AddInteger(tr("Port"), tr("The UDP port on which NMEA sentences arrive."), &SurveySettings::udpPort,
            1, SurveySettings::MostPort)});
    m_fields.append({SurveySource::tcp,
        AddText(tr("Host"), tr("Name or address of the server that sends NMEA sentences."),
            &SurveySettings::tcpHost, notEmpty)});
    m_fields.append({SurveySource::tcp,
        AddInteger(tr("Port"), tr("The server's TCP port."), &SurveySettings::tcpPort, 1,
            SurveySettings::MostPort)});
    m_fields.append({SurveySource::serial,
        AddText(tr("Port"), tr("The serial port, for instance /dev/ttyUSB0."), &SurveySettings::serialPort,
            notEmpty)});
    m_portsRow = AddPorts();
    m_fields.append({SurveySource::serial, m_portsRow});
    m_fields.append({SurveySource::serial, AddSpeeds()});
    m_fileRow = AddFile();
    connect(&view.Model().feed, &SurveyFeed::Changed, this, &FormSources::ShowFeed);
    OnEdited();
}

int FormSources::AddPorts()
{
    ZrBtn* choose = Button(tr("Choose the port"), QStringLiteral("list"));
    connect(choose, &ZrBtn::Clicked, this, &FormSources::ChoosePort);
    connect(m_ports, &ZrChoicePanel::Chosen, this, [this](int row) {
        Settings().serialPort = m_ports->Items()[row].title;
        View().SettingsEdited(); // which shows it, too
    });
    return AddRow(tr("Ports of this computer"), QString(), {choose}, beside);
}

void FormSources::ChoosePort()
{
    const QStringList ports = ZrSerialSource::Ports();
    OnEdited();
    if (ports.isEmpty())
        return;
    QVector<ZrListItem> items;
    for (const QString& port : ports)
        items.append({port, QString(), QString(), QImage(), false, QColor(), QVariant()});
    m_ports->SetItems(items, ports.indexOf(Settings().serialPort));
    m_ports->Open();
}

/// The speeds that ports have: no other works.
int FormSources::AddSpeeds()
{
    const QVector<int> speeds = ZrSerialSource::Speeds();
    QVector<ZrBtn*> buttons;
    for (const int speed : speeds)
        buttons.append(Button(QString::number(speed)));
    return AddChoice(
        tr("Baud"), tr("Bits per second; 4800 for most NMEA talkers."), buttons, 7,
        [this, speeds] { return speeds.indexOf(Settings().serialBaud); },
        [this, speeds](int index) {
            Settings().serialBaud = speeds[index];
            Edited();
        });
}

int FormSources::AddFile()
{
    ZrBtn* choose = Button(tr("Choose the file"), QStringLiteral("open"));
    connect(choose, &ZrBtn::Clicked, this, [this] {
        const bool isLog = Settings().source == SurveySource::replay;
        m_files->SetSuffixes(isLog ? QStringList({QStringLiteral("log")}) : QStringList());
        const QFileInfo current(Settings().sourceFile);
        m_files->SetFolder(Settings().sourceFile.isEmpty() ? Settings().recordDir : current.path());
        m_files->Open();
    });
    connect(m_files, &ZrFilePanel::FileChosen, this, [this](const QString& path) {
        Settings().sourceFile = path;
        Edited();
    });
    return AddRow(tr("File"), QString(), {choose}, beside);
}

void FormSources::OnEdited()
{
    const int kind = Settings().source;
    for (const auto& field : qAsConst(m_fields))
        ShowRow(field.second, field.first == kind);
    ShowRow(m_fileRow, kind == SurveySource::nmeaFile || kind == SurveySource::replay);
    const QString& file = Settings().sourceFile;
    SetHelp(m_fileRow, file.isEmpty() ? tr("No file is chosen yet.") : file);
    SetUnit(m_currentRow, ZrUnits::GetSpeedUnits());
    if (kind == SurveySource::serial) {
        const int count = ZrSerialSource::Ports().size();
        SetHelp(m_portsRow,
            count > 0 ? tr("%1 found.").arg(count) : tr("None found. Is the adapter plugged in?"));
    }
    ShowFeed();
}

/// What the source of the settings gives, when it is the one that is open.
void FormSources::ShowFeed()
{
    const SurveyFeed& feed = View().Model().feed;
    const bool isTested = feed.Key() == SourceMaker::Key(Settings()) && feed.State() != ZrSourceFacts::none;
    QString text = feed.Text();
    if (!text.isEmpty())
        text[0] = text[0].toUpper();
    const bool isBad = isTested && feed.Facts().IsBad();
    SetProblem(m_stateRow, isBad ? text : QString());
    SetHelp(m_stateRow, isTested ? text : tr("Not opened yet."));
}
