#pragma once

#include <QtGlobal>

/// \file
/// Short names of the fixed-width integers.
///
/// They are Qt's types, so that `QDataStream`, `QString::number` and the signals of Qt take them as they are
/// (`std::uint64_t` is a different type from `quint64` on 64-bit Linux).

using u8 = quint8;
using u16 = quint16;
using u32 = quint32;
using u64 = quint64;
using i8 = qint8;
using i16 = qint16;
using i32 = qint32;
using i64 = qint64;
