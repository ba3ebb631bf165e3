// The layouts of the keyboard on the screen.

#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrInputDlg.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace {

// Design pixels.
constexpr float keySide = 72.0F;
constexpr float keyGap = 8.0F;
constexpr float margin = 16.0F;
constexpr float displayHeight = 128.0F;

constexpr float smallestKey = 44.0F; ///< the least that a finger hits, real pixels
constexpr float largestUnit = 100.0F; ///< beyond any screen
constexpr float smallestFit = 0.1F;

constexpr int digitColumns = 3;
constexpr int letterColumns = 10;

const char* const letterRows[] = {"1234567890", "qwertyuiop", "asdfghjkl-", "zxcvbnm,."};
const char* const symbolRows[] = {"1234567890", "!@#$%^&*()", "_+=/\\|~`'\"", "[]{}<>:;?"};

/// Real pixels for each design pixel: those of the theme, but fingers do not shrink with it.
float Unit()
{
    const float dp = std::isfinite(ZrTheme::dp) ? ZrTheme::dp : 1.0F;
    return std::clamp(dp, smallestKey / keySide, largestUnit);
}

} // namespace

int ZrInputDlg::Px(float design) const
{
    return std::max(1, static_cast<int>(m_unit * design + 0.5F));
}

int ZrInputDlg::Bx(int column) const
{
    return Px(margin) + column * (Px(keySide) + Px(keyGap));
}

int ZrInputDlg::By(int row) const
{
    return Px(margin) + Px(displayHeight) + Px(margin) + row * (Px(keySide) + Px(keyGap));
}

QRect ZrInputDlg::DisplayRect() const
{
    return {Px(margin), Px(margin), std::max(1, dlgWidth - 2 * Px(margin)), Px(displayHeight)};
}

void ZrInputDlg::Begin(Builder builder, int columns, int rows)
{
    m_builder = builder;
    m_unit = Unit() * m_fit;
    m_items.clear();
    ReleaseAll();
    m_hot = -1;
    dlgWidth = Bx(columns) - Px(keyGap) + Px(margin);
    dlgHeight = By(rows) - Px(keyGap) + Px(margin);
}

void ZrInputDlg::FitInto(const QSize& room)
{
    if (!m_builder)
        return;
    m_fit = 1.0F;
    (this->*m_builder)();
    while ((dlgWidth > room.width() || dlgHeight > room.height()) && m_fit > smallestFit) {
        const float wide = static_cast<float>(room.width()) / static_cast<float>(dlgWidth);
        const float high = static_cast<float>(room.height()) / static_cast<float>(dlgHeight);
        // Rounded pixels may need another step.
        m_fit = std::max(smallestFit, m_fit * std::min({wide, high, 0.99F}));
        (this->*m_builder)();
    }
}

QRect ZrInputDlg::Cell(int column, int row, int columns) const
{
    return {Bx(column), By(row), Bx(column + columns) - Px(keyGap) - Bx(column), Px(keySide)};
}

void ZrInputDlg::AddKey(int column, int row, int columns, QChar character, const QString& label)
{
    ZrInputItem item;
    item.rect = Cell(column, row, columns);
    item.ch = character;
    item.label = label;
    m_items.push_back(item);
}

void ZrInputDlg::AddKeys(int column, int row, const QString& characters)
{
    for (const QChar c : characters)
        AddKey(column++, row, 1, c, QString());
}

void ZrInputDlg::AddAction(
    int column, int row, int columns, eZriAction action, const QString& label, const QString& img)
{
    ZrInputItem item;
    item.rect = Cell(column, row, columns);
    item.action = action;
    item.label = label;
    item.img = img;
    if (QFileInfo::exists(img))
        item.picture = QImage(img);
    m_items.push_back(item);
}

/// Two columns and four rows: delete, the cursor keys, negate.
void ZrInputDlg::AddEditKeys(int column, int negateColumns)
{
    AddAction(column, 0, 2, zriDelete, QString(), QStringLiteral(":/input_del.png"));
    AddAction(column, 1, 1, zriLeft, QString(), QStringLiteral(":/input_left.png"));
    AddAction(column + 1, 1, 1, zriRight, QString(), QStringLiteral(":/input_right.png"));
    AddAction(column, 2, 1, zriStart, QString(), QStringLiteral(":/input_start.png"));
    AddAction(column + 1, 2, 1, zriEnd, QString(), QStringLiteral(":/input_end.png"));
    AddAction(column, 3, negateColumns, zriNegate, QString(), QStringLiteral(":/input_neg.png"));
    // There is no opposite of a free text: the control gives its own text back.
    if (m_control && m_control->kind == ZrInput::kindText)
        m_items.back().label = tr("restore");
}

