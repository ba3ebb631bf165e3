// zr log plan: the mission plan that a log holds, as a file of its own.

#include "CmdLogPlan.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliInOut.h"
#include "CliInput.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliProgress.h"
#include "CliSignals.h"
#include "CliTarget.h"
#include "CliText.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrKit/review/ZrUnpack.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonObject>

#include <limits>

namespace {

/// The plans of a log.
struct Plans
{
    u64 count = 0;
    u64 pos = 0; ///< of the last one
    ZrLogItem item;
};

void Find(ZrLogScan& scan, Plans& plans)
{
    ZrLogItem item;
    u64 pos = 0;
    while (scan.Next(item, pos)) {
        if (item.RecType() != CRecType(rtMissionPlan))
            continue;
        ++plans.count;
        plans.pos = pos;
        plans.item = item;
    }
}

/// Loads the last plan into \p store. Returns the exit code, and complains unless it is 0.
int Restore(const QString& path, const Plans& plans, ZrXmlStore& store)
{
    const auto refuse = [&path, &plans](const QString& reason) {
        return cli::fail(
            exBadInput, QStringLiteral("%1: %2 (at position %3)").arg(path, reason).arg(plans.pos));
    };
    if (plans.item.storedSize > static_cast<u32>(std::numeric_limits<int>::max()))
        return refuse(QStringLiteral("The mission plan is larger than 2 GiB"));
    QFile file(path);
    QByteArray stored;
    if (file.open(QIODevice::ReadOnly) && file.seek(static_cast<qint64>(plans.pos + ZrLogItem::Size)))
        stored = file.read(plans.item.storedSize);
    if (stored.size() != static_cast<int>(plans.item.storedSize))
        return refuse(QStringLiteral("The mission plan cannot be read"));
    QByteArray text;
    QString error;
    if (!zr::unpack_payload(plans.item, zr::bytes_of(stored), &text, &error))
        return refuse(error);
    store.Load(text);
    return store.IsEmpty() ? refuse(QStringLiteral("The mission plan is empty or damaged")) : int(exDone);
}

int Write(const CliInOut& options, ZrXmlStore& store, const Plans& plans, CliTarget& target)
{
    if (const int code = target.CreateTemporary())
        return code;
    if (!store.Save(target.TemporaryPath()))
        return target.FailWriting();
    const u64 bytes = static_cast<u64>(QFileInfo(target.TemporaryPath()).size());
    if (const int code = target.Commit())
        return code;
    const QString out = options.Out();
    if (!options.json) {
        CliOutput::Get().Line(
            QStringLiteral("%1: %2, %3")
                .arg(out, cli::size_text_both(bytes),
                    plans.count == 1 ? QStringLiteral("the only plan")
                                     : QStringLiteral("the last of %1 plans").arg(plans.count)));
        return exDone;
    }
    CliOutput::Get().Json({
        {QStringLiteral("in"), options.In()},
        {QStringLiteral("out"), out},
        {QStringLiteral("pos"), cli::json_count(plans.pos)},
        {QStringLiteral("plans"), cli::json_count(plans.count)},
        {QStringLiteral("bytes"), cli::json_count(bytes)},
    });
    return exDone;
}

int Run(const CliInOut& options)
{
    const QString path = options.In();
    CliTarget target;
    if (const int code = options.Prepare(target))
        return code;
    ZrLogScan scan;
    Plans plans;
    {
        CliProgress progress(QStringLiteral("Reading"));
        const cli::CancelOnInterrupt stop(scan.cancel);
        scan.progress = &progress;
        if (scan.Open(path))
            Find(scan, plans);
        scan.progress = nullptr;
    }
    const bool whole = scan.State() == ZrLogScan::AtEnd;
    if (scan.State() == ZrLogScan::Cancelled || (!whole && plans.count == 0))
        return cli::fail_scan(path, scan);
    if (plans.count == 0)
        return cli::fail(exBadInput, QStringLiteral("%1: The log holds no mission plan").arg(path));
    ZrXmlStore store(false);
    if (const int code = Restore(path, plans, store))
        return code;
    const int code = Write(options, store, plans, target);
    return code || whole ? code : cli::fail_scan(path, scan);
}

} // namespace

void AddLogPlan(CLI::App& log, CliRun& run)
{
    const auto options = std::make_shared<CliInOut>();
    CLI::App* verb = cli::add_verb(log, run, "plan",
        "Restore the mission plan that a log holds\n"
        "\n"
        "Of several plans the last one is written. A log without one gives exit code 2.",
        "Units: positions and sizes in bytes.\n"
        "\n"
        "Examples:\n"
        "  zr log plan dive.log plan.xml");
    options->AddArguments(*verb, "File to write, as applications load plans");
    options->AddFlags(*verb);
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
