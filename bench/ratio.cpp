#include "bench/ratio.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <vector>

namespace {

// How long each function runs, and how often.
struct effort {
    int Repetitions;
    double Seconds;
};
constexpr effort Thorough = {21, 0.02};
constexpr effort Quick = {1, 0.0005};
constexpr std::string_view QuickOption = "--quick";

effort Effort = Thorough;

// Stands between the group's name and the function's in the name that Google Benchmark knows.
constexpr char Separator[] = " | ";
constexpr char Measured[] = "";

struct timing {
    std::string Function;
    std::vector<double> Nanoseconds;

    double Median()
    {
        const auto middle = Nanoseconds.begin() + static_cast<std::ptrdiff_t>(Nanoseconds.size() / 2);
        std::nth_element(Nanoseconds.begin(), middle, Nanoseconds.end());
        return *middle;
    }
};

struct group {
    std::string Name;
    std::vector<timing> Timings;  // what is measured and the others, in the order of registration
};

std::vector<group>& groups()
{
    static std::vector<group> all;
    return all;
}

std::vector<ratioOption*>& options()
{
    static std::vector<ratioOption*> all;
    return all;
}

timing& timingOf(const std::string& groupName, const std::string& function)
{
    auto& all = groups();
    auto found =
        std::find_if(all.begin(), all.end(), [&](const group& each) { return each.Name == groupName; });
    if (found == all.end())
        found = all.insert(all.end(), group{groupName, {}});
    auto& timings = found->Timings;
    const auto known = std::find_if(timings.begin(), timings.end(),
                                    [&](const timing& each) { return each.Function == function; });
    return known == timings.end() ? timings.emplace_back(timing{function, {}}) : *known;
}

void Print(group& each)
{
    double measured = 0;
    for (timing& one : each.Timings) {
        if (one.Function == Measured && !one.Nanoseconds.empty())
            measured = one.Median();
    }
    std::string line = each.Name + ":";
    char piece[128];
    size_t others = 0;
    for (timing& one : each.Timings) {
        if (one.Function == Measured || one.Nanoseconds.empty())
            continue;
        std::snprintf(piece, sizeof piece, "%s%.3g x %s",
                      others == 0   ? " "
                      : others == 1 ? " ("
                                    : ", ",
                      measured / one.Median(), one.Function.c_str());
        line += piece;
        ++others;
    }
    std::snprintf(piece, sizeof piece, "%s %.4g ns", others == 0 ? "" : others == 1 ? "," : "),", measured);
    std::printf("%s%s\n", line.c_str(), piece);
}

class ratioReporter : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.error_occurred)
                std::printf("%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
            else if (run.run_type == Run::RT_Iteration)
                Keep(run);
        }
    }

    void Finalize() override
    {
        for (group& each : groups()) {
            const bool ran = std::any_of(each.Timings.begin(), each.Timings.end(),
                                         [](const timing& one) { return !one.Nanoseconds.empty(); });
            if (ran)
                Print(each);
        }
    }

private:
    static void Keep(const Run& run)
    {
        const std::string& name = run.run_name.function_name;
        const size_t cut = name.find(Separator);
        const std::string function =
            cut == std::string::npos ? Measured : name.substr(cut + sizeof Separator - 1);
        // Threads that run at once share the time on the wall and add up their processor time.
        const double seconds = run.threads > 1 ? run.real_accumulated_time : run.cpu_accumulated_time;
        const auto rounds = static_cast<double>(run.iterations) / static_cast<double>(run.threads);
        timingOf(name.substr(0, cut), function).Nanoseconds.push_back(seconds / rounds * 1e9);
    }
};

}  // namespace

ratioOption::ratioOption(std::string name) : Name("--" + std::move(name))
{
    options().push_back(this);
}

ratioGroup& ratioGroup::Threads(int count)
{
    ThreadCount = count;
    return *this;
}

ratioGroup& ratioGroup::Measure(const ratioFunction& function)
{
    Register(Measured, function);
    return *this;
}

ratioGroup& ratioGroup::Against(const std::string& other, const ratioFunction& function)
{
    Register(other, function);
    return *this;
}

void ratioGroup::Register(const std::string& function, const ratioFunction& body)
{
    timingOf(Name, function);
    auto* const benchmark = benchmark::RegisterBenchmark((Name + Separator + function).c_str(), body);
    benchmark->Repetitions(Effort.Repetitions)->MinTime(Effort.Seconds);
    if (ThreadCount > 1)
        benchmark->Threads(ThreadCount)->UseRealTime();
}

int main(int argumentCount, char** arguments)
{
    std::vector<char*> all;
    all.reserve(static_cast<size_t>(argumentCount) + 2);
    all.push_back(arguments[0]);
    // The turns are taken in random order.
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    all.push_back(interleave);
    for (int index = 1; index < argumentCount; ++index) {
        const auto own = std::find_if(options().begin(), options().end(), [&](const ratioOption* option) {
            return option->Name == arguments[index];
        });
        if (arguments[index] == QuickOption)
            Effort = Quick;
        else if (own != options().end() && index + 1 < argumentCount)
            (*own)->Given = arguments[++index];
        else
            all.push_back(arguments[index]);
    }
    int count = static_cast<int>(all.size());
    all.push_back(nullptr);
    benchmark::Initialize(&count, all.data());
    if (benchmark::ReportUnrecognizedArguments(count, all.data()))
        return 1;
    ratioGroups();
    ratioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
