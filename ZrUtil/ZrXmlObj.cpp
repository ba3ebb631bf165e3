#include "ZrUtil/ZrXmlObj.h"

#include "ZrUtil/ZrConsole.h"
#include "ZrUtil/ZrTypes.h"
#include "ZrUtil/ZrXmlSet.h"

#include <QColor>
#include <QMatrix4x4>
#include <QVector3D>

#include <algorithm>
#include <clocale>
#include <cstdarg>
#include <cstdio>
#ifdef Q_OS_WIN
#include <string>
#else
#include <locale.h>
#endif

template class ZrLstMgd<ZrXmlItem>;

namespace {

/// Puts the calling thread into the C locale while it lives. A Qt application sets the locale of its user,
/// whose decimal comma would otherwise get into the files, and make them unreadable under another locale.
class CLocale
{
public:
    CLocale(const CLocale&) = delete;
    CLocale& operator=(const CLocale&) = delete;

#ifdef Q_OS_WIN
    CLocale()
        : m_mode(_configthreadlocale(_ENABLE_PER_THREAD_LOCALE))
        , m_former(std::setlocale(LC_ALL, nullptr))
    {
        std::setlocale(LC_ALL, "C");
    }

    ~CLocale()
    {
        std::setlocale(LC_ALL, m_former.c_str());
        _configthreadlocale(m_mode);
    }

private:
    int m_mode;
    std::string m_former;
#else
    CLocale()
        : m_former(uselocale(Shared()))
    {
    }

    ~CLocale()
    {
        uselocale(m_former);
    }

private:
    static locale_t Shared()
    {
        static const locale_t shared = newlocale(LC_ALL_MASK, "C", nullptr);
        return shared;
    }

    locale_t m_former;
#endif
};

/// Ends \p text, \p size bytes long, before its last UTF-8 character if only the first bytes of it are there.
void DropPartOfCharacter(char* text, int size)
{
    int first = size - 1;
    while (first > 0 && (text[first] & 0xC0) == 0x80)
        --first;
    const auto lead = static_cast<unsigned char>(text[first]);
    const int whole = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    if (size - first < whole)
        text[first] = 0;
}

/// The text of \p fmt and its arguments, cut at the size of the buffer.
QString FormatText(const char* fmt, va_list args)
{
    char text[ZrXmlObj::TextSize] = "";
    const CLocale locale;
    const int length = fmt ? std::vsnprintf(text, sizeof text, fmt, args) : -1;
    if (length < 0)
        return QString();
    if (length >= ZrXmlObj::TextSize)
        DropPartOfCharacter(text, ZrXmlObj::TextSize - 1);
    return QString::fromUtf8(text);
}

/// Whether every field of \p fmt is filled from \p text.
template <class... T> bool Scan(const QString& text, const char* fmt, T&... fields)
{
    const QByteArray bytes = text.toLatin1();
    const CLocale locale;
    return std::sscanf(bytes.constData(), fmt, &fields...) == int(sizeof...(fields));
}

/// Loads an integer through \a Wide, the type of the one field of \p fmt: a scan straight into a small
/// variable writes beyond it.
template <class Wide, class T>
void LoadInteger(ZrXmlObj& obj, const QString& itemName, T& value, const char* fmt)
{
    QString text;
    Wide wide = 0;
    if (obj.GetItm(itemName, text) && Scan(text, fmt, wide))
        value = static_cast<T>(wide);
}

template <class T> void LoadUnsigned(ZrXmlObj& obj, const QString& itemName, T& value, bool hex)
{
    LoadInteger<u64>(obj, itemName, value, hex ? "0x%llx%*c" : "%llu%*c");
}

template <class T> void LoadSigned(ZrXmlObj& obj, const QString& itemName, T& value)
{
    LoadInteger<i64>(obj, itemName, value, "%lld%*c");
}

/// \p places as far as they fit into a text: what comes behind them is cut off, but the C library would first
/// take memory for all.
int PlacesKept(int places)
{
    return std::min(places, ZrXmlObj::TextSize);
}

void StoreReal(ZrXmlObj& obj, const QString& itemName, double value, int places)
{
    if (places == -1)
        obj.Add(itemName, "%g", value);
    else if (places >= 0)
        obj.Add(itemName, "%1.*f", PlacesKept(places), value);
}

} // namespace

