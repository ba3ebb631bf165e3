#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QString>
#include <QVector>
#include <QWidget>

#include <memory>

/// A value to be read at arm's length: caption above, the number large, its unit beside it.
///
/// \code
/// auto* depth = new ZrValueTile(page, tr("Depth"));
/// depth->Set(QStringLiteral("12.4"), QStringLiteral("m"));
/// depth->SetState(ZrValueTile::stale); // older than it should be: dimmed, and marked
/// \endcode
///
/// A unit that begins with the degree sign stands directly behind the number and is as large: "334.3°". The
/// minus of a number is drawn as the sign "−", as wide as its digits.
///
/// Repaints only when what it shows changes. GUI thread only.
class ZR_KIT_EXPORT ZrValueTile : public QWidget
{
    Q_OBJECT

public:
    enum eState : int
    {
        normal = 0,
        good = 1,
        warning = 2,
        error = 3,
        stale = 4,
        preview = 5 ///< of what is shown and not done yet
    };

    ZrValueTile(QWidget* parent, const QString& caption);
    ~ZrValueTile() override;

    /// The values of \p tiles, which stand in a row, are all as large as the one that has the least room.
    static void SetRow(const QVector<ZrValueTile*>& tiles);

    void Set(const QString& value, const QString& unit); ///< an empty value is shown as a dash
    void SetNote(const QString& note); ///< small, below the value; may be empty
    void SetNoteRoom(bool hasRoom); ///< also without one: of tiles in a row the values stand in line
    void SetState(eState state);

    QString Value() const { return m_value; }

    QString Unit() const { return m_unit; }

    QString Note() const { return m_note; }

    QString Number() const; ///< what is shown large: the value, and an angle's sign

    eState State() const { return m_state; }

    QSize sizeHint() const override;

Q_SIGNALS:
    void Clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void Tell();
    void Refit();
    bool IsAngle() const;
    QString UnitBeside() const;
    QRect Area() const;
    QRect ValueArea() const;
    int FittingSize() const;
    int ValueSize() const;

    QString m_caption;
    QString m_value;
    QString m_unit;
    QString m_note;
    bool m_hasNoteRoom = false;
    eState m_state = normal;
    std::shared_ptr<QVector<ZrValueTile*>> m_row; ///< those that it stands with, itself among them; or null
    int m_shownSize = 0; ///< of the value, when it was painted
};
