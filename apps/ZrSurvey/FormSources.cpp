#include "apps/ZrSurvey/FormSources.h"

#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/SurveySource.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QFileInfo>

FormSources::FormSources(SurveyView& view)
    : SurveyForm(view)
    , m_files(new ZrFilePanel(&view, tr("File to replay")))
{
    m_name = tr("Source of data");
    m_icon = QImage(QStringLiteral(":/icons/source.png"));
    m_files->SetMode(ZrFilePanel::openFile);
    m_files->hide();
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

    const auto notEmpty
        = [](const QString& text) { return text.trimmed().isEmpty() ? tr("A name") : QString(); };
    m_fields.append({SurveySource::simulator,
        AddNumber(tr("Speed of time"), tr("The simulator's time runs so many times as fast."),
            &SurveySettings::simSpeed, ZrInput::kindDouble, 1, SurveySettings::LeastSimSpeed,
            SurveySettings::MostSimSpeed)});
    m_currentRow = AddNumber(tr("Current"), QString(), &SurveySettings::simCurrent, ZrInput::kindSpeed, 2,
        0.0, SurveySettings::MostSimCurrent);
    m_fields.append({SurveySource::simulator, m_currentRow});
    m_fields.append({SurveySource::simulator,
        AddNumber(tr("Set"), tr("Degrees true, to where the current runs."), &SurveySettings::simSet,
            ZrInput::kindDouble, 0, 0.0, 360.0)});
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
    m_fields.append({SurveySource::serial,
        AddInteger(tr("Baud"), tr("Bits per second; 4800 for most NMEA talkers."),
            &SurveySettings::serialBaud, SurveySettings::LeastBaud, SurveySettings::MostBaud)});
    m_fileRow = AddFile();
    OnEdited();
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
    SetHelp(m_currentRow, tr("Speed of the current, %1.").arg(ZrUnits::GetSpeedUnits()));
}
