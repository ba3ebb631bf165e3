#pragma once

#include <QVector>
#include <QWidget>

class ZrBtn;
class ZrPlayClock;

/// The row of controls below the time line: play, steps, rate, loop, time.
class ReviewTransport : public QWidget
{
    Q_OBJECT

public:
    /// What its buttons ask for.
    enum eAct : int
    {
        previousEvent,
        secondBack,
        recordBack,
        playBack,
        play,
        recordForward,
        secondForward,
        nextEvent,
        slower,
        faster,
        setA,
        setB,
        loop,
        addEvent,
        typeTime,
        actCount
    };

    explicit ReviewTransport(QWidget* parent);

    ZrBtn& Button(int act) { return *m_buttons[act]; }

    /// \param time of the log, for people; \param date above it
    void SetTime(const QString& time, const QString& date);
    void SetState(const ZrPlayClock& clock, bool hasLog);
    void Restyle();

Q_SIGNALS:
    void Wanted(int act); ///< an `eAct`

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void Add(int act, const char* icon, const QString& text, const QString& hint);
    void Place();
    void PlaceText(int side, int clock);

    QVector<ZrBtn*> m_buttons;
    QString m_rate;
    QFont m_rateFont;
    QRect m_rateRect;
};
