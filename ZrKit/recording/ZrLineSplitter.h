#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>
#include <QByteArrayList>

/// Cuts a stream of bytes into lines, whatever pieces it arrives in.
///
/// A line ends at LF, CR or both; the ends are not part of it and empty lines are left out. A line longer
/// than `MaxLine` is dropped whole and counted, so that a stream without line ends cannot fill the memory.
class ZR_KIT_EXPORT ZrLineSplitter
{
public:
    static constexpr int MaxLine = 4096; ///< bytes

    /// The lines that \p bytes complete, in order.
    QByteArrayList Feed(const QByteArray& bytes);

    /// What stands at the end of the stream without a line end; empty when there is nothing.
    QByteArray Rest();

    u64 Dropped() const { return m_dropped; } ///< lines that were too long

private:
    void Add(char c);

    QByteArray m_line;
    bool m_tooLong = false;
    u64 m_dropped = 0;
};
