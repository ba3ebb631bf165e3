#include "ZrKit/review/ZrEventTable.h"

#include "ZrKit/export/ZrTrackText.h"

#include <QSaveFile>

QByteArray ZrEventTable::Heading()
{
    return "time,source,code,uid,text,detail\r\n";
}

QByteArray ZrEventTable::Line(const ZrLogEvt& evt)
{
    ZrTrackText text;
    const QStringList fields{text.Time(evt.time), QString::number(static_cast<int>(evt.src)),
        QString::number(evt.code), evt.uid.isNull() ? QString() : evt.uid.toString(QUuid::WithoutBraces),
        Field(evt.text), Field(evt.detail)};
    return fields.join(QLatin1Char(',')).toUtf8() + "\r\n";
}

QString ZrEventTable::Field(const QString& text)
{
    QString field = ZrTrackText::Clean(text);
    if (!field.contains(QLatin1Char(',')) && !field.contains(QLatin1Char('"'))
        && !field.contains(QLatin1Char('\n')) && !field.contains(QLatin1Char('\r')))
        return field;
    field.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + field + QLatin1Char('"');
}

bool ZrEventTable::Write(const std::vector<ZrLogEvt>& events, const QString& path, QString* error)
{
    const auto fail = [error](const QString& reason) {
        if (error)
            *error = reason;
        return false;
    };
    if (events.empty())
        return fail(tr("There are no events to write"));
    QByteArray lines = Heading();
    for (const ZrLogEvt& evt : events)
        lines += Line(evt);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(lines) != lines.size() || !file.commit())
        return fail(tr("Cannot write %1: %2").arg(path, file.errorString()));
    return true;
}
