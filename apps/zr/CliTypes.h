#pragma once

#include "ZrUtil/ZrRecType.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <vector>

/// Record types on the command line.
namespace cli {

/// "16" (any sub-type) or "16:1" (that one); both numbers 0 to 65535.
struct TypeChoice
{
    u16 type = 0;
    std::optional<u16> sub;

    bool Matches(CRecType key) const { return key.type == type && (!sub || *sub == key.sub); }
};

std::optional<TypeChoice> parse_type(const QString& text);

/// True when nothing was chosen or one of \p choices matches.
bool matches_any(const std::vector<TypeChoice>& choices, CRecType key);

/// The table that the exports of the player take: one byte for each type below its length.
std::vector<u8> type_filter(const std::vector<TypeChoice>& choices);

/// Checks of option values: an empty text when the value is good, else what is wrong with it.
std::string check_type(const std::string& text);
/// The exports know types only, and cannot select type 65535.
std::string check_export_type(const std::string& text);
std::string check_u16(const std::string& text);
std::string check_count(const std::string& text);

} // namespace cli
