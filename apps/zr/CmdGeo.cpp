// zr geo: positions as text, in the grid, and apart from each other.

#include "CmdGeo.h"

#include "CmdGeoFormat.h"
#include "CmdGeoFromGrid.h"
#include "CmdGeoParse.h"
#include "CmdGeoRange.h"
#include "CmdGeoToGrid.h"

#include <CLI/CLI.hpp>

void AddGeo(CLI::App& app, CliRun& run)
{
    CLI::App* geo
        = app.add_subcommand("geo", "Convert positions: grid, range and bearing, styles of writing");
    geo->group("Verbs");
    geo->require_subcommand(0, 1);
    geo->footer("Positions are given as arguments or, without any, one on each line of standard\n"
                "input, in nearly any form: 51.5, -1.25 or 51° 30' N 1° 15' W or 30U 444500\n"
                "5551200. One that begins with a minus sign is written behind --.\n"
                "\n"
                "Example:\n"
                "  zr geo to-grid \"51.5, -1.25\"\n"
                "\n"
                "zr geo VERB --help describes a verb.");
    AddGeoToGrid(*geo, run);
    AddGeoFromGrid(*geo, run);
    AddGeoRange(*geo, run);
    AddGeoFormat(*geo, run);
    AddGeoParse(*geo, run);
}
