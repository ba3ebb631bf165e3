#include "CliTypes.h"

#include <algorithm>
#include <limits>

namespace {

/// Digits only: no sign, no blanks, no other base.
template <class T> std::optional<T> ParseUnsigned(const QString& text)
{
    for (const QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return {};
    }
    bool ok = false;
    const qulonglong value = text.toULongLong(&ok);
    if (!ok || value > std::numeric_limits<T>::max())
        return {};
    return static_cast<T>(value);
}

} // namespace

std::optional<cli::TypeChoice> cli::parse_type(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char(':'));
    const std::optional<u16> type = ParseUnsigned<u16>(parts[0]);
    if (!type || parts.size() > 2)
        return {};
    TypeChoice choice{*type, {}};
    if (parts.size() == 2) {
        choice.sub = ParseUnsigned<u16>(parts[1]);
        if (!choice.sub)
            return {};
    }
    return choice;
}

bool cli::matches_any(const std::vector<TypeChoice>& choices, CRecType key)
{
    return choices.empty()
        || std::any_of(choices.begin(), choices.end(), [key](const TypeChoice& c) { return c.Matches(key); });
}

std::vector<u8> cli::type_filter(const std::vector<TypeChoice>& choices)
{
    std::vector<u8> filter;
    for (const TypeChoice& choice : choices) {
        if (filter.size() <= choice.type)
            filter.resize(choice.type + std::size_t(1), 0);
        filter[choice.type] = 1;
    }
    return filter;
}

std::string cli::check_type(const std::string& text)
{
    if (parse_type(QString::fromStdString(text)))
        return {};
    return "\"" + text + "\" is no record type: T or T:S, numbers from 0 to 65535";
}

std::string cli::check_export_type(const std::string& text)
{
    const std::optional<TypeChoice> choice = parse_type(QString::fromStdString(text));
    if (choice && !choice->sub && choice->type != 65535)
        return {};
    return "\"" + text + "\" is no type that can be selected: a number from 0 to 65534, without sub-type";
}

std::string cli::check_u16(const std::string& text)
{
    if (ParseUnsigned<u16>(QString::fromStdString(text)))
        return {};
    return "\"" + text + "\" is no number from 0 to 65535";
}

std::string cli::check_count(const std::string& text)
{
    if (ParseUnsigned<u64>(QString::fromStdString(text)))
        return {};
    return "\"" + text + "\" is no count";
}
