#include "tests/load/figures.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace velmo::tests {

namespace {

namespace fs = std::filesystem;

std::size_t entries(const fs::path& folder)
{
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

// Of all mappings together.
std::size_t anonymous_kib(const fs::path& process)
{
    std::ifstream sums(process / "smaps_rollup");
    for (std::string word; sums >> word;)
        if (std::size_t kib = 0; word == "Anonymous:" && sums >> kib)
            return kib;
    throw std::runtime_error("no sums in " + process.string());
}

std::size_t median(Series part)
{
    const auto middle =
        part.begin() + static_cast<Series::difference_type>(part.size() / 2);
    std::nth_element(part.begin(), middle, part.end());
    return *middle;
}

} // namespace

Figures figures_of(pid_t process)
{
    const fs::path folder = "/proc/" + std::to_string(process);
    return {anonymous_kib(folder), entries(folder / "fd"), entries(folder / "task")};
}

long long growth(const Series& series)
{
    const auto third = static_cast<Series::difference_type>(series.size() / 3);
    if (third == 0)
        throw std::logic_error("too short a series");
    return static_cast<long long>(median(Series(series.end() - third, series.end()))) -
           static_cast<long long>(median(Series(series.begin(), series.begin() + third)));
}

nlohmann::json to_json(const std::vector<Figures>& taken)
{
    return {{"memory_kib", series_of(taken, &Figures::memory_kib)},
            {"descriptors", series_of(taken, &Figures::descriptors)},
            {"threads", series_of(taken, &Figures::threads)}};
}

Series series_of(const std::vector<Figures>& taken, std::size_t Figures::*figure)
{
    Series series;
    for (const Figures& figures : taken)
        series.push_back(figures.*figure);
    return series;
}

} // namespace velmo::tests
