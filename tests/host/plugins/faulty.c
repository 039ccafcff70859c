/* A library that registers no plugin, exports what it has, and refers to what nobody provides. */
int missing(void);

int (*kept)(void) = missing;
