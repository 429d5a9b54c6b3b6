#include "cli/table.h"

#include <algorithm>

#include "cli/text.h"

namespace velmo::cli {

namespace {

constexpr std::size_t gap = 2;

std::string shown(const Cell& cell)
{
    return std::string(2 * cell.indent, ' ') + harmless(cell.text);
}

std::string line(const std::vector<Cell>& row, const std::vector<std::size_t>& widths,
                 bool colours)
{
    std::string result;
    std::size_t missing = 0; // blanks before the next cell
    for (std::size_t i = 0; i < row.size(); ++i) {
        const std::string text = shown(row[i]);
        if (text.empty()) {
            missing += widths[i] + gap;
            continue;
        }
        result.append(missing, ' ');
        result += colours ? styled(text, row[i].style) : text;
        missing = widths[i] - width(text) + gap;
    }
    return result + "\n";
}

} // namespace

std::string Table::aligned(bool colours) const
{
    std::vector<std::vector<Cell>> all = rows;
    if (!heads.empty()) {
        std::vector<Cell> head;
        for (const std::string& text : heads)
            head.emplace_back(text, Style::bold);
        all.insert(all.begin(), std::move(head));
    }
    std::vector<std::size_t> widths;
    for (const std::vector<Cell>& row : all) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], width(shown(row[i])));
    }
    std::string result;
    for (const std::vector<Cell>& row : all)
        result += line(row, widths, colours);
    return result;
}

std::string Table::separated() const
{
    std::string result;
    for (const std::vector<Cell>& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            result += (i > 0 ? "\t" : "") + harmless(row[i].text);
        result += "\n";
    }
    return result;
}

std::string styled(const std::string& text, Style style)
{
    switch (style) {
    case Style::plain:
        return text;
    case Style::bold:
        return "\033[1m" + text + "\033[0m";
    case Style::good:
        return "\033[32m" + text + "\033[0m";
    case Style::bad:
        return "\033[31m" + text + "\033[0m";
    case Style::faint:
        return "\033[2m" + text + "\033[0m";
    }
    return text;
}

} // namespace velmo::cli
