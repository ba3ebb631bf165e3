#include "ZrUtil/ZrSameFile.h"

#include <QFile>

#include <filesystem>

namespace {

std::filesystem::path NativePath(const QString& path)
{
#ifdef Q_OS_WIN
    return std::filesystem::path(path.toStdWString());
#else
    return std::filesystem::path(QFile::encodeName(path).toStdString());
#endif
}

} // namespace

bool zr::is_same_file(const QString& a, const QString& b)
{
    std::error_code error;
    return std::filesystem::equivalent(NativePath(a), NativePath(b), error);
}
