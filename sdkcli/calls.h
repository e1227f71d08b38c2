// The actions: each calls one or two functions of the library on `sdk`, prints the result, and returns the
// run's status: 0, or 1 when the result is an error.

#pragma once

#include <kelvarissdk/session.h>

// core
int requestState();
int requestVersion();
int requestExit();

// session
int requestLogin(char const* username, char const* password);
int loginOAuth(char const* token);
int loginAutoAccount();
int requestLogout();
int requestUserData();
int requestServers();
int requestConnectAuto(KelvarisSDK_AutoConnectMethod method);
int requestConnectCountry(char const* country);
int requestConnectCity(char const* country, char const* city);
int requestConnectServer(char const* country, char const* city, int num);
int requestConnectProxy();
int requestDisconnect();
int requestCurrentServer();
int requestServerSettings();
int setConnectMethodAuto(KelvarisSDK_AutoConnectMethod method);
int setConnectMethodCountry(char const* country);
int setConnectMethodCity(char const* country, char const* city);
int setConnectMethodServer(char const* country, char const* city, int num);
int requestDirectory();
int setEsniEnabled(bool enabled);
int setDirectory(char const* domain);
int resetDirectory();
int setGateway(char const* uri);
int resetGateway();

// settings

// adapters

// lists

// telemetry

// safebrowsing
