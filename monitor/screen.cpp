#include "screen.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <string_view>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#define NCURSES_NOMACROS
#define NCURSES_WIDECHAR 1
#include <curses.h>

namespace monitor {

namespace {

constexpr int escapeDelay = 25; // milliseconds

// A colour of each ink, and that of what is dim, which stand out from a dark and from a bright background. Then those of
// terminals with eight colours, where dim is an attribute.
constexpr std::array<short, inkCount + 1> manyColours = {-1, 37, 133, 71, 172, 167, 244};
constexpr std::array<short, inkCount + 1> eightColours = {
    -1, COLOR_CYAN, COLOR_MAGENTA, COLOR_GREEN, COLOR_YELLOW, COLOR_RED, -1};
constexpr short dimPair = inkCount;

SCREEN* terminal = nullptr; // ncurses knows only one at a time, too

bool hasManyColours() {
    return COLORS >= 256;
}

void prepareColours() {
    start_color();
    use_default_colors();
    auto const& colours = hasManyColours() ? manyColours : eightColours;
    for (short pair = 1; pair <= dimPair; ++pair) {
        init_pair(pair, colours.at(static_cast<std::size_t>(pair)), -1);
    }
}

cchar_t drawn(Cell const& cell, bool isColoured) {
    std::array<wchar_t, 4> text{};
    std::copy(cell.text.begin(), cell.text.end(), text.begin());
    Style const style = cell.style;
    bool const isGrey = isColoured && hasManyColours() && style.dim && style.ink == Ink::plain;
    attr_t attributes = WA_NORMAL;
    attributes |= style.bold ? WA_BOLD : WA_NORMAL;
    attributes |= style.reverse ? WA_REVERSE : WA_NORMAL;
    attributes |= style.dim && !isGrey ? WA_DIM : WA_NORMAL;
    auto const pair = static_cast<short>(!isColoured ? 0 : isGrey ? dimPair : static_cast<int>(style.ink));
    cchar_t result;
    setcchar(&result, text.data(), attributes, pair, nullptr);
    return result;
}

// While it draws ncurses has SIGTSTP ignored, which throws away one that waits to be read. A signal with a handler is left
// alone, from the first terminal on.
SCREEN* openTerminal(std::FILE* output, std::FILE* input) {
    struct sigaction handled {};
    struct sigaction before {};
    handled.sa_handler = [](int) {};
    sigaction(SIGTSTP, &handled, &before);
    SCREEN* const opened = newterm(nullptr, output, input);
    sigaction(SIGTSTP, &before, nullptr);
    return opened;
}

// A key that stopped the output within a picture would have the program wait for the one that starts it, deaf to signals.
void keepOutputRunning() {
    termios modes;
    if (tcgetattr(STDOUT_FILENO, &modes) == 0) {
        modes.c_iflag &= ~static_cast<tcflag_t>(IXON);
        tcsetattr(STDOUT_FILENO, TCSANOW, &modes);
        def_prog_mode();
    }
}

// Into the corner of a single column ncurses can't write: it would begin in the column on its left.
void writeCorner(Grid const& picture) {
    int const row = picture.size().rows - 1;
    std::string const text = picture.rowText(row);
    wmove(stdscr, row, 0);
    wrefresh(stdscr);
    std::fputs((text.empty() ? " \r" : text + '\r').c_str(), stdout);
    std::fflush(stdout);
}

// What gives the terminal back when the program crashes, where ncurses can't be called any more.
constexpr std::array crashes = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};
std::array<struct sigaction, crashes.size()> actionsBefore;
termios modesBefore;
std::array<char, 128> leavingSequences;
std::size_t leavingLength = 0;

void forgetCrashes() {
    for (std::size_t i = 0; i < crashes.size(); ++i) {
        sigaction(crashes[i], &actionsBefore[i], nullptr);
    }
}

// Behind it the crash takes its course, with the action from before.
void giveBackAndCrash(int signal) {
    static_cast<void>(!write(STDOUT_FILENO, leavingSequences.data(), leavingLength));
    tcsetattr(STDOUT_FILENO, TCSANOW, &modesBefore);
    forgetCrashes();
    raise(signal);
}

void prepareForCrashes() {
    leavingLength = 0;
    for (char const* const name : {"op", "sgr0", "rmkx", "cnorm", "rmcup"}) {
        char const* const found = tigetstr(name);
        bool const isThere = found != nullptr && reinterpret_cast<std::intptr_t>(found) != -1;
        std::string_view const sequence = isThere ? found : "";
        if (sequence.size() <= leavingSequences.size() - leavingLength) {
            leavingLength += sequence.copy(leavingSequences.data() + leavingLength, sequence.size());
        }
    }
    struct sigaction action {};
    action.sa_handler = giveBackAndCrash;
    for (std::size_t i = 0; i < crashes.size(); ++i) {
        sigaction(crashes[i], &action, &actionsBefore[i]);
    }
}

bool takesOutput() {
    pollfd output{STDOUT_FILENO, POLLOUT, 0};
    return poll(&output, 1, 0) != 0;
}

} // namespace

