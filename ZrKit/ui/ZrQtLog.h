#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QtGlobal>

/// Takes what Qt, and code that uses its message functions, have to say into the debug log, while it is
/// there.
///
/// \code
/// QApplication app(argc, argv); // a display that is missing is still told on the terminal
/// const ZrQtLog log;
/// \endcode
///
/// Debug, info, warning, critical and fatal messages are those of level debug, info, warning, error and
/// critical; the category is "Qt-" and that of the message. After a fatal message Qt ends the program. The
/// handler that was there before is put back at the end. Messages of any thread; one object at a time.
class ZR_KIT_EXPORT ZrQtLog
{
public:
    ZrQtLog();
    ~ZrQtLog();
    ZrQtLog(const ZrQtLog&) = delete;
    ZrQtLog& operator=(const ZrQtLog&) = delete;

private:
    QtMessageHandler m_before;
};
