#include "ZrDebugLog/ZrDebugLog.h"

#include <spdlog/sinks/basic_file_sink.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <exception>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX // otherwise std::max is read as a call of the macro max
#endif
#include <process.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

int zr_debug_log_level = ZR_DEBUG_LOG_WARNING;
int zr_debug_log_flush_level = ZR_DEBUG_LOG_WARNING;
int zr_debug_log_to_file = 0;
int zr_debug_log_to_dbg = 1;
int zr_debug_terminate_on_critical = 0;

namespace {

namespace fs = std::filesystem;
using std::chrono::system_clock;

struct LogMessage
{
    int level;
    const char* file;
    int line;
    const char* function;
    const char* category;
    std::int64_t steadyNs;
    const char* text;
};

std::tm local_time(std::time_t seconds)
{
    std::tm parts = {};
#ifdef _WIN32
    localtime_s(&parts, &seconds);
#else
    localtime_r(&seconds, &parts);
#endif
    return parts;
}

int process_id()
{
#ifdef _WIN32
    return _getpid();
#else
    return static_cast<int>(getpid());
#endif
}

std::string format_time(const char* pattern, system_clock::time_point time)
{
    const std::tm parts = local_time(system_clock::to_time_t(time));
    char text[64];
    return std::string(text, std::strftime(text, sizeof(text), pattern, &parts));
}

/// The time of day at which the steady clock showed \p steadyNs.
system_clock::time_point wall_time(std::int64_t steadyNs)
{
    using std::chrono::nanoseconds;
    const system_clock::time_point now = system_clock::now();
    const std::chrono::steady_clock::duration steadyNow = std::chrono::steady_clock::now().time_since_epoch();
    const std::int64_t steadyNowNs = std::chrono::duration_cast<nanoseconds>(steadyNow).count();
    if (steadyNs <= 0 || steadyNs > steadyNowNs)
        return now;
    return now - std::chrono::duration_cast<system_clock::duration>(nanoseconds(steadyNowNs - steadyNs));
}

void append_time(std::string& line, system_clock::time_point time)
{
    // Whole seconds are taken down from the same value as the milliseconds, so both turn over together.
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(time - seconds).count();
    char milliseconds[8];
    std::snprintf(milliseconds, sizeof(milliseconds), ".%03d", static_cast<int>(ms));
    line += format_time("%Y-%m-%d %H:%M:%S", seconds);
    line += milliseconds;
    line += format_time("%z", seconds);
}

/// Appends \p text with its control characters spelt out, so that it neither ends the line nor steers a
/// terminal.
void append_escaped(std::string& line, const char* text)
{
    static const char digits[] = "0123456789abcdef";
    for (; *text != '\0'; ++text) {
        const unsigned char c = static_cast<unsigned char>(*text);
        if (c == '\n') {
            line += "\\n";
        } else if (c == '\r') {
            line += "\\r";
        } else if ((c < 0x20 && c != '\t') || c == 0x7F) {
            line += "\\x";
            line += digits[c >> 4];
            line += digits[c & 0x0F];
        } else {
            line += *text;
        }
    }
}

void append_field(std::string& line, const char* text)
{
    line += " | ";
    append_escaped(line, text && *text ? text : "-");
}

std::string line_of(const LogMessage& message)
{
    std::string line = zr_debug_log_level_to_string(message.level);
    line.resize(std::max<std::size_t>(line.size(), 8), ' ');
    line += " | ";
    append_time(line, wall_time(message.steadyNs));
    append_field(line, message.category);
    append_field(line, message.file);
    line += ':';
    line += std::to_string(message.line);
    append_field(line, message.function);
    line += " | ";
    append_escaped(line, message.text ? message.text : "");
    return line;
}

void write_debug_output(std::string line)
{
    line += '\n';
#ifdef _WIN32
    std::wstring wide(line.size(), L'\0');
    const int length = MultiByteToWideChar(
        CP_UTF8, 0, line.data(), static_cast<int>(line.size()), &wide[0], static_cast<int>(wide.size()));
    wide.resize(static_cast<std::size_t>(std::max(length, 0)));
    OutputDebugStringW(wide.c_str());
#else
    std::fwrite(line.data(), 1, line.size(), stderr);
#endif
}

/// Copies \p text into a path buffer. The cut falls before the first character that does not fit whole:
/// continuation bytes of UTF-8 are 10xxxxxx, and a character has at most three of them.
void fill_path(char* buffer, const std::string& text)
{
    std::size_t length = text.size();
    if (length > ZR_DEBUG_LOG_PATH_SIZE - 1) {
        length = ZR_DEBUG_LOG_PATH_SIZE - 1;
        for (int i = 0; i < 3 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80; ++i)
            --length;
    }
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}

fs::path default_base_path()
{
    std::error_code error;
    const fs::path folder = fs::temp_directory_path(error);
    return fs::absolute(folder / "ZrDebugLog", error);
}

spdlog::filename_t native_name(const fs::path& path)
{
    // Wide names are an option of spdlog under Windows.
#if defined(_WIN32) && !defined(SPDLOG_WCHAR_FILENAMES)
    return path.string();
#else
    return path.native();
#endif
}

/// Both outputs and the base path. Safe from several threads.
class LogOutput
{
public:
    void Write(int level, const std::string& line, bool toFile, bool toDbg);
    void Flush();
    void SetBasePath(const char* path);
    std::string BasePath();
    std::string FilePath();

private:
    bool OpenFile();
    bool WriteFile(const std::string& line, bool flush);

