#include "cli/suggestion.h"

#include <algorithm>

namespace velmo::cli {

namespace {

// How many letters have to be inserted, left out, changed or swapped with the next one.
std::size_t distance(const std::string& a, const std::string& b)
{
    std::vector<std::size_t> before_last, last, row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        before_last = last;
        last = row;
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool same = a[i - 1] == b[j - 1];
            row[j] =
                std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0u : 1u)});
            const bool swapped =
                i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (swapped)
                row[j] = std::min(row[j], before_last[j - 2] + 1);
        }
    }
    return row.back();
}

} // namespace

std::string nearest(const std::string& word, const std::vector<std::string>& candidates)
{
    std::string best;
    std::size_t least = std::max<std::size_t>(word.size() / 3, 1) + 1;
    for (const std::string& candidate : candidates) {
        const bool begun = word.size() > 1 && candidate.compare(0, word.size(), word) == 0;
        const std::size_t far = begun ? 1 : distance(word, candidate);
        if (far < least && far < candidate.size()) {
            best = candidate;
            least = far;
        }
    }
    return best;
}

} // namespace velmo::cli
