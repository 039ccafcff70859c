#ifndef KYR_PLUGINS_HEALTH_DISKCOMMANDS_H
#define KYR_PLUGINS_HEALTH_DISKCOMMANDS_H

#include <functional>
#include <string>

#include "DiskPages.h"

/// Sends a command to an open device, as ioctl does.
using TSendCommand = std::function<int(int device, unsigned long request, void* command)>;

/// Opens the disk of this machine and asks it for the page. All commands only read, and none takes longer than five
/// seconds.
TFact<std::string> AskDisk(const std::string& disk, EDiskPage page);
/// The same of an open device. What an ATA command returns in registers comes in the form of ParseAtaRegisters.
TFact<std::string> AskDevice(int device, const std::string& disk, EDiskPage page, const TSendCommand& send);

#endif
