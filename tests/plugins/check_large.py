#!/usr/bin/env python3
"""check_large.py MACHINE KYR [OPTION OF KYR COLLECT]...

Collects the large machine that bench/synthetic.py makes, and checks that nothing of it is missing.
"""
import collections
import resource
import sys
import time

sys.dont_write_bytecode = True  # nothing is left beside the sources

from kyr_collect import collect

EXPECTED = {"MOLTA_BaseBoard": 1, "MOLTA_Processor": 4, "MOLTA_ProcessorCore": 128, "MOLTA_HardwareThread": 256,
            "MOLTA_NUMANode": 4, "MOLTA_CacheMemory": 128 * 3 + 4, "MOLTA_PhysicalMemory": 64, "MOLTA_PCIDevice": 4096,
            "MOLTA_PCIBridgeDevice": 4096 - 256, "MOLTA_DiskDrive": 512, "MOLTA_DiskPartition": 1024,
            "MOLTA_PartitionBasedOn": 1024, "MOLTA_FileSystem": 1024 + 1, "MOLTA_Mount": 512 + 1,
            "MOLTA_MountedFileSystem": 512 + 1, "MOLTA_ResidesOnExtent": 1024, "MOLTA_NetworkAdapter": 256,
            "MOLTA_IPAddress": 256, "MOLTA_Route": 256, "MOLTA_USBDevice": 64, "MOLTA_TemperatureSensor": 128,
            "MOLTA_ListeningSocket": 256, "MOLTA_HostedListeningSocket": 256,
            "MOLTA_Account": 256, "MOLTA_Group": 257, "MOLTA_MemberOfGroup": 512,
            "MOLTA_Package": 256, "MOLTA_LanguagePackage": 256, "MOLTA_KernelModule": 256}


# Optional classes, for which nobody has asked.
LEFT_OUT = {"not granted": "not asked", "not named": "not asked"}


def collect_timed(machine, command):
    start = time.monotonic()
    collection = collect(command, machine)
    memory = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
    print(f"collected in {time.monotonic() - start:.2f} s, {memory / 1024:.0f} MB in the largest process")
    return collection


def faults(collection):
    counts = collections.Counter()
    for told in collection["classes"]:
        counts[told["name"]] = len(told["instances"])
        if told["state"] not in ("complete", LEFT_OUT.get(told["reasonCode"])) or any(line.startswith("error") for line in told["log"]):
            yield f"{told['name']} is {told['state']}: {told['reason']} {told['log']}"
    for name, count in EXPECTED.items():
        if counts[name] != count:
            yield f"{counts[name]} instances of {name} in place of {count}"


found = list(faults(collect_timed(sys.argv[1], sys.argv[2:])))
print("\n".join(found) or "all there")
sys.exit(1 if found else 0)
