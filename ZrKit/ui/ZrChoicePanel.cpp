#include "ZrKit/ui/ZrChoicePanel.h"

#include "ZrKit/ui/ZrTouchList.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include <algorithm>

ZrChoicePanel::ZrChoicePanel(QWidget* parent, const QString& title)
    : ZrOverlay(parent, title)
    , m_list(new ZrTouchList(this))
{
    SetAcceptText(QString());
    connect(m_list, &ZrTouchList::Chosen, this, [this](int row) {
        Accept();
        Q_EMIT Chosen(row);
    });
}

void ZrChoicePanel::SetItems(const QVector<ZrListItem>& items, int current)
{
    m_list->SetItems(items);
    m_list->SetCurrent(current);
    // Not where the one before was left.
    if (current < 0)
        m_list->scrollToTop();
    Restyle();
}

const QVector<ZrListItem>& ZrChoicePanel::Items() const
{
    return m_list->Items();
}

QSize ZrChoicePanel::Wanted() const
{
    const bool hasTall = std::any_of(m_list->Items().begin(), m_list->Items().end(),
        [](const ZrListItem& item) { return !item.subtitle.isEmpty(); });
    const int row = hasTall ? 72 : 56;
    return {620, std::clamp(64 + 112 + 8 + m_list->Items().size() * row, 280, 640)};
}

void ZrChoicePanel::Place()
{
    m_list->setGeometry(Body());
    m_list->Restyle();
}

void ZrChoicePanel::keyPressEvent(QKeyEvent* event)
{
    const bool isForList = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down
        || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isForList) {
        ZrOverlay::keyPressEvent(event);
        return;
    }
    QCoreApplication::sendEvent(m_list, event);
    event->accept();
}
