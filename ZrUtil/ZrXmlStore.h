#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrLstMgd.h"
#include "ZrUtil/ZrXmlSet.h"

#include <QByteArray>
#include <QString>

extern template class ZR_UTIL_EXPORT ZrLstMgd<ZrXmlSet>;

/// Tag-structured settings store: named sets of typed objects of name/value items and data lines, kept in a
/// small text file or in a byte array.
///
/// A store is made for one direction, in which every `Item` call of its objects then goes. It owns its sets,
/// as they own their objects.
///
/// \code
/// ZrXmlStore store(false); // to be loaded
/// if (store.Load(path)) {
///     if (ZrXmlSet* set = store.Set(QStringLiteral("Cameras")))
///         if (ZrXmlObj* obj = set->Obj(QStringLiteral("Front"), QStringLiteral("Camera")))
///             camera.Sync(*obj);
/// }
/// \endcode
///
/// The file form is Latin-1, lines of at most 1,023 characters; the line form in byte arrays is UTF-8.
/// Nothing is escaped in either: a newline in a text starts another line, a double quote ends a value in the
/// file form, and a set, object or type with an empty name is not read back from a file. Objects without
/// items and data lines are not written. Loading adds to what the store already holds.
///
/// Not synchronised: one thread at a time.
class ZR_UTIL_EXPORT ZrXmlStore : public ZrLstMgd<ZrXmlSet>
{
public:
    bool storing; ///< true while the store is filled for saving, false when it is loaded and read

    explicit ZrXmlStore(bool forStoring);

    bool IsLoading() const { return !storing; }

    bool IsStoring() const { return storing; }

    /// The set of this name; if there is none, a new one, appended.
    ZrXmlSet* AddSet(QString name);

    /// What settings functions use: `AddSet` while storing; while loading the set of this name, null if the
    /// file had none.
    ZrXmlSet* Set(QString name);

    /// Writes the file form, over what \p path held. False, with a line on the debug output, when the file
    /// cannot be opened or not written to its end; what was written of it then stays.
    bool Save(QString path);

    /// Replaces \p bytes by the line form.
    void Save(QByteArray& bytes);

    /// Reads the file form. False, with a line on the debug output, when the file cannot be opened. Lines
    /// that match nothing are skipped, and a file may end anywhere.
    bool Load(QString path);

    /// The bytes that `Save` writes to a file, for callers that keep or replace files in their own way.
    QByteArray FileForm() const;

    /// Reads the file form as `Load` reads it from a file.
    void LoadFileForm(const QByteArray& bytes);

    /// Reads the line form, which is left as it is. True.
    bool Load(QByteArray& bytes);
};
