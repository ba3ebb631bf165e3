// From the start of the process to its first frame: the application against a program with an empty
// QOpenGLWidget, in turn in one run, so that both see the same machine. Both have been started once before,
// so that their files and the shaders of the driver are in the caches.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

constexpr int starts = 9;
constexpr double mostSeconds = 1.0;
constexpr double mostRatio = 2.5;

/// Seconds from before the start of a program to the line that it prints at its first frame; below 0 when it
/// printed none.
double Start(const std::string& program)
{
    const std::string command = "exec timeout 20 " + program + " 2>/dev/null";
    const auto begin = std::chrono::steady_clock::now();
    FILE* const out = popen(command.c_str(), "r");
    if (!out)
        return -1.0;
    char line[32] = {};
    const bool isLine = std::fgets(line, sizeof line, out) && std::string(line) == "first frame\n";
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    return pclose(out) == 0 && isLine ? taken.count() : -1.0;
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void FirstFrame(benchmark::State& state)
{
    const std::filesystem::path data
        = std::filesystem::temp_directory_path() / ("bench_SurveyStart-" + std::to_string(getpid()));
    const std::string survey
        = std::string(ZR_BIN_DIR) + "/ZrSurvey --time-start --data '" + data.string() + "'";
    const std::string empty = std::string(ZR_BIN_DIR) + "/empty_gl_widget";
    for (auto _ : state) {
        std::vector<double> ofSurvey;
        std::vector<double> ofEmpty;
        bool isWhole = Start(survey) >= 0.0 && Start(empty) >= 0.0;
        for (int i = 0; i < starts && isWhole; i++) {
            ofEmpty.push_back(Start(empty));
            ofSurvey.push_back(Start(survey));
            isWhole = ofEmpty.back() >= 0.0 && ofSurvey.back() >= 0.0;
        }
        if (!isWhole) {
            state.SkipWithError("A program printed no first frame: is there a display?");
            break;
        }
        const double seconds = Median(ofSurvey);
        const double ratio = seconds / Median(ofEmpty);
        state.SetIterationTime(seconds);
        state.counters["survey_ms"] = seconds * 1e3;
        state.counters["empty_ms"] = Median(ofEmpty) * 1e3;
        state.counters["ratio"] = ratio;
        if (seconds >= mostSeconds || ratio > mostRatio) {
            const std::string what = "Too slow: " + std::to_string(seconds) + " s, " + std::to_string(ratio)
                + " times the empty program";
            state.SkipWithError(what.c_str());
        }
    }
    std::error_code ignored;
    std::filesystem::remove_all(data, ignored);
}

} // namespace

BENCHMARK(FirstFrame)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
