#include "ZrKit/sonar/ZrMosaicFile.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageWriter>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <memory>

namespace {

constexpr int jpegQuality = 92; ///< of 100
constexpr int longestWait = 100; ///< milliseconds between two looks at `cancel`

QString SuffixOf(const QString& path)
{
    return QFileInfo(path).suffix().toLower();
}

bool IsTiff(const QString& suffix)
{
    return suffix == QLatin1String("tif") || suffix == QLatin1String("tiff");
}

QString WithSuffix(const QString& path, const QString& suffix)
{
    return path.left(path.size() - QFileInfo(path).suffix().size()) + suffix;
}

/// What a link stands for, so that it stays a link.
QString Resolved(const QString& path)
{
    const QFileInfo info(path);
    return info.isSymLink() && info.exists() ? info.canonicalFilePath() : path;
}

/// Metres of a pixel: a picture has up to 100,000 of them in a row.
QString SizeText(double metres)
{
    return QString::number(metres, 'f', 10);
}

/// Metres on the grid.
QString PlaceText(double metres)
{
    return QString::number(metres, 'f', 6);
}

/// Drops the bytes once it is told to stop. Refusing them would stop at once, but the encoders tell of it on
/// standard error.
class StoppableBuffer : public QBuffer
{
public:
    StoppableBuffer(QByteArray* bytes, const std::atomic<bool>& stop)
        : QBuffer(bytes)
        , m_stop(stop)
    {
    }

protected:
    qint64 writeData(const char* data, qint64 size) override
    {
        return m_stop ? size : QBuffer::writeData(data, size);
    }

private:
    const std::atomic<bool>& m_stop;
};

/// Pictures without transparency show black where nothing was seen.
QImage Opaque(const QImage& image)
{
    QImage opaque = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    return opaque.convertToFormat(QImage::Format_RGB32);
}

/// The program that makes GeoTIFF; empty when it is not installed.
QString Translator()
{
    return QStandardPaths::findExecutable(QStringLiteral("gdal_translate"));
}

} // namespace

QStringList ZrMosaicFile::Suffixes()
{
    return {QStringLiteral("png"), QStringLiteral("jpg"), QStringLiteral("jpeg"), QStringLiteral("bmp"),
        QStringLiteral("tif"), QStringLiteral("tiff")};
}

QStringList ZrMosaicFile::FilesOf(const QString& path)
{
    const QString suffix = SuffixOf(path);
    if (!Suffixes().contains(suffix))
        return {};
    if (IsTiff(suffix))
        return {path};
    return {path, WorldFileName(path), WithSuffix(path, QStringLiteral("prj"))};
}

QString ZrMosaicFile::WorldFileName(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix();
    if (suffix.isEmpty())
        return path + QStringLiteral(".w");
    return WithSuffix(path, QString(suffix.front()) + suffix.back() + QLatin1Char('w'));
}

QByteArray ZrMosaicFile::WorldFile(const ZrMosaicFrame& frame)
{
    const QStringList lines{SizeText(frame.resolution), SizeText(0.0), SizeText(0.0),
        SizeText(-frame.resolution), PlaceText(frame.East(0.5)), PlaceText(frame.North(0.5)), QString()};
    return lines.join(QLatin1Char('\n')).toLatin1();
}

QByteArray ZrMosaicFile::Projection(const ZrMosaicFrame& frame)
{
    const QString name
        = QStringLiteral("WGS_1984_UTM_Zone_%1%2").arg(frame.zone).arg(QLatin1Char(frame.south ? 'S' : 'N'));
    return QStringLiteral("PROJCS[\"%1\",GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\","
                          "SPHEROID[\"WGS_1984\",6378137.0,298.257223563]],PRIMEM[\"Greenwich\",0.0],"
                          "UNIT[\"Degree\",0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],"
                          "PARAMETER[\"False_Easting\",500000.0],PARAMETER[\"False_Northing\",%2],"
                          "PARAMETER[\"Central_Meridian\",%3],PARAMETER[\"Scale_Factor\",0.9996],"
                          "PARAMETER[\"Latitude_Of_Origin\",0.0],UNIT[\"Meter\",1.0]]\n")
        .arg(name, QString::number(frame.south ? 10000000.0 : 0.0, 'f', 1),
            QString::number(frame.CentralMeridian(), 'f', 1))
        .toLatin1();
}

bool ZrMosaicFile::CanWriteGeoTiff()
{
    return !Translator().isEmpty();
}

bool ZrMosaicFile::Fail(const QString& error)
{
    m_error = error;
    return false;
}

