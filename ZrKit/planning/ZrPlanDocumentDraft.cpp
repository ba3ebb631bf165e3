// What `ZrPlanDocument` keeps on disk without being asked to.

#include "ZrKit/planning/ZrPlanDocument.h"
#include "ZrKit/planning/ZrPlanReader.h"

#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <utility>

bool ZrPlanDocument::HasDraft() const
{
    return !m_draft.Path().isEmpty() && m_draft.IsThere();
}

bool ZrPlanDocument::RestoreDraft()
{
    m_error.clear();
    if (!HasDraft())
        return Fail(tr("There is no draft"));
    m_draft.Finish();
    // It may be that of this plan as well.
    const bool wasForeign = std::exchange(m_isForeign, true);
    ZrPlanReader reader;
    reader.LoadDraft(m_draft.Path());
    const bool isTaken = Take(reader);
    m_isForeign = m_isForeign && wasForeign;
    return isTaken;
}

/// Before the next edit would replace it.
bool ZrPlanDocument::PutAside()
{
    const QString aside = m_draft.Path() + QLatin1String(".damaged");
    m_asidePath = aside;
    for (int i = 2; QFileInfo::exists(m_asidePath); ++i)
        m_asidePath = aside + QLatin1Char('-') + QString::number(i);
    m_isStuck = !QFile::rename(m_draft.Path(), m_asidePath);
    if (m_isStuck)
        m_asidePath.clear();
    return !m_isStuck;
}

void ZrPlanDocument::DiscardDraft()
{
    m_isForeign = false;
    m_foreignPath.clear();
    RemoveDraft();
}

/// Whether the plan could not be had again without it. One that has no file is nowhere else, whatever its
/// history says.
bool ZrPlanDocument::NeedsDraft() const
{
    return m_path.isEmpty() ? !IsEmpty() : IsDirty();
}

/// After an edit. The draft of a run before is no business of a plan that needs none.
void ZrPlanDocument::MatchDraft()
{
    if (NeedsDraft())
        Drafted();
    else if (!m_isForeign)
        RemoveDraft();
}

/// The draft is to be written, at once where it was not just now.
void ZrPlanDocument::Drafted()
{
    if (!m_isDraftDue)
        m_draftWait.start();
    m_isDraftDue = true;
    if (!m_draftTimer->isActive() || m_draftWait.elapsed() >= DraftMostMilliseconds)
        WriteDraft();
    m_draftTimer->start(DraftMilliseconds);
}

/// The next edit has it written at once.
void ZrPlanDocument::RemoveDraft()
{
    m_isDraftDue = false;
    m_draftTimer->stop();
    m_written.reset();
    SecureForeign();
    if (HasDraft() && !m_isStuck)
        m_draft.Remove();
}

void ZrPlanDocument::FlushDraft()
{
    if (m_isDraftDue)
        WriteDraft();
    m_draft.Finish();
}

void ZrPlanDocument::WriteDraft()
{
    m_isDraftDue = false;
    m_written.reset();
    if (m_draft.Path().isEmpty())
        return;
    SecureForeign();
    if (m_isStuck) {
        OnDraftDone(tr("%1 is damaged, and cannot be set aside").arg(m_draft.Path()));
        return;
    }
    const auto written = std::make_shared<QByteArray>();
    m_written = written;
    const auto content = [written, state = std::make_shared<const ZrPlanState>(State())] {
        *written = state->ToDraft();
        return *written;
    };
    // In one place or the other it is at any moment.
    ZrFileKeeper::Then then;
    if (m_kept && !m_returned.isEmpty())
        then = [folder = m_kept->Folder(), path = m_returned] { ZrPlanDrafts(folder).Remove(path); };
    m_draft.Write(content, then);
}

void ZrPlanDocument::OnDraftDone(const QString& error)
{
    const bool isWritten = error.isEmpty();
    if (!isWritten && !m_hasDraftFailed)
        Q_EMIT DraftFailed(error);
    m_hasDraftFailed = !isWritten;
}

/// A draft that nobody has looked at is kept before it is replaced.
void ZrPlanDocument::SecureForeign()
{
    if (!std::exchange(m_isForeign, false) || !m_kept || !HasDraft())
        return;
    QFile file(m_draft.Path());
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    file.close();
    m_foreignPath = m_kept->Keep(bytes);
    if (m_foreignPath.isEmpty() && PutAside())
        m_foreignPath = m_asidePath;
}

/// Before another plan takes the place of this one. False, with the reason in `Error`, when what is not saved
/// cannot be kept.
bool ZrPlanDocument::KeepUnsaved(const QString& spared)
{
    m_keptPath.clear();
    SecureForeign();
    if (!m_kept || IsEmpty() || !IsDirty())
        return true;
    // What was made for the draft need not be made once more; nor does the thread of the draft remove now
    // what was kept before.
    FlushDraft();
    m_returned.clear();
    const bool isMade = m_written && !m_written->isEmpty();
    m_keptPath = m_kept->Keep(isMade ? *m_written : State().ToDraft(), spared);
    return !m_keptPath.isEmpty()
        || Fail(tr("This plan is not saved, and cannot be put away. %1").arg(m_kept->Error()));
}

bool ZrPlanDocument::RestoreKept(const QString& path)
{
    m_error.clear();
    if (!m_kept)
        return Fail(tr("%1: no plans are kept").arg(path));
    ZrPlanReader reader;
    reader.LoadDraft(path);
    if (!Take(reader))
        return false;
    FlushDraft();
    return true;
}
