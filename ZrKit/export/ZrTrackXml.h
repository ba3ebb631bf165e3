#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>
#include <QXmlStreamWriter>

/// The XML writer of the track exports: how a document looks, and texts that XML allows. One thread at a
/// time.
class ZR_KIT_EXPORT ZrTrackXml : public QXmlStreamWriter
{
public:
    /// Begins the document in \p out, which is open for writing, with the element \p root, whose default
    /// namespace is \p space. Attributes and further namespaces of the root may follow.
    ZrTrackXml(QIODevice& out, const QString& root, const QString& space);

    /// Writes an element with \p text, cleaned; none when there is nothing to say.
    void Text(const char* element, const QString& text);

    /// Closes all that is open. False when the device did not take everything.
    bool End();
};
