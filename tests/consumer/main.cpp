#include <ZrDebugLog/ZrDebugLog.h>
#include <ZrKit/records/ZrDepthRecord.h>
#include <ZrKit/records/ZrKitTypes.h>
#include <ZrKit/ui/ZrBanner.h>
#include <ZrUtil/ZrAppView.h>
#include <ZrUtil/ZrBtn.h>
#include <ZrUtil/ZrConsole.h>
#include <ZrUtil/ZrLstMgd.h>
#include <ZrUtil/ZrSpan.h>
#include <ZrUtil/ZrUtil.h>
#include <cstdio>
#include <cstring>

namespace {

int failures = 0;

void Check(bool good, const char* what)
{
    std::printf("%s: %s\n", good ? "ok" : "FAILED", what);
    failures += good ? 0 : 1;
}

} // namespace

// Some calls into each library, and one template that lives in the headers alone.
int main()
{
    Check(std::strcmp(zr_debug_log_level_to_string(ZR_DEBUG_LOG_WARNING), "") != 0, "debug log");
    Check(ZrUtil::EqualT(0.0, 1e-7) && !ZrUtil::EqualT(0.0, 1e-6), "math");
    Check(ZrConsole::Format("%d m", 12) == QLatin1String("12 m"), "console");

    ZrLstMgd<int> list;
    list.AddTail(new int(1));
    list.AddTail(new int(2));
    list.Invert();
    Check(*list.GetHead() == 2 && list.GetCount() == 2, "list");

    ZrDepthRecord written;
    written.depth = 12.5f;
    ZrDepthRecord read;
    Check(ZrDepthRecord::Decode(zr::bytes_of(written.Encode()), read) && read.depth == 12.5f, "record");
    // Widgets and positions are part of the interface.
    for (const QMetaObject* type :
        {&ZrBtn::staticMetaObject, &ZrAppView::staticMetaObject, &ZrBanner::staticMetaObject})
        Check(type->inherits(&QWidget::staticMetaObject), type->className());
    return failures == 0 ? 0 : 1;
}
