// A foreign file of any bytes, read by every importer: it ends, and its report adds up.

#include "FuzzFile.h"
#include "ZrKit/import/ZrImporter.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size)
{
    SilenceDebugOutput();
    const QString path = FuzzFile(data, size);
    ZrImportOptions options;
    options.date = QDate(2020, 1, 1);
    for (const QString& format : ZrImporter::Formats()) {
        QString error;
        const std::unique_ptr<ZrImporter> in = ZrImporter::Create(path, format, options, &error);
        if (!in) {
            if (error.isEmpty())
                std::abort();
            continue;
        }
        ZrImportItem item;
        u64 items = 0;
        while (in->Next(item))
            ++items;
        if (items != in->Report().items || in->Report().bytes > in->FileSize())
            std::abort();
    }
    return 0;
}
