#include "CliHelp.h"

#include <sstream>

namespace {

constexpr std::size_t textColumn = 26;
constexpr std::size_t lineWidth = 80;

/// \p text broken at blanks into lines of \p width.
std::vector<std::string> Wrapped(const std::string& text, std::size_t width)
{
    std::vector<std::string> lines(1);
    std::istringstream words(text);
    std::string word;
    while (words >> word) {
        if (!lines.back().empty() && lines.back().size() + 1 + word.size() > width)
            lines.emplace_back();
        if (!lines.back().empty())
            lines.back() += ' ';
        lines.back() += word;
    }
    return lines;
}

/// \p text with the lines of each paragraph broken anew; an empty line parts paragraphs.
std::string Paragraphs(const std::string& text)
{
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find("\n\n", at), text.size());
        if (at > 0)
            out += '\n';
        for (const std::string& line : Wrapped(text.substr(at, end - at), lineWidth))
            out += line + '\n';
        at = end + 2;
    }
    return out;
}

/// "  name      text", the text in a column of its own.
std::string Entry(const std::string& name, const std::string& text)
{
    std::string out = "  " + name;
    bool beside = out.size() + 2 <= textColumn;
    for (const std::string& line : Wrapped(text, lineWidth - textColumn)) {
        if (!beside)
            out += '\n';
        const std::size_t lineStart = out.rfind('\n') == std::string::npos ? 0 : out.rfind('\n') + 1;
        out += std::string(textColumn - (out.size() - lineStart), ' ') + line;
        beside = false;
    }
    return out + '\n';
}

class HelpLayout : public CLI::Formatter
{
public:
    std::string make_description(const CLI::App* app) const override
    {
        return Paragraphs(app->get_description()) + "\n";
    }

    std::string make_usage(const CLI::App* app, std::string name) const override
    {
        std::string out = "Usage: " + name + " [OPTIONS]";
        for (const CLI::Option* option :
            app->get_options([](const CLI::Option* o) { return o->nonpositional() && o->get_required(); }))
            out += ' ' + option->get_name() + make_option_opts(option);
        for (const CLI::Option* option :
            app->get_options([](const CLI::Option* o) { return o->get_positional(); }))
            out += ' ' + make_option_usage(option);
        if (!app->get_subcommands([](const CLI::App* sub) { return !sub->get_name().empty(); }).empty())
            out += " VERB";
        return out + "\n";
    }

    std::string make_option(const CLI::Option* option, bool positional) const override
    {
        const std::string name = positional ? make_option_usage(option)
                                            : option->get_name(false, true) + make_option_opts(option);
        return Entry(name, option->get_description());
    }

    std::string make_option_opts(const CLI::Option* option) const override
    {
        return option->get_option_text().empty() ? std::string() : ' ' + option->get_option_text();
    }

    std::string make_option_usage(const CLI::Option* option) const override
    {
        const std::string& text = option->get_option_text();
        return text.empty() ? option->get_name(true, false) : text;
    }

    /// An option group: its title, what it is for, its options.
    std::string make_expanded(const CLI::App* group) const override
    {
        std::string out = '\n' + group->get_group() + ": " + group->get_description() + '\n';
        for (const CLI::Option* option :
            group->get_options([](const CLI::Option* o) { return o->nonpositional(); })) {
            if (option != group->get_help_ptr())
                out += make_option(option, false);
        }
        return out;
    }

    std::string make_subcommand(const CLI::App* sub) const override
    {
        const std::string description = sub->get_description();
        return Entry(sub->get_name(), description.substr(0, description.find('\n')));
    }
};

} // namespace

void cli::set_help_layout(CLI::App& app)
{
    const auto layout = std::make_shared<HelpLayout>();
    layout->label("Positionals", "Arguments");
    layout->label("Subcommands", "Verbs");
    app.formatter(layout);
    app.set_help_flag("--help,-h", "Show this help and exit");
    app.failure_message(CLI::FailureMessage::simple);
}

CLI::App* cli::add_verb(CLI::App& parent, CliRun& run, const std::string& name,
    const std::string& description, const std::string& footer)
{
    CLI::App* verb = parent.add_subcommand(name, description);
    verb->group("Verbs");
    verb->footer(footer);
    verb->add_flag("--verbose", run.verbose, "Show the library's debug output on standard error");
    return verb;
}

CLI::Option* cli::add_argument(
    CLI::App& verb, const std::string& name, std::string& value, const std::string& description)
{
    return verb.add_option(name, value, description)->required();
}

CLI::Option* cli::add_value(CLI::App& verb, const std::string& name, std::string& value,
    const std::string& placeholder, std::string (*check)(const std::string&), const std::string& description)
{
    CLI::Option* option = verb.add_option(name, value, description)->option_text(placeholder);
    if (check)
        option->check(check);
    return option;
}

CLI::Option* cli::add_list(CLI::App& verb, const std::string& name, std::vector<std::string>& values,
    const std::string& placeholder, std::string (*check)(const std::string&), const std::string& description)
{
    CLI::Option* option = verb.add_option(name, values, description)->option_text(placeholder);
    // One argument each time, or the arguments behind it would be taken for more values.
    option->allow_extra_args(false)->delimiter(',');
    if (check)
        option->check(check);
    return option;
}
