// zr mesh info: what a mesh file holds, or the line at which the views refuse it.

#include "CmdMeshInfo.h"

#include "CliExit.h"
#include "CliHelp.h"
#include "CliInput.h"
#include "CliMessages.h"
#include "CliOutput.h"
#include "CliSignals.h"
#include "CliText.h"
#include "ZrKit/mesh/ZrMeshFacts.h"
#include "ZrUtil/ZglObject.h"
#include "ZrUtil/ZrObjReader.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <cmath>

namespace {

struct Options
{
    std::string file;
    bool json = false;
};

struct Findings
{
    QString path;
    u64 size; ///< of the file, bytes
    const ZglObject& mesh;
    const ZrMeshFacts& facts;

    bool HasBox() const { return std::isfinite(facts.low[0]); }

    double Extent(int axis) const { return facts.high[axis] - facts.low[axis]; }
};

/// Positions are of binary32: seven digits.
QString NumberText(double value)
{
    return QString::number(value, 'g', 7);
}

QJsonArray Triple(double x, double y, double z)
{
    return {cli::json_number(x), cli::json_number(y), cli::json_number(z)};
}

void PrintJson(const Findings& found)
{
    const ZrMeshFacts& facts = found.facts;
    CliOutput::Get().Json({
        {QStringLiteral("path"), found.path},
        {QStringLiteral("size"), cli::json_count(found.size)},
        {QStringLiteral("name"), found.mesh.m_name},
        {QStringLiteral("triangles"), cli::json_count(facts.triangles)},
        {QStringLiteral("positions"), cli::json_count(facts.positions)},
        {QStringLiteral("texture_coordinates"), cli::json_count(facts.texCoords)},
        {QStringLiteral("normals"), cli::json_count(facts.normals)},
        {QStringLiteral("not_finite"), cli::json_count(facts.notFinite)},
        {QStringLiteral("low"), Triple(facts.low[0], facts.low[1], facts.low[2])},
        {QStringLiteral("high"), Triple(facts.high[0], facts.high[1], facts.high[2])},
        {QStringLiteral("extent"), Triple(found.Extent(0), found.Extent(1), found.Extent(2))},
        {QStringLiteral("area"), cli::json_number(facts.area)},
        {QStringLiteral("degenerate"), cli::json_count(facts.degenerate)},
        {QStringLiteral("unit_normals"), facts.notUnit == 0},
        {QStringLiteral("not_unit_normals"), cli::json_count(facts.notUnit)},
        {QStringLiteral("shortest_normal"), cli::json_number(facts.shortestNormal)},
        {QStringLiteral("longest_normal"), cli::json_number(facts.longestNormal)},
    });
}

void PrintField(const char* name, const QString& value)
{
    CliOutput::Get().Line(QString::fromLatin1(name).leftJustified(12) + value);
}

QString NormalsText(const ZrMeshFacts& facts)
{
    const QString count = QString::number(facts.normals);
    if (facts.normals == 0)
        return count;
    if (facts.notUnit == 0)
        return count + QStringLiteral(", all of unit length");
    return count
        + QStringLiteral(", %1 not of unit length (%2 to %3)")
              .arg(facts.notUnit)
              .arg(NumberText(facts.shortestNormal), NumberText(facts.longestNormal));
}

void PrintBox(const Findings& found)
{
    if (!found.HasBox())
        return;
    const ZrMeshFacts& facts = found.facts;
    constexpr const char* names[] = {"x", "y", "z"};
    for (int i = 0; i < 3; ++i)
        PrintField(names[i],
            QStringLiteral("%1 to %2, %3 units")
                .arg(NumberText(facts.low[i]), NumberText(facts.high[i]), NumberText(found.Extent(i))));
}

void PrintText(const Findings& found)
{
    const ZrMeshFacts& facts = found.facts;
    PrintField("Mesh", found.path);
    PrintField("Size", cli::size_text_both(found.size));
    PrintField("Name", found.mesh.m_name.isEmpty() ? QStringLiteral("-") : found.mesh.m_name);
    PrintField("Triangles", QString::number(facts.triangles));
    PrintField("Positions", QString::number(facts.positions));
    PrintField("Texture", cli::count_text(facts.texCoords, "coordinate", "coordinates"));
    PrintField("Normals", NormalsText(facts));
    PrintBox(found);
    PrintField("Surface", NumberText(facts.area) + QStringLiteral(" square units"));
    PrintField("Degenerate", cli::count_text(facts.degenerate, "triangle", "triangles"));
    if (facts.notFinite > 0)
        PrintField("Not finite", cli::count_text(facts.notFinite, "corner", "corners"));
}

int Refuse(const QString& path, const ZrObjReader& reader)
{
    if (reader.Line() == 0)
        return cli::fail(exBadInput, path + QStringLiteral(": ") + reader.Detail());
    return cli::fail(exBadInput,
        QStringLiteral("%1: line %2: %3: %4")
            .arg(path, QString::number(reader.Line()), reader.Error(), reader.Detail()));
}

int Run(const Options& options)
{
    const QString path = QString::fromStdString(options.file);
    if (const int code = cli::check_input(path))
        return code;
    // Loading and counting leave nothing behind.
    const cli::EndOnInterrupt end;
    ZrObjReader reader;
    ZglObject mesh;
    if (!reader.Read(path, mesh))
        return Refuse(path, reader);
    const ZrMeshFacts facts(mesh);
    const Findings found{path, static_cast<u64>(QFileInfo(path).size()), mesh, facts};
    if (options.json)
        PrintJson(found);
    else
        PrintText(found);
    return exDone;
}

} // namespace

void AddMeshInfo(CLI::App& mesh, CliRun& run)
{
    const auto options = std::make_shared<Options>();
    CLI::App* verb = cli::add_verb(mesh, run, "info",
        "Summarise a mesh: triangles, bounding box, surface, normals\n"
        "\n"
        "A Wavefront OBJ file is read as the 3D views read it: triangles only, every\n"
        "corner with position, texture coordinate and normal. One that they refuse is\n"
        "refused with its line; the exit code is 2.",
        "Units: those of the model, which the file does not name. Positions, texture\n"
        "coordinates and normals are counted once each, however many corners share\n"
        "them. A triangle is degenerate when its height is at most a millionth of its\n"
        "longest side; a normal is of unit length to a thousandth.\n"
        "\n"
        "Examples:\n"
        "  zr mesh info vessel.obj\n"
        "  zr mesh info vessel.obj --json");
    cli::add_argument(*verb, "FILE", options->file, "Mesh to read (.obj)");
    verb->add_flag("--json", options->json, "Print one JSON object");
    verb->callback([&run, options] { run.action = [options] { return Run(*options); }; });
}
