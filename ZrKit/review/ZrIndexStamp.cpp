#include "ZrKit/review/ZrIndexStamp.h"

#include "ZrKit/files/ZrReplaceFile.h"
#include "ZrKit/review/ZrDatasetRecords.h"
#include "ZrKit/review/ZrIndexHeader.h"
#include "ZrUtil/ZrDataset.h"
#include "ZrUtil/ZrEndian.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaClassInfo>

#include <algorithm>

namespace {

constexpr int stampVersion = 1;
constexpr qint64 digestedBytes = 64 * 1024; ///< at each end of the log
constexpr std::size_t digestedRecords = 64;

void AddNumber(QCryptographicHash& hash, u64 number)
{
    std::array<u8, sizeof number> bytes;
    zr::store_le<u64>(bytes.data(), number);
    hash.addData(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()));
}

/// Adds \p count bytes from \p pos on; false when the file does not hold them.
bool AddPart(QCryptographicHash& hash, QFile& file, qint64 pos, qint64 count)
{
    if (!file.seek(pos))
        return false;
    const QByteArray bytes = file.read(count);
    hash.addData(bytes);
    return bytes.size() == count;
}

QString Text(const QJsonObject& object, const char* key)
{
    return object.value(QLatin1String(key)).toString();
}

/// A whole number that was stored as a double; 0 when it is none.
u64 Count(const QJsonObject& object, const char* key)
{
    constexpr double limit = 9007199254740992.0; // 2^53, up to which doubles are exact
    const double value = object.value(QLatin1String(key)).toDouble(0.0);
    return value >= 0.0 && value < limit ? static_cast<u64>(value) : 0;
}

} // namespace

QString ZrIndexStamp::IndexPathOf(const QString& logPath)
{
    return logPath + QLatin1String(".zri");
}

QString ZrIndexStamp::PathOf(const QString& logPath)
{
    return logPath + QLatin1String(".zri.json");
}

QByteArray ZrIndexStamp::DigestOfLog(const QString& logPath, u64 size)
{
    QFile file(logPath);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)
        || size > static_cast<u64>(std::max<qint64>(file.size(), 0)))
        return QByteArray();
    QCryptographicHash hash(QCryptographicHash::Sha1);
    AddNumber(hash, size);
    const qint64 end = static_cast<qint64>(size);
    const qint64 part = std::min(end, digestedBytes);
    if (!AddPart(hash, file, 0, part) || !AddPart(hash, file, end - part, part))
        return QByteArray();
    return hash.result();
}

QByteArray ZrIndexStamp::DigestOfTable(const ZrDataset& dataset)
{
    ZrDatasetRecords records(dataset);
    return DigestOfTable(records);
}

QByteArray ZrIndexStamp::DigestOfTable(ZrRecordSource& records)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    const std::size_t count = records.Count();
    AddNumber(hash, count);
    const std::size_t samples = std::min(count, digestedRecords);
    std::vector<ZrLogRec> record;
    for (std::size_t i = 0; i < samples; ++i) {
        const std::size_t at = samples < 2 ? 0 : i * (count - 1) / (samples - 1);
        if (!records.Read(at, at + 1, record))
            return QByteArray();
        hash.addData(reinterpret_cast<const char*>(record.data()), sizeof(ZrLogRec));
    }
    return hash.result();
}

QString ZrIndexStamp::FillerOf(const ZrDataset& dataset)
{
    const QMetaObject* const meta = dataset.metaObject();
    const int info = meta->indexOfClassInfo("filler");
    const QString number
        = info < 0 ? QString() : QLatin1Char(' ') + QLatin1String(meta->classInfo(info).value());
    return QLatin1String(meta->className()) + number;
}

bool ZrIndexStamp::Read(const QString& logPath)
{
    constexpr qint64 largest = 64 * 1024; ///< far more than any stamp has
    QFile file(PathOf(logPath));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QJsonObject object = QJsonDocument::fromJson(file.read(largest)).object();
    if (object.value(QLatin1String("version")).toInt() != stampVersion)
        return false;
    logSize = Count(object, "log_size");
    logDigest = QByteArray::fromHex(Text(object, "log_digest").toLatin1());
    records = static_cast<u32>(std::min<u64>(Count(object, "records"), 0xFFFFFFFFu));
    tableDigest = QByteArray::fromHex(Text(object, "table_digest").toLatin1());
    filler = Text(object, "filler");
    logEvents = object.value(QLatin1String("log_events")).toInt();
    complete = object.value(QLatin1String("complete")).toBool();
    error = Text(object, "error");
    errorPos = Count(object, "error_pos");
    return !logDigest.isEmpty() && !tableDigest.isEmpty();
}

bool ZrIndexStamp::Write(const QString& logPath, QString* why) const
{
    const QJsonObject object{
        {QStringLiteral("version"), stampVersion},
        {QStringLiteral("log_size"), static_cast<double>(logSize)},
        {QStringLiteral("log_digest"), QString::fromLatin1(logDigest.toHex())},
        {QStringLiteral("records"), static_cast<double>(records)},
        {QStringLiteral("table_digest"), QString::fromLatin1(tableDigest.toHex())},
        {QStringLiteral("filler"), filler},
        {QStringLiteral("log_events"), logEvents},
        {QStringLiteral("complete"), complete},
        {QStringLiteral("error"), complete ? QJsonValue() : QJsonValue(error)},
        {QStringLiteral("error_pos"), complete ? QJsonValue() : QJsonValue(static_cast<double>(errorPos))},
    };
    return zr::replace_file(PathOf(logPath), QJsonDocument(object).toJson(), why);
}

bool ZrIndexStamp::IsOf(const QString& logPath) const
{
    return QFileInfo(logPath).size() == static_cast<qint64>(logSize)
        && DigestOfLog(logPath, logSize) == logDigest;
}

bool ZrIndexStamp::TypesOf(const QString& logPath, CRecType& idxType, std::array<CRecType, 8>& crdTypes)
{
    QFile file(IndexPathOf(logPath));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.read(static_cast<qint64>(ZrIndexHeader::Size));
    ZrIndexHeader header;
    if (!header.Decode(zr::bytes_of(bytes)))
        return false;
    idxType = header.idxType;
    crdTypes = header.crdTypes;
    return true;
}
