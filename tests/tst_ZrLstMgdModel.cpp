#include "ListChecks.h"
#include "ZrUtil/ZrLstMgd.h"

#include <QtTest/QtTest>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

namespace {

/// The list beside a plain vector of (node, item) that must stay equal to it.
class ModelCheck
{
public:
    explicit ModelCheck(unsigned int seed)
        : m_random(seed)
    {
    }

    /// One random operation on both; its name.
    const char* Step();

    /// Compares every answer of the list with the model's; the first difference, or null.
    const char* Defect() const;

private:
    struct Entry
    {
        ZrListPos* pos;
        const Item* item;
    };

    using Model = std::vector<Entry>;

    int Below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(m_random); }

    int Size() const { return static_cast<int>(m_model.size()); }

    /// A random index, or -1 for the null position; one time in eight it is null.
    int AnyIndex() { return Size() == 0 || Below(8) == 0 ? -1 : Below(Size()); }

    ZrListPos* PosAt(int index) const { return index < 0 ? nullptr : m_model[std::size_t(index)].pos; }

    void SwapItems(int a, int b) { std::swap(m_model[std::size_t(a)].item, m_model[std::size_t(b)].item); }

    void Insert(int at, ZrListPos* pos, const Item* item)
    {
        m_model.insert(m_model.begin() + at, {pos, item});
    }

    void Erase(int at)
    {
        if (at >= 0 && at < Size())
            m_model.erase(m_model.begin() + at);
    }

    void AppendGrown();
    const char* Add();
    const char* Remove();
    const char* Resize();
    const char* Reorder();

    std::mt19937 m_random;
    List m_list;
    Model m_model;
    int m_nextValue = 1;
};

const char* ModelCheck::Step()
{
    switch (Below(8)) {
    case 0:
    case 1:
    case 2:
        return Add();
    case 3:
    case 4:
        return Remove();
    case 5:
        return Resize();
    default:
        return Reorder();
    }
}

const char* ModelCheck::Add()
{
    const Item* item = new Item(m_nextValue++);
    const int index = AnyIndex();
    switch (Below(5)) {
    case 0:
        Insert(0, m_list.AddHead(item), item);
        return "AddHead";
    case 1:
        Insert(Size(), m_list.AddTail(item), item);
        return "AddTail";
    case 2:
        Insert(index < 0 ? Size() : index + 1, m_list.InsertAfter(PosAt(index), item), item);
        return "InsertAfter";
    case 3:
        Insert(index < 0 ? 0 : index, m_list.InsertBefore(PosAt(index), item), item);
        return "InsertBefore";
    default:
        break;
    }
    std::unique_ptr<const Item> former(m_list.GetAt(PosAt(index)));
    m_list.SetAt(PosAt(index), item);
    if (index < 0)
        delete item;
    else
        m_model[std::size_t(index)].item = item;
    return "SetAt";
}

const char* ModelCheck::Remove()
{
    const int index = AnyIndex();
    switch (Below(6)) {
    case 0:
        m_list.RemoveAt(PosAt(index));
        Erase(index);
        return "RemoveAt";
    case 1:
        if (index >= 0)
            m_list.Remove(m_list.GetAt(PosAt(index)));
        Erase(index);
        return "Remove";
    case 2:
        m_list.RemoveHead();
        Erase(0);
        return "RemoveHead";
    case 3:
        m_list.RemoveTail();
        Erase(Size() - 1);
        return "RemoveTail";
    case 4:
        m_list.RemoveAfter(PosAt(index));
        Erase(index < 0 || index == Size() - 1 ? 0 : index + 1);
        return "RemoveAfter";
    default:
        m_list.RemoveBefore(PosAt(index));
        Erase(index <= 0 ? Size() - 1 : index - 1);
        return "RemoveBefore";
    }
}

/// Takes the nodes that the list appended by itself into the model.
void ModelCheck::AppendGrown()
{
    ZrListPos* pos = m_model.empty() ? m_list.head : m_model.back().pos->next;
    for (; pos; pos = pos->next)
        m_model.push_back({pos, m_list.GetAt(pos)});
}

