#pragma once

// All files of this folder include Boost through this header, because its Asio leaves out a header that C++20
// needs.
#include <utility>

// Asio's fences don't compile under the thread sanitizer with warnings as errors, and no code here relies on
// them.
#define BOOST_ASIO_DISABLE_FENCED_BLOCK
#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
