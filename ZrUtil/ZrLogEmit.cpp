#include "ZrUtil/ZrLogEmit.h"

#include <fmt/format.h>

#include <exception>

namespace zr {
namespace detail {

namespace {

void hand_over(const LogSite& site, const char* message) noexcept
{
    zr_debug_log_modern(
        site.level, site.file, site.line, site.signature, site.category, site.reserved, site.time, message);
}

/// The message, or the format string with the reason why there is none.
std::string message_of(const char* format, fmt::format_args args)
{
    try {
        return fmt::vformat(fmt::string_view(format), args);
    } catch (const std::exception& error) {
        return std::string(format) + " (format error: " + error.what() + ")";
    }
}

} // namespace

void log_emit(const LogSite& site, const char* format, fmt::format_args args) noexcept
{
    if (!format)
        format = "";
    try {
        hand_over(site, message_of(format, args).c_str());
    } catch (...) {
        hand_over(
            site, format); // no memory, or a formatter of the application that throws something of its own
    }
}

} // namespace detail
} // namespace zr
