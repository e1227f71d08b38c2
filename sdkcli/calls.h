// The actions: each calls one or two functions of the library on `sdk`, prints the result, and returns the
// run's status: 0, or 1 when the result is an error.

#pragma once

// core
int requestState();
int requestVersion();
int requestExit();

// session

// settings

// adapters

// lists

// telemetry

// safebrowsing
