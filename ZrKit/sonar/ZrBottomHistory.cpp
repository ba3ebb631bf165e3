#include "ZrKit/sonar/ZrBottomHistory.h"

#include "ZrKit/sonar/ZrBottomLine.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

bool IsSame(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool AreSame(const std::vector<double>& a, const std::vector<double>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), IsSame);
}

i64 BytesOf(const ZrBottomLine& line)
{
    return static_cast<i64>(2 * sizeof(double) * line.Count());
}

} // namespace

/// What a step changed: either hand-made values of a stretch, or the whole line.
struct ZrBottomHistory::Step
{
    QString name;
    std::size_t first = 0;
    std::vector<double> before; ///< set by hand from `first` on
    std::vector<double> after;
    std::shared_ptr<const ZrBottomLine> lineBefore; ///< null for a stretch
    std::shared_ptr<const ZrBottomLine> lineAfter;

    i64 Bytes() const
    {
        i64 bytes = static_cast<i64>(sizeof(Step) + sizeof(double) * (before.size() + after.size()));
        if (lineBefore)
            bytes += BytesOf(*lineBefore) + BytesOf(*lineAfter);
        return bytes;
    }
};

ZrBottomHistory::ZrBottomHistory(ZrBottomLine& line)
    : ZrBottomHistory(line, Limits())
{
}

ZrBottomHistory::ZrBottomHistory(ZrBottomLine& line, Limits limits)
    : m_line(line)
    , m_limits(limits)
{
}

ZrBottomHistory::~ZrBottomHistory() = default;

bool ZrBottomHistory::CanRedo() const
{
    return m_now < m_steps.size();
}

QString ZrBottomHistory::UndoName() const
{
    return CanUndo() ? m_steps[m_now - 1].name : QString();
}

QString ZrBottomHistory::RedoName() const
{
    return CanRedo() ? m_steps[m_now].name : QString();
}

int ZrBottomHistory::Steps() const
{
    return static_cast<int>(m_steps.size());
}

i64 ZrBottomHistory::Bytes() const
{
    i64 bytes = 0;
    for (const Step& step : m_steps)
        bytes += step.Bytes();
    return bytes;
}

/// What was set by hand in \p count pings from \p first on, fewer at the end of the line.
std::vector<double> ZrBottomHistory::Edits(std::size_t first, std::size_t count) const
{
    const std::size_t from = std::min(first, m_line.Count());
    const std::size_t end = from + std::min(count, m_line.Count() - from);
    std::vector<double> edits;
    edits.reserve(end - from);
    for (std::size_t i = from; i < end; ++i)
        edits.push_back(m_line.EditedAltitude(i));
    return edits;
}

bool ZrBottomHistory::Draw(std::size_t first, double from, std::size_t last, double to)
{
    std::size_t begin = std::min(first, last);
    std::size_t end = std::min(std::max(first, last), m_line.Count() - 1) + 1;
    if (m_line.Count() == 0 || begin >= m_line.Count())
        return false;
    const bool goesOn = m_stroke;
    if (goesOn) {
        const Step& stroke = m_steps[m_now - 1];
        begin = std::min(begin, stroke.first);
        end = std::max(end, stroke.first + stroke.before.size());
    }
    std::vector<double> before = Edits(begin, end - begin);
    const std::vector<double> now = before;
    if (!m_line.Draw(first, from, last, to) || AreSame(now, Edits(begin, end - begin)))
        return false;
    if (goesOn) {
        // The step is made anew, over all that the stroke has touched; it is the last one, since every other
        // edit ends the stroke.
        const Step& stroke = m_steps.back();
        std::copy(stroke.before.begin(), stroke.before.end(),
            before.begin() + static_cast<std::ptrdiff_t>(stroke.first - begin));
        m_steps.pop_back();
        --m_now;
    }
    m_stroke = PushEdits(
        QCoreApplication::translate("ZrBottomHistory", "Draw bottom line"), begin, std::move(before));
    return true;
}

