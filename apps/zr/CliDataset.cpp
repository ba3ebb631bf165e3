#include "CliDataset.h"

#include "CliExit.h"
#include "CliInput.h"
#include "CliMessages.h"
#include "CliProgress.h"
#include "CliSignals.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/review/ZrIndexStamp.h"

namespace {

QString DamageText(const QString& path, const ZrDatasetReader& reader)
{
    return QStringLiteral("%1: %2 (at position %3)").arg(path, reader.Error()).arg(reader.ErrorPos());
}

} // namespace

void CliDataset::FollowIndex(const QString& path)
{
    ZrIndexStamp::TypesOf(path, dataset.idxType, dataset.crdTypes);
}

int CliDataset::Load(const QString& path)
{
    if (const int code = cli::check_input(path))
        return code;
    CliProgress progress(QStringLiteral("Reading"));
    const cli::CancelOnInterrupt stop(reader.cancel);
    reader.progress = &progress;
    reader.restorePlan = false;
    const ZrDatasetReader::eResult result = reader.Read(path, dataset);
    reader.progress = nullptr;
    fromIndex = result == ZrDatasetReader::FromIndex;
    if (result == ZrDatasetReader::Cancelled)
        return cli::interrupt_code();
    return result == ZrDatasetReader::Unreadable ? cli::fail(exBadInput, DamageText(path, reader))
                                                 : int(exDone);
}

int CliDataset::RequireRecords() const
{
    if (!dataset.recs.empty())
        return exDone;
    return cli::fail(exBadInput,
        QStringLiteral("%1: The log holds no items of the index type %2; zr log index --index-type chooses "
                       "another")
            .arg(dataset.fileName, cli::type_text(dataset.idxType)));
}

int CliDataset::EndCode() const
{
    return reader.Complete() ? int(exDone) : cli::fail(exBadInput, DamageText(dataset.fileName, reader));
}

void CliDataset::WarnOfDamage() const
{
    if (!reader.Complete())
        cli::complain(QStringLiteral("warning: ") + DamageText(dataset.fileName, reader));
}

QString cli::type_text(CRecType type)
{
    const QString key = QStringLiteral("%1:%2").arg(type.type).arg(type.sub);
    const QString name = zr::rec_type_name(type);
    return name.isEmpty() ? key : QStringLiteral("%1 (%2)").arg(key, name);
}
