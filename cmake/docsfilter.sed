# Turns the headers' own comments into ones that Doxygen reads: the head of the file with its numbered list, whose
# items must begin in one column, and the notes behind fields.
1s|^/\*|/** @file|
s|^ \* +([0-9]+)\. | * \1. |
s|([;,]) +/\* |\1 /**< |
