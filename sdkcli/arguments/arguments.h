// The command line says which words make which action.

#pragma once

// Finds the action that argv[1] names and runs it. `argc` counts the slot before the keyword, as a process's
// does. Returns the exit status: 0 done, 1 failed, 2 invalid parameters, 3 missing parameters, 4 unknown
// action.
int processArgs(int argc, char* argv[]);

// Prints the usage text, to standard output for 0 and to standard error for any other number.
void showUsage(int failed);
