#include "ZrKit/review/ZrDatasetRecords.h"

#include "ZrUtil/ZrDataset.h"

#include <algorithm>

std::size_t ZrDatasetRecords::Count() const
{
    return m_dataset.recs.size();
}

bool ZrDatasetRecords::Read(std::size_t first, std::size_t end, std::vector<ZrLogRec>& records)
{
    const auto at = [this](std::size_t i) {
        return m_dataset.recs.begin() + static_cast<std::ptrdiff_t>(std::min(i, m_dataset.recs.size()));
    };
    records.assign(at(first), at(std::max(first, end)));
    return true;
}
