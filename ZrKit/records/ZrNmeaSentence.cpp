#include "ZrKit/records/ZrNmeaSentence.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

bool IsPrintable(char c)
{
    return c >= 0x20 && c <= 0x7E;
}

bool IsLetterOrDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// The value of a hexadecimal digit, -1 for any other character.
int HexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

QString HexByte(unsigned char value)
{
    return QStringLiteral("%1").arg(value, 2, 16, QLatin1Char('0')).toUpper();
}

bool Fail(QString* error, const QString& reason)
{
    if (error)
        *error = reason;
    return false;
}

/// Removes spaces, line ends and whole tag blocks (`\...\`) from the front. False when a block has no end.
bool StripTagBlocks(QByteArray& text)
{
    while (text.startsWith('\\')) {
        const int end = text.indexOf('\\', 1);
        if (end < 0)
            return false;
        text = text.mid(end + 1).trimmed();
    }
    return true;
}

/// Cuts the checksum from \p body, which begins behind the start character, and verifies it.
bool TakeChecksum(QByteArray& body, bool& hasChecksum, QString* error)
{
    const int star = body.indexOf('*');
    hasChecksum = star >= 0;
    if (!hasChecksum)
        return true;
    const QByteArray digits = body.mid(star + 1);
    body.truncate(star);
    const int high = digits.size() == 2 ? HexDigit(digits[0]) : -1;
    const int low = digits.size() == 2 ? HexDigit(digits[1]) : -1;
    if (high < 0 || low < 0)
        return Fail(error,
            QCoreApplication::translate("ZrNmeaSentence", "The checksum is not two hexadecimal digits."));
    const auto told = static_cast<unsigned char>(high * 16 + low);
    const unsigned char sum = ZrNmeaSentence::Checksum(body);
    if (told != sum)
        return Fail(error,
            QCoreApplication::translate("ZrNmeaSentence", "The checksum says %1, the sentence has %2.")
                .arg(HexByte(told), HexByte(sum)));
    return true;
}

/// Splits the address field: "P" and the rest for proprietary sentences, otherwise two characters and the
/// rest.
bool TakeAddress(const QByteArray& address, ZrNmeaSentence& sentence)
{
    const int talkerSize = address.startsWith('P') ? 1 : 2;
    if (address.size() <= talkerSize || !std::all_of(address.begin(), address.end(), IsLetterOrDigit))
        return false;
    sentence.talker = address.left(talkerSize);
    sentence.formatter = address.mid(talkerSize);
    return true;
}

} // namespace

QByteArray ZrNmeaSentence::Field(int i) const
{
    return fields.value(i);
}

double ZrNmeaSentence::Number(int i) const
{
    bool ok = false;
    // QByteArray reads numbers in the C locale; its "nan" and "inf" are no measurements.
    const double value = Field(i).toDouble(&ok);
    return ok && std::isfinite(value) ? value : std::numeric_limits<double>::quiet_NaN();
}

bool ZrNmeaSentence::Parse(const QByteArray& line, ZrNmeaSentence& out, QString* error)
{
    QByteArray text = line.trimmed();
    if (text.size() > MaxLength)
        return Fail(error,
            QCoreApplication::translate("ZrNmeaSentence", "The line is longer than %1 characters.")
                .arg(MaxLength));
    if (!std::all_of(text.begin(), text.end(), IsPrintable))
        return Fail(error,
            QCoreApplication::translate(
                "ZrNmeaSentence", "The line holds bytes that are not printable ASCII."));
    if (!StripTagBlocks(text))
        return Fail(error, QCoreApplication::translate("ZrNmeaSentence", "The tag block has no end."));
    if (!text.startsWith('$') && !text.startsWith('!'))
        return Fail(
            error, QCoreApplication::translate("ZrNmeaSentence", "The line does not begin with '$' or '!'."));

    ZrNmeaSentence sentence;
    sentence.encapsulated = text.startsWith('!');
    QByteArray body = text.mid(1);
    if (!TakeChecksum(body, sentence.hasChecksum, error))
        return false;
    sentence.fields = body.split(',');
    if (!TakeAddress(sentence.fields.takeFirst(), sentence))
        return Fail(error,
            QCoreApplication::translate("ZrNmeaSentence", "The sentence has no talker and formatter."));
    out = sentence;
    return true;
}

unsigned char ZrNmeaSentence::Checksum(const QByteArray& body)
{
    unsigned char sum = 0;
    for (const char c : body)
        sum = static_cast<unsigned char>(sum ^ static_cast<unsigned char>(c));
    return sum;
}
