#ifndef KYR_HOST_ISOLATION_SYSTEMCOPY_H
#define KYR_HOST_ISOLATION_SYSTEMCOPY_H

class TContainer;

/// Puts the computer system that was collected where plugins look for it, in the plugin manager's schema.
void CopySystemToPluginSchema(const TContainer& collected);

#endif
