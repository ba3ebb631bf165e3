#include "ZrUtil/LqColourMap.h"

#include "ZrUtil/ZrSameFile.h"

#include <QDebug>
#include <QFile>
#include <QStringList>
#include <QTextStream>

#include <cstddef>
#include <cstdlib>

namespace {

QStringList Parts(const QString& text, char separator)
{
    return text.simplified().split(QLatin1Char(separator), Qt::SkipEmptyParts);
}

unsigned char ToByte(const QString& word)
{
    return static_cast<unsigned char>(word.toInt(nullptr, 10));
}

bool ParseLine(const QString& line, unsigned char (&rgb)[3])
{
    const QStringList parts = Parts(line, ',');
    if (parts.size() < 3)
        return false;
    const QStringList red = Parts(parts[0], ' ');
    const QStringList green = Parts(parts[1], ' ');
    const QStringList blue = Parts(parts[2], ' ');
    if (red.size() != 4 || green.size() != 3 || blue.size() != 3)
        return false;
    rgb[0] = ToByte(red[3]);
    rgb[1] = ToByte(green[2]);
    rgb[2] = ToByte(blue[2]);
    return true;
}

} // namespace

LqColourMap::~LqColourMap()
{
    SetSize(0);
}

LqColourMap& LqColourMap::operator=(const LqColourMap& other)
{
    m_rgb = other.m_rgb;
    m_count = other.m_count;
    return *this;
}

void LqColourMap::ReadCMap(QString path)
{
    QFile file(path);
    if (!zr::is_possible_path(path) || !file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qDebug() << "could not open colour map file for read: " << path;
        return;
    }
    qDebug() << "Reading:" << path;
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    while (!stream.atEnd()) {
        unsigned char rgb[3];
        if (!ParseLine(stream.readLine(), rgb))
            continue;
        SetSize(m_count + 1);
        unsigned char* entry = m_rgb + 3 * static_cast<std::ptrdiff_t>(m_count - 1);
        for (int i = 0; i < 3; ++i)
            entry[i] = rgb[i];
    }
    qDebug() << path << ": Read " << m_count << " fields.";
}

void LqColourMap::SetSize(int n)
{
    if (n <= 0) {
        std::free(m_rgb);
        m_rgb = nullptr;
        m_count = 0;
        return;
    }
    m_rgb = static_cast<unsigned char*>(std::realloc(m_rgb, 3 * static_cast<std::size_t>(n)));
    m_count = n;
}
