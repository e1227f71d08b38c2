// The product's name in messages of the daemon.

#pragma once

// The text with every "{kelvarisProductName}" replaced by the product's name. A text without one is returned
// itself; otherwise the result stands in a static buffer of 200 bytes until the next call: one thread at a
// time.
char const* replaceProductString(char const* text);
