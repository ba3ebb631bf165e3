#include "CliInOut.h"

#include "CliHelp.h"
#include "CliInput.h"
#include "CliTarget.h"

void CliInOut::AddArguments(CLI::App& verb, const std::string& outText)
{
    cli::add_argument(verb, "LOG", log, "Log to read");
    cli::add_argument(verb, "OUT", out, outText);
}

void CliInOut::AddFlags(CLI::App& verb)
{
    verb.add_flag("--force", force, "Replace OUT when it exists");
    verb.add_flag("--json", json, "Print the result as one JSON object");
}

int CliInOut::Prepare(CliTarget& target) const
{
    if (const int code = cli::check_input(In()))
        return code;
    return target.Prepare(Out(), force, {In()});
}
