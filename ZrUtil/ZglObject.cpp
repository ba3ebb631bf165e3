#include "ZrUtil/ZglObject.h"

#include <QByteArray>
#include <QDebug>
#include <QFile>

#include <array>
#include <charconv>
#include <cstddef>
#include <string_view>

namespace {

using Word = std::string_view;

/// The words of one line; more than any statement has are counted but not kept.
class Words
{
public:
    explicit Words(Word line)
    {
        std::size_t at = 0;
        while ((at = line.find_first_not_of(' ', at)) != Word::npos) {
            const std::size_t end = std::min(line.find(' ', at), line.size());
            if (m_count < m_words.size())
                m_words[m_count] = line.substr(at, end - at);
            ++m_count;
            at = end;
        }
    }

    std::size_t Count() const { return m_count; }

    Word operator[](std::size_t i) const { return m_words[i]; }

private:
    std::array<Word, 5> m_words;
    std::size_t m_count = 0;
};

bool ParseFloat(Word word, float& value)
{
    const bool plain
        = !word.empty() && (word[0] == '-' || word[0] == '.' || (word[0] >= '0' && word[0] <= '9'));
    if (plain) {
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
        if (error == std::errc() && end == word.data() + word.size())
            return true;
    }
    // What the fast way does not know: a plus sign, names of infinity and NaN, numbers below the smallest.
    bool ok = false;
    value = QByteArray::fromRawData(word.data(), static_cast<int>(word.size())).toFloat(&ok);
    return ok;
}

/// The words behind the first one as numbers.
template <std::size_t N> bool ParseFloats(const Words& words, std::array<float, N>& values)
{
    if (words.Count() != N + 1)
        return false;
    for (std::size_t i = 0; i < N; ++i)
        if (!ParseFloat(words[i + 1], values[i]))
            return false;
    return true;
}

struct Corner
{
    int position;
    int texture;
    int normal;
};

bool ParseIndex(Word word, int& value)
{
    const bool plus = word.size() > 1 && word[0] == '+' && word[1] != '-';
    const char* begin = word.data() + (plus ? 1 : 0);
    const auto [end, error] = std::from_chars(begin, word.data() + word.size(), value);
    return error == std::errc() && end == word.data() + word.size();
}

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

bool IsIn(int index, std::size_t count)
{
    return index > 0 && static_cast<std::size_t>(index) <= count;
}

class Reader
{
public:
    explicit Reader(ZglObject& object)
        : m_object(object)
    {
    }

    /// Null when the line is in order, else what is wrong.
    const char* Line(Word line)
    {
        if (line.empty() || line[0] == '#')
            return nullptr;
        const Words words(line);
        if (words.Count() == 0)
            return nullptr;
        const Word statement = words[0];
        if (statement == "v")
            return Vector(words, m_positions) ? nullptr : "Error in vertex definition";
        if (statement == "vt")
            return Texture(words) ? nullptr : "Error in texture definition";
        if (statement == "vn")
            return Vector(words, m_normals) ? nullptr : "Error in normal definition";
        if (statement == "f")
            return Face(words) ? nullptr : "Error in face definition";
        if (statement == "o")
            return Name(words) ? nullptr : "Error in object name definition";
        return nullptr;
    }

    /// False, with nothing appended, when a face refers to something that was not in the file.
    bool Finish()
    {
        for (const Corner& corner : m_corners)
            if (!IsIn(corner.position, m_positions.size()) || !IsIn(corner.texture, m_textures.size())
                || !IsIn(corner.normal, m_normals.size()))
                return false;
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

private:
    static bool Vector(const Words& words, std::vector<QVector3D>& list)
    {
        std::array<float, 3> v{};
        if (!ParseFloats(words, v))
            return false;
        list.emplace_back(v[0], v[1], v[2]);
        return true;
    }

    bool Texture(const Words& words)
    {
        std::array<float, 2> v{};
        if (!ParseFloats(words, v))
            return false;
        m_textures.emplace_back(v[0], v[1]);
        return true;
    }

    bool Face(const Words& words)
    {
        if (words.Count() != 4)
            return false;
        std::array<Corner, 3> corners{};
        for (std::size_t i = 0; i < 3; ++i)
            if (!ParseCorner(words[i + 1], corners[i]))
                return false;
        m_corners.insert(m_corners.end(), corners.begin(), corners.end());
        return true;
    }

    bool Name(const Words& words)
    {
        if (words.Count() != 2)
            return false;
        m_object.m_name = QString::fromUtf8(words[1].data(), static_cast<int>(words[1].size()));
        return true;
    }

    ZglObject& m_object;
    std::vector<QVector3D> m_positions;
    std::vector<QVector2D> m_textures;
    std::vector<QVector3D> m_normals;
    std::vector<Corner> m_corners;
};

} // namespace

bool ZglObject::LoadObj(QString path, ZglObject& object)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qDebug() << "Unable to read:" << path;
        return false;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        qDebug() << "Unable to read:" << path;
        return false;
    }
    Reader reader(object);
    Word rest(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        if (const char* error = reader.Line(rest.substr(0, end))) {
            qDebug() << error;
            return false;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    if (!reader.Finish()) {
        qDebug() << "Error in face definition";
        return false;
    }
    return true;
}
