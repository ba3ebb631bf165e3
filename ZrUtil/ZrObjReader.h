#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrTypes.h"

#include <QString>

class ZglObject;

/// Reads Wavefront OBJ files as `ZglObject::LoadObj` does, and says where and why a file is refused.
///
/// \code
/// ZrObjReader reader;
/// ZglObject mesh;
/// if (!reader.Read(path, mesh))
///     qInfo() << reader.Error() << "in line" << reader.Line() << reader.Detail();
/// \endcode
///
/// The file is read in blocks of 256 KiB; beside the mesh the memory holds the longest line and the lists of
/// the file, never the file itself. A reader can be used again; one thread at a time.
class ZR_UTIL_EXPORT ZrObjReader
{
public:
    /// Appends the triangles of \p path to \p object. False when it is refused: the object may have its name
    /// then, but nothing else of the file.
    bool Read(const QString& path, ZglObject& object);

    /// Why the file was refused: "Unable to read:", or the message of the statement, "Error in face
    /// definition" and alike; empty after a success.
    QString Error() const { return m_error; }

    /// A sentence that goes further, without a full stop; for people, its words may change.
    QString Detail() const { return m_detail; }

    /// The line in error, counted from 1; 0 when none is: after a success, and when the file cannot be read.
    u64 Line() const { return m_line; }

private:
    QString m_error;
    QString m_detail;
    u64 m_line = 0;
};
