// A plan of any bytes, as a state, as a draft and as a file in the settings form: it is taken or refused with
// a reason and the plan as it was, and what was taken comes back from its own state unchanged.

#include "FuzzFile.h"
#include "JsonLeaks.h"
#include "ZrKit/planning/ZrPlanDocument.h"
#include "ZrKit/planning/ZrPlanReader.h"
#include "ZrUtil/ZrWpt.h"

#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <cstdlib>
#include <functional>

namespace {

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

/// The file of \p bytes under the suffix of the settings form, through a link.
QString SettingsFile(const QString& bytes)
{
    static const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("plan.json"));
    static const bool isLinked = QFile::link(bytes, path);
    Require(isLinked);
    return path;
}

void RequireAreas(const std::vector<ZrArea>& areas)
{
    for (const ZrArea& area : areas) {
        Require(!area.ring.empty());
        for (const ZrGeoPoint& corner : area.ring)
            Require(corner.IsValid());
    }
}

bool FromDraft(const QByteArray& bytes, ZrPlanDocument& plan)
{
    ZrPlanReader reader;
    return reader.FromDraft(bytes, QStringLiteral("State")) && plan.Take(reader);
}

/// What a page does with a plan that it has got.
void Use(ZrPlanDocument& plan)
{
    RequireAreas(plan.Areas());
    RequireAreas(plan.NoGo());
    Require(std::isfinite(plan.Margin()));
    Require(plan.LineCount() >= 0 && plan.LineCount() <= plan.Route().GetCount());
    plan.Path();
    plan.Findings();
    const QByteArray state = plan.State().ToDraft();
    ZrPlanDocument again((QString()));
    Require(FromDraft(state, again));
    Require(again.State().ToDraft() == state);
}

/// Has \p read read into \p plan; whether it was taken.
bool Take(ZrPlanDocument& plan, const std::function<bool()>& read)
{
    // With the speeds of the process, which every plan that was taken has set.
    const QByteArray before = plan.State().ToDraft();
    const bool isTaken = read();
    if (isTaken)
        Use(plan);
    else
        Require(plan.State().ToDraft() == before);
    return isTaken;
}

/// Waypoints that have no UUID of their own get another one each time they are read.
void TakeNames(ZrWpts& route, const ZrWpts& from)
{
    Require(route.GetCount() == from.GetCount());
    ZrListPos* pos = from.GetHeadPos();
    for (ZrListPos* own = route.GetHeadPos(); own;)
        route.GetNext(own)->uuid = from.GetNext(pos)->uuid;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size)
{
    SilenceDebugOutput();
    const QString path = FuzzFile(data, size);
    ZrPlanDocument draft(path);
    ZrPlanDocument state((QString()));
    ZrPlanDocument file((QString()));
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));

    const bool isState = Take(state, [&] { return FromDraft(bytes, state); });
    Take(file, [&] { return file.Open(SettingsFile(path)); });
    const bool isDraft = Take(draft, [&] { return draft.RestoreDraft(); });
    Require(isDraft == isState);
    TakeNames(draft.Route(), state.Route());
    Require(draft.State().ToDraft() == state.State().ToDraft());
    Require(isDraft == draft.AsidePath().isEmpty());
    if (!isDraft)
        Require(QFile::rename(draft.AsidePath(), path)); // which is the file of the next bytes as well
    return 0;
}
