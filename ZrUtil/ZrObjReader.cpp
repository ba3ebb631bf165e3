#include "ZrUtil/ZrObjReader.h"

#include "ZrUtil/ZglObject.h"
#include "ZrUtil/ZrObjLines.h"
#include "ZrUtil/ZrSameFile.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <vector>

namespace {

using Word = std::string_view;

/// The words behind the first one of a line; more than any statement has are counted but not kept.
class Words
{
public:
    explicit Words(Word line)
    {
        const char* at = line.data();
        const char* const end = at + line.size();
        for (;;) {
            while (at != end && *at == ' ')
                ++at;
            if (at == end)
                return;
            const char* const begin = at;
            while (at != end && *at != ' ')
                ++at;
            if (m_count < m_words.size())
                m_words[m_count] = Word(begin, static_cast<std::size_t>(at - begin));
            ++m_count;
        }
    }

    std::size_t Count() const { return m_count; }

    Word operator[](std::size_t i) const { return m_words[i]; }

private:
    std::array<Word, 3> m_words;
    std::size_t m_count = 0;
};

/// Of a word beyond what a string holds, the begin.
QString Text(Word word)
{
    constexpr std::size_t most = 1'000'000'000;
    return QString::fromUtf8(word.data(), static_cast<int>(std::min(word.size(), most)));
}

/// The word for a message; of a long one the begin.
QString Quoted(Word word)
{
    constexpr std::size_t mostShown = 40;
    const bool isLong = word.size() > mostShown;
    return QLatin1Char('"') + Text(word.substr(0, mostShown)) + (isLong ? QStringLiteral("…") : QString())
        + QLatin1Char('"');
}

bool ParseFloat(Word word, float& value)
{
    bool ok = false;
    value = Text(word).toFloat(&ok);
    return ok;
}

bool ParseIndex(Word word, int& value)
{
    bool ok = false;
    value = Text(word).toInt(&ok);
    return ok;
}

/// Indices of a corner, from 1.
struct Corner
{
    int position;
    int texture;
    int normal;
};

bool ParseCorner(Word word, Corner& corner)
{
    const std::size_t first = word.find('/');
    const std::size_t second = first == Word::npos ? first : word.find('/', first + 1);
    if (second == Word::npos || word.find('/', second + 1) != Word::npos)
        return false;
    return ParseIndex(word.substr(0, first), corner.position)
        && ParseIndex(word.substr(first + 1, second - first - 1), corner.texture)
        && ParseIndex(word.substr(second + 1), corner.normal);
}

/// Reads the words of a line as numbers when they are spelled in the usual way, with the values that
/// `QString::toFloat` and `QString::toInt` give. False says that the line is to be looked at word by word,
/// not that it is in error.
class Usual
{
public:
    explicit Usual(Word rest)
        : m_at(rest.data())
        , m_end(rest.data() + rest.size())
    {
    }

    /// A sign, up to 18 digits with a point, an exponent. Digits and power of ten are exact as doubles, so
    /// that their product or quotient is the double next to the number; it is rounded to float after that.
    bool Float(float& value)
    {
        SkipBlanks();
        const bool negative = m_at != m_end && *m_at == '-';
        m_at += negative ? 1 : 0;
        u64 digits = 0;
        const char* const whole = m_at;
        Digits(digits);
        std::ptrdiff_t count = m_at - whole;
        int power = 0;
        if (m_at != m_end && *m_at == '.') {
            const char* const part = ++m_at;
            Digits(digits);
            count += m_at - part;
            power = -static_cast<int>(std::min<std::ptrdiff_t>(m_at - part, 99));
        }
        if (count == 0 || count > 18 || digits > mostExact || !Exponent(power) || std::abs(power) > 22)
            return false;
        const auto exact = static_cast<double>(digits);
        const double size = power < 0 ? exact / powers[-power] : exact * powers[power];
        const bool fits = digits == 0
            || (size >= static_cast<double>(std::numeric_limits<float>::min())
                && size <= static_cast<double>(std::numeric_limits<float>::max()));
        value = static_cast<float>(negative ? -size : size);
        return fits && AtWordEnd();
    }

    bool Index(Corner& corner)
    {
        SkipBlanks();
        return Number(corner.position) && Slash() && Number(corner.texture) && Slash()
            && Number(corner.normal) && AtWordEnd();
    }

