#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrPersistMode.h"

#include <QJsonObject>
#include <QString>

namespace zr {

class IPersistable;
class IPersistableLinked;

/// The settings document of an application: a JSON object in memory, its file, and the passes that fill it
/// from objects or objects from it.
///
/// Each is made for one direction:
///
/// \code
/// zr::ZrSetApp stored(zr::ePersistStoring);
/// stored.synchronise(view);
/// if (!stored.save_to_file(path, zr::ZrSetApp::eFmtIndented))
///     warn(path);
///
/// zr::ZrSetApp loaded(zr::ePersistLoading);
/// if (loaded.load_from_file(path, zr::ZrSetApp::eFmtIndented))
///     loaded.synchronise(view);
/// \endcode
///
/// The functions report by their results alone and write no messages. Not synchronised: one thread at a time.
class ZR_UTIL_EXPORT ZrSetApp
{
public:
    /// Forms of the file.
    enum eFmt : int
    {
        eFmtIndented = 0, ///< JSON text, indented
        eFmtCompact = 1, ///< JSON text on one line
        eFmtBinary = 2, ///< Qt's binary JSON
    };

    const ePersistMode mode;
    QJsonObject root; ///< the whole document; empty at first

    explicit ZrSetApp(ePersistMode mode);

    bool is_loading() const { return mode == ePersistLoading; }

    bool is_storing() const { return mode == ePersistStoring; }

    /// Replaces the document by that of the file; a top-level array gives an empty object.
    ///
    /// False, and the document as it was, when the file cannot be opened, is empty or does not parse. Files
    /// are read in text mode, which drops every CR: a binary document that holds such a byte does not load.
    /// Nor does text that nests objects and arrays more than 1,024 deep. Binary documents have no such limit
    /// and are meant for files of one's own.
    bool load_from_file(const QString& path, eFmt fmt);

    /// Writes the document over what \p path held; false when the file cannot be opened or its write reports
    /// an error, after which the file is damaged. An empty document in the binary form is a file of 0 bytes.
    bool save_to_file(const QString& path, eFmt fmt) const;

    /// One pass over \p p: fills the document from it, which is emptied before, or it from the document.
    /// After a loading pass the post-load function runs, if \p p is an `IPersistableLinked` as well.
    void synchronise(IPersistable& p);

private:
    void apply_settings(IPersistable& p);
    void apply_post_cfg_load(IPersistableLinked& p);
};

} // namespace zr