Screen::Screen(bool inColour) : isColoured(inColour), shown({0, 0}, false) {
    use_env(FALSE); // the size is the terminal's, not that of COLUMNS and LINES
    use_tioctl(TRUE);
    tcgetattr(STDOUT_FILENO, &modesBefore);
    terminal = openTerminal(stdout, stdin);
    if (terminal == nullptr) {
        throw std::runtime_error("the terminal can't be used");
    }
    isInside = true;
    prepareForCrashes();
    takeErrors();
    set_escdelay(escapeDelay);
    keepOutputRunning();
    cbreak();
    noecho();
    nonl();
    keypad(stdscr, TRUE);
    nodelay(stdscr, TRUE);
    curs_set(0);
    if (isColoured && has_colors()) {
        prepareColours();
    }
}

Screen::~Screen() {
    leave();
    delscreen(terminal);
    terminal = nullptr;
}

bool Screen::canDraw() {
    char const* const name = std::getenv("TERM");
    if (!isatty(STDOUT_FILENO) || name == nullptr) {
        return false;
    }
    std::FILE* const nowhere = std::fopen("/dev/null", "r+");
    if (nowhere == nullptr) {
        return false;
    }
    SCREEN* const trial = openTerminal(nowhere, nowhere);
    auto const moves = trial == nullptr ? nullptr : tigetstr("cup");
    bool const can = moves != nullptr && reinterpret_cast<std::intptr_t>(moves) != -1;
    if (trial != nullptr) {
        endwin();
        delscreen(trial);
    }
    std::fclose(nowhere);
    return can;
}

Size Screen::size() const {
    return {getmaxy(stdscr), getmaxx(stdscr)};
}

bool Screen::show(Grid const& picture) {
    if (!isInside || !takesOutput()) {
        return false;
    }
    bool const isSame = shown.size() == picture.size();
    if (!isSame) {
        werase(stdscr);
    }
    Size const size = picture.size();
    for (int row = 0; row < size.rows; ++row) {
        for (int column = 0; column < size.columns; ++column) {
            Cell const& cell = picture.at(row, column);
            bool const isCorner = size.columns == 1 && row == size.rows - 1;
            if (cell.text[0] != 0 && !isCorner && !(isSame && cell == shown.at(row, column))) {
                cchar_t const character = drawn(cell, isColoured && has_colors());
                mvwadd_wch(stdscr, row, column, &character);
            }
        }
    }
    wrefresh(stdscr);
    if (size.columns == 1 && size.rows > 0) {
        writeCorner(picture);
    }
    shown = picture;
    return true;
}

int Screen::nextKey() {
    if (!isInside) {
        return static_cast<int>(Key::none);
    }
    switch (int const key = wgetch(stdscr)) {
    case ERR:
        return static_cast<int>(Key::none);
    case KEY_UP:
        return static_cast<int>(Key::up);
    case KEY_DOWN:
        return static_cast<int>(Key::down);
    case KEY_ENTER:
    case '\r':
    case '\n':
        return static_cast<int>(Key::enter);
    case '\x1b':
        return static_cast<int>(Key::escape);
    case '\f':
        return static_cast<int>(Key::redraw);
    default:
        return key < 0x7F ? key : static_cast<int>(Key::other);
    }
}

void Screen::leave() {
    if (isInside) {
        isInside = false;
        endwin();
        forgetCrashes();
        giveErrorsBack();
    }
}

// The library tells on the standard error output of reports that it can't read, bytes of the daemon's included. On the
// terminal that would be written over the picture.
void Screen::takeErrors() {
    if (errors < 0 && isatty(STDERR_FILENO) != 0) {
        int const nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        errors = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        if (nowhere >= 0 && errors >= 0) {
            dup2(nowhere, STDERR_FILENO);
        }
        close(nowhere);
    }
}

void Screen::giveErrorsBack() {
    if (errors >= 0) {
        dup2(errors, STDERR_FILENO);
        close(errors);
        errors = -1;
    }
}

void Screen::enter() {
    if (!isInside) {
        isInside = true;
        prepareForCrashes();
        takeErrors();
    }
    resize(); // who is stopped isn't told of it at once
    redraw();
}

void Screen::resize() {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0) {
        resizeterm(size.ws_row, size.ws_col);
        clearok(curscr, TRUE); // terminals differ in what they make of the picture then
    }
}

void Screen::redraw() {
    reset_prog_mode();
    clearok(curscr, TRUE);
    wrefresh(stdscr);
}

} // namespace monitor
