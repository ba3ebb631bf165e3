#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrMosaicFrame.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QImage>
#include <QString>
#include <QStringList>

#include <atomic>
#include <utility>
#include <vector>

/// Writes a picture with its place on the earth, for charts and geographic information systems.
///
/// \code
/// ZrMosaicFile file;
/// if (!file.Write(mosaic.Image(), mosaic.Frame(), path))
///     return file.Error();
/// \endcode
///
/// The suffix tells the form: ".png" keeps what is transparent; ".jpg", ".jpeg" and ".bmp" show black there.
/// Beside them come a world file (`WorldFileName`, `WorldFile`) and the grid in words (".prj",
/// `Projection`). ".tif" and ".tiff" are GeoTIFF, which holds all that in itself; the program gdal_translate
/// must be installed.
///
/// Nothing is replaced before everything is written; then each file takes its place in one step, the picture
/// last. A link is followed.
///
/// One thread at a time; `cancel` may be set from any thread or a signal handler.
class ZR_KIT_EXPORT ZrMosaicFile
{
    Q_DECLARE_TR_FUNCTIONS(ZrMosaicFile)

public:
    std::atomic<bool> cancel{
        false}; ///< set to end `Write` once the picture is encoded, with nothing replaced

    ZrMosaicFile() = default;
    ZrMosaicFile(const ZrMosaicFile&) = delete;
    ZrMosaicFile& operator=(const ZrMosaicFile&) = delete;

    /// The suffixes that `Write` knows, lower case, without the point.
    static QStringList Suffixes();

    /// The files that `Write` makes for a picture, the picture first; none for an unknown suffix.
    static QStringList FilesOf(const QString& path);

    /// The picture's name with the first and the last letter of its suffix and a w: ".pgw", ".jgw", ".bpw".
    static QString WorldFileName(const QString& path);

    /// Six lines: metres for a pixel eastwards, 0, 0, minus the metres downwards, easting and northing of the
    /// middle of the upper left pixel.
    static QByteArray WorldFile(const ZrMosaicFrame& frame);

    /// "WGS 84 / UTM" of the frame's zone as well-known text (version 1, in the dialect of .prj files).
    static QByteArray Projection(const ZrMosaicFrame& frame);

    /// Whether GeoTIFF can be written here.
    static bool CanWriteGeoTiff();

    /// False, with the reason in `Error` and every file as it was, when the suffix is unknown, the picture is
    /// empty, a file cannot be written or `cancel` was set. Should the system fail between one file and the
    /// next taking its place, the earlier ones stay replaced.
    bool Write(const QImage& image, const ZrMosaicFrame& frame, const QString& path);

    QString Error() const { return m_error; } ///< a sentence; empty when all is well

private:
    using Content = std::pair<QString, QByteArray>; ///< path and bytes of a file

    bool Fail(const QString& error);
    bool Encode(const QImage& image, const QString& suffix, QByteArray& bytes);
    bool WriteAll(const std::vector<Content>& contents);
    bool WriteGeoTiff(const QImage& image, const ZrMosaicFrame& frame, const QString& path);
    bool Translate(const QStringList& arguments);

    QString m_error;
};
