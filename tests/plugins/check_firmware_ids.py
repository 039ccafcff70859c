#!/usr/bin/env python3
"""check_firmware_ids.py MACHINES KYR [OPTION OF KYR COLLECT]...

Compares the identifiers of firmware that kyr tells of the machines in the folder with what Python's uuid makes of what
kyr tells else of their devices, and of their DMI files.
"""
import os
import sys
import uuid

sys.dont_write_bytecode = True  # nothing is left beside the sources

from kyr_collect import collect

COMPUTERS = uuid.UUID("70ffd812-4c7f-4c7d-0000-000000000000")
BIOS = ("bios_vendor", "bios_version", "major", "minor")
BOARD = ("board_vendor", "board_name")
# HardwareID-0 to HardwareID-14, each behind the manufacturer.
COMPUTER_IDS = [("product_family", "product_name", "product_sku", *BIOS), ("product_family", "product_name", *BIOS),
                ("product_name", *BIOS), ("product_family", "product_name", "product_sku", *BOARD),
                ("product_family", "product_name", "product_sku"), ("product_family", "product_name"),
                ("product_sku", *BOARD), ("product_sku",), ("product_name", *BOARD), ("product_name",),
                ("product_family", *BOARD), ("product_family",), ("chassis_type",), BOARD, ()]


def of_computer(parts):
    # uuid5 takes text only in UTF-8, and the bytes of UTF-16 in ASCII are the same in both.
    return str(uuid.uuid5(COMPUTERS, "&".join(parts).encode("utf-16-le").decode("latin-1")))


def dmi_of(machine):
    fields = {}
    folder = f"{machine}/sys/class/dmi/id"
    for name in os.listdir(folder) if os.path.isdir(folder) else ():
        if os.path.isfile(f"{folder}/{name}"):
            with open(f"{folder}/{name}", encoding="latin-1") as file:
                fields[name] = file.read().strip()
    release = fields.get("bios_release", "")
    fields = {name: text.lstrip("0") for name, text in fields.items()}
    if "." in release:
        fields["major"], fields["minor"] = (f"{int(at):02x}" for at in release.split("."))
    if fields.get("chassis_type", "").isdigit():
        fields["chassis_type"] = f"{int(fields['chassis_type']):x}" if int(fields["chassis_type"]) < 256 else ""
    return fields


def computer_ids(machine):
    fields = dmi_of(machine)
    for names in COMPUTER_IDS:
        parts = [fields.get(name, "") for name in ("sys_vendor", *names)]
        if all(parts) and all(part.isascii() for part in parts):
            yield of_computer(parts)


def pci_instances(bus, told):
    if "VendorID" not in told or "PCIDeviceID" not in told:
        return
    plain = f"{bus}\\VEN_{told['VendorID']:04X}&DEV_{told['PCIDeviceID']:04X}"
    instances = [plain]
    if told.get("SubsystemVendorID") and "SubsystemID" in told:
        maker, model = f"{told['SubsystemVendorID']:04X}", f"{told['SubsystemID']:04X}"
        instances += dict.fromkeys((f"{plain}&SUBSYS_{model}{maker}", f"{plain}&SUBSYS_{maker}{model}"))
    for instance in instances:
        yield instance
        if "RevisionID" in told:
            yield f"{instance}&REV_{told['RevisionID']:02X}"


def usb_instances(told):
    if "VendorID" in told and "ProductID" in told:
        plain = f"USB\\VID_{told['VendorID']:04X}&PID_{told['ProductID']:04X}"
        yield plain
        if "DeviceRelease" in told:
            yield f"{plain}&REV_{told['DeviceRelease'].replace('.', ''):0>4}"


def disk_instances(told, pci):
    if told.get("BusType") == 7:  # NVMe
        yield from pci_instances("NVME", pci)
        if "Model" in told:
            yield told["Model"]


def differences(machine, command):
    """A line for each; at the end the number of identifiers."""
    classes = {at["name"]: [{key: value["value"] for key, value in instance["properties"].items()
                             if value["value"] is not None} for instance in at["instances"]]
               for at in collect(command, machine, check=False)["classes"]}
    devices = {told["DeviceID"]: told for told in classes["MOLTA_PCIDevice"]}
    controllers = {}
    for tie in classes["MOLTA_StorageController"]:
        ends = [str(tie[role]) for role in ("Antecedent", "Dependent")]
        controllers[ends[1]] = next((told for key, told in devices.items() if f'"{key}"' in ends[0]), {})
    expected = [(told, pci_instances("PCI", told)) for told in devices.values()]
    expected += [(told, usb_instances(told)) for told in classes["MOLTA_USBDevice"]]
    for told in classes["MOLTA_DiskDrive"]:
        pci = next((pci for end, pci in controllers.items() if f'"{told["DeviceID"]}"' in end), {})
        expected.append((told, disk_instances(told, pci)))
    count = 0
    for told, instances in expected:
        ids = [str(uuid.uuid5(uuid.NAMESPACE_DNS, instance)) for instance in instances]
        count += len(ids)
        if told.get("FirmwareIDs", []) != ids:
            yield f"{machine}: {told['DeviceID']} has {told.get('FirmwareIDs')}, and not {ids}"
    for told in classes["MOLTA_ComputerSystem"]:
        ids = list(computer_ids(machine))
        count += len(ids)
        if told.get("FirmwareIDs", []) != ids:
            yield f"{machine}: the computer has {told.get('FirmwareIDs')}, and not {ids}"
    yield count


def main():
    found, count = [], 0
    for name in ("server", "laptop", "virtual", "container", "nvme", "hostile", "empty"):
        *lines, number = differences(f"{sys.argv[1]}/{name}", sys.argv[2:])
        found += lines
        count += number
    # Known of a maker of many computers.
    if of_computer(["LENOVO"]) != "6de5d951-d755-576b-bd09-c5cf66b27234" or count < 100:
        found.append(f"this check is wrong, or too few identifiers were compared: {count}")
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
