// Records a short data log with a ZrLogger: a navigation record per step, and a line of serial text.
//
//     ex_record_log FOLDER
//
// Prints the path of the log. Exit code 0 when every item reached the disk, 1 for wrong arguments, 3 when
// the log could not be made or written.

#include "ZrKit/records/ZrNavRecord.h"
#include "ZrUtil/ZrLogger.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "Usage: ex_record_log FOLDER\n");
        return 1;
    }
    ZrLogger logger(nullptr);
    logger.SetLogDirectory(QString::fromLocal8Bit(argv[1]));
    logger.Decorate(QStringLiteral("dive"), QStringLiteral(".log"));
    logger.OpenLog();
    if (!logger.IsActive()) {
        std::fprintf(stderr, "Cannot create a log in %s\n", argv[1]);
        return 3;
    }

    ZrNavRecord nav;
    nav.latitude = 48.4789;
    nav.longitude = -68.5147;
    for (int step = 0; step < 10; ++step) {
        nav.depth = 0.5f * static_cast<float>(step);
        nav.latitude += 1e-5;
        const QByteArray payload = nav.Encode();
        logger.LogData(zr::rec_type(krtNavigation), 1, ZrNavRecord::Format, false, {zr::bytes_of(payload)});
    }
    logger.LogSerStr(QStringLiteral("$GPGLL,4828.734,N,06830.882,W,201358,A,A*51"));
    const u64 lost = logger.WriteErrors();
    const QString path = logger.CurFile();
    logger.CloseLog();

    std::printf("%s\n", qPrintable(path));
    return lost == 0 ? 0 : 3;
}