bool ZrBottomHistory::Clear(std::size_t first, std::size_t last)
{
    m_stroke = false;
    const std::size_t begin = std::min(first, last);
    const std::size_t end = std::min(std::max(first, last), m_line.Count()); // no sum: it may be the largest
    std::vector<double> before = Edits(begin, end < begin ? 0 : end - begin + 1);
    m_line.Clear(first, last);
    return PushEdits(
        QCoreApplication::translate("ZrBottomHistory", "Clear bottom line"), begin, std::move(before));
}

bool ZrBottomHistory::SetFound(std::vector<double> altitudes)
{
    return SetLine(std::move(altitudes), 0, 0);
}

bool ZrBottomHistory::Replace(std::size_t first, zr::span<const double> altitudes)
{
    std::vector<double> found = m_line.Found();
    const std::size_t from = std::min(first, found.size());
    const std::size_t count = std::min(altitudes.size(), found.size() - from);
    std::copy_n(altitudes.begin(), count, found.begin() + static_cast<std::ptrdiff_t>(from));
    return SetLine(std::move(found), from, count);
}

/// Takes what was found, and nothing by hand in \p count pings from \p first on.
bool ZrBottomHistory::SetLine(std::vector<double> found, std::size_t first, std::size_t count)
{
    m_stroke = false;
    auto before = std::make_shared<const ZrBottomLine>(m_line);
    m_line.SetFound(std::move(found));
    if (count > 0)
        m_line.Clear(first, first + count - 1);
    if (AreSame(before->Found(), m_line.Found()) && AreSame(before->Edited(), m_line.Edited()))
        return false;
    Step step;
    step.name = QCoreApplication::translate("ZrBottomHistory", "Detect bottom line");
    step.lineBefore = std::move(before);
    step.lineAfter = std::make_shared<const ZrBottomLine>(m_line);
    Push(std::move(step));
    return true;
}

/// Makes a step of what differs from \p before; false if nothing does.
bool ZrBottomHistory::PushEdits(const QString& name, std::size_t first, std::vector<double> before)
{
    Step step;
    step.name = name;
    step.first = first;
    step.after = Edits(first, before.size());
    step.before = std::move(before);
    if (AreSame(step.before, step.after))
        return false;
    Push(std::move(step));
    return true;
}

void ZrBottomHistory::Push(Step step)
{
    m_steps.erase(m_steps.begin() + static_cast<std::ptrdiff_t>(m_now), m_steps.end());
    if (m_clean > static_cast<int>(m_now))
        m_clean = -1;
    m_steps.push_back(std::move(step));
    ++m_now;
    Forget();
}

/// Forgets the oldest steps until the limits hold.
void ZrBottomHistory::Forget()
{
    i64 bytes = Bytes();
    std::size_t gone = 0;
    while (m_steps.size() - gone > 1
        && (static_cast<i64>(m_steps.size() - gone) > m_limits.steps || bytes > m_limits.bytes))
        bytes -= m_steps[gone++].Bytes();
    m_steps.erase(m_steps.begin(), m_steps.begin() + static_cast<std::ptrdiff_t>(gone));
    m_now -= gone;
    m_clean = std::max(m_clean - static_cast<int>(gone), -1);
}

void ZrBottomHistory::Apply(const Step& step, bool forward)
{
    if (step.lineBefore)
        m_line = forward ? *step.lineAfter : *step.lineBefore;
    else
        m_line.SetEdited(step.first, forward ? step.after : step.before);
}

bool ZrBottomHistory::Undo()
{
    m_stroke = false;
    if (!CanUndo())
        return false;
    Apply(m_steps[--m_now], false);
    return true;
}

bool ZrBottomHistory::Redo()
{
    m_stroke = false;
    if (!CanRedo())
        return false;
    Apply(m_steps[m_now++], true);
    return true;
}

void ZrBottomHistory::SetClean()
{
    m_stroke = false;
    m_clean = static_cast<int>(m_now);
}

void ZrBottomHistory::Reset()
{
    m_stroke = false;
    m_steps.clear();
    m_now = 0;
    m_clean = 0;
}
