/* Texts from small files. What is returned belongs to the caller, to be freed. */
#ifndef SYSTEM_TEXTFILE_H
#define SYSTEM_TEXTFILE_H

#include <stddef.h>

/* The content of root/path, up to 1 MiB; NULL if it cannot be read or is no regular file. */
char* ReadTextFile(const char* root, const char* path);
/* The same without blanks and line ends at either end; NULL also if nothing is left. */
char* ReadTrimmedFile(const char* root, const char* path);

/* NULL only when memory is out, as for the other two. */
char* CopyText(const char* text);
/* The length characters from text on, trimmed; NULL if nothing is left. */
char* CopyTrimmed(const char* text, size_t length);

#endif
