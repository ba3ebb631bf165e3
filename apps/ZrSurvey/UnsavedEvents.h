#pragma once

#include "ZrUtil/ZrLogEvt.h"

#include <QObject>
#include <QString>

#include <vector>

/// Events that could not be written where they belong and are in memory only, for the pages to tell of until
/// they are saved, exported or given up.
class UnsavedEvents : public QObject
{
    Q_OBJECT

public:
    struct Group
    {
        QString path; ///< of the log; empty for that of a recording that could not begin
        std::vector<ZrLogEvt> events;
        QString reason;
    };

    using QObject::QObject;

    bool IsEmpty() const { return m_groups.empty(); }

    std::size_t Count() const; ///< of all

    /// Those of the log \p path, instead of the ones told before; none when they have been saved.
    /// \param reason why they cannot be saved, a sentence
    void Set(const QString& path, std::vector<ZrLogEvt> events, const QString& reason);

    /// More of them.
    void Add(const QString& path, const std::vector<ZrLogEvt>& events, const QString& reason);

    /// What has happened: how many, of which recording, why.
    QString Text() const;

    /// Writes them as a table, and there is nothing to tell any more. False, with a sentence in \p error.
    bool Export(const QString& path, QString& error);

    void Forget();

    /// For who wants them back after `Forget`, beside those that came since.
    std::vector<Group> Groups() const { return m_groups; }

    void Restore(std::vector<Group> groups);

Q_SIGNALS:
    void Changed();

private:
    std::vector<Group>::iterator Find(const QString& path);

    std::vector<Group> m_groups;
};
