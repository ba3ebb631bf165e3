// A class with settings: loaded at the start, changed, saved at the end, without ever losing them.
//
//     ex_settings FILE [RANGE]
//
// Prints the settings of a sonar as FILE has them (its defaults the first time), sets the range in metres and
// saves them. Damage FILE and run it again: the settings come from the last good copy beside it. Exit code 0
// when they were saved, 1 for wrong arguments, 3 when not.

#include "ZrKit/settings/ZrSettingsFile.h"
#include "ZrUtil/IPersistable.h"
#include "ZrUtil/ZrPlatformInfo.h"
#include "ZrUtil/ZrSetApp.h"
#include "ZrUtil/ZrSetModule.h"

#include <QColor>
#include <QCoreApplication>

#include <cstdio>

namespace {

class Sonar final : public zr::IPersistable
{
public:
    bool portOn = true;
    int samples = 1024;
    double range = 50.0; ///< metres
    QColor seabed = QColor(255, 160, 0);

    // One function for both directions: what a file lacks keeps its default.
    void settings(zr::ZrSetModule& module) override
    {
        module.item(QStringLiteral("port on"), portOn);
        module.item(QStringLiteral("samples"), samples);
        module.item(QStringLiteral("range"), range);
        module.sub_item(QStringLiteral("colours"),
            [this](zr::ZrSetModule& colours) { colours.item(QStringLiteral("seabed"), seabed); });
        module.sub_item(QStringLiteral("platform"), zr::ZrPlatformInfo::serialise);
    }
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "Usage: ex_settings FILE [RANGE]\n");
        return 1;
    }
    Sonar sonar;
    ZrSettingsFile file(QString::fromLocal8Bit(argv[1]));

    zr::ZrSetApp loaded(zr::ePersistLoading);
    if (file.Load(loaded.root))
        loaded.synchronise(sonar);
    else if (file.State() != ZrSettingsFile::Missing)
        std::fprintf(stderr, "%s\n", qPrintable(file.Error()));
    if (!file.Warning().isEmpty())
        std::fprintf(stderr, "%s\n", qPrintable(file.Warning()));

    std::printf("port %s, %d samples, range %.1f m, sea floor %s\n", sonar.portOn ? "on" : "off",
        sonar.samples, sonar.range, qPrintable(sonar.seabed.name()));
    if (argc == 3)
        sonar.range = QByteArray(argv[2]).toDouble();

    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(sonar);
    if (file.Save(stored.root))
        return 0;
    std::fprintf(stderr, "%s\n", qPrintable(file.Error()));
    return 3;
}
