#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace monitor {

// What a colour means; the terminal chooses it.
enum class Ink : std::uint8_t { plain, receive, send, good, warning, bad };
constexpr unsigned inkCount = 6;

struct Style {
    Ink ink = Ink::plain;
    bool bold = false;
    bool dim = false;
    bool reverse = false;

    bool operator==(Style const&) const = default;
};

constexpr Style plainStyle{};
constexpr Style boldStyle{.bold = true};
constexpr Style dimStyle{.dim = true};

struct Cell {
    // A character and what combines with it, ended by 0 when there is room. Nothing: the right half of the wide one before.
    std::array<char32_t, 3> text{U' '};
    Style style;

    bool operator==(Cell const&) const = default;
};

struct Size {
    int rows = 0;
    int columns = 0;

    bool operator==(Size const&) const = default;
};

// How many columns a text takes in a grid.
int widthOf(std::string_view text);

// A picture of cells. What is put beyond its edges isn't shown, and a wide character is shown whole or not at all.
class Grid {
public:
    // In ASCII each character stands for itself, or a similar one or "?" for it.
    Grid(Size size, bool isAscii);

    Size size() const {
        return extent;
    }
    Cell const& at(int row, int column) const {
        return cells[index(row, column)];
    }
    // Writes at most this many columns. A longer text ends in an ellipsis. Returns the column behind what is written.
    int put(int row, int column, std::string_view text, Style style = {}, int columns = 1 << 20);
    // The same so that it ends in front of this column; returns the column of its beginning.
    int putBefore(int row, int column, std::string_view text, Style style = {});
    int putCharacters(int row, int column, std::u32string_view text, Style style);
    void fill(int row, int column, int columns, char32_t character, Style style);
    // Shows rows or all as something that isn't up to date.
    void dimRows(int first, int count);
    // Without the empty rows at its end.
    void trim();

    // A row as UTF-8, without the blanks at its end.
    std::string rowText(int row) const;
    // All rows, as lines; coloured by the sequences of ANSI terminals.
    std::string lines(bool isColoured) const;

private:
    std::size_t index(int row, int column) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(extent.columns) +
               static_cast<std::size_t>(column);
    }
    int lastColumn(int row) const; // -1: the row is empty
    void clearHalf(int row, int column);

    Size extent;
    bool isAscii;
    std::vector<Cell> cells;
};

} // namespace monitor