ZrXmlObj::ZrXmlObj(const QString& objName, const QString& objType, ZrXmlSet* owner)
    : name(objName)
    , type(objType)
    , set(owner)
{
}

bool ZrXmlObj::IsLoading() const
{
    return set && set->IsLoading();
}

bool ZrXmlObj::IsStoring() const
{
    return !IsLoading();
}

void ZrXmlObj::Add(const QString& itemName, const QString& value)
{
    AddTail(new ZrXmlItem(itemName, value));
}

void ZrXmlObj::Add(const QString& itemName, const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    const QString value = FormatText(fmt, args);
    va_end(args);
    Add(itemName, value);
}

void ZrXmlObj::Data(const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    const QString line = FormatText(fmt, args);
    va_end(args);
    data.AddTail(new QString(line));
}

bool ZrXmlObj::GetItm(const QString& itemName, QString& value)
{
    ZrListPos* const start = cursor && cursor->next ? cursor->next : head;
    ZrListPos* pos = start;
    while (pos) {
        const ZrXmlItem* item = GetAt(pos);
        if (item->name == itemName) {
            cursor = pos;
            value = item->value;
            return true;
        }
        pos = pos->next ? pos->next : head;
        if (pos == start)
            break;
    }
    return false;
}

void ZrXmlObj::Item(const QString& itemName, char& value)
{
    if (IsStoring()) {
        Add(itemName, value ? QString(QLatin1Char(value)) : QString());
        return;
    }
    QString text;
    char scanned = 0;
    if (GetItm(itemName, text) && Scan(text, "%c%*c", scanned))
        value = scanned;
}

void ZrXmlObj::Item(const QString& itemName, unsigned char& value, bool hex)
{
    if (IsStoring())
        Add(itemName, hex ? "0x%02x" : "%d", value);
    else
        LoadUnsigned(*this, itemName, value, hex);
}

void ZrXmlObj::Item(const QString& itemName, short& value)
{
    if (IsStoring())
        Add(itemName, "%d", value);
    else
        LoadSigned(*this, itemName, value);
}

void ZrXmlObj::Item(const QString& itemName, unsigned short& value, bool hex)
{
    if (IsStoring())
        Add(itemName, hex ? "0x%04x" : "%u", value);
    else
        LoadUnsigned(*this, itemName, value, hex);
}

void ZrXmlObj::Item(const QString& itemName, int& value)
{
    if (IsStoring())
        Add(itemName, "%d", value);
    else
        LoadSigned(*this, itemName, value);
}

void ZrXmlObj::Item(const QString& itemName, unsigned int& value, bool hex)
{
    if (IsStoring())
        Add(itemName, hex ? "0x%08x" : "%d", value);
    else if (hex)
        LoadUnsigned(*this, itemName, value, hex);
    else
        LoadSigned(*this, itemName, value);
}

void ZrXmlObj::Item(const QString& itemName, float& value, int places)
{
    if (IsStoring()) {
        StoreReal(*this, itemName, double(value), places);
        return;
    }
    QString text;
    float scanned = 0.0F;
    if (!GetItm(itemName, text))
        ZrConsole::Debug(0, "Cannot find item %s", itemName.toUtf8().constData());
    else if (Scan(text, "%f", scanned))
        value = scanned;
}

void ZrXmlObj::Item(const QString& itemName, double& value, int places)
{
    if (IsStoring()) {
        StoreReal(*this, itemName, value, places);
        return;
    }
    QString text;
    double scanned = 0.0;
    if (GetItm(itemName, text) && Scan(text, "%lf%*c", scanned))
        value = scanned;
}

