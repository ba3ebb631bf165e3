#include "ZrKit/geo/ZrPositionText.h"

#include "ZrKit/geo/ZrAnglePair.h"
#include "ZrKit/geo/ZrGridText.h"

#include <QCoreApplication>

namespace {

/// Nobody writes a position longer than this; texts of megabytes are pasted by mistake.
constexpr int longest = 200;

/// The plain sign for a typographic one, in upper case; null for what has no width at all.
QChar Plain(QChar c)
{
    switch (c.unicode()) {
    case 0x2032: // prime
    case 0x2018:
    case 0x2019: // curly quotes
    case 0x201B:
    case 0x00B4: // accents
    case 0x0060:
    case 0x02B9:
    case 0x02BC:
        return QLatin1Char('\'');
    case 0x2033: // double prime
    case 0x201C:
    case 0x201D:
    case 0x201F:
    case 0x02BA:
    case 0x3003:
        return QLatin1Char('"');
    case 0x00BA: // masculine ordinal
    case 0x02DA: // ring
    case 0x2218:
        return QChar(0x00B0);
    case 0x2212: // minus
    case 0x2010:
    case 0x2011:
    case 0x2013:
    case 0xFE63:
    case 0xFF0D:
        return QLatin1Char('-');
    case 0x200B: // nothing to be seen
    case 0x200C:
    case 0x200D:
    case 0x200E:
    case 0x200F:
    case 0x2060:
    case 0xFEFF:
        return QChar();
    default:
        return c.toUpper();
    }
}

/// Plain signs, single blanks. A tab or line end that stands once is where the two values part: a semicolon.
QString Normalised(const QString& text)
{
    QString plain;
    for (const QChar c : text.trimmed()) {
        const QChar p = Plain(c);
        if (!p.isNull())
            plain += p;
    }
    plain.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    plain = plain.trimmed();
    if (plain.count(QLatin1Char('\t')) + plain.count(QLatin1Char('\n')) == 1) {
        plain.replace(QLatin1Char('\t'), QLatin1Char(';'));
        plain.replace(QLatin1Char('\n'), QLatin1Char(';'));
    }
    plain = plain.simplified();
    plain.replace(QLatin1String("''"), QLatin1String("\""));
    const bool round = plain.startsWith(QLatin1Char('(')) && plain.endsWith(QLatin1Char(')'));
    const bool square = plain.startsWith(QLatin1Char('[')) && plain.endsWith(QLatin1Char(']'));
    return round || square ? plain.mid(1, plain.size() - 2).trimmed() : plain;
}

bool HasDigit(const QString& text)
{
    for (const QChar c : text) {
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
            return true;
    }
    return false;
}

} // namespace

bool ZrPositionText::Parse(const QString& text, ZrPositionText& position, QString* error)
{
    const auto fail = [error](const QString& why) {
        if (error)
            *error = why;
        return false;
    };
    if (text.trimmed().isEmpty())
        return fail(QCoreApplication::translate("ZrPositionText", "The position is empty"));
    if (text.size() > longest)
        return fail(QCoreApplication::translate("ZrPositionText", "The text is too long for a position"));
    const QString plain = Normalised(text);
    if (!HasDigit(plain))
        return fail(QCoreApplication::translate("ZrPositionText", "There is no number in it"));

    QString why;
    ZrPositionText read;
    if (ZrGridText::IsGrid(plain)) {
        ZrGridText grid;
        if (!ZrGridText::Parse(plain, grid, why))
            return fail(why);
        read.isGrid = true;
        read.lat = grid.lat;
        read.lng = grid.lng;
        read.zone = grid.zone;
        read.south = grid.south;
        read.east = grid.east;
        read.north = grid.north;
    } else {
        ZrAnglePair pair;
        if (!ZrAnglePair::Parse(plain, pair, why))
            return fail(why);
        read.lat = pair.lat;
        read.lng = pair.lng;
    }
    position = read;
    return true;
}
