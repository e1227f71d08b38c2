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

// lists
int localproxyAction(int argc, char* argv[]);
int firewallAction(int argc, char* argv[]);
int streamingbypassAction(int argc, char* argv[]);
int streamingAction(int argc, char* argv[]);

// telemetry

// safebrowsing
