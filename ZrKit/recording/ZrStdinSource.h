#pragma once

#include "ZrKit/recording/ZrLineSource.h"

class QSocketNotifier;

/// Lines from the standard input, until it ends. Not available under Windows, where the console is no
/// waitable stream.
class ZR_KIT_EXPORT ZrStdinSource : public ZrLineSource
{
    Q_OBJECT

public:
    explicit ZrStdinSource(QObject* parent);
    bool Start(QString* error) override;
    QString Name() const override;

private:
    void OnReadable();

    QSocketNotifier* m_notifier = nullptr;
};
