#include "ZrKit/import/ZrImportSession.h"

#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrUtil/IZrProgress.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <system_error>
#include <utility>
#include <vector>

namespace {

/// One importer per input; null for an empty file.
using Importers = std::vector<std::unique_ptr<ZrImporter>>;

bool isSameFile(const QString& a, const QString& b)
{
    std::error_code error;
    const auto native
        = [](const QString& path) { return std::filesystem::path(QFile::encodeName(path).toStdString()); };
    return std::filesystem::equivalent(native(a), native(b), error);
}

/// Reports how much of all files together was read, whenever the percentage changes.
class Percentage
{
public:
    Percentage(IZrProgress* progress, u64 total)
        : m_progress(progress)
        , m_total(total)
    {
    }

    void Advance(u64 bytes)
    {
        m_done += bytes;
        // A file that still grows holds more than its size said.
        Show(m_total == 0 ? 100 : static_cast<int>(std::min<u64>(100, m_done * 100 / m_total)));
    }

    void Show(int percent)
    {
        if (m_progress && percent != m_shown)
            m_progress->UpdateProgress(percent);
        m_shown = percent;
    }

private:
    IZrProgress* m_progress;
    u64 m_total;
    u64 m_done = 0;
    int m_shown = -1;
};

/// Hands out the items of several files in the order of their times.
class Merger
{
public:
    Merger(const Importers& importers, Percentage& percentage)
        : m_importers(importers)
        , m_percentage(percentage)
        , m_heads(importers.size())
    {
        for (std::size_t i = 0; i < m_importers.size(); ++i) {
            if (!m_importers[i])
                continue;
            m_percentage.Advance(m_importers[i]->Report().bytes);
            Refill(i);
        }
    }

    /// The item with the earliest time, of equal ones that of the file named first; false when all are read.
    bool Next(ZrImportItem& item)
    {
        if (m_order.empty())
            return false;
        std::pop_heap(m_order.begin(), m_order.end(), std::greater<>());
        const std::size_t first = m_order.back().second;
        m_order.pop_back();
        item = std::move(m_heads[first]);
        Refill(first);
        return true;
    }

private:
    void Refill(std::size_t i)
    {
        ZrImporter& importer = *m_importers[i];
        const u64 before = importer.Report().bytes;
        if (importer.Next(m_heads[i])) {
            m_order.emplace_back(m_heads[i].time, i);
            std::push_heap(m_order.begin(), m_order.end(), std::greater<>());
        }
        m_percentage.Advance(importer.Report().bytes - before);
    }

    const Importers& m_importers;
    Percentage& m_percentage;
    std::vector<ZrImportItem> m_heads; ///< the item that each file offers next
    std::vector<std::pair<double, std::size_t>> m_order; ///< heap of time and file, the earliest on top
};

bool write(ZrLogWriter& log, const ZrImportItem& item, bool compressPings)
{
    const bool compress = compressPings && item.type.type == static_cast<u16>(krtPing);
    return log.Write(item.type, item.source, item.format, item.time, compress, zr::bytes_of(item.payload));
}

} // namespace

ZrImportSession::eResult ZrImportSession::Run(
    const QStringList& inputs, const QString& output, IZrProgress* progress)
{
    m_reports.clear();
    m_error.clear();
    m_items = 0;
    m_bytes = 0;
    for (const QString& input : inputs) {
        m_reports.append(ZrImportReport());
        m_reports.last().path = input;
    }
    if (inputs.isEmpty())
        return Fail(BadInput, QCoreApplication::translate("ZrImportSession", "no file to import is named"));
    for (const QString& input : inputs) {
        if (isSameFile(input, output))
            return Fail(BadOutput,
                QCoreApplication::translate("ZrImportSession", "%1: is one of the files to import")
                    .arg(output));
    }
    Importers importers;
    if (!OpenInputs(inputs, importers))
        return BadInput;
    const eResult result = Merge(importers, output, progress);
    for (std::size_t i = 0; i < importers.size(); ++i) {
        if (importers[i])
            m_reports[static_cast<int>(i)] = importers[i]->Report();
    }
    return result;
}

bool ZrImportSession::OpenInputs(
    const QStringList& inputs, std::vector<std::unique_ptr<ZrImporter>>& importers)
{
    for (int i = 0; i < inputs.size(); ++i) {
        const QFileInfo info(inputs.at(i));
        if (info.isFile() && info.size() == 0) {
            // A recorder that was switched off early leaves such files; they do not spoil the others.
            ++m_reports[i].notes[QCoreApplication::translate("ZrImportSession", "the file is empty")];
            importers.push_back(nullptr);
            continue;
        }
        ZrImportOptions options;
        options.date = date;
        options.source = static_cast<u16>(i + 1);
        importers.push_back(ZrImporter::Create(inputs.at(i), format, options, &m_error));
        if (!importers.back())
            return false;
    }
    return true;
}

ZrImportSession::eResult ZrImportSession::Merge(
    const std::vector<std::unique_ptr<ZrImporter>>& importers, const QString& output, IZrProgress* progress)
{
    u64 total = 0;
    for (const std::unique_ptr<ZrImporter>& importer : importers)
        total += importer ? importer->FileSize() : 0;
    Percentage percentage(progress, total);
    Merger merger(importers, percentage);
    ZrLogWriter log;
    ZrImportItem item;
    bool any = false;
    while (!cancel && merger.Next(item)) {
        if (!any && !log.Open(output, item.time))
            return Fail(BadOutput, log.Error());
        any = true;
        if (!write(log, item, compress))
            return Fail(BadOutput, log.Error());
    }
    if (cancel)
        return Fail(Cancelled, QCoreApplication::translate("ZrImportSession", "the import was cancelled"));
    if (!any)
        return Fail(BadInput,
            QCoreApplication::translate("ZrImportSession", "%1: nothing could be imported").arg(Paths()));
    if (!log.Commit())
        return Fail(BadOutput, log.Error());
    percentage.Show(100);
    m_items = log.Items();
    m_bytes = log.Bytes();
    return Done;
}

QString ZrImportSession::Paths() const
{
    QStringList paths;
    for (const ZrImportReport& report : m_reports)
        paths.append(report.path);
    return paths.join(QStringLiteral(", "));
}

ZrImportSession::eResult ZrImportSession::Fail(eResult result, const QString& error)
{
    m_error = error;
    return result;
}
