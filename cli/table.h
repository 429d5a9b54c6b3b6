// Rows of cells, as people and as programs read them.
#ifndef VELMO_CLI_TABLE_H
#define VELMO_CLI_TABLE_H

#include <string>
#include <vector>

namespace velmo::cli {

enum class Style { plain, bold, good, bad, faint };

struct Cell {
    Cell(std::string its_text, Style its_style = Style::plain, std::size_t its_indent = 0)
        : text(std::move(its_text)), style(its_style), indent(its_indent)
    {
    }
    Cell(const char* its_text) : Cell(std::string(its_text)) {}

    std::string text;
    Style style;
    std::size_t indent; // levels below the first row of a tree
};

class Table {
public:
    // titles: of the columns; none for a table without a head line.
    explicit Table(std::vector<std::string> titles = {}) : heads(std::move(titles)) {}

    // Rows may have different lengths.
    void add(std::vector<Cell> row) { rows.push_back(std::move(row)); }

    // In columns below their heads, with colours if wanted.
    std::string aligned(bool colours) const;

    // The rows alone, their cells separated by tabulators.
    std::string separated() const;

private:
    std::vector<std::string> heads;
    std::vector<std::vector<Cell>> rows;
};

// The text as a terminal shows it in that style.
std::string styled(const std::string& text, Style style);

} // namespace velmo::cli

#endif
