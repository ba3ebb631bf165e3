#pragma once

#include "ZrKit/planning/ZrGeoShapes.h"

#include <QByteArray>
#include <QXmlStreamReader>

/// What the readers of GPX and KML have in common. Inside the kit only.
class ZrShapeXml
{
protected:
    using AddField = bool (*)(QJsonObject& fields, const QString& key, const QJsonValue& value);

    ZrShapeXml(const QByteArray& bytes, ZrGeoShapes& shapes);

    /// Goes to the next child of the current element; false at its end and after an error.
    bool NextChild();

    bool Is(const char* element) const;

    /// Passes the current element over, with all that is in it.
    void Skip();

    /// The text of the current element, which has no children.
    QString Text();

    /// Makes the file an error, at the \p line, 0 for the current one. The first error stays.
    void Fail(const QString& reason, qint64 line = 0);

    /// "line N: reason"; empty when there was no error.
    QString Error() const;

    /// Adds a field to \p fields by \p add. The key "unnamed" tells that the name of the waypoint is only the
    /// label that its route made.
    bool TakeField(QJsonObject& fields, AddField add, const QString& key, const QString& text);

    QXmlStreamReader m_xml;
    ZrGeoShapes& m_shapes;
    bool m_unnamed = false;

private:
    qint64 m_errorLine = 0;
};
