#include "ZrKit/ui/ZrQtLog.h"

#include "ZrUtil/ZrLogEmit.h"

#include <QByteArray>
#include <QString>

namespace {

int LevelOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return ZR_DEBUG_LOG_DEBUG;
    case QtInfoMsg:
        return ZR_DEBUG_LOG_INFO;
    case QtWarningMsg:
        return ZR_DEBUG_LOG_WARNING;
    case QtCriticalMsg:
        return ZR_DEBUG_LOG_ERROR;
    case QtFatalMsg:
        break;
    }
    return ZR_DEBUG_LOG_CRITICAL;
}

void Take(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    const int level = LevelOf(type);
    if (!zr::log_wanted(level))
        return;
    const QByteArray category = QByteArrayLiteral("Qt-") + (context.category ? context.category : "default");
    zr_debug_log_modern(level, context.file, context.line, context.function, category.constData(), 0,
        zr::steady_ns(), text.toUtf8().constData());
}

} // namespace

ZrQtLog::ZrQtLog()
    : m_before(qInstallMessageHandler(&Take))
{
}

ZrQtLog::~ZrQtLog()
{
    qInstallMessageHandler(m_before);
}
