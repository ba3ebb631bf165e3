#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QList>
#include <QString>

/// One NMEA 0183 sentence taken apart: talker, formatter and fields, after its checksum was verified.
///
/// `$GPGLL,6005.071,N,02332.346,E,095559,A,D*43` has talker "GP", formatter "GLL" and seven fields.
/// A sentence without a checksum is accepted with `hasChecksum` false. Encapsulated sentences begin with '!'.
/// Proprietary sentences begin with 'P': `$PGRMZ,...` has talker "P" and formatter "GRMZ", the maker's code
/// in front. Plain values; no shared state, any thread.
struct ZR_KIT_EXPORT ZrNmeaSentence
{
    /// Longest line taken, in characters without leading and trailing white space but with its tag blocks.
    /// The standard ends a sentence at 82; multiplexers and loggers write longer ones.
    static constexpr int MaxLength = 1024;

    QByteArray talker; ///< two letters, or "P" for proprietary sentences
    QByteArray formatter; ///< usually three letters, never empty after `Parse`
    QList<QByteArray> fields; ///< between the commas, empty ones included, without the address field
    bool hasChecksum = false;
    bool encapsulated = false; ///< began with '!'

    /// The field at \p i, empty when there is none.
    QByteArray Field(int i) const;

    /// The field at \p i as a number (C locale); NaN when it is empty or no finite number.
    double Number(int i) const;

    /// Takes \p line apart (leading tag blocks, spaces and line ends are allowed; what tag blocks say is not
    /// read). False with a sentence in \p error (may be null), and \p out untouched, when it does not begin
    /// like a sentence, its checksum is wrong or malformed, it is longer than `MaxLength`, or it holds bytes
    /// that are not printable ASCII.
    static bool Parse(const QByteArray& line, ZrNmeaSentence& out, QString* error);

    /// The exclusive-or of the bytes of \p body, which is what stands between the start character and '*'.
    static unsigned char Checksum(const QByteArray& body);
};
