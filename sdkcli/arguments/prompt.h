// The prompt asks for a secret, which mustn't be seen on the terminal.

#pragma once

// Prompts on standard output and reads a line from standard input, without echo where that is a terminal. It
// keeps at most size - 1 bytes. The line's last byte counts as its line end, even when it is none.
void readPrivate(char const* prompt, char* buffer, int size);
