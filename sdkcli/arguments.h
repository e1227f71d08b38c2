// The command line: which words make which action.

#pragma once

#include <kelvarissdk/csdkinterface.h>

// The library object of this run; null before main makes it and after main has destroyed it.
extern KelvarisSDK_Handle* sdk;

// The program's own name in messages: 512 bytes and a terminator.
extern char binName[512 + 1];

// Finds the action that argv[1] names and runs it. `argc` counts the slot before the keyword, as a process's
// does. Returns the exit status: 0 done, 1 failed, 2 invalid parameters, 3 missing parameters, 4 unknown
// action.
int processArgs(int argc, char* argv[]);

// Prints the usage text, to standard output for 0 and to standard error for any other number.
void showUsage(int failed);

// Whether a word names a private server rather than a country: "private" and two letters.
bool isPrivate(char const* word);

// Prompts on standard output and reads a line from standard input, without echo where that is a terminal. At
// most size - 1 bytes are kept. The line's last byte counts as its line end, whatever it is.
void readPrivate(char const* prompt, char* buffer, int size);
