#include "ZrKit/ui/ZrTranslation.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

#include <memory>

namespace {

bool InstallOne(const QString& name, const QString& folder, const QLocale& locale)
{
    auto translator = std::make_unique<QTranslator>(QCoreApplication::instance());
    // A file that is cut off loads, with no text in it.
    if (!translator->load(locale, name, QStringLiteral("_"), folder) || translator->isEmpty())
        return false;
    return QCoreApplication::installTranslator(translator.release());
}

} // namespace

QStringList ZrTranslation::Folders(const QString& name)
{
    const QString program = QCoreApplication::applicationDirPath();
    return {program + QStringLiteral("/translations"),
        program + QStringLiteral("/../share/%1/translations").arg(name)};
}

bool ZrTranslation::Install(const QString& name, const QStringList& folders, const QLocale& locale)
{
    for (const QString& folder : folders) {
        if (InstallOne(name, folder, locale)) {
            InstallOne(
                QStringLiteral("qtbase"), QLibraryInfo::location(QLibraryInfo::TranslationsPath), locale);
            return true;
        }
    }
    return false;
}
