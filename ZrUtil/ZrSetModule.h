#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrFromJson.h"
#include "ZrUtil/ZrPersistMode.h"

#include <QJsonObject>
#include <QString>

#include <functional>

namespace zr {

class IPersistable;

/// Cursor on one JSON object of the settings that knows whether they are being loaded or stored.
///
/// A settings function is written once, for both directions:
///
/// \code
/// void Winch::settings(zr::ZrSetModule& module)
/// {
///     module.item(QStringLiteral("tablet mode"), m_tabletMode); // bool
///     module.item(QStringLiteral("turns"), m_turns); // int
///     module.sub_item(QStringLiteral("brake"), m_brake); // an IPersistable
/// }
/// \endcode
///
/// Keys are sorted in the file, whatever the order of the calls. The module is copied freely; it does not own
/// the object, which must outlive it. Nothing is reported and bad values never throw, see ZrFromJson.h.
///
/// Not synchronised: one thread at a time.
class ZR_UTIL_EXPORT ZrSetModule
{
public:
    ePersistMode mode;
    QJsonObject* object; ///< what is read or filled; not owned

    ZrSetModule(ePersistMode mode, QJsonObject& object);

    bool is_loading() const { return mode == ePersistLoading; }

    bool is_storing() const { return mode == ePersistStoring; }

    /// Binds \p value to \p key. Storing replaces what the key held. Loading assigns what the key holds, in
    /// the form that `from_json` gives it, and leaves \p value as it is when there is no such key: that is
    /// how defaults work. A key whose value is of the wrong kind overwrites \p value all the same.
    ///
    /// \a T is one of the types of ZrFromJson.h.
    template <class T> void item(const QString& key, T& value)
    {
        if (is_storing()) {
            add_item(key, to_json(value));
        } else if (is_loading()) {
            QJsonValue stored;
            if (try_get_item(key, stored))
                value = from_json<T>(stored);
        }
    }

    /// Lets \p child fill, or read, the object under \p key.
    ///
    /// On loading the child is always called: with an empty object when the key is missing or holds something
    /// else. What it writes then is discarded; a missing key is left as a null in the object in memory.
    void sub_item(const QString& key, IPersistable& child);

    /// Lets \p fn fill, or read, the object under \p key.
    ///
    /// On loading \p fn is called only when the key holds an object. An empty function throws
    /// `std::bad_function_call` where it would be called.
    void sub_item(const QString& key, const std::function<void(ZrSetModule&)>& fn);

private:
    void add_item(const QString& key, const QJsonValue& value);

    /// False, and \p out untouched, when there is no such key. A stored null is found.
    bool try_get_item(const QString& key, QJsonValue& out) const;
};

} // namespace zr
