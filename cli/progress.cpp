#include "cli/progress.h"

#include <algorithm>
#include <cstdio>

#include <unistd.h>

namespace velmo::cli {

namespace {

constexpr std::size_t bar_width = 30;
constexpr std::chrono::milliseconds interval{50};

} // namespace

Progress::Progress(bool wanted, std::string its_what, std::size_t its_total)
    : shown(wanted && isatty(STDERR_FILENO) == 1), what(std::move(its_what)),
      total(its_total)
{
    if (shown)
        draw();
}

Progress::~Progress()
{
    if (shown) {
        draw();
        std::fputs("\r\033[K", stderr);
    }
}

void Progress::step(std::size_t count)
{
    done += count;
    const auto now = std::chrono::steady_clock::now();
    if (!shown || now - last < interval)
        return;
    last = now;
    draw();
}

void Progress::draw() const
{
    std::string line = "\r" + what + " ";
    if (total > 0) {
        const std::size_t full = bar_width * std::min(done, total) / total;
        line += "[" + std::string(full, '#') + std::string(bar_width - full, '.') + "] " +
                std::to_string(100 * std::min(done, total) / total) + " % ";
    }
    line +=
        std::to_string(done) + (total > 0 ? "/" + std::to_string(total) : "") + "\033[K";
    std::fputs(line.c_str(), stderr);
    std::fflush(stderr);
}

} // namespace velmo::cli
