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
int modeAction(int argc, char* argv[]);
int transportAction(int argc, char* argv[]);
int encryptionAction(int argc, char* argv[]);
int jumboAction(int argc, char* argv[]);
int packetAggregationAction(int argc, char* argv[]);
int headerCompressionAction(int argc, char* argv[]);
int startupConnectAction(int argc, char* argv[]);
int overflowAction(int argc, char* argv[]);
int routeAction(int argc, char* argv[]);
int portsAction(int argc, char* argv[]);
int adapterEncryptionAction(int argc, char* argv[]);
int privacyAction(int argc);
int dnsAction(int argc, char* argv[]);
int captivePortalAction(int argc, char* argv[]);

// adapters
int adapterAction(int argc, char* argv[]);

// lists

// telemetry
int statsAction(int argc, char* argv[]);
int speedtestAction();
int streamtestAction();

// safebrowsing
int safeBrowsingAction(int argc, char* argv[]);
