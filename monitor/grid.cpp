#include "grid.h"
#include "text.h"

#include <algorithm>
#include <cwchar>

namespace monitor {

namespace {

constexpr char32_t replacement = 0xFFFD;

// Characters that change the width of their neighbours in some terminals and not in others.
bool isUnsteady(char32_t code) {
    return (code >= 0x200B && code <= 0x200D) || code == 0x2060 || (code >= 0xFE00 && code <= 0xFE0F) ||
           code == 0xFEFF || code == 0x20E3 || (code >= 0xE0000 && code <= 0xE0FFF) ||
           (code >= 0x1F3FB && code <= 0x1F3FF);
}

// Columns of a character, by the locale; 0: it combines with the one before it. The replacement stands in ASCII for
// one that the locale hasn't.
int widthOf(char32_t code) {
    return code < 0x7F || code == replacement ? 1 : wcwidth(static_cast<wchar_t>(code));
}

char32_t asciiFor(char32_t code) {
    constexpr std::u32string_view fancy = U"●◐○↓↑·…━╸─–±";
    constexpr std::u32string_view simple = U"*+ov^-~=---+";
    static_assert(fancy.size() == simple.size());
    auto const at = fancy.find(code);
    return at == std::u32string_view::npos ? U'?' : simple[at];
}

// The text with nothing in it whose width isn't known.
std::u32string steady(std::string_view text, bool isAscii) {
    std::u32string result = characters(text);
    std::erase_if(result, isUnsteady);
    for (char32_t& each : result) {
        if (isAscii && each > 0x7E) {
            each = asciiFor(each);
        } else if (widthOf(each) < 0) {
            each = replacement;
        }
    }
    return result;
}

int widthOf(std::u32string_view text) {
    int width = 0;
    for (char32_t const each : text) {
        width += std::max(widthOf(each), 0);
    }
    return width;
}

// As many characters as fit, an ellipsis with them.
std::u32string cut(std::u32string_view text, int columns, char32_t ellipsis) {
    std::u32string result;
    int width = 0;
    for (char32_t const each : text) {
        width += std::max(widthOf(each), 0);
        if (width > columns - 1) {
            break;
        }
        result += each;
    }
    if (columns > 0) {
        result += ellipsis;
    }
    return result;
}

void append(std::string& to, char32_t code) {
    auto const add = [&to](char32_t byte) { to += static_cast<char>(byte); };
    if (code < 0x80) {
        add(code);
    } else if (code < 0x800) {
        add(0xC0 | code >> 6);
        add(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        add(0xE0 | code >> 12);
        add(0x80 | (code >> 6 & 0x3F));
        add(0x80 | (code & 0x3F));
    } else {
        add(0xF0 | code >> 18);
        add(0x80 | (code >> 12 & 0x3F));
        add(0x80 | (code >> 6 & 0x3F));
        add(0x80 | (code & 0x3F));
    }
}

void append(std::string& to, Cell const& cell) {
    for (std::size_t i = 0; i < cell.text.size() && cell.text[i] != 0; ++i) {
        append(to, cell.text[i]);
    }
}

std::string sequenceOf(Style style) {
    constexpr std::array<char const*, inkCount> colours = {"", ";36", ";35", ";32", ";33", ";31"};
    return std::string("\x1b[0") + (style.bold ? ";1" : "") + (style.dim ? ";2" : "") +
           (style.reverse ? ";7" : "") + colours.at(static_cast<unsigned>(style.ink)) + "m";
}

} // namespace

int widthOf(std::string_view text) {
    return widthOf(steady(text, false));
}

Grid::Grid(Size size, bool inAscii)
    : extent{std::max(size.rows, 0), std::max(size.columns, 0)},
      isAscii(inAscii),
      cells(static_cast<std::size_t>(extent.rows) * static_cast<std::size_t>(extent.columns)) {}

int Grid::put(int row, int column, std::string_view text, Style style, int columns) {
    std::u32string shown = steady(text, isAscii);
    int const room = std::min(columns, extent.columns - column);
    if (widthOf(shown) > room) {
        shown = cut(shown, room, isAscii ? U'~' : U'…');
    }
    return putCharacters(row, column, shown, style);
}

int Grid::putBefore(int row, int column, std::string_view text, Style style) {
    int const begin = column - widthOf(steady(text, isAscii));
    put(row, begin, text, style);
    return begin;
}

// What was half overwritten is shown no more.
void Grid::clearHalf(int row, int column) {
    if (column > 0 && column < extent.columns && at(row, column).text[0] == 0) {
        cells[index(row, column - 1)].text = {U' '};
        cells[index(row, column)].text = {U' '};
    }
}

int Grid::putCharacters(int row, int column, std::u32string_view text, Style style) {
    if (row < 0 || row >= extent.rows) {
        return column;
    }
    Cell* last = nullptr;
    for (char32_t const each : text) {
        int const width = widthOf(each);
        if (width <= 0) {
            auto const free = last == nullptr ? nullptr : std::find(last->text.begin(), last->text.end(), 0);
            if (free != nullptr && free != last->text.end()) {
                *free = each;
            }
            continue;
        }
        last = nullptr;
        if (column >= 0 && column + width <= extent.columns) {
            clearHalf(row, column);
            clearHalf(row, column + width);
            last = &cells[index(row, column)];
            *last = {{each}, style};
            if (width == 2) {
                cells[index(row, column + 1)] = {{U'\0'}, style};
            }
        }
        column += width;
    }
    return column;
}

void Grid::fill(int row, int column, int columns, char32_t character, Style style) {
    char32_t const shown = isAscii && character > 0x7E ? asciiFor(character) : character;
    int const fits = std::clamp(extent.columns - column, 0, std::max(columns, 0));
    putCharacters(row, column, std::u32string(static_cast<std::size_t>(fits), shown), style);
}

void Grid::dimRows(int first, int count) {
    for (int row = std::max(first, 0); row < std::min(first + count, extent.rows); ++row) {
        for (int column = 0; column < extent.columns; ++column) {
            Style& style = cells[index(row, column)].style;
            style = {.dim = true, .reverse = style.reverse};
        }
    }
}

int Grid::lastColumn(int row) const {
    int column = extent.columns - 1;
    while (column >= 0 && at(row, column).text[0] == U' ' && !at(row, column).style.reverse) {
        --column;
    }
    return column;
}

void Grid::trim() {
    while (extent.rows > 0 && lastColumn(extent.rows - 1) < 0) {
        --extent.rows;
    }
    cells.resize(static_cast<std::size_t>(extent.rows) * static_cast<std::size_t>(extent.columns));
}

std::string Grid::rowText(int row) const {
    std::string text;
    int const last = lastColumn(row);
    for (int column = 0; column <= last; ++column) {
        append(text, at(row, column));
    }
    return text;
}

std::string Grid::lines(bool isColoured) const {
    std::string text;
    for (int row = 0; row < extent.rows; ++row) {
        if (!isColoured) {
            text += rowText(row) + '\n';
            continue;
        }
        Style now;
        int const last = lastColumn(row);
        for (int column = 0; column <= last; ++column) {
            Cell const& cell = at(row, column);
            if (cell.style != now) {
                text += sequenceOf(now = cell.style);
            }
            append(text, cell);
        }
        text += now == Style() ? "\n" : "\x1b[0m\n";
    }
    return text;
}

} // namespace monitor
