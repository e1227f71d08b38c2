# Turns the headers' own comments into ones that Doxygen reads: the head of the file, and the notes behind fields.
1s|^/\*|/** @file|
s|([;,]) +/\* |\1 /**< |