const char* ModelCheck::Resize()
{
    const int before = Size();
    int expected = 0;
    const char* name = "RemoveAll";
    switch (Below(12)) {
    case 0:
        m_list.RemoveAll();
        break;
    case 1:
    case 2:
    case 3:
    case 4:
    case 5:
    case 6: {
        const int n = Below(9) - 4;
        name = "Grow";
        m_list.Grow(n);
        expected = std::max(0, before + n);
        break;
    }
    default:
        name = "SetSize";
        expected = std::max(0, before + Below(9) - 4);
        m_list.SetSize(static_cast<unsigned int>(expected));
        break;
    }
    m_model.resize(std::size_t(std::min(before, expected)));
    AppendGrown();
    return Size() == expected ? name : "an operation that changes the size by the wrong number";
}

const char* ModelCheck::Reorder()
{
    const int operation = Below(6);
    const int index = AnyIndex();
    if (operation == 0) {
        m_list.Invert();
        for (int i = 0; i < Size() / 2; ++i)
            SwapItems(i, Size() - 1 - i);
        return "Invert";
    }
    if (operation == 1) {
        m_list.ShiftToTail(PosAt(index));
        if (index >= 0)
            std::rotate(m_model.begin() + index, m_model.begin() + index + 1, m_model.end());
        return "ShiftToTail";
    }
    if (index < 0)
        return "nothing";
    if (operation == 2) {
        m_list.ShiftUp(PosAt(index));
        SwapItems(index, std::min(index + 1, Size() - 1));
        return "ShiftUp";
    }
    if (operation == 3) {
        m_list.ShiftDn(PosAt(index));
        SwapItems(index, std::max(index - 1, 0));
        return "ShiftDn";
    }
    if (operation == 4) {
        m_list.ShiftToHead(PosAt(index));
        SwapItems(index, 0);
        return "ShiftToHead";
    }
    const int other = Below(Size());
    m_list.Swap(PosAt(index), PosAt(other));
    SwapItems(index, other);
    return "Swap";
}

const char* ModelCheck::Defect() const
{
    if (const char* defect = LinkDefect(m_list))
        return defect;
    if (m_list.GetCount() != Size() || m_list.IsEmpty() != m_model.empty())
        return "the number of items differs";
    if (Item::alive.size() != m_model.size())
        return "items were leaked or deleted too early";
    ZrListPos* walk = m_list.GetHeadPos();
    for (int i = 0; i < Size(); ++i) {
        const Entry& entry = m_model[std::size_t(i)];
        if (walk != entry.pos || m_list.FindIndex(i) != entry.pos || m_list.GetIndex(entry.pos) != i)
            return "a node stands at another place";
        if (m_list.GetAt(entry.pos) != entry.item || m_list.GetNext(walk) != entry.item)
            return "a node holds another item";
        if (m_list.GetIndex(entry.item) != i || m_list.Find(entry.item, nullptr) != entry.pos)
            return "an item is found at another place";
    }
    return m_list.FindIndex(Size()) ? "there is a node behind the last" : nullptr;
}

} // namespace

class tst_ZrLstMgdModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void randomOperationsMatchModel_data();
    void randomOperationsMatchModel();
};

void tst_ZrLstMgdModel::randomOperationsMatchModel_data()
{
    QTest::addColumn<uint>("seed");
    for (uint seed = 1; seed <= 8; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_ZrLstMgdModel::randomOperationsMatchModel()
{
    QFETCH(uint, seed);
    ModelCheck check(seed);
    for (int step = 0; step < 3000; ++step) {
        const char* operation = check.Step();
        const char* defect = check.Defect();
        QVERIFY2(!defect,
            qPrintable(QStringLiteral("step %1, %2: %3")
                           .arg(step)
                           .arg(QLatin1String(operation), QLatin1String(defect))));
    }
}

QTEST_GUILESS_MAIN(tst_ZrLstMgdModel)
#include "tst_ZrLstMgdModel.moc"
