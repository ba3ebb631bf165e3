#pragma once

#include "ZrKit/import/ZrImporter.h"
#include "ZrKit/records/ZrKitTypes.h"

#include <cstddef>
#include <vector>

/// An importer whose lines or packets give several items each: they are put in a queue that `Next` empties.
///
/// Base of the importers of the kit; not part of the interface for applications.
class ZrImportQueue : public ZrImporter
{
public:
    bool Next(ZrImportItem& item) final;

protected:
    /// Kinds of things left out that a report tells apart; a damaged file must not fill the memory with more.
    static constexpr int MaxKinds = 256;

    /// Looks at the next line or packet and queues its items, perhaps none; false at the end of the file.
    virtual bool ReadMore() = 0;

    /// Queues one record of the kit.
    template <class Record> void Push(const Record& record, double time, u16 sub = 0)
    {
        PushPayload(zr::rec_type(Record::RecType, sub), Record::Format, time, record.Encode());
    }

    /// Queues one item with the source of the file.
    void PushPayload(CRecType type, u16 format, double time, const QByteArray& payload);

    /// Counts a quirk of the data that was handled; \p text is a sentence.
    void Note(const QString& text);

    /// Counts something sound that is not decoded.
    void Ignore(const QString& kind);

    u16 m_source = 0; ///< source identifier of all items

private:
    std::vector<ZrImportItem> m_ready; ///< items of the line or packet looked at last
    std::size_t m_taken = 0; ///< how many of `m_ready` were handed out
};
