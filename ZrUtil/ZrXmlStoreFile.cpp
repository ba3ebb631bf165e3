// The file form of the settings store. The lines are those of a printf with fixed formats, and are read by
// the rules of scanf: this is not an XML parser, and what other XML files hold is not understood.

#include "ZrUtil/ZrConsole.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QBuffer>
#include <QDateTime>
#include <QFile>
#include <QHash>
#include <QPair>

#include <initializer_list>
#include <string_view>

namespace {

/// Characters of a line at most; what a line has beyond them is read as the next line.
constexpr int LineLimit = 1023;

/// Characters of a scanned name or value at most.
constexpr int FieldLimit = 4095;

static_assert(LineLimit <= FieldLimit, "no field of a line can exceed its limit");

/// Appends the pieces of a line. As C strings they end at their first zero byte.
void Append(QByteArray& text, std::initializer_list<QByteArray> pieces)
{
    for (const QByteArray& piece : pieces)
        text.append(piece.constData());
}

void AppendObject(QByteArray& text, const ZrXmlObj& obj)
{
    if (obj.IsEmpty() && obj.data.IsEmpty())
        return;
    Append(text, {"\t\t<Object name=\"", obj.name.toLatin1(), "\" type=\"", obj.type.toLatin1(), "\">\n"});
    for (ZrListPos* pos = obj.GetHeadPos(); pos;) {
        const ZrXmlItem* item = obj.GetNext(pos);
        Append(text, {"\t\t\t<", item->name.toLatin1(), " val=\"", item->value.toLatin1(), "\"/>\n"});
    }
    for (ZrListPos* pos = obj.data.GetHeadPos(); pos;)
        Append(text, {"\t\t\t<Data>", obj.data.GetNext(pos)->toLatin1(), "</Data>\n"});
    Append(text, {"\t\t</Object>\n"});
}

QByteArray FileText(const ZrXmlStore& store)
{
    QByteArray text;
    Append(text, {"<?xml version=\"1.0\" ?>\n"});
    Append(text, {"<XmlStore name=\"", QDateTime::currentDateTime().toString().toLatin1(), "\">\n"});
    for (ZrListPos* setPos = store.GetHeadPos(); setPos;) {
        const ZrXmlSet* set = store.GetNext(setPos);
        Append(text, {"\t<Settings name=\"", set->name.toLatin1(), "\">\n"});
        for (ZrListPos* pos = set->GetHeadPos(); pos;)
            AppendObject(text, *set->GetNext(pos));
        Append(text, {"\t</Settings>\n"});
    }
    Append(text, {"</XmlStore>\n"});
    return text;
}

/// The white space of the C locale.
bool IsSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Scans one line from left to right by the rules of scanf.
class LineScan
{
public:
    explicit LineScan(std::string_view line)
        : m_rest(line)
    {
    }

    /// Takes \p pattern, in which a blank stands for white space of any length, none included.
    bool Match(std::string_view pattern)
    {
        for (const char c : pattern) {
            if (c == ' ') {
                SkipSpace();
                continue;
            }
            if (m_rest.empty() || m_rest.front() != c)
                return false;
            m_rest.remove_prefix(1);
        }
        return true;
    }

    /// Takes a word: white space, then what stands before the next white space.
    bool Word(QString& word)
    {
        SkipSpace();
        std::size_t length = 0;
        while (length < m_rest.size() && !IsSpace(m_rest[length]))
            ++length;
        return Take(length, word);
    }

    /// Takes what stands before the next \p end, at least one character. The end must be on the line: a text
    /// that the line limit has cut does not count.
    bool Until(char end, QString& field)
    {
        const std::size_t length = m_rest.find(end);
        return length != std::string_view::npos && Take(length, field);
    }

private:
    void SkipSpace()
    {
        while (!m_rest.empty() && IsSpace(m_rest.front()))
            m_rest.remove_prefix(1);
    }

    bool Take(std::size_t length, QString& field)
    {
        if (length == 0)
            return false;
        field = QString::fromLatin1(m_rest.data(), int(length));
        m_rest.remove_prefix(length);
        return true;
    }

    std::string_view m_rest;
};

/// Fills a store line by line. What stands behind the last field of a line is not examined.
class FileReader
{
public:
    explicit FileReader(ZrXmlStore& store)
        : m_store(store)
    {
        for (ZrListPos* pos = store.GetHeadPos(); pos;)
            Learn(store.GetNext(pos));
    }