void ZrXmlObj::Item(const QString& itemName, QVector3D& value, int places)
{
    double x = double(value.x());
    double y = double(value.y());
    double z = double(value.z());
    if (IsStoring()) {
        const int kept = PlacesKept(places);
        if (places == -1)
            Add(itemName, "%g, %g, %g", x, y, z);
        else if (places >= 0)
            Add(itemName, "%1.*lf, %1.*lf, %1.*lf", kept, x, kept, y, kept, z);
        return;
    }
    QString text;
    if (GetItm(itemName, text) && Scan(text, "%lf, %lf, %lf", x, y, z))
        value = QVector3D(float(x), float(y), float(z));
}

void ZrXmlObj::Item(const QString& itemName, bool& value)
{
    QString text = value ? QStringLiteral("true") : QStringLiteral("false");
    if (IsStoring())
        Add(itemName, text);
    else if (GetItm(itemName, text))
        value = text != QLatin1String("false");
}

void ZrXmlObj::Item(const QString& itemName, QString& value)
{
    if (IsStoring())
        Add(itemName, value);
    else
        GetItm(itemName, value);
}

void ZrXmlObj::Item(const QString& itemName, QChar& value)
{
    if (IsStoring()) {
        Add(itemName, QString(value));
        return;
    }
    QString text;
    if (GetItm(itemName, text) && !text.isEmpty())
        value = text.at(0);
}

void ZrXmlObj::Item(const QString& itemName, QColor& value)
{
    if (IsStoring()) {
        Add(itemName, value.name());
        return;
    }
    QString text;
    // Asked first: a colour that is set by an unknown name prints a warning.
    if (!GetItm(itemName, text) || !QColor::isValidColor(text))
        return;
    value.setNamedColor(text);
    value.setAlpha(255);
}

void ZrXmlObj::Item(const QString& itemName, QMatrix4x4& /*value*/, int /*places*/)
{
    QString text;
    if (IsLoading())
        GetItm(itemName, text);
}

void ZrXmlObj::Item(const QString& itemName, void*& value, Converter converter)
{
    QString text;
    if (IsStoring() || !GetItm(itemName, text))
        return;
    if (text.isEmpty() || text == QLatin1String("NULL"))
        value = nullptr;
    else if (converter)
        value = converter(text);
}

void ZrXmlObj::RemoveAt(ZrListPos* pos)
{
    cursor = nullptr;
    ZrLstMgd<ZrXmlItem>::RemoveAt(pos);
}

void ZrXmlObj::Remove(ZrXmlItem* item)
{
    cursor = nullptr;
    ZrLstMgd<ZrXmlItem>::Remove(item);
}

void ZrXmlObj::RemoveHead()
{
    cursor = nullptr;
    ZrLstMgd<ZrXmlItem>::RemoveHead();
}

void ZrXmlObj::RemoveTail()
{
    cursor = nullptr;
    ZrLstMgd<ZrXmlItem>::RemoveTail();
}

void ZrXmlObj::RemoveAfter(ZrListPos* pos)
{
    cursor = nullptr;
    ZrLstMgd<ZrXmlItem>::RemoveAfter(pos);
}

void ZrXmlObj::RemoveBefore(ZrListPos* pos)
{
    cursor = nullptr;
    ZrLstMgd<ZrXmlItem>::RemoveBefore(pos);
}

void ZrXmlObj::RemoveAll()
{
    cursor = nullptr;
    ZrLstMgd<ZrXmlItem>::RemoveAll();
}

void ZrXmlObj::Grow(int n)
{
    cursor = nullptr;
    ZrLstMgd<ZrXmlItem>::Grow(n);
}

void ZrXmlObj::SetSize(unsigned int n)
{
    cursor = nullptr;
    ZrLstMgd<ZrXmlItem>::SetSize(n);
}
