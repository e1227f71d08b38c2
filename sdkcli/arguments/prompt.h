// The prompt asks for what mustn't be seen.

#pragma once

// Prompts on standard output and reads a line from standard input, without echo where that is a terminal. At
// most size - 1 bytes are kept. The line's last byte counts as its line end, whatever it is.
void readPrivate(char const* prompt, char* buffer, int size);