    void TakeLine(std::string_view line)
    {
        if (m_obj)
            TakeInObject(line);
        else if (m_set)
            TakeInSet(line);
        else
            TakeOutside(line);
    }

private:
    void TakeOutside(std::string_view line)
    {
        LineScan scan(line);
        QString name;
        if (scan.Match(" <Settings name=\"") && scan.Until('"', name))
            m_set = Set(name);
    }

    void TakeInSet(std::string_view line)
    {
        LineScan scan(line);
        QString name;
        QString type;
        if (line == "</Settings>")
            m_set = nullptr;
        else if (scan.Match("<Object name=\"") && scan.Until('"', name) && scan.Match("\" type=\"")
            && scan.Until('"', type))
            m_obj = Obj(name, type);
    }

    void TakeInObject(std::string_view line)
    {
        LineScan item(line);
        LineScan data(line);
        QString name;
        QString value;
        if (line == "</Object>")
            m_obj = nullptr;
        else if (item.Match("<") && item.Word(name) && item.Match(" val=\"") && item.Until('"', value))
            m_obj->Add(name, value);
        else if (data.Match("<Data>") && data.Until('<', value))
            m_obj->data.AddTail(new QString(value));
    }

    /// Remembers what the store holds. Of equal names the first counts, as for `AddSet` and `AddObj`, which
    /// walk through all: with them the time would grow as the square of the number of objects.
    void Learn(ZrXmlSet* set)
    {
        if (!m_sets.contains(set->name))
            m_sets.insert(set->name, set);
        for (ZrListPos* pos = set->GetHeadPos(); pos;) {
            ZrXmlObj* obj = set->GetNext(pos);
            if (!m_objs.contains({set, obj->name}))
                m_objs.insert({set, obj->name}, obj);
        }
    }

    ZrXmlSet* Set(const QString& name)
    {
        ZrXmlSet*& set = m_sets[name];
        if (!set) {
            set = new ZrXmlSet(name, &m_store);
            m_store.AddTail(set);
        }
        return set;
    }

    ZrXmlObj* Obj(const QString& name, const QString& type)
    {
        ZrXmlObj*& obj = m_objs[{m_set, name}];
        if (!obj) {
            obj = new ZrXmlObj(name, type, m_set);
            m_set->AddTail(obj);
        }
        return obj;
    }

    ZrXmlStore& m_store;
    ZrXmlSet* m_set = nullptr; ///< the open set
    ZrXmlObj* m_obj = nullptr; ///< the open object
    QHash<QString, ZrXmlSet*> m_sets;
    QHash<QPair<ZrXmlSet*, QString>, ZrXmlObj*> m_objs;
};

/// \p line without what follows a zero byte, then without blanks, tabs, CR and LF at both ends.
std::string_view Trimmed(std::string_view line)
{
    constexpr std::string_view blanks = " \t\r\n";
    line = line.substr(0, line.find('\0'));
    const std::size_t first = line.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return line.substr(first, line.find_last_not_of(blanks) - first + 1);
}

void ReadLines(QIODevice& device, ZrXmlStore& store)
{
    char line[LineLimit + 1];
    FileReader reader(store);
    // The first line, the declaration, is skipped whatever it says.
    device.readLine(line, sizeof line);
    for (qint64 length = 0; (length = device.readLine(line, sizeof line)) > 0;)
        reader.TakeLine(Trimmed(std::string_view(line, std::size_t(length))));
}

} // namespace

QByteArray ZrXmlStore::FileForm() const
{
    return FileText(*this);
}

void ZrXmlStore::LoadFileForm(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    ReadLines(buffer, *this);
}

bool ZrXmlStore::Save(QString path)
{
    const QByteArray text = FileText(*this);
    QFile file(path);
    bool written = file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)
        && file.write(text) == text.size();
    // Closing writes what is still buffered: a full disk may show only here.
    file.close();
    written = written && file.error() == QFileDevice::NoError;
    ZrConsole::Debug(0, written ? "Settings file written to %s" : "Cannot write to settings file %s",
        path.toUtf8().constData());
    return written;
}

bool ZrXmlStore::Load(QString path)
{
    // Not opened in Qt's text mode, which would drop every CR, not only those at the ends of lines.
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        ZrConsole::Debug(0, "Cannot open settings file: %s", path.toUtf8().constData());
        return false;
    }
    ReadLines(file, *this);
    file.close();
    ZrConsole::Debug(0, "Read settings file: %s", path.toUtf8().constData());
    return true;
}
