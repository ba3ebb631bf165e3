#pragma once

// A log and its records in memory, for the tests of exports of a part.

#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrExportRange.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrSurveyLog.h"

namespace export_range {

/// The items of a log after its file header.
inline QByteArray Body(const QString& path)
{
    return ReadWhole(path).mid(48);
}

class LoadedLog : protected survey::LogFolder
{
protected:
    void Load(const QByteArray& bytes)
    {
        QVERIFY(WriteWhole(m_log, bytes));
        m_reader.writeIndex = false;
        m_reader.restorePlan = false;
        QCOMPARE(m_reader.Read(m_log, m_dataset), ZrDatasetReader::Built);
    }

    /// What the methods have in common.
    static ZrExportRange::eResult Write(ZrExportRange& part, int kind, const QString& out)
    {
        switch (kind) {
        case 0:
            return part.WriteLog(out);
        case 1:
            return part.WriteTrack(out);
        case 2:
            return part.WriteRecords(out);
        default:
            return part.WriteEvents(out);
        }
    }

    QString m_out; ///< a name beside it
    ZrSurveyDataset m_dataset;
    ZrDatasetReader m_reader;
};

} // namespace export_range
