#include "ZrKit/recording/ZrLogName.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>

namespace {

bool IsTaken(const QString& dir, const QString& stem)
{
    const auto exists = [&dir, &stem](int part) {
        // A link to nothing exists as a name too.
        const QFileInfo info(dir + QDir::separator() + ZrLogName::Of(stem, part));
        return info.exists() || info.isSymLink();
    };
    return exists(0) || exists(1);
}

} // namespace

QString ZrLogName::Stem(const QString& dir, const QString& prefix, const QDateTime& time)
{
    const QString stamp = QLocale::c().toString(time, QStringLiteral("yyyyMMdd_hhmmss"));
    const QString name = prefix.isEmpty() ? stamp : prefix + QLatin1Char('_') + stamp;
    QString stem = name;
    for (int number = 2; IsTaken(dir, stem); ++number)
        stem = name + QLatin1Char('-') + QString::number(number);
    return stem;
}

QString ZrLogName::Of(const QString& stem, int part)
{
    if (part <= 0)
        return stem + QStringLiteral(".log");
    return stem + QStringLiteral("_%1.log").arg(part, 3, 10, QLatin1Char('0'));
}
