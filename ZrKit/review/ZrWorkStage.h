#pragma once

#include "ZrUtil/IZrProgress.h"

#include <atomic>

/// Hands on the percentages of a part of some work as those of the whole, and the wish to end it.
///
/// \code
/// ZrWorkStage stage(progress, cancel, reader.cancel, 0, 30); // the first 30 percent
/// reader.progress = &stage;
/// reader.Read(path, dataset);
/// \endcode
///
/// Made, used and gone in the thread that works; what it is given must stay.
class ZrWorkStage final : public IZrProgress
{
public:
    /// \p all, which may be null, is told from \p from up to \p to percent. When \p cancel is set, \p
    /// partCancel is set with the next percentage.
    ZrWorkStage(IZrProgress* all, std::atomic<bool>& cancel, std::atomic<bool>& partCancel, int from, int to)
        : m_all(all)
        , m_cancel(cancel)
        , m_partCancel(partCancel)
        , m_from(from)
        , m_to(to)
    {
        UpdateProgress(0);
    }

    void UpdateProgress(int percent) override
    {
        m_percent = percent;
        if (m_cancel)
            m_partCancel = true;
        if (m_all)
            m_all->UpdateProgress(m_from + (m_to - m_from) * percent / 100);
    }

    int GetProgress() override { return m_percent; }

private:
    IZrProgress* m_all;
    std::atomic<bool>& m_cancel;
    std::atomic<bool>& m_partCancel;
    int m_from;
    int m_to;
    int m_percent = 0;
};
