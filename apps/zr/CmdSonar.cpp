// zr sonar: side-scan lines as numbers and as images.

#include "CmdSonar.h"

#include "CmdSonarImage.h"
#include "CmdSonarInfo.h"
#include "CmdSonarMosaic.h"
#include "CmdSonarTarget.h"

#include <CLI/CLI.hpp>

void AddSonar(CLI::App& app, CliRun& run)
{
    CLI::App* sonar = app.add_subcommand("sonar", "Side-scan lines: figures, waterfall, mosaic, targets");
    sonar->group("Verbs");
    sonar->require_subcommand(0, 1);
    sonar->footer("Example:\n"
                  "  zr sonar info dive.log\n"
                  "\n"
                  "zr sonar VERB --help describes a verb.");
    AddSonarInfo(*sonar, run);
    AddSonarImage(*sonar, run);
    AddSonarMosaic(*sonar, run);
    AddSonarTarget(*sonar, run);
}
