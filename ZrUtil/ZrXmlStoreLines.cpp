// The line form of the settings store, in byte arrays.

#include "ZrUtil/ZrXmlStore.h"

#include <QTextStream>

namespace {

/// UTF-8, also where the locale of the system is another or the bytes look like UTF-16.
void SetEncoding(QTextStream& stream)
{
    stream.setCodec("UTF-8");
    stream.setAutoDetectUnicode(false);
}

void WriteObject(QTextStream& stream, const ZrXmlObj& obj)
{
    if (obj.IsEmpty() && obj.data.IsEmpty())
        return;
    stream << "<OBJ>=" << obj.name << '=' << obj.type << '\n';
    for (ZrListPos* pos = obj.GetHeadPos(); pos;) {
        const ZrXmlItem* item = obj.GetNext(pos);
        stream << item->name << '=' << item->value << '\n';
    }
    for (ZrListPos* pos = obj.data.GetHeadPos(); pos;)
        stream << "<DATA>=" << *obj.data.GetNext(pos) << '\n';
}

/// Fills a store line by line. Lines with fewer fields than their form needs are skipped; the last field of a
/// form keeps whatever "=" it holds.
class LinesReader
{
public:
    explicit LinesReader(ZrXmlStore& store)
        : m_store(store)
    {
    }

    void TakeLine(const QString& line)
    {
        const int equals = line.indexOf(QLatin1Char('='));
        if (equals < 0)
            return;
        const QString first = line.left(equals);
        const QString rest = line.mid(equals + 1);
        if (first == QLatin1String("<SET>")) {
            m_set = m_store.AddSet(rest);
            m_obj = nullptr;
        } else if (first == QLatin1String("<OBJ>")) {
            TakeObject(rest);
        } else if (m_obj && first == QLatin1String("<DATA>")) {
            m_obj->data.AddTail(new QString(rest));
        } else if (m_obj) {
            m_obj->Add(first, rest);
        }
    }

private:
    void TakeObject(const QString& fields)
    {
        const int equals = fields.indexOf(QLatin1Char('='));
        if (m_set && equals >= 0)
            m_obj = m_set->AddObj(fields.left(equals), fields.mid(equals + 1));
    }

    ZrXmlStore& m_store;
    ZrXmlSet* m_set = nullptr; ///< the current set
    ZrXmlObj* m_obj = nullptr; ///< the current object
};

} // namespace

void ZrXmlStore::Save(QByteArray& bytes)
{
    // A stream writes over the start of what it finds and leaves the rest.
    bytes.clear();
    QTextStream stream(&bytes, QIODevice::ReadWrite);
    SetEncoding(stream);
    for (ZrListPos* setPos = GetHeadPos(); setPos;) {
        const ZrXmlSet* set = GetNext(setPos);
        stream << "<SET>=" << set->name << '\n';
        for (ZrListPos* pos = set->GetHeadPos(); pos;)
            WriteObject(stream, *set->GetNext(pos));
    }
}

bool ZrXmlStore::Load(QByteArray& bytes)
{
    QTextStream stream(&bytes, QIODevice::ReadOnly);
    SetEncoding(stream);
    LinesReader reader(*this);
    QString line;
    while (stream.readLineInto(&line))
        reader.TakeLine(line);
    return true;
}
