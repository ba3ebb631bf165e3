// zr log seek: what a player replays when it is put at a record.

#include "CmdLogSeek.h"

#include "CliDataset.h"
#include "CliExit.h"
#include "CliHelp.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliTable.h"
#include "CliText.h"
#include "CliTime.h"
#include "CliTypes.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/review/ZrRecordTimes.h"
#include "ZrUtil/ZrPlayer.h"

#include <QJsonArray>
#include <QJsonObject>

#include <vector>

namespace {

struct Options
{
    std::string log;
    std::string time;
    std::string record;
    bool json = false;
};

/// An item that the player has delivered.
struct Item
{
    ZrLogItemInf inf;
    u64 pos;
    u64 storedSize;
};

/// The items that are replayed for \p rec, in order, then that of the record itself. Returns the exit code,
/// and complains unless it is 0.
int Replay(CliDataset& log, const ZrLogRec& rec, std::vector<Item>& items)
{
    ZrPlayer player;
    QObject::connect(&player, &ZrPlayer::NewPayloadPos, &player,
        [&items](const ZrLogItemInf& inf, zr::span<u8> payload, u64 pos) {
            items.push_back({inf, pos, payload.size()});
        });
    const u64 pos = rec.pos;
    cli::take_debug_output();
    if (player.OpenFile(log.dataset.fileName)) {
        log.dataset.SeekTo(player, rec);
        if (player.SeekTo(pos) && player.ReadNextItem(true))
            return exDone;
    }
    return cli::fail(exBadInput,
        QStringLiteral("%1: %2 (at position %3)")
            .arg(log.dataset.fileName, cli::take_debug_output().join(QStringLiteral(", ")))
            .arg(pos));
}

QJsonObject ItemObject(const Item& item)
{
    return {
        {QStringLiteral("pos"), cli::json_count(item.pos)},
        {QStringLiteral("type"), item.inf.type},
        {QStringLiteral("sub"), item.inf.sub},
        {QStringLiteral("source"), item.inf.source},
        {QStringLiteral("format"), item.inf.format},
        {QStringLiteral("time"), cli::json_number(item.inf.time)},
        {QStringLiteral("stored_size"), cli::json_count(item.storedSize)},
        {QStringLiteral("name"), zr::rec_type_name(item.inf)},
    };
}

void PrintJson(const ZrLogRec& rec, std::size_t number, const std::vector<Item>& items)
{
    QJsonArray replayed;
    for (std::size_t i = 0; i + 1 < items.size(); ++i)
        replayed << ItemObject(items[i]);
    const auto value = [](float v) { return cli::json_number(static_cast<double>(v)); };
    CliOutput::Get().Json({
        {QStringLiteral("record"), cli::json_count(number)},
        {QStringLiteral("time"), cli::json_number(rec.time)},
        {QStringLiteral("latitude"), cli::json_number(rec.latitude)},
        {QStringLiteral("longitude"), cli::json_number(rec.longitude)},
        {QStringLiteral("altitude"), value(rec.altitude)},
        {QStringLiteral("depth"), value(rec.depth)},
        {QStringLiteral("heading"), value(rec.heading)},
        {QStringLiteral("pitch"), value(rec.pitch)},
        {QStringLiteral("roll"), value(rec.roll)},
        {QStringLiteral("replayed"), replayed},
        {QStringLiteral("item"), ItemObject(items.back())},
    });
}

void PrintText(const ZrLogRec& rec, std::size_t number, const std::vector<Item>& items)
{
    CliOutput::Get().Line(QStringLiteral("Record %1, %2").arg(number).arg(cli::time_text(rec.time)));
    CliTable table({QStringLiteral("Role"), QStringLiteral(">Pos"), QStringLiteral(">Type"),
        QStringLiteral(">Sub"), QStringLiteral(">Source"), QStringLiteral(">Format"), QStringLiteral("Time"),
        QStringLiteral(">Stored"), QStringLiteral("Name")});
    for (std::size_t i = 0; i < items.size(); ++i) {
        const Item& item = items[i];
        const QString name = zr::rec_type_name(item.inf);
        table.Row({i + 1 < items.size() ? QStringLiteral("replayed") : QStringLiteral("record"),
            QString::number(item.pos), QString::number(item.inf.type), QString::number(item.inf.sub),
            QString::number(item.inf.source), QString::number(item.inf.format), cli::time_text(item.inf.time),
            QString::number(item.storedSize), name.isEmpty() ? QStringLiteral("-") : name});
    }
    for (const QString& line : table.Lines())
        CliOutput::Get().Line(line);
}

int Run(const Options& options)
{
    const QString path = QString::fromStdString(options.log);
    if (options.time.empty() == options.record.empty())
        return cli::fail(exUsage, QStringLiteral("One of --time and --record must be given"));
    CliDataset log;
    log.FollowIndex(path);
    if (const int code = log.Load(path))
        return code;
    if (const int code = log.RequireRecords())
        return code;
    const std::vector<ZrLogRec>& recs = log.dataset.recs;
    const u64 number = options.record.empty()
        ? ZrRecordTimes(recs).Nearest(*cli::parse_time(QString::fromStdString(options.time)))
        : std::stoull(options.record);
    if (options.record.empty() && number >= recs.size())
        return cli::fail(exBadInput, QStringLiteral("%1: No record has a time").arg(path));
    if (number >= recs.size()) {
        return cli::fail(exUsage,
            QStringLiteral("There is no record %1; the last one is %2").arg(number).arg(recs.size() - 1));
    }
    std::vector<Item> items;
    if (const int code = Replay(log, recs[number], items))
        return code;
    if (options.json)
        PrintJson(recs[number], number, items);
    else
        PrintText(recs[number], number, items);
    return log.EndCode();
}

} // namespace

void AddLogSeek(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(log, run, "seek",
        "List what a player replays when it is put at a record\n"
        "\n"
        "The latest item of each coordinate type up to the record comes first, in the "
        "order of the types, then the item of the record itself. One of --time and --record must be given.",
        "Units: positions and sizes in bytes, records are counted from 0. Times are UTC,\n"
        "in JSON seconds since 1970-01-01. In JSON latitude and longitude are degrees,\n"
        "altitude and depth metres, angles degrees; null is not known.\n"
        "\n"
        "Examples:\n"
        "  zr log seek dive.log --time 2021-03-03T14:05:09.500Z\n"
        "  zr log seek dive.log --record 17 --json");
    cli::add_argument(*verb, "LOG", options->log, "Log to read");
    CLI::Option* time = cli::add_value(*verb, "--time", options->time, "T", cli::check_time,
        "The record nearest to this time: ISO 8601, UTC unless it names an offset, or seconds since "
        "1970-01-01");
    CLI::Option* record
        = cli::add_value(*verb, "--record", options->record, "N", cli::check_count, "This record");
    time->excludes(record);
    verb->add_flag("--json", options->json, "Print one JSON object");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
