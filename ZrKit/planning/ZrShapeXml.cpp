#include "ZrKit/planning/ZrShapeXml.h"

#include <QCoreApplication>

namespace {

constexpr int MaxDepth = 1000; // elements in elements; each one inside takes memory

} // namespace

ZrShapeXml::ZrShapeXml(const QByteArray& bytes, ZrGeoShapes& shapes)
    : m_xml(bytes)
    , m_shapes(shapes)
{
}

bool ZrShapeXml::NextChild()
{
    return !m_xml.hasError() && m_xml.readNextStartElement();
}

bool ZrShapeXml::Is(const char* element) const
{
    return m_xml.name() == QLatin1String(element);
}

void ZrShapeXml::Skip()
{
    for (int depth = 1; depth > 0 && !m_xml.hasError();) {
        m_xml.readNext();
        if (m_xml.isStartElement() && ++depth > MaxDepth)
            Fail(QCoreApplication::translate("ZrShapeXml", "elements nest too deeply"));
        else if (m_xml.isEndElement())
            --depth;
    }
}

QString ZrShapeXml::Text()
{
    return m_xml.readElementText();
}

void ZrShapeXml::Fail(const QString& reason, qint64 line)
{
    if (m_xml.hasError())
        return;
    m_errorLine = line > 0 ? line : m_xml.lineNumber();
    m_xml.raiseError(reason);
}

QString ZrShapeXml::Error() const
{
    if (!m_xml.hasError())
        return {};
    return QStringLiteral("line %1: %2")
        .arg(m_errorLine > 0 ? m_errorLine : m_xml.lineNumber())
        .arg(m_xml.errorString());
}

bool ZrShapeXml::TakeField(QJsonObject& fields, AddField add, const QString& key, const QString& text)
{
    if (key != QLatin1String("unnamed"))
        return add(fields, key, text);
    m_unnamed = true;
    return true;
}
