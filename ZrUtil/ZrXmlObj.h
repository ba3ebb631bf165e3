#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrLstMgd.h"
#include "ZrUtil/ZrXmlItem.h"

#include <QString>

class ZrXmlSet;

class QChar;
class QColor;
class QMatrix4x4;
class QVector3D;

extern template class ZR_UTIL_EXPORT ZrLstMgd<ZrXmlItem>;

/// One typed object of a settings set: name/value items, in order, and free data lines.
///
/// The same function of a class stores and loads it: every `Item` call either appends the variable as an item
/// or reads it back, as the store of the object decides. A missing item, or one whose text does not convert,
/// leaves the variable as it was. An object without a set, or in a set without a store, always stores.
///
/// \code
/// void Camera::Sync(ZrXmlObj& obj)
/// {
///     obj.Item(QStringLiteral("Name"), m_name);
///     obj.Item(QStringLiteral("Pan"), m_pan, 3); // degrees, three decimals
///     obj.Item(QStringLiteral("Mask"), m_mask, true); // hexadecimal
/// }
/// \endcode
///
/// Numbers are written and read in the C locale, whatever locale the process has set. Texts are not escaped.
/// Not synchronised: one thread at a time.
class ZR_UTIL_EXPORT ZrXmlObj : public ZrLstMgd<ZrXmlItem>
{
public:
    /// Turns the text of an item into a pointer, see `Item`.
    using Converter = void* (*)(const QString&);

    /// Bytes of the buffer that formatted texts go through, its closing zero included.
    static constexpr int TextSize = 4096;

    QString name;
    QString type;

    /// Node of the item that `GetItm` found last; null before the first find and after every removal.
    ZrListPos* cursor = nullptr;

    ZrXmlSet* set = nullptr; ///< the owner, null for a detached object
    ZrLstMgd<QString> data; ///< the data lines

    ZrXmlObj() = default;
    ZrXmlObj(const QString& objName, const QString& objType, ZrXmlSet* owner = nullptr);

    bool IsLoading() const;
    bool IsStoring() const;

    /// Appends an item.
    void Add(const QString& itemName, const QString& value);

    /// Appends an item whose value is formatted as by printf; `%s` takes UTF-8. What does not fit into
    /// `TextSize` bytes is cut, between two characters. A null format, or one that the C library refuses,
    /// gives an empty value.
    void Add(const QString& itemName, const char* fmt, ...) Q_ATTRIBUTE_FORMAT_PRINTF(3, 4);

    /// Appends a data line, formatted and cut as by `Add`.
    void Data(const char* fmt, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);

    /// Copies the value of the item named exactly \p itemName; false, and \p value untouched, if none is.
    ///
    /// The search starts behind the item found last and goes once round the list: items that are asked for in
    /// the order in which they stand cost one step each, and of equal names each call gives the next one.
    bool GetItm(const QString& itemName, QString& value);

    /// One character, Latin-1. A zero character is stored as an empty text, which does not load.
    void Item(const QString& itemName, char& value);

    /// Decimal, or `0x` and two hexadecimal digits. A number out of range is cut to the low bits, here and in
    /// all integer variants.
    void Item(const QString& itemName, unsigned char& value, bool hex = false);

    void Item(const QString& itemName, short& value);

    /// Decimal, or `0x` and four hexadecimal digits.
    void Item(const QString& itemName, unsigned short& value, bool hex = false);

    void Item(const QString& itemName, int& value);

    /// Decimal as a signed number (4294967295 is stored as -1), or `0x` and eight hexadecimal digits.
    void Item(const QString& itemName, unsigned int& value, bool hex = false);

    /// Six significant digits when \p places is -1, that many decimals when it is 0 or more; less than -1
    /// stores nothing. A missing item is reported on the debug output (this variant only).
    void Item(const QString& itemName, float& value, int places = -1);

    /// As for `float`, without the report.
    void Item(const QString& itemName, double& value, int places = -1);

    /// Three numbers, x, y and z, separated by commas; \p places as for `float`. Loads all three or none.
    void Item(const QString& itemName, QVector3D& value, int places = -1);

    /// `true` or `false`; every text but `false` loads as true.
    void Item(const QString& itemName, bool& value);

    void Item(const QString& itemName, QString& value);

    /// A one-character string; an empty text does not load.
    void Item(const QString& itemName, QChar& value);

    /// `#rrggbb`: the alpha is not stored, and a loaded colour is opaque. Colour names load, too.
    void Item(const QString& itemName, QColor& value);

    /// Stores nothing and loads nothing; the item is looked up all the same, which moves the cursor.
    void Item(const QString& itemName, QMatrix4x4& value, int places = -1);

    /// Stores nothing. On loading an empty text and `NULL` give a null pointer, any other text goes to
    /// \p converter, whose result is assigned.
    void Item(const QString& itemName, void*& value, Converter converter);

    // The removals of the list. They drop the cursor, which might stand on a removed node. A removal through
    // a reference to the base class does not: set `cursor` to null there.
    void RemoveAt(ZrListPos* pos);
    void Remove(ZrXmlItem* item);
    void RemoveHead();
    void RemoveTail();
    void RemoveAfter(ZrListPos* pos);
    void RemoveBefore(ZrListPos* pos);
    void RemoveAll();
    void Grow(int n);
    void SetSize(unsigned int n);
};
