#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrLogItem.h"
#include "ZrUtil/ZrSpan.h"

#include <QByteArray>
#include <QString>

namespace zr {

/// The payload of an item as it was given to the logger: \p stored, the bytes behind the header \p item,
/// decompressed when the item says so.
///
/// The size that a compressed payload announces is believed only when it agrees with the header and lies
/// within what the compression can reach (1032 to 1), so that a few damaged bytes cannot ask for gigabytes.
/// False, with a sentence in \p error and \p data untouched, when the payload does not decompress to exactly
/// that size, or is 2 GiB or more. Any thread.
ZR_KIT_EXPORT bool unpack_payload(
    const ZrLogItem& item, zr::span<u8> stored, QByteArray* data, QString* error);

/// The first \p count bytes of that payload, fewer when it is shorter, from \p start, the first bytes behind
/// the header: all, or some hundred bytes more than \p count. Only so much is decompressed, which makes it
/// cheap to look at the first fields of large payloads; damage behind them is not noticed.
///
/// False, with a sentence in \p error and \p data untouched, when the start is damaged or too short, or the
/// announced size is not believed. Any thread.
ZR_KIT_EXPORT bool unpack_start(
    const ZrLogItem& item, zr::span<u8> start, u32 count, QByteArray* data, QString* error);

} // namespace zr
