// zr mesh: the meshes of the 3D views.

#include "CmdMesh.h"

#include "CmdMeshInfo.h"

#include <CLI/CLI.hpp>

void AddMesh(CLI::App& app, CliRun& run)
{
    CLI::App* mesh = app.add_subcommand("mesh", "Look at the triangle meshes of the 3D views");
    mesh->group("Verbs");
    mesh->require_subcommand(0, 1);
    mesh->footer("Example:\n"
                 "  zr mesh info vessel.obj\n"
                 "\n"
                 "zr mesh VERB --help describes a verb.");
    AddMeshInfo(*mesh, run);
}
