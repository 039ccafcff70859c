#define _POSIX_C_SOURCE 200809L

#include "textfile.h"

#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

enum { kMaxSize = 1 << 20, kFirstSize = 4096 };

/* The sizes that /proc and /sys give for their files mean nothing, so the buffer grows as the text comes. */
static char* ReadAll(int descriptor) {
    size_t capacity = kFirstSize, length = 0;
    char* text = malloc(capacity + 1);
    while (text != NULL) {
        const ssize_t got = read(descriptor, text + length, capacity - length);
        if (got < 0) {
            free(text);
            return NULL;
        }
        length += (size_t)got;
        if (got == 0 || length == kMaxSize) break;
        if (length < capacity) continue;
        capacity *= 2;
        char* const larger = realloc(text, capacity + 1);
        if (larger == NULL) free(text);
        text = larger;
    }
    if (text != NULL) text[length] = '\0';
    return text;
}

static int OpenBelow(const char* root, const char* path) {
    char* const whole = malloc(strlen(root) + strlen(path) + 1);
    if (whole == NULL) return -1;
    strcpy(whole, root);
    strcat(whole, path);
    const int descriptor = open(whole, O_RDONLY | O_CLOEXEC | O_NONBLOCK); /* a pipe must not hold us up */
    free(whole);
    return descriptor;
}

char* ReadTextFile(const char* root, const char* path) {
    const int descriptor = OpenBelow(root, path);
    if (descriptor < 0) return NULL;
    struct stat status;
    char* text = NULL;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) text = ReadAll(descriptor);
    close(descriptor);
    return text;
}

char* ReadTrimmedFile(const char* root, const char* path) {
    char* const text = ReadTextFile(root, path);
    if (text == NULL) return NULL;
    char* const trimmed = CopyTrimmed(text, strlen(text));
    free(text);
    return trimmed;
}

char* CopyText(const char* text) {
    char* const copy = malloc(strlen(text) + 1);
    return copy == NULL ? NULL : strcpy(copy, text);
}

static int IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

char* CopyTrimmed(const char* text, size_t length) {
    while (length > 0 && IsBlank(text[length - 1])) --length;
    while (length > 0 && IsBlank(*text)) ++text, --length;
    if (length == 0) return NULL;
    char* const copy = malloc(length + 1);
    if (copy == NULL) return NULL;
    memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
}
