// What a process takes of its host.
#ifndef VELMO_TESTS_LOAD_FIGURES_H
#define VELMO_TESTS_LOAD_FIGURES_H

#include <sys/types.h>

#include <cstddef>
#include <vector>

#include <nlohmann/json.hpp>

namespace velmo::tests {

// The sanitizers' own memory is no measure of a program's, and what they watch takes many
// times as long: tests do with less of it.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

struct Figures {
    std::size_t memory_kib = 0; // that holds no file's contents: heaps and stacks
    std::size_t descriptors = 0;
    std::size_t threads = 0;
};

// Throws std::runtime_error when there is no such process.
Figures figures_of(pid_t process);

// One figure, taken repeatedly.
using Series = std::vector<std::size_t>;

// How much higher it is, on the whole, towards the end than towards the beginning: the
// median of the last third less that of the first. A single peak does not show in it.
long long growth(const Series& series);

nlohmann::json to_json(const std::vector<Figures>& taken);

Series series_of(const std::vector<Figures>& taken, std::size_t Figures::*figure);

} // namespace velmo::tests

#endif
