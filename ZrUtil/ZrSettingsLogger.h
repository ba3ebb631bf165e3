#pragma once

#include "ZrUtil/ZrExport.h"

#include <QColor>
#include <QString>

/// Sink for named values that keeps none of them: every `AddValue` accepts its arguments and has no effect.
///
/// A bare character literal as the value is ambiguous; write `QStringLiteral("…")`.
class ZR_UTIL_EXPORT ZrSettingsLogger
{
public:
    ZrSettingsLogger();
    ~ZrSettingsLogger();

    void AddValue(QString name, QString value);
    void AddValue(QString name, int value);
    void AddValue(QString name, float value);
    void AddValue(QString name, double value);
    void AddValue(QString name, QColor value);
};
