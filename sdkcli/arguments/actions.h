// One function per keyword: it judges the words behind the keyword, the count first, then the values from
// left to right, and makes the action's call when all of them pass. Each returns the exit status.

#pragma once

// core
int stateAction(int argc);
int versionAction(int argc);
int daemonAction(int argc, char* argv[]);
int showAction(int argc, char* argv[]);

// session

// settings

// adapters
int adapterAction(int argc, char* argv[]);

// lists

// telemetry
int statsAction(int argc, char* argv[]);
int speedtestAction();
int streamtestAction();

// safebrowsing
