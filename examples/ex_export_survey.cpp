// Exports a part of a recording for other programs: its track, its records as a table and, where it holds
// side-scan sonar, a waterfall and a mosaic with its place on the earth.
//
//     ex_export_survey LOG FOLDER [FROM TO]
//
// FROM and TO are seconds from the beginning of the recording; without them it is all of it. Exit code 0, 1
// for wrong arguments, 2 when the log cannot be read, 3 when a file cannot be written.

#include "ZrKit/survey/ZrSurveyExport.h"
#include "ZrKit/survey/ZrSurveyRecording.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <cstdio>

namespace {

/// An application runs this in a ZrWorker, with its progress, and calls `Stop` when the user cancels.
bool Export(ZrSurveyExport& part, int kind, const QDir& folder)
{
    const QString path = folder.filePath(
        ZrSurveyExport::Name(kind) + QLatin1Char('.') + ZrSurveyExport::Suffixes(kind).constFirst());
    if (part.Run(kind, path) != ZrSurveyExport::Done) {
        std::fprintf(stderr, "%s\n", qPrintable(part.Error()));
        return false;
    }
    const QFileInfo file(path);
    std::printf("%s: %llu items, %lld bytes\n", qPrintable(file.fileName()),
        static_cast<unsigned long long>(part.Items()), static_cast<long long>(file.size()));
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    bool ok = argc == 3 || argc == 5;
    const double from = argc == 5 ? QString::fromLocal8Bit(argv[3]).toDouble(&ok) : 0.0;
    const double to = argc == 5 && ok ? QString::fromLocal8Bit(argv[4]).toDouble(&ok) : 0.0;
    if (!ok) {
        std::fprintf(stderr, "Usage: ex_export_survey LOG FOLDER [FROM TO]\n");
        return 1;
    }
    const auto recording = std::make_shared<ZrSurveyRecording>();
    if (!recording->Load(QString::fromLocal8Bit(argv[1]))) {
        std::fprintf(stderr, "%s\n", qPrintable(recording->Error()));
        return 2;
    }
    for (const QString& remark : recording->Remarks())
        std::fprintf(stderr, "%s\n", qPrintable(remark));
    const QDir folder(QString::fromLocal8Bit(argv[2]));
    folder.mkpath(QStringLiteral("."));

    const ZrSteadyTime& times = *recording->Times();
    ZrSurveyExport part(recording, times.Begin() + from, argc == 5 ? times.Begin() + to : times.End());
    part.slant = true;
    ok = Export(part, ZrSurveyExport::track, folder) && Export(part, ZrSurveyExport::records, folder);
    if (ok && recording->HasSonar())
        ok = Export(part, ZrSurveyExport::waterfall, folder) && Export(part, ZrSurveyExport::mosaic, folder);
    return ok ? 0 : 3;
}
