#pragma once

// The one way to Boost in this folder: its Asio leaves out a header that C++20 needs.
#include <utility>

#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
