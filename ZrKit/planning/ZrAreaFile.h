#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrArea.h"
#include "ZrKit/planning/ZrRouteFile.h"

#include <QString>
#include <QStringList>

#include <vector>

/// Reads areas (survey areas, fences, no-go areas) from GeoJSON, KML, GPX, lists of positions and route
/// files.
///
/// \code
/// ZrAreaFile file;
/// std::vector<ZrArea> areas;
/// if (!file.Read(path, areas))
///     return file.Error();
/// \endcode
///
/// Polygons are areas; holes are left out, with a warning. A file without polygons gives an area for each
/// line, route or track segment in it, and one without lines the area whose corners are its points. An area
/// without a name gets that of the file, numbered when there are several.
///
/// Reading a settings file or a store moves the projection of the process, see `ZrRouteFile`.
class ZR_KIT_EXPORT ZrAreaFile
{
public:
    /// Replaces \p areas. False, with the reason in `Error` and \p areas as they were, when the file cannot
    /// be read, is damaged, or an area in it has fewer than three corners.
    bool Read(const QString& path, std::vector<ZrArea>& areas);

    /// `Read` in two steps: the file, in any thread; then, if that succeeded, its areas, on the thread of
    /// routes.
    bool Load(const QString& path);
    bool Finish(std::vector<ZrArea>& areas);

    /// Why the last call failed, a sentence with the path; empty when it did not.
    QString Error() const { return m_error; }

    /// What the last call left out, a sentence each.
    QStringList Warnings() const { return m_warnings; }

private:
    ZrRouteFile m_file;
    QString m_path;
    QString m_error;
    QStringList m_warnings;
};
