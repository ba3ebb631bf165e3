#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDateTime>
#include <QString>

#include <vector>

/// A few plans that were not saved when others took their places, kept in a folder: the five latest.
///
/// \code
/// ZrPlanDrafts drafts(folder);
/// drafts.Keep(plan.State().ToDraft());
/// for (const ZrPlanDrafts::Entry& entry : drafts.List())
///     show(entry.name, entry.kept);
/// \endcode
///
/// Each is a file of its own, written in one step. A plan that is kept again as it was takes the place of its
/// older copy. Any thread, one at a time.
class ZR_KIT_EXPORT ZrPlanDrafts
{
    Q_DECLARE_TR_FUNCTIONS(ZrPlanDrafts)

public:
    static constexpr int Most = 5;

    struct Entry
    {
        QString path;
        QString name; ///< of its file; "New plan" for one that was never saved
        QDateTime kept; ///< UTC; invalid where the file does not say
        int waypoints = 0;
        QString content; ///< in words: "12 waypoints, 2 areas"
    };

    explicit ZrPlanDrafts(const QString& folder); ///< made when the first plan is kept

    QString Folder() const { return m_folder; }

    /// Keeps what `ZrPlanState::ToDraft` made, and removes the oldest ones above `Most`, but not \p spared.
    /// The path of its file, which no earlier one of this object had; empty, with the reason in `Error`, when
    /// it cannot be kept.
    QString Keep(const QByteArray& state, const QString& spared = QString());

    bool IsEmpty() const; ///< of plans that `Keep` has kept; tells without reading them whole

    std::vector<Entry> List() const; ///< the latest first; without files that hold no plan

    /// What `Keep` was given; empty, with the reason in `Error`, when it cannot be read.
    QByteArray Read(const QString& path);

    bool Remove(const QString& path); ///< false for one that is not in the folder, or cannot be removed

    QString Error() const { return m_error; }

    /// The name of a plan that came from the file \p path.
    static QString NameOf(const QString& path);

private:
    std::vector<int> Numbers() const;
    QString PathOf(int number) const;

    QString m_folder;
    int m_last = 0; ///< the highest number that was given to a file
    QString m_error;
};
