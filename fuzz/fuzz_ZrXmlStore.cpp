// A settings store of any bytes, read in both of its forms: what was read is written and read again
// unchanged, and every item loads into a variable of every type.

#include "FuzzFile.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QColor>
#include <QFile>
#include <QMatrix4x4>
#include <QStringList>
#include <QTemporaryDir>
#include <QVector3D>

#include <cstdlib>

namespace {

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

/// Everything that a save of \p store writes, one line per thing, in order: objects without items and data
/// lines are left out.
QStringList Written(const ZrXmlStore& store)
{
    QStringList all;
    for (ZrListPos* setPos = store.GetHeadPos(); setPos;) {
        const ZrXmlSet* set = store.GetNext(setPos);
        Require(set->store == &store);
        all.append(QStringLiteral("set ") + set->name);
        for (ZrListPos* objPos = set->GetHeadPos(); objPos;) {
            const ZrXmlObj* obj = set->GetNext(objPos);
            Require(obj->set == set);
            if (obj->IsEmpty() && obj->data.IsEmpty())
                continue;
            all.append(QStringLiteral("object ") + obj->name);
            all.append(QStringLiteral("type ") + obj->type);
            for (ZrListPos* pos = obj->GetHeadPos(); pos;) {
                const ZrXmlItem* item = obj->GetNext(pos);
                all.append(QStringLiteral("item ") + item->name);
                all.append(QStringLiteral("value ") + item->value);
            }
            for (ZrListPos* pos = obj->data.GetHeadPos(); pos;)
                all.append(QStringLiteral("data ") + *obj->data.GetNext(pos));
        }
    }
    return all;
}

void* Convert(const QString& text)
{
    static int target = 0;
    Require(!text.isEmpty());
    return &target;
}

/// Loads the item \p name of \p obj into variables of every type; an integer goes through a store unchanged.
void LoadEveryType(ZrXmlObj& obj, const QString& name)
{
    char character = 0;
    unsigned char byte = 0;
    short small = 0;
    unsigned short word = 0;
    int number = 0;
    unsigned int mask = 0;
    float single = 0;
    double real = 0;
    bool flag = false;
    QString text;
    QChar letter;
    QColor colour;
    QVector3D vector;
    QMatrix4x4 matrix;
    void* pointer = nullptr;
    obj.Item(name, character);
    obj.Item(name, small);
    obj.Item(name, number);
    for (const bool hex : {false, true}) {
        obj.Item(name, byte, hex);
        obj.Item(name, word, hex);
        obj.Item(name, mask, hex);
    }
    obj.Item(name, single);
    obj.Item(name, real);
    obj.Item(name, flag);
    obj.Item(name, text);
    obj.Item(name, letter);
    obj.Item(name, colour);
    obj.Item(name, vector);
    obj.Item(name, matrix);
    obj.Item(name, pointer, &Convert);
    Require(!colour.isValid() || colour.alpha() == 255);

    ZrXmlStore store(false);
    ZrXmlObj* const stored = store.AddSet(name)->AddObj(name, name);
    stored->Add(name, "0x%08x", mask);
    unsigned int again = ~mask;
    stored->Item(name, again, true);
    Require(again == mask);
}

void LoadItems(const ZrXmlStore& store)
{
    for (ZrListPos* setPos = store.GetHeadPos(); setPos;) {
        const ZrXmlSet* set = store.GetNext(setPos);
        for (ZrListPos* objPos = set->GetHeadPos(); objPos;) {
            ZrXmlObj* obj = set->GetNext(objPos);
            for (ZrListPos* pos = obj->GetHeadPos(); pos;)
                LoadEveryType(*obj, obj->GetNext(pos)->name);
        }
    }
}

/// Whether a line is beyond the limit within which a file is read back as it was written.
bool HasLongLine(const QString& path)
{
    QFile file(path);
    Require(file.open(QIODevice::ReadOnly));
    for (const QByteArray& line : file.readAll().split('\n'))
        if (line.size() > 1023)
            return true;
    return false;
}

void TakeFile(const QString& path)
{
    static const QTemporaryDir dir;
    const QString saved = dir.filePath(QStringLiteral("saved.xml"));
    ZrXmlStore store(false);
    Require(store.Load(path));
    Require(store.Save(saved));
    ZrXmlStore again(false);
    Require(again.Load(saved));
    Require(HasLongLine(saved) || Written(again) == Written(store));
    LoadItems(store);
}

void TakeLines(QByteArray bytes)
{
    ZrXmlStore store(false);
    Require(store.Load(bytes));
    QByteArray saved;
    store.Save(saved);
    ZrXmlStore again(false);
    Require(again.Load(saved));
    // A CR at the end of a text becomes part of the line end.
    Require(saved.contains('\r') || Written(again) == Written(store));
    LoadItems(store);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size)
{
    SilenceDebugOutput();
    TakeFile(FuzzFile(data, size));
    TakeLines(QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)));
    return 0;
}
