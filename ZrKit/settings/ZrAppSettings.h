#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/settings/ZrSettingsFile.h"

#include <QString>

namespace zr {
class IPersistable;
}

/// The settings of a whole application in a file, usually with its `ZrAppView` as \p app: loaded at the
/// start, saved at the end, and with a text for the person at the screen when something was wrong.
///
/// \code
/// ZrAppSettings settings(path);
/// settings.Load(view);
/// if (!settings.Message().isEmpty())
///     new ZrNotice(&view, settings.Message());
/// …
/// settings.Save(view); // in ZrAppView::OnExit
/// \endcode
///
/// The application starts in any case: without a good file with that file's last good copy, without one with
/// its defaults. What a damaged file held is put aside in PATH.damaged. One thread at a time.
class ZR_KIT_EXPORT ZrAppSettings
{
public:
    explicit ZrAppSettings(const QString& path);

    /// Loads the file into \p app; true when anything was loaded.
    ///
    /// A value of another kind than the one that \p app stores, for instance a text in place of a list, is
    /// left out, so that its default stays, and told. Kinds are those of JSON: integers are texts there, and
    /// a text that is no number is not noticed. A null and a number are taken for one kind, since NaN is
    /// stored as null. Keys that \p app does not store are nobody's business.
    bool Load(zr::IPersistable& app);

    /// Saves \p app to the file. False, and the file as it was, when that cannot be done, see `Message`.
    bool Save(zr::IPersistable& app);

    /// What the person is to know after the last call, whole sentences; mostly empty, and empty at the first
    /// start.
    QString Message() const { return m_message; }

    const ZrSettingsFile& File() const { return m_file; }

private:
    void PutAside();

    ZrSettingsFile m_file;
    QString m_message;
};