bool ZrMosaicFile::Write(const QImage& image, const ZrMosaicFrame& frame, const QString& path)
{
    m_error.clear();
    if (cancel)
        return Fail(tr("Cancelled"));
    const QString suffix = SuffixOf(path);
    if (!Suffixes().contains(suffix)) {
        QStringList endings;
        for (const QString& known : Suffixes())
            endings << QLatin1Char('.') + known;
        return Fail(
            tr("%1: The name of a picture must end in %2").arg(path, endings.join(QStringLiteral(", "))));
    }
    if (image.isNull())
        return Fail(tr("%1: There is no picture to write").arg(path));
    const QString target = Resolved(path);
    if (IsTiff(suffix))
        return WriteGeoTiff(image, frame, target);
    QByteArray bytes;
    if (!Encode(image, suffix, bytes))
        return false;
    const QStringList files = FilesOf(path);
    return WriteAll(
        {{Resolved(files[1]), WorldFile(frame)}, {Resolved(files[2]), Projection(frame)}, {target, bytes}});
}

bool ZrMosaicFile::Encode(const QImage& image, const QString& suffix, QByteArray& bytes)
{
    StoppableBuffer buffer(&bytes, cancel);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, suffix.toLatin1());
    const bool isPng = suffix == QLatin1String("png");
    if (!isPng)
        writer.setQuality(jpegQuality);
    const bool written = writer.write(isPng ? image : Opaque(image));
    if (cancel)
        return Fail(tr("Cancelled"));
    return written || Fail(tr("The picture cannot be made: %1").arg(writer.errorString()));
}

bool ZrMosaicFile::WriteAll(const std::vector<Content>& contents)
{
    std::vector<std::unique_ptr<QSaveFile>> files;
    for (const Content& content : contents) {
        files.push_back(std::make_unique<QSaveFile>(content.first));
        QSaveFile& file = *files.back();
        // Unbuffered: a full disk shows here rather than when the files take their places.
        bool ok = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
        for (qint64 done = 0; ok && done < content.second.size();) {
            const qint64 written
                = file.write(content.second.constData() + done, content.second.size() - done);
            ok = written > 0;
            done += written;
        }
        if (!ok)
            return Fail(content.first + QStringLiteral(": ") + file.errorString());
    }
    if (cancel)
        return Fail(tr("Cancelled"));
    for (const std::unique_ptr<QSaveFile>& file : files) {
        if (!file->commit())
            return Fail(file->fileName() + QStringLiteral(": ") + file->errorString());
    }
    return true;
}

bool ZrMosaicFile::WriteGeoTiff(const QImage& image, const ZrMosaicFrame& frame, const QString& path)
{
    if (!CanWriteGeoTiff()) {
        return Fail(tr("%1: GeoTIFF needs the program gdal_translate; install the package gdal-bin, or write "
                       "a .png, which comes with a world file")
                        .arg(path));
    }
    QTemporaryDir folder;
    if (!folder.isValid())
        return Fail(tr("No temporary folder can be made: %1").arg(folder.errorString()));
    QByteArray png;
    if (!Encode(image, QStringLiteral("png"), png)
        || !WriteAll({{folder.filePath(QStringLiteral("in.png")), png}}))
        return false;
    const QString made = folder.filePath(QStringLiteral("out.tif"));
    const QStringList arguments{QStringLiteral("-q"), QStringLiteral("-of"), QStringLiteral("GTiff"),
        QStringLiteral("-a_srs"), QStringLiteral("EPSG:%1").arg(frame.Epsg()), QStringLiteral("-a_ullr"),
        PlaceText(frame.East(0.0)), PlaceText(frame.North(0.0)), PlaceText(frame.East(frame.width)),
        PlaceText(frame.North(frame.height)), QStringLiteral("-co"), QStringLiteral("COMPRESS=DEFLATE"),
        QStringLiteral("-co"), QStringLiteral("PREDICTOR=2"), folder.filePath(QStringLiteral("in.png")),
        made};
    if (!Translate(arguments))
        return false;
    QFile file(made);
    if (!file.open(QIODevice::ReadOnly))
        return Fail(tr("gdal_translate has written nothing"));
    return WriteAll({{path, file.readAll()}});
}

bool ZrMosaicFile::Translate(const QStringList& arguments)
{
    QProcess process;
    process.start(Translator(), arguments, QIODevice::ReadOnly);
    if (!process.waitForStarted())
        return Fail(tr("gdal_translate cannot be started: %1").arg(process.errorString()));
    while (process.state() != QProcess::NotRunning && !process.waitForFinished(longestWait)) {
        if (cancel) {
            process.kill();
            process.waitForFinished();
            return Fail(tr("Cancelled"));
        }
    }
    if (cancel)
        return Fail(tr("Cancelled"));
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return true;
    const QString words = QString::fromUtf8(process.readAllStandardError()).trimmed();
    return Fail(tr("gdal_translate has failed: %1").arg(words.section(QLatin1Char('\n'), 0, 0)));
}
