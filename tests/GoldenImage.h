#pragma once

// Pictures held against those in tests/golden, with a tolerance.

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QString>

#include <algorithm>
#include <cstdlib>

namespace golden {

/// How far a picture may be from the golden one: the compiler may round a sample the other way.
struct Tolerance
{
    int step = 8; ///< of 255 in any channel, beyond which a pixel counts as different
    double share = 0.001; ///< of the pixels that may be different
};

inline int Difference(QRgb a, QRgb b)
{
    if (qAlpha(a) == 0 && qAlpha(b) == 0)
        return 0;
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
        std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))});
}

/// Compares \p image with tests/golden/\p name. Returns what is wrong, empty when all is well; then the
/// picture, and one with the differences in white, lie in the folder golden beside the test programs.
/// With ZR_GOLDEN_UPDATE in the environment the golden picture is written anew, and that is said.
inline QString Compare(const QImage& image, const QString& name, const Tolerance& tolerance = Tolerance())
{
    const QString path = QStringLiteral(ZR_SOURCE_DIR "/tests/golden/") + name;
    if (qEnvironmentVariableIsSet("ZR_GOLDEN_UPDATE")) {
        const bool ok = QDir().mkpath(QFileInfo(path).path()) && image.save(path);
        return path + (ok ? QStringLiteral(" was written anew") : QStringLiteral(" cannot be written"));
    }
    const QImage expected = QImage(path).convertToFormat(QImage::Format_ARGB32);
    const QImage actual = image.convertToFormat(QImage::Format_ARGB32);
    if (expected.isNull())
        return path + QStringLiteral(" cannot be read");
    QString error;
    QImage differences(actual.size(), QImage::Format_Grayscale8);
    differences.fill(0);
    if (expected.size() != actual.size()) {
        error = QStringLiteral("%1 x %2 pixels instead of %3 x %4")
                    .arg(actual.width())
                    .arg(actual.height())
                    .arg(expected.width())
                    .arg(expected.height());
    } else {
        qint64 different = 0;
        for (int y = 0; y < actual.height(); ++y) {
            for (int x = 0; x < actual.width(); ++x) {
                const int difference = Difference(actual.pixel(x, y), expected.pixel(x, y));
                differences.scanLine(y)[x] = static_cast<uchar>(difference);
                different += difference > tolerance.step ? 1 : 0;
            }
        }
        const double share = static_cast<double>(different) / actual.width() / actual.height();
        if (share > tolerance.share)
            error = QStringLiteral("%1 % of the pixels are different").arg(share * 100.0);
    }
    if (error.isEmpty())
        return error;
    const QDir folder(QStringLiteral(ZR_BIN_DIR "/golden"));
    folder.mkpath(QStringLiteral("."));
    image.save(folder.filePath(name));
    differences.save(folder.filePath(QStringLiteral("difference-") + name));
    return QStringLiteral("%1: %2; see %3").arg(name, error, folder.path());
}

} // namespace golden
