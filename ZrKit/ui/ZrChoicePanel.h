#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/ui/ZrListItem.h"
#include "ZrKit/ui/ZrOverlay.h"

#include <QVector>

class ZrTouchList;

/// Lets the user choose one of several things.
///
/// \code
/// m_choice->SetItems(items, current);
/// connect(m_choice, &ZrChoicePanel::Chosen, this, &Page::Use);
/// m_choice->Open();
/// \endcode
///
/// A tap chooses and closes. GUI thread only.
class ZR_KIT_EXPORT ZrChoicePanel : public ZrOverlay
{
    Q_OBJECT

public:
    ZrChoicePanel(QWidget* parent, const QString& title);

    void SetItems(const QVector<ZrListItem>& items, int current); ///< -1 for no current one

    const QVector<ZrListItem>& Items() const;

Q_SIGNALS:
    void Chosen(int row);

protected:
    QSize Wanted() const override;
    void Place() override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    ZrTouchList* m_list;
};
