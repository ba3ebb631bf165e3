#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrRecordSource.h"

class ZrDataset;

/// The records that a dataset holds in memory. It is only read, and must stay and not change meanwhile.
class ZR_KIT_EXPORT ZrDatasetRecords final : public ZrRecordSource
{
public:
    explicit ZrDatasetRecords(const ZrDataset& dataset)
        : m_dataset(dataset)
    {
    }

    std::size_t Count() const override;

    /// Never false.
    bool Read(std::size_t first, std::size_t end, std::vector<ZrLogRec>& records) override;

private:
    const ZrDataset& m_dataset;
};
