#pragma once

#include <QByteArray>

/// Finds places in files of text, for error messages: neither Qt's parsers nor the store tell where all
/// values stood. Lines count from 1. Inside the kit only.
class ZrTextLines
{
public:
    /// The line in which the byte at \p offset stands.
    static int OfOffset(const QByteArray& text, int offset);

    /// The first line with bytes that are no UTF-8; 0 when there is none.
    static int OfBadUtf8(const QByteArray& text);

    /// The line in which the element \p index, from 0, of the array \p member of the top-level object begins;
    /// 0 when there is none. \p json must be valid.
    static int OfElement(const QByteArray& json, const char* member, int index);
};
