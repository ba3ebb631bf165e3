// A bottom line of any bytes beside a log of three pings and one of none: it is loaded or refused with a
// reason and the line as it was, and what was loaded is saved and loaded again bit by bit.

#include "FuzzFile.h"
#include "JsonLeaks.h"
#include "ZrKit/sonar/ZrBottomFile.h"
#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSonarPing.h"

#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <cstdlib>

namespace {

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

bool AreSame(const std::vector<double>& a, const std::vector<double>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
        [](double x, double y) { return (std::isnan(x) && std::isnan(y)) || x == y; });
}

bool AreSame(const ZrBottomLine& a, const ZrBottomLine& b)
{
    return AreSame(a.Found(), b.Found()) && AreSame(a.Edited(), b.Edited());
}

void RequireAltitudes(const std::vector<double>& altitudes, std::size_t count)
{
    Require(altitudes.size() == count);
    for (const double altitude : altitudes)
        Require(std::isnan(altitude) || (altitude >= 0.0 && std::isfinite(altitude)));
}

/// The file of \p bytes beside a log, through a link.
QString LogOf(const QString& bytes)
{
    static const QTemporaryDir dir;
    const QString log = dir.filePath(QStringLiteral("read"));
    static const bool isLinked = QFile::link(bytes, log + QStringLiteral(".bottom.json"));
    Require(isLinked);
    return log;
}

void Take(const QString& log, const std::vector<ZrSonarPing>& pings)
{
    ZrBottomLine before(2);
    before.SetFound({1.0, 2.0});
    ZrBottomLine line = before;
    ZrBottomFile file(log);
    if (!file.Load(pings, line)) {
        Require(AreSame(line, before) && file.Error().startsWith(file.Path() + QStringLiteral(": ")));
        Require(file.State() == ZrBottomFile::Damaged || file.State() == ZrBottomFile::Foreign);
        return;
    }
    Require(file.State() == ZrBottomFile::Whole && file.Error().isEmpty() && line.Count() == pings.size());
    RequireAltitudes(line.Found(), pings.size());
    RequireAltitudes(line.Edited(), pings.size());
    static const QTemporaryDir dir;
    ZrBottomFile saved(dir.filePath(QString::number(pings.size())));
    Require(saved.Save(pings, line) && saved.KeptPath().isEmpty());
    ZrBottomLine again;
    Require(saved.Load(pings, again) && AreSame(again, line));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size)
{
    SilenceDebugOutput();
    const QString log = LogOf(FuzzFile(data, size));
    std::vector<ZrSonarPing> pings;
    Take(log, pings);
    for (const double time : {10.0, 10.1, 10.2}) {
        pings.emplace_back();
        pings.back().time = time;
    }
    Take(log, pings);
    return 0;
}