    bool AtEnd()
    {
        SkipBlanks();
        return m_at == m_end;
    }

private:
    static constexpr u64 mostExact = u64{1} << 53;
    static constexpr double powers[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12,
        1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

    void SkipBlanks()
    {
        while (m_at != m_end && *m_at == ' ')
            ++m_at;
    }

    bool AtWordEnd() const { return m_at == m_end || *m_at == ' '; }

    bool AtDigit() const { return m_at != m_end && *m_at >= '0' && *m_at <= '9'; }

    /// Runs over, without harm, when there are more than the 18 that `Float` accepts.
    void Digits(u64& value)
    {
        for (; AtDigit(); ++m_at)
            value = 10 * value + static_cast<u64>(*m_at - '0');
    }

    bool Exponent(int& power)
    {
        if (m_at == m_end || (*m_at != 'e' && *m_at != 'E'))
            return true;
        ++m_at;
        const bool negative = m_at != m_end && *m_at == '-';
        m_at += negative || (m_at != m_end && *m_at == '+') ? 1 : 0;
        const char* const begin = m_at;
        u64 value = 0;
        Digits(value);
        power += negative ? -static_cast<int>(value & 0xFFFF) : static_cast<int>(value & 0xFFFF);
        return m_at != begin && m_at - begin <= 3;
    }

    /// Up to nine digits, which an int holds.
    bool Number(int& value)
    {
        const char* const begin = m_at;
        u64 digits = 0;
        Digits(digits);
        value = static_cast<int>(digits & 0x7FFFFFFF);
        return m_at != begin && m_at - begin <= 9;
    }

    bool Slash() { return m_at != m_end && *m_at++ == '/'; }

    const char* m_at;
    const char* m_end;
};

bool IsIn(int index, std::size_t count)
{
    return index > 0 && static_cast<std::size_t>(index) <= count;
}

/// The lists of a file.
class Lists
{
public:
    explicit Lists(ZglObject& object)
        : m_object(object)
    {
    }

    /// False when the line is in error; `error` and `detail` say how.
    bool Line(Word line, u64 number)
    {
        if (line.empty() || line[0] == '#')
            return true;
        const Word statement = ZrObjLines::FirstWord(line);
        line.remove_prefix(static_cast<std::size_t>(statement.data() + statement.size() - line.data()));
        if (statement == "v")
            return Vector(line, m_positions, "Error in vertex definition");
        if (statement == "vt")
            return Texture(line);
        if (statement == "vn")
            return Vector(line, m_normals, "Error in normal definition");
        if (statement == "f")
            return Face(line, number);
        if (statement == "o")
            return Name(line);
        return true;
    }

    /// Appends the corners to the object. False, with nothing appended, when a face refers to something that
    /// the file does not hold; \p number becomes its line.
    bool Finish(u64& number)
    {
        for (const Ahead& ahead : m_ahead) {
            for (std::size_t i = ahead.corner; i < ahead.corner + 3; ++i) {
                if (!IsThere(m_corners[i])) {
                    number = ahead.line;
                    return Refuse(faceError, Missing(m_corners[i]));
                }
            }
        }
        m_object.m_vertices.reserve(m_object.m_vertices.size() + m_corners.size());
        m_object.m_texCoords.reserve(m_object.m_texCoords.size() + m_corners.size());
        m_object.m_normals.reserve(m_object.m_normals.size() + m_corners.size());
        for (const Corner& corner : m_corners) {
            m_object.m_vertices.push_back(m_positions[static_cast<std::size_t>(corner.position - 1)]);
            m_object.m_texCoords.push_back(m_textures[static_cast<std::size_t>(corner.texture - 1)]);
            m_object.m_normals.push_back(m_normals[static_cast<std::size_t>(corner.normal - 1)]);
        }
        return true;
    }

    const char* error = nullptr;
    QString detail;

private:
    static constexpr const char* faceError = "Error in face definition";

    /// A face that refers to something which has not come yet.
    struct Ahead
    {
        std::size_t corner; ///< its first
        u64 line;
    };

    bool Refuse(const char* message, const QString& why)
    {
        error = message;
        detail = why;
        return false;
    }

