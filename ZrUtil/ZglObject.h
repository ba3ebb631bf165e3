#pragma once

#include "ZrUtil/ZrExport.h"

#include <QString>
#include <QVector2D>
#include <QVector3D>

#include <vector>

/// A triangle mesh for the 3D views, laid out to be drawn as `GL_TRIANGLES` without an index buffer.
///
/// The three arrays have the same length: entry i of each belongs to corner i mod 3 of triangle i / 3. A
/// plain value; one thread at a time.
class ZR_UTIL_EXPORT ZglObject
{
public:
    QString m_name; ///< of the object, from the file
    int m_reserved = 0;
    std::vector<QVector3D> m_vertices; ///< positions x, y, z
    std::vector<QVector2D> m_texCoords; ///< texture coordinates u, v
    std::vector<QVector3D> m_normals; ///< normals x, y, z

    /// Reads a Wavefront OBJ text file of triangles, every corner of which has a position, a texture
    /// coordinate and a normal; its triangles are appended to the arrays.
    ///
    /// Words are parted by blanks. The statements `o`, `v`, `vt`, `vn` and `f` must have exactly their number
    /// of words; other statements, comments and blank lines are skipped. Indices are counted from 1.
    ///
    /// \return true when the whole file was read. False, with the reason on the debug output, when it cannot
    /// be read ("Unable to read:"), when a statement has another shape or a number that does not parse
    /// ("Error in face definition" and alike), or when a face refers to something that the file does not
    /// hold. The object may have its name then, but nothing else of the file.
    static bool LoadObj(QString path, ZglObject& object);
};
