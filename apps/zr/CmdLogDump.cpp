// zr log dump: the payload of one item.

#include "CmdLogDump.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliInput.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliPosition.h"
#include "CliText.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/records/ZrRecordText.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrKit/review/ZrUnpack.h"
#include "ZrUtil/ZrPlayer.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

struct Options
{
    std::string log;
    std::string at;
    bool raw = false;
    bool hex = false;
    bool decoded = false;
    bool json = false;
};

/// An item with its payload as stored.
struct Item
{
    u64 pos = 0;
    ZrLogItem header;
    std::vector<u8> stored;
};

/// Reads the item at `item.pos`. Returns the exit code, and complains unless it is 0.
int Read(const QString& path, Item& item)
{
    ZrLogScan scan;
    u64 pos = 0;
    if (!scan.Open(path) || !scan.SeekTo(item.pos) || !scan.Next(item.header, pos)) {
        if (scan.State() != ZrLogScan::AtEnd)
            return cli::fail_scan(path, scan);
        return cli::fail(
            exBadInput, QStringLiteral("%1: Position %2 is the end of the log").arg(path).arg(item.pos));
    }
    ZrPlayer player;
    QObject::connect(
        &player, &ZrPlayer::NewPayload, &player, [&item](const ZrLogItemInf&, zr::span<u8> payload) {
            item.stored.assign(payload.begin(), payload.end());
        });
    cli::take_debug_output();
    if (player.OpenFile(path) && player.SeekTo(item.pos) && player.ReadNextItem(true))
        return exDone;
    return cli::fail(exBadInput,
        QStringLiteral("%1: %2 (at position %3)")
            .arg(path, cli::take_debug_output().join(QStringLiteral(", ")))
            .arg(item.pos));
}

/// One line of a hex dump: the offset, up to 16 bytes in two groups of eight, and what of it is ASCII.
QByteArray HexLine(zr::span<u8> bytes, std::size_t offset)
{
    constexpr char digits[] = "0123456789abcdef";
    constexpr std::size_t perLine = 16;
    const std::size_t count = std::min(perLine, bytes.size() - offset);
    QByteArray line = QByteArray::number(static_cast<qulonglong>(offset), 16).rightJustified(8, '0') + "  ";
    QByteArray ascii;
    for (std::size_t i = 0; i < perLine; ++i) {
        if (i == perLine / 2)
            line += ' ';
        if (i >= count) {
            line += "   ";
            continue;
        }
        const u8 byte = bytes[offset + i];
        line += digits[byte >> 4];
        line += digits[byte & 15];
        line += ' ';
        ascii += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
    }
    return line + " |" + ascii + "|\n";
}

void PrintHex(zr::span<u8> bytes)
{
    for (std::size_t offset = 0; offset < bytes.size(); offset += 16) {
        if (!CliOutput::Get().Write(HexLine(bytes, offset)))
            return;
    }
    CliOutput::Get().Write(
        QByteArray::number(static_cast<qulonglong>(bytes.size()), 16).rightJustified(8, '0') + '\n');
}

void PrintFieldLines(const std::vector<ZrRecordField>& fields)
{
    for (const ZrRecordField& field : fields) {
        QString line = field.name + QStringLiteral(": ") + field.text;
        if (!field.unit.isEmpty())
            line += QLatin1Char(' ') + field.unit;
        CliOutput::Get().Line(line);
    }
}

void PrintFieldObject(const Item& item, const std::vector<ZrRecordField>& fields)
{
    QJsonObject values;
    QJsonObject units;
    for (const ZrRecordField& field : fields) {
        values.insert(field.name, field.value);
        if (!field.unit.isEmpty())
            units.insert(field.name, field.unit);
    }
    CliOutput::Get().Json({
        {QStringLiteral("pos"), cli::json_count(item.pos)},
        {QStringLiteral("type"), item.header.type},
        {QStringLiteral("sub"), item.header.sub},
        {QStringLiteral("source"), item.header.source},
        {QStringLiteral("format"), item.header.format},
        {QStringLiteral("time"), cli::json_number(item.header.time)},
        {QStringLiteral("name"), zr::rec_type_name(item.header.RecType())},
        {QStringLiteral("fields"), values},
        {QStringLiteral("units"), units},
    });
}

int PrintDecoded(const Item& item, zr::span<u8> payload, bool json)
{
    QString error;
    const std::vector<ZrRecordField> fields = zr::record_fields(ZrLogItemInf(item.header), payload, &error);
    if (fields.empty() && !error.isEmpty()) {
        return cli::fail(exBadInput,
            QStringLiteral("The item of type %1:%2 at position %3 cannot be decoded: %4")
                .arg(item.header.type)
                .arg(item.header.sub)
                .arg(item.pos)
                .arg(error));
    }
    if (json)
        PrintFieldObject(item, fields);
    else
        PrintFieldLines(fields);
    return exDone;
}

int Run(const Options& options)
{
    const QString path = QString::fromStdString(options.log);
    if (const int code = cli::check_input(path))
        return code;
    CliPosition at = CliPosition::FromOption(options.at);
    if (const int code = CliPosition::Resolve(path, {&at}))
        return code;
    Item item;
    item.pos = at.bytes;
    if (const int code = Read(path, item))
        return code;

    CliOutput& out = CliOutput::Get();
    if (options.raw) {
        out.Write(reinterpret_cast<const char*>(item.stored.data()), item.stored.size());
        return exDone;
    }
    QByteArray payload;
    QString error;
    if (!zr::unpack_payload(item.header, item.stored, &payload, &error)) {
        return cli::fail(
            exBadInput, QStringLiteral("%1: %2 (at position %3)").arg(path, error).arg(item.pos));
    }
    if (options.decoded)
        return PrintDecoded(item, zr::bytes_of(payload), options.json);
    if (options.hex || CliOutput::IsTerminal())
        PrintHex(zr::bytes_of(payload));
    else
        out.Write(payload);
    return exDone;
}

} // namespace

void AddLogDump(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(log, run, "dump",
        "Print the payload of one item\n"
        "\n"
        "The payload is decompressed and printed as it is; on a terminal as a hex dump.\n"
        "Only one of --raw, --hex and --decoded can be given.",
        "Units: POS in bytes; the offsets of a hex dump are hexadecimal. Decoded values\n"
        "carry their units.\n"
        "\n"
        "Examples:\n"
        "  zr log dump dive.log --at 48 --decoded\n"
        "  zr log dump dive.log --at 4711 > payload.bin");
    cli::add_argument(*verb, "LOG", options->log, "Log to read");
    cli::add_value(*verb, "--at", options->at, "POS", CliPosition::Check,
        "Position of the item: bytes, or a share of the file as in 33% (the first item at or after it)")
        ->required();
    CLI::Option* raw = verb->add_flag("--raw", options->raw, "Print the bytes as stored, not decompressed");
    CLI::Option* hex = verb->add_flag("--hex", options->hex, "Print a hex dump, also into a file or pipe");
    CLI::Option* decoded = verb->add_flag(
        "--decoded", options->decoded, "Print the fields of the record as \"name: value unit\" lines");
    raw->excludes(hex)->excludes(decoded);
    hex->excludes(decoded);
    verb->add_flag("--json", options->json, "With --decoded: print one JSON object")->needs(decoded);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
