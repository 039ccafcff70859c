#include <stdlib.h>
#include <string.h>

#include "facts.h"
#include "textfile.h"

/* Takes quotes and backslashes away as a shell would; in place. */
static void Unquote(char* value) {
    char quote = '\0';
    char* to = value;
    for (const char* from = value; *from != '\0'; ++from) {
        if (*from == quote) {
            quote = '\0';
        } else if (quote == '\0' && (*from == '"' || *from == '\'')) {
            quote = *from;
        } else {
            if (*from == '\\' && quote != '\'' && from[1] != '\0') ++from;
            *to++ = *from;
        }
    }
    *to = '\0';
}

/* The value of the last line "key=value", as in a shell; NULL if there is none or it is empty. */
static char* FindValue(const char* text, const char* key) {
    const size_t keyLength = strlen(key);
    char* value = NULL;
    for (const char* line = text; *line != '\0';) {
        const size_t length = strcspn(line, "\n");
        if (length > keyLength && strncmp(line, key, keyLength) == 0 && line[keyLength] == '=') {
            free(value);
            value = CopyTrimmed(line + keyLength + 1, length - keyLength - 1);
        }
        line += length;
        line += strspn(line, "\n");
    }
    if (value == NULL) return NULL;
    Unquote(value);
    if (*value != '\0') return value;
    free(value);
    return NULL;
}

void ReadOsRelease(const char* root, SystemFacts* facts) {
    char* text = ReadTextFile(root, "/etc/os-release");
    if (text == NULL) text = ReadTextFile(root, "/usr/lib/os-release");
    if (text == NULL) return;
    facts->osName = FindValue(text, "NAME");
    facts->osPrettyName = FindValue(text, "PRETTY_NAME");
    facts->osId = FindValue(text, "ID");
    facts->osVersion = FindValue(text, "VERSION_ID");
    /* Rolling distributions have no version, only a build. */
    if (facts->osVersion == NULL) facts->osVersion = FindValue(text, "BUILD_ID");
    free(text);
}
