// One function per keyword: it judges the words behind the keyword, the count first, then the values from
// left to right, and makes the action's call when all of them pass. Each returns the exit status.

#pragma once

// core
int stateAction(int argc);
int versionAction(int argc);
int daemonAction(int argc, char* argv[]);
int showAction(int argc, char* argv[]);

// session
int loginAction(int argc, char* argv[]);
int logoutAction(int argc);
int connectAction(int argc, char* argv[]);
int disconnectAction(int argc);
int connectMethodAction(int argc, char* argv[]);
int directoryAction(int argc, char* argv[]);
int gatewayAction(int argc, char* argv[]);
int esniAction(int argc, char* argv[]);

// settings

// adapters

// lists

// telemetry

// safebrowsing
