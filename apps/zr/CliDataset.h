#pragma once

#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrSurveyDataset.h"

#include <QString>

/// The dataset of a log as the verbs load it: with a progress bar, and ended by a signal.
///
/// A mission plan in the log is left where it is; `zr log plan` restores it.
struct CliDataset
{
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    bool fromIndex = false; ///< else the log was scanned

    /// Takes over the record types of the index beside \p path; without one those of the kit stay.
    void FollowIndex(const QString& path);

    /// Loads the dataset. Returns the exit code, and complains unless it is 0. A damaged log is loaded up to
    /// the damage, see `EndCode`.
    int Load(const QString& path);

    /// The exit code when there are no records, with a complaint, else 0.
    int RequireRecords() const;

    /// The exit code when all is done: complains about a log that was damaged.
    int EndCode() const;

    /// Tells of a log that was damaged, when that keeps nothing from being done.
    void WarnOfDamage() const;
};

namespace cli {

/// "16:0 (navigation)".
QString type_text(CRecType type);

} // namespace cli