    std::mutex m_lock; ///< guards all members and keeps lines whole
    fs::path m_basePath = default_base_path();
    fs::path m_filePath; ///< empty while no file is open
    std::unique_ptr<spdlog::sinks::basic_file_sink_st> m_file;
    bool m_openFailed = false; ///< opening in m_basePath was refused
};

/// Never destroyed: static objects log from their destructors. The C library flushes the file after them.
LogOutput& log_output()
{
    static LogOutput* const output = new LogOutput;
    return *output;
}

void LogOutput::Write(int level, const std::string& line, bool toFile, bool toDbg)
{
    const bool flush = level <= zr_debug_log_read_switch(&zr_debug_log_flush_level);
    const std::lock_guard<std::mutex> guard(m_lock);
    const bool fileFailed = toFile && !WriteFile(line, flush);
    if (!toDbg && !fileFailed)
        return;
    write_debug_output(line);
    if (flush)
        std::fflush(stderr);
}

void LogOutput::Flush()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    std::fflush(stderr);
    if (m_file)
        m_file->flush();
}

void LogOutput::SetBasePath(const char* path)
{
    fs::path folder;
    if (path && *path) {
        std::error_code error;
        folder = fs::absolute(fs::u8path(path), error);
        if (error)
            folder = fs::u8path(path);
    } else {
        folder = default_base_path();
    }
    const std::lock_guard<std::mutex> guard(m_lock);
    m_openFailed = false;
    if (folder == m_basePath)
        return;
    m_basePath = std::move(folder);
    m_filePath.clear();
    m_file.reset();
}

std::string LogOutput::BasePath()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_basePath.u8string();
}

std::string LogOutput::FilePath()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_filePath.u8string();
}

bool LogOutput::OpenFile()
{
    if (m_file || m_openFailed)
        return m_file != nullptr;
    // A refused file stays refused: trying again costs tens of milliseconds per message.
    m_openFailed = true;
    std::error_code error;
    fs::create_directories(m_basePath, error);
    if (!fs::is_directory(m_basePath, error))
        return false;
    const std::string time = format_time("%Y%m%d_%H%M%S", system_clock::now());
    const fs::path path = m_basePath / ("ZrDebugLog_" + time + "_" + std::to_string(process_id()) + ".log");
    auto file = std::make_unique<spdlog::sinks::basic_file_sink_st>(native_name(path));
    file->set_pattern("%v");
    m_file = std::move(file);
    m_filePath = path;
    m_openFailed = false;
    return true;
}

bool LogOutput::WriteFile(const std::string& line, bool flush)
{
    try {
        if (!OpenFile())
            return false;
        m_file->log(spdlog::details::log_msg(spdlog::string_view_t(), spdlog::level::info, line));
        if (flush)
            m_file->flush();
        return true;
    } catch (const std::exception&) {
        return false; // no permission, no space, no memory: the line goes to the debug output
    }
}

void emit(const LogMessage& message)
{
    const bool toFile = zr_debug_log_read_switch(&zr_debug_log_to_file) != 0;
    const bool toDbg = zr_debug_log_read_switch(&zr_debug_log_to_dbg) != 0;
    if (toFile || toDbg)
        log_output().Write(message.level, line_of(message), toFile, toDbg);
}

/// Calls \p work and keeps its exceptions (memory, locks) from crossing the C interface: a log must not fail
/// its user.
template <class Work> void quietly(Work work) noexcept
{
    try {
        work();
    } catch (...) {
        return;
    }
}

} // namespace

void zr_debug_log_modern(int level, const char* source_file, int source_line, const char* function,
    const char* category, int /*reserved*/, int64_t steady_time_ns, const char* message)
{
    quietly([&] { emit({level, source_file, source_line, function, category, steady_time_ns, message}); });
    if (level != ZR_DEBUG_LOG_CRITICAL || !zr_debug_log_read_switch(&zr_debug_terminate_on_critical))
        return;
    quietly([] { log_output().Flush(); });
    std::terminate();
}

const char* zr_debug_log_level_to_string(int level)
{
    switch (level) {
    case ZR_DEBUG_LOG_CRITICAL:
        return "Critical";
    case ZR_DEBUG_LOG_ERROR:
        return "Error";
    case ZR_DEBUG_LOG_WARNING:
        return "Warning";
    case ZR_DEBUG_LOG_INFO:
        return "Info";
    case ZR_DEBUG_LOG_DEBUG:
        return "Debug";
    case ZR_DEBUG_LOG_TRACE:
        return "Trace";
    default:
        return "Unknown";
    }
}

void zr_debug_log_get_base_path(char* buffer)
{
    if (!buffer)
        return;
    buffer[0] = '\0';
    quietly([&] { fill_path(buffer, log_output().BasePath()); });
}

void zr_debug_log_get_cur_path(char* buffer)
{
    if (!buffer)
        return;
    buffer[0] = '\0';
    quietly([&] { fill_path(buffer, log_output().FilePath()); });
}

void zr_debug_log_set_base_path(const char* path)
{
    quietly([&] { log_output().SetBasePath(path); });
}
