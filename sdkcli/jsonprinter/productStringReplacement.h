// Messages of the daemon name the product by a placeholder.

#pragma once

// Returns the text with every "{kelvarisProductName}" replaced by the product's name. A text without one is
// returned itself. Otherwise the result stands in a static buffer of 200 bytes until the next call, so only one
// thread may call this at a time.
char const* replaceProductString(char const* text);
