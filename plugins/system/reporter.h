/* Turns the facts into instances. */
#ifndef SYSTEM_REPORTER_H
#define SYSTEM_REPORTER_H

#include "facts.h"
#include "kyr/kyrPlugin.h"

/*
 * Reports the instance of a class that this plugin's document declares. Gives the status of what keeps the instance
 * from being reported; a property that is refused is only missing.
 */
kyrStatusCode ReportClass(kyrIOHandle handle, const char* className, const SystemFacts* facts);

#endif
