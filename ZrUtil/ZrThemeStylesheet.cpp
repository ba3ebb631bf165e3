#include "ZrUtil/ZrLogEmit.h"
#include "ZrUtil/ZrTheme.h"

#include <QFile>
#include <QHash>

namespace {

QString FontText(const QFont& font)
{
    return QString::number(font.pixelSize()) + QStringLiteral("px");
}

QString ColourText(const QColor& colour)
{
    const std::string alpha = QString::number(colour.alphaF(), 'g', 6).toStdString();
    return QString::fromStdString(
        fmt::format("rgba({}, {}, {}, {})", colour.red(), colour.green(), colour.blue(), alpha));
}

/// The texts of the tokens that are plain names.
QHash<QString, QString> Names()
{
    QHash<QString, QString> names = {
        {QStringLiteral("fontTiny"), FontText(ZrTheme::fontTiny)},
        {QStringLiteral("fontSmall"), FontText(ZrTheme::fontSmall)},
        {QStringLiteral("font"), FontText(ZrTheme::font)},
        {QStringLiteral("fontLarge"), FontText(ZrTheme::fontLarge)},
        {QStringLiteral("fontHuge"), FontText(ZrTheme::fontHuge)},
        {QStringLiteral("rxy"), QString::number(ZrTheme::rxy)},
    };

    const struct
    {
        const char* name;
        const QColor& colour;
    } colours[] = {
        {"ctrlOutlineCol", ZrTheme::ctrlOutlineCol},
        {"ctrlActiveCol", ZrTheme::ctrlActiveCol},
        {"ctrlHighlightCol", ZrTheme::ctrlHighlightCol},
        {"ctrlCheckCol", ZrTheme::ctrlCheckCol},
        {"ctrlHintCol", ZrTheme::ctrlHintCol},
        {"ctrlCol", ZrTheme::ctrlCol},
        {"titleCol", ZrTheme::titleCol},
        {"bodyCol", ZrTheme::bodyCol},
        {"formBdr", ZrTheme::formBdr},
        {"formMgr", ZrTheme::formMgr},
        {"formBack", ZrTheme::formBack},
        {"goodCol", ZrTheme::goodCol},
        {"warnCol", ZrTheme::warnCol},
        {"errorCol", ZrTheme::errorCol},
        {"gridCol", ZrTheme::gridCol},
        {"toolBack", ZrTheme::toolBack},
        {"darken", ZrTheme::darken},
        {"lighten", ZrTheme::lighten},
        {"sea", ZrTheme::sea},
        {"seabed", ZrTheme::seabed},
        {"track", ZrTheme::track},
        {"vehicle", ZrTheme::vehicle},
        {"posA", ZrTheme::posA},
        {"posB", ZrTheme::posB},
        {"posC", ZrTheme::posC},
        {"marker", ZrTheme::marker},
        {"waypoint", ZrTheme::waypoint},
        {"route", ZrTheme::route},
    };

    for (const auto& entry : colours)
        names.insert(QString::fromLatin1(entry.name), ColourText(entry.colour));
    return names;
}

/// Whether \p token is "DpI(" n ")" with a decimal number n; then \p text is what to put in.
bool IsSize(const QString& token, QString& text)
{
    const QString before = QStringLiteral("DpI(");
    if (!token.startsWith(before) || !token.endsWith(QLatin1Char(')')))
        return false;
    const QString number = token.mid(before.size(), token.size() - before.size() - 1);
    for (const QChar c : number) {
        const bool isDigit = c >= QLatin1Char('0') && c <= QLatin1Char('9');
        if (!isDigit && c != QLatin1Char('.') && c != QLatin1Char('-') && c != QLatin1Char('+'))
            return false;
    }
    bool isNumber = false;
    const float size = number.toFloat(&isNumber);
    if (isNumber)
        text = QString::number(ZrTheme::DpI(size));
    return isNumber;
}

QString WithTokens(const QString& sheet)
{
    const QHash<QString, QString> names = Names();
    QString result;
    result.reserve(sheet.size());
    int done = 0; // what lies before is in the result
    int open = -1; // the last "<"
    for (int i = 0; i < sheet.size(); ++i) {
        if (sheet[i] == QLatin1Char('<'))
            open = i;
        if (sheet[i] != QLatin1Char('>') || open < 0)
            continue;
        const QString token = sheet.mid(open + 1, i - open - 1);
        QString text = names.value(token);
        if (!text.isEmpty() || IsSize(token, text)) {
            result += sheet.midRef(done, open - done) + text;
            done = i + 1;
        }
        open = -1;
    }
    return result + sheet.midRef(done);
}

} // namespace

QString ZrTheme::GetStylesheet(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        ZR_LOG(2, "ZrUtil-ZrTheme", "Failed opening stylesheet \"{}\"", path);
        return QString();
    }
    const QByteArray sheet = file.readAll();
    // With the length: a zero byte does not end the text.
    return WithTokens(QString::fromUtf8(sheet.constData(), sheet.size()));
}
