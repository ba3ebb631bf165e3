// zr log events: the events of a log, found in it or added by hand.

#include "CmdLogEvents.h"

#include "CliDataset.h"
#include "CliExit.h"
#include "CliHelp.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliTable.h"
#include "CliText.h"
#include "CliTime.h"
#include "ZrKit/review/ZrEventFile.h"

#include <QJsonObject>
#include <QUuid>

namespace {

struct Options
{
    std::string log;
    std::string add;
    std::string time;
    std::string detail;
    std::string remove;
    bool json = false;
};

std::string CheckUid(const std::string& text)
{
    if (!QUuid::fromString(QString::fromStdString(text)).isNull())
        return {};
    return "\"" + text + "\" is no identifier of an event, as zr log events lists them";
}

std::string CheckText(const std::string& text)
{
    return text.empty() ? "An event needs a text" : "";
}

QString UidText(const ZrLogEvt& evt)
{
    return evt.uid.isNull() ? QStringLiteral("-") : evt.uid.toString(QUuid::WithoutBraces);
}

QString SourceText(eEvtSrc source)
{
    switch (source) {
    case esUnknown:
        return QStringLiteral("-");
    case esSystem:
        return QStringLiteral("system");
    case esUser:
        return QStringLiteral("user");
    case esVehicle:
        return QStringLiteral("vehicle");
    }
    return QString::number(static_cast<int>(source));
}

bool PrintJson(const ZrLogEvt& evt)
{
    return CliOutput::Get().Json({
        {QStringLiteral("uid"), evt.uid.isNull() ? QJsonValue() : QJsonValue(UidText(evt))},
        {QStringLiteral("code"), evt.code},
        {QStringLiteral("time"), cli::json_number(evt.time)},
        {QStringLiteral("src"), static_cast<int>(evt.src)},
        {QStringLiteral("text"), evt.text},
        {QStringLiteral("detail"), evt.detail},
        {QStringLiteral("rec"), evt.rec},
    });
}

/// \p text on one line.
QString Cell(const QString& text)
{
    const QString line = text.simplified();
    return line.isEmpty() ? QStringLiteral("-") : line;
}

void List(const ZrDataset& dataset, bool json)
{
    CliTable table({QStringLiteral("Time"), QStringLiteral(">Record"), QStringLiteral("Source"),
        QStringLiteral(">Code"), QStringLiteral("Uid"), QStringLiteral("Text"), QStringLiteral("Detail")});
    for (ZrListPos* pos = dataset.events.GetHeadPos(); pos;) {
        const ZrLogEvt& evt = *dataset.events.GetNext(pos);
        if (json && !PrintJson(evt))
            return;
        table.Row({cli::time_text(evt.time), QString::number(evt.rec), SourceText(evt.src),
            QString::number(evt.code), UidText(evt), Cell(evt.text), Cell(evt.detail)});
    }
    if (json)
        return;
    for (const QString& line : table.Lines())
        CliOutput::Get().Line(line);
}

int Add(const Options& options, CliDataset& log)
{
    ZrLogEvt evt(
        *cli::parse_time(QString::fromStdString(options.time)), esUser, QString::fromStdString(options.add));
    evt.detail = QString::fromStdString(options.detail);
    evt.uid = QUuid::createUuid();
    evt.rec = log.dataset.PosFromTime(evt.time);
    const auto add = [&evt](ZrEventFile& file) {
        file.Add(evt);
        return true;
    };
    QString error;
    if (!ZrEventFile::Update(log.dataset.fileName, add, &error))
        return cli::fail(exBadOutput, error);
    if (options.json)
        PrintJson(evt);
    else
        CliOutput::Get().Line(UidText(evt));
    return exDone;
}

int Remove(const Options& options, const CliDataset& log)
{
    const QUuid uid = QUuid::fromString(QString::fromStdString(options.remove));
    bool found = false;
    const auto remove = [&uid, &found](ZrEventFile& file) { return found = file.Remove(uid) > 0; };
    QString error;
    if (!ZrEventFile::Update(log.dataset.fileName, remove, &error))
        return cli::fail(exBadOutput, error);
    if (found)
        return exDone;
    return cli::fail(exBadInput,
        QStringLiteral("%1: There is no event %2")
            .arg(log.dataset.fileName, uid.toString(QUuid::WithoutBraces)));
}

int Run(const Options& options)
{
    const QString path = QString::fromStdString(options.log);
    CliDataset log;
    log.FollowIndex(path);
    // A change of the event file wants the index too: a reader that scans the log for want of an index
    // would write the event file anew.
    if (const int code = log.Load(path))
        return code;
    if (options.add.empty() && options.remove.empty()) {
        List(log.dataset, options.json);
        return log.EndCode();
    }
    if (const int code = options.add.empty() ? Remove(options, log) : Add(options, log))
        return code;
    // What was asked for is done, whatever the log suffers from: a script must not try it again.
    log.WarnOfDamage();
    return exDone;
}

} // namespace

void AddLogEvents(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(log, run, "events",
        "List the events of a log, add one, remove one\n"
        "\n"
        "Events are found in the log or added by hand, and kept as LOG.evt.",
        "Units: times are UTC, in JSON seconds since 1970-01-01. The source of an event\n"
        "is in JSON a number: 0 unknown, 1 system, 2 user, 3 vehicle, others belong to\n"
        "applications.\n"
        "\n"
        "Examples:\n"
        "  zr log events dive.log\n"
        "  zr log events dive.log --add \"Wreck\" --time 2021-03-03T14:05:09.500Z\n"
        "  zr log events dive.log --remove 67c8770b-44f1-410a-ab9a-f9b5446f13ee");
    cli::add_argument(*verb, "LOG", options->log, "Log to read");
    CLI::Option* add = cli::add_value(*verb, "--add", options->add, "TEXT", CheckText,
        "Add an event with this text and the source user; its identifier is printed");
    CLI::Option* time = cli::add_value(*verb, "--time", options->time, "T", cli::check_time,
        "Time of the event: ISO 8601, UTC unless it names an offset, or seconds since 1970-01-01");
    CLI::Option* detail = cli::add_value(
        *verb, "--detail", options->detail, "D", nullptr, "A longer text that belongs to the event");
    CLI::Option* remove = cli::add_value(
        *verb, "--remove", options->remove, "UID", CheckUid, "Remove the event with this identifier");
    add->needs(time)->excludes(remove);
    time->needs(add);
    detail->needs(add);
    CLI::Option* json
        = verb->add_flag("--json", options->json, "Print one JSON object on each line, one for each event");
    json->excludes(remove);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
