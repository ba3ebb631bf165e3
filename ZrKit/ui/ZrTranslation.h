#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QLocale>
#include <QStringList>

/// Texts in the language of the user.
///
/// \code
/// // in main, before the first window:
/// ZrTranslation::Install(QStringLiteral("ZrSurvey"), ZrTranslation::Folders(QStringLiteral("ZrSurvey")));
/// \endcode
///
/// Every text of the kit that a person reads goes through the translators of the application, with the name
/// of its class as context. The texts that the library's own classes prescribe stay as they are.
class ZR_KIT_EXPORT ZrTranslation
{
public:
    /// Where translations are looked for, the first one first: "translations" beside the program, and
    /// "../share/NAME/translations" of it.
    static QStringList Folders(const QString& name);

    /// Installs "NAME_LANGUAGE.qm" of the first of \p folders that has one for \p locale, the more special
    /// first ("de_AT" before "de"), and Qt's own for its dialogs where there is one. False, and nothing
    /// installed, when the language has no file, or a damaged one: then texts are English. After the
    /// application object was made; the translators live as long as it. The user-interface thread.
    static bool Install(const QString& name, const QStringList& folders, const QLocale& locale = QLocale());
};
