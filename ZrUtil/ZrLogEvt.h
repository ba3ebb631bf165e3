#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrLstMgd.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>
#include <QString>
#include <QUuid>

class QDataStream;

/// Where an event comes from. Applications add their own numbers by `static_cast<eEvtSrc>(n)`; any 32-bit
/// value is stored and read back.
enum eEvtSrc : int
{
    esUnknown = 0,
    esSystem = 1, ///< the application itself
    esUser = 2, ///< the person at the screen
    esVehicle = 3 ///< reported by the vehicle
};

/// An event of a recording: something that happened at a time, in words.
///
/// \code
/// ZrLogEvt evt(time, esUser, QStringLiteral("Wreck sighted"));
/// evt.uid = QUuid::createUuid();
/// dataset.AddEvent(evt);
/// \endcode
///
/// Serial form, in Qt's `QDataStream` encoding (numbers big-endian): `code` as qint16, `time` as double,
/// `src` as qint32, `text` and `detail` as QString, `uid` as QUuid. `rec` is not part of it: it belongs to
/// the record table at hand. A byte array holds the form of Qt 5.15; a stream is used with the settings it
/// has.
///
/// Reading never fails as such: what a truncated or damaged form does not hold becomes 0, empty or null, and
/// a stream's `status` tells. A text length that the bytes cannot hold allocates next to nothing.
/// A value class; one thread at a time.
class ZR_UTIL_EXPORT ZrLogEvt
{
public:
    using eEvtSrc = ::eEvtSrc;

    i16 code = 0; ///< the applications' concern
    double time = 0.0; ///< seconds since 1970-01-01T00:00:00 UTC
    eEvtSrc src = esUnknown;
    QString text;
    QString detail;
    QUuid uid; ///< null unless set
    i32 rec = -1; ///< index of the record that the event belongs to, -1 when unknown

    ZrLogEvt();
    ZrLogEvt(const ZrLogEvt&);
    ZrLogEvt(double evtTime, eEvtSrc evtSrc, QString evtText);

    ZrLogEvt& operator=(const ZrLogEvt&) = default;

    virtual ~ZrLogEvt();

    /// Takes everything but `rec` from the serial form in \p bytes, which stay as they are.
    virtual void Load(QByteArray& bytes);

    /// Replaces \p bytes by the serial form.
    virtual void Save(QByteArray& bytes);

    virtual void WriteTo(QDataStream& stream);

    /// Takes everything but `rec` from \p stream.
    virtual void ReadFrom(QDataStream& stream);
};

extern template class ZR_UTIL_EXPORT ZrLstMgd<ZrLogEvt>;
