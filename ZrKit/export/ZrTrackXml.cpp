#include "ZrKit/export/ZrTrackXml.h"

#include "ZrKit/export/ZrTrackText.h"

ZrTrackXml::ZrTrackXml(QIODevice& out, const QString& root, const QString& space)
    : QXmlStreamWriter(&out)
{
    setAutoFormatting(true);
    setAutoFormattingIndent(1);
    writeStartDocument();
    writeStartElement(root);
    writeDefaultNamespace(space);
}

void ZrTrackXml::Text(const char* element, const QString& text)
{
    if (!text.isEmpty())
        writeTextElement(QLatin1String(element), ZrTrackText::Clean(text));
}

bool ZrTrackXml::End()
{
    writeEndDocument();
    return !hasError();
}
