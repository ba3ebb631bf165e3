#include "ZrUtil/ZrSettingsLogger.h"

ZrSettingsLogger::ZrSettingsLogger() = default;
ZrSettingsLogger::~ZrSettingsLogger() = default;

void ZrSettingsLogger::AddValue(QString, QString) { }

void ZrSettingsLogger::AddValue(QString, int) { }

void ZrSettingsLogger::AddValue(QString, float) { }

void ZrSettingsLogger::AddValue(QString, double) { }

void ZrSettingsLogger::AddValue(QString, QColor) { }
