#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QString>

#include <cstddef>
#include <memory>
#include <vector>

class ZrBottomLine;

/// Undo and redo for a bottom line.
///
/// \code
/// ZrBottomHistory history(line);
/// history.Draw(before, from, ping, to); // on every step of a stroke
/// history.CloseStroke();                // at its end
/// undoAction->setText("Undo " + history.UndoName()); // "Draw bottom line"
/// history.Undo();
/// \endcode
///
/// A step keeps what was set by hand in the pings it touches; a detection keeps the whole line before and
/// after it. Steps that change nothing are none.
///
/// The line is borrowed, must outlive the history and is changed only through it, or `Reset` is called. One
/// thread at a time.
class ZR_KIT_EXPORT ZrBottomHistory
{
public:
    /// When one of them is exceeded the oldest steps are forgotten; the last one always remains.
    struct Limits
    {
        int steps = 200;
        i64 bytes = i64{128} * 1024 * 1024; ///< of all steps; estimated
    };

    explicit ZrBottomHistory(ZrBottomLine& line);
    ZrBottomHistory(ZrBottomLine& line, Limits limits);
    ~ZrBottomHistory();
    ZrBottomHistory(const ZrBottomHistory&) = delete;
    ZrBottomHistory& operator=(const ZrBottomHistory&) = delete;

    /// \name State
    /// @{
    bool CanUndo() const { return m_now > 0; }

    bool CanRedo() const;
    QString UndoName() const; ///< of the step that `Undo` takes back; empty if there is none
    QString RedoName() const;

    int Steps() const; ///< that can be undone and redone together
    i64 Bytes() const; ///< as counted for the limit

    /// Whether the line is in the state of the last `SetClean`, or of the beginning. False for ever when
    /// that state was forgotten or can no longer be reached.
    bool IsClean() const { return m_clean == static_cast<int>(m_now); }

    /// @}

    /// \name Edits
    /// As those of `ZrBottomLine`; false when nothing changed.
    /// @{

    /// Several in a row are one step until `CloseStroke`, another edit, undo, redo or `SetClean`.
    bool Draw(std::size_t first, double from, std::size_t last, double to);

    void CloseStroke() { m_stroke = false; }

    bool Clear(std::size_t first, std::size_t last);
    bool SetFound(std::vector<double> altitudes);

    /// Takes over what a detection found from ping \p first on, in place of what was found and set by hand
    /// there; behind the end of the line is ignored.
    bool Replace(std::size_t first, zr::span<const double> altitudes);
    /// @}

    /// \name Operations
    /// @{
    bool Undo(); ///< false when there is nothing to undo
    bool Redo();
    void SetClean(); ///< the line was saved
    void Reset(); ///< another line was loaded: forgets all steps; the state is clean
    /// @}

private:
    struct Step;

    bool SetLine(std::vector<double> found, std::size_t first, std::size_t count);
    bool PushEdits(const QString& name, std::size_t first, std::vector<double> before);
    void Push(Step step);
    void Apply(const Step& step, bool forward);
    std::vector<double> Edits(std::size_t first, std::size_t count) const;
    void Forget();

    ZrBottomLine& m_line;
    Limits m_limits;
    std::vector<Step> m_steps;
    std::size_t m_now = 0; ///< steps that the line has
    int m_clean = 0; ///< `m_now` of the clean state, −1 for none
    bool m_stroke = false; ///< the next `Draw` is still part of the last step
};
