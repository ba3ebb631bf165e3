#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QObject>

/// Keeps the lines for typing, `ZrInput`, readable in every colour scheme: while they live, valid ones have
/// the colours of the theme's style sheet instead of grey, and those with an error white letters on red.
///
/// One of them is enough for the whole application. GUI thread only.
class ZR_KIT_EXPORT ZrInputColours : public QObject
{
    Q_OBJECT

public:
    explicit ZrInputColours(QObject* parent);

    bool eventFilter(QObject* watched, QEvent* event) override;
};
