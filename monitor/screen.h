#pragma once

#include "grid.h"

namespace monitor {

// Keys that no character stands for.
enum class Key : int {
    none = -1,
    up = -2,
    down = -3,
    enter = -4,
    escape = -5,
    redraw = -6,
    gone = -7,
    other = -8
};

// The terminal, from the moment that it shows pictures until it is as it was before. One at a time.
class Screen {
public:
    // Nothing is opened when the terminal can't move its cursor.
    static bool canDraw();
    explicit Screen(bool isColoured);
    ~Screen();
    Screen(Screen const&) = delete;
    Screen& operator=(Screen const&) = delete;

    Size size() const;
    // Sends what differs from the picture before. False: the terminal takes nothing at the moment.
    bool show(Grid const& picture);
    // A character, or a Key; Key::none when there is no more.
    int nextKey();

    // Gives the terminal back, and takes it again; both may be called twice.
    void leave();
    void enter();
    // The terminal has another size now.
    void resize();
    void redraw();

private:
    void takeErrors();
    void giveErrorsBack();

    bool const isColoured;
    bool isInside = false;
    int errors = -1; // the standard error output, while it is taken away
    Grid shown;
};

} // namespace monitor