void ZrInputDlg::AddClosingKeys(int row, int cancelColumns, int okColumn)
{
    const int columns = (dlgWidth - Px(margin) + Px(keyGap) - Bx(0)) / (Px(keySide) + Px(keyGap));
    AddAction(0, row, cancelColumns, zriCancel, tr("Cancel"), QString());
    AddAction(okColumn, row, columns - okColumn, zriOk, tr("OK"), QString());
}

void ZrInputDlg::AddDigits(bool hasPoint)
{
    AddKeys(0, 0, QStringLiteral("789"));
    AddKeys(0, 1, QStringLiteral("456"));
    AddKeys(0, 2, QStringLiteral("123"));
    AddKey(0, 3, 1, QLatin1Char('-'), QString(QChar(0x2212)));
    AddKey(1, 3, hasPoint ? 1 : 2, QLatin1Char('0'), QString());
    if (hasPoint)
        AddKeys(2, 3, QStringLiteral("."));
}

void ZrInputDlg::BuildStd()
{
    Begin(&ZrInputDlg::BuildStd, 4, 3);
    AddAction(0, 0, 1, zriStart, QString(), QStringLiteral(":/input_start.png"));
    AddAction(1, 0, 1, zriLeft, QString(), QStringLiteral(":/input_left.png"));
    AddAction(2, 0, 1, zriRight, QString(), QStringLiteral(":/input_right.png"));
    AddAction(3, 0, 1, zriEnd, QString(), QStringLiteral(":/input_end.png"));
    AddAction(0, 1, 2, zriNegate, QString(), QStringLiteral(":/input_neg.png"));
    AddAction(2, 1, 2, zriDelete, QString(), QStringLiteral(":/input_del.png"));
    AddClosingKeys(2, 2, 2);
}

void ZrInputDlg::BuildInt()
{
    Begin(&ZrInputDlg::BuildInt, digitColumns + 2, 5);
    AddDigits(false);
    AddEditKeys(digitColumns, 2);
    AddClosingKeys(4, 2, 2);
}

void ZrInputDlg::BuildFloat()
{
    Begin(&ZrInputDlg::BuildFloat, digitColumns + 2, 5);
    AddDigits(true);
    // Nobody writes a depth or a speed with an exponent.
    const bool isPlain
        = !m_control || m_control->kind == ZrInput::kindDouble || m_control->kind == ZrInput::kindFloat;
    AddEditKeys(digitColumns, isPlain ? 1 : 2);
    if (isPlain)
        AddKey(digitColumns + 1, 3, 1, QLatin1Char('e'), tr("exp"));
    AddClosingKeys(4, 2, 2);
}

void ZrInputDlg::BuildGeo()
{
    Begin(&ZrInputDlg::BuildGeo, digitColumns + 4, 5);
    AddDigits(true);
    AddKeys(3, 0, QString(ZrUnits::degrees) + QLatin1Char('N'));
    AddKeys(3, 1, QStringLiteral("'S"));
    AddKeys(3, 2, QStringLiteral("\"E"));
    AddKey(3, 3, 1, QLatin1Char(' '), tr("space"));
    AddKeys(4, 3, QStringLiteral("W"));
    // A latitude with the letter of a longitude would be taken as it stands.
    const int kind = m_control ? m_control->kind : ZrInput::kindText;
    const QString unfit = kind == ZrInput::kindLat ? QStringLiteral("EW")
        : kind == ZrInput::kindLng                 ? QStringLiteral("NS")
                                                   : QString();
    for (ZrInputItem& item : m_items) {
        if (item.action == zriKey && unfit.contains(item.ch))
            item.enabled = false;
    }
    AddEditKeys(digitColumns + 2, 2);
    AddClosingKeys(4, 3, 3);
}

void ZrInputDlg::BuildQwerty()
{
    Begin(&ZrInputDlg::BuildQwerty, letterColumns + 2, 5);
    const auto& rows = m_symbols ? symbolRows : letterRows;
    for (int row = 0; row < 4; ++row)
        AddKeys(row == 3 ? 1 : 0, row, QString::fromLatin1(rows[row]));
    AddAction(0, 3, 1, zriCaps, tr("caps"), QString());
    AddEditKeys(letterColumns, 2);
    AddAction(2, 4, 2, zriSymbols, m_symbols ? tr("abc") : tr("#+="), QString());
    AddKey(4, 4, 5, QLatin1Char(' '), tr("space"));
    AddClosingKeys(4, 2, 9);
}

QString ZrInputDlg::Label(const ZrInputItem& item) const
{
    if (!item.label.isEmpty())
        return item.label;
    if (item.action == zriNegate && item.picture.isNull())
        return QString(QChar(0x00B1));
    if (item.action != zriKey)
        return QString();
    return QString(m_caps ? item.ch.toUpper() : item.ch);
}