    template <std::size_t N> bool Numbers(Word rest, std::array<float, N>& values, const char* message)
    {
        Usual usual(rest);
        std::size_t read = 0;
        while (read < N && usual.Float(values[read]))
            ++read;
        if (read == N && usual.AtEnd())
            return true;
        const Words words(rest);
        if (words.Count() != N)
            return Refuse(
                message, QStringLiteral("%1 numbers are wanted, there are %2").arg(N).arg(words.Count()));
        for (std::size_t i = 0; i < N; ++i)
            if (!ParseFloat(words[i], values[i]))
                return Refuse(message, Quoted(words[i]) + QStringLiteral(" is not a number"));
        return true;
    }

    bool Vector(Word rest, std::vector<QVector3D>& list, const char* message)
    {
        std::array<float, 3> v{};
        if (!Numbers(rest, v, message))
            return false;
        list.emplace_back(v[0], v[1], v[2]);
        return true;
    }

    bool Texture(Word rest)
    {
        std::array<float, 2> v{};
        if (!Numbers(rest, v, "Error in texture definition"))
            return false;
        m_textures.emplace_back(v[0], v[1]);
        return true;
    }

    bool Corners(Word rest, std::array<Corner, 3>& corners)
    {
        Usual usual(rest);
        if (usual.Index(corners[0]) && usual.Index(corners[1]) && usual.Index(corners[2]) && usual.AtEnd())
            return true;
        const Words words(rest);
        if (words.Count() != 3)
            return Refuse(
                faceError, QStringLiteral("A face has 3 corners, this one has %1").arg(words.Count()));
        for (std::size_t i = 0; i < 3; ++i)
            if (!ParseCorner(words[i], corners[i]))
                return Refuse(faceError,
                    Quoted(words[i]) + QStringLiteral(" is not position/texture/normal, three indices"));
        return true;
    }

    bool Face(Word rest, u64 number)
    {
        std::array<Corner, 3> corners{};
        if (!Corners(rest, corners))
            return false;
        if (!IsThere(corners[0]) || !IsThere(corners[1]) || !IsThere(corners[2]))
            m_ahead.push_back({m_corners.size(), number});
        m_corners.insert(m_corners.end(), corners.begin(), corners.end());
        return true;
    }

    bool Name(Word rest)
    {
        const Words words(rest);
        if (words.Count() != 1)
            return Refuse("Error in object name definition",
                QStringLiteral("A name is one word, there are %1").arg(words.Count()));
        m_object.m_name = Text(words[0]);
        return true;
    }

    bool IsThere(const Corner& corner) const
    {
        return IsIn(corner.position, m_positions.size()) && IsIn(corner.texture, m_textures.size())
            && IsIn(corner.normal, m_normals.size());
    }

    QString Missing(const Corner& corner) const
    {
        const auto text = [](const char* what, int index, std::size_t count) {
            return QStringLiteral("There is no %1 %2, indices go from 1 to %3")
                .arg(QLatin1String(what))
                .arg(index)
                .arg(count);
        };
        if (!IsIn(corner.position, m_positions.size()))
            return text("position", corner.position, m_positions.size());
        if (!IsIn(corner.texture, m_textures.size()))
            return text("texture coordinate", corner.texture, m_textures.size());
        return text("normal", corner.normal, m_normals.size());
    }

    ZglObject& m_object;
    std::vector<QVector3D> m_positions;
    std::vector<QVector2D> m_textures;
    std::vector<QVector3D> m_normals;
    std::vector<Corner> m_corners;
    std::vector<Ahead> m_ahead;
};

} // namespace

bool ZrObjReader::Read(const QString& path, ZglObject& object)
{
    const auto refuse = [this](const QString& error, const QString& detail, u64 line) {
        m_error = error;
        m_detail = detail;
        m_line = line;
        return error.isEmpty();
    };
    QFile file(path);
    const QString unreadable = QStringLiteral("Unable to read:");
    if (!zr::is_possible_path(path))
        return refuse(unreadable, QStringLiteral("No file is called so"), 0);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return refuse(unreadable, file.errorString(), 0);

    ZrObjLines lines(file);
    Lists lists(object);
    Word line;
    while (lines.Next(line))
        if (!lists.Line(line, lines.Number()))
            return refuse(QString::fromLatin1(lists.error), lists.detail, lines.Number());
    if (file.error() != QFileDevice::NoError)
        return refuse(unreadable, file.errorString(), 0);
    u64 number = 0;
    if (!lists.Finish(number))
        return refuse(QString::fromLatin1(lists.error), lists.detail, number);
    return refuse(QString(), QString(), 0);
}
