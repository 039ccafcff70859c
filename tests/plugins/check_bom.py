#!/usr/bin/env python3
"""check_bom.py [--schema] MACHINES KYR [OPTION OF KYR COLLECT]...

Compares the bills of materials that "kyr export --cyclonedx" writes with what kyr shows of the machines in the folder,
of one that is made up here and of this one, and the packages of this one with what dpkg-query tells. With --schema, it
holds them to the published schema instead, whose files stand in the folder that KYRCORE_CYCLONEDX_SCHEMAS names, as
CycloneDX's own library for JavaScript has them in res/schema. Exit status 77 without that or python3-jsonschema.
"""
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
from urllib.parse import unquote

SCHEMAS = os.environ.get("KYRCORE_CYCLONEDX_SCHEMAS", "")
HARDWARE = {f"MOLTA_{name}" for name in ("BaseBoard", "Battery", "DiskDrive", "NetworkAdapter", "OperatingSystem",
            "PCIDevice", "PhysicalMemory", "PowerSupply", "Processor", "SystemBIOSElement", "USBDevice")}
IDENTIFIERS = ("SerialNumber", "WWN", "AssetTag", "UUID", "MachineID", "PermanentAddress", "CurrentAddress")
TRIVY = "aquasecurity:trivy:Src"

# What dpkg says of a package, and what has to stand in the document; no purl: the package must not be in it.
PACKAGES = [
    (dict(Package="plain", Version="1.0"), "plain@1.0", "plain 1.0 - 0", "A Maker", "maker@example.net"),
    (dict(Package="libc++1", Version="2:1.0~rc1+b2-3+deb1", Source="c++ (1:0.9+x-2)"),
     "libc%2B%2B1@2:1.0~rc1%2Bb2-3%2Bdeb1&upstream=c%2B%2B%401:0.9%2Bx-2", "c++ 0.9+x 2 1", "A Maker",
     "maker@example.net"),
    (dict(Package="named", Version="1-2-3", Source="other"), "named@1-2-3&upstream=other%401-2-3", "other 1-2 3 0",
     "A Maker", "maker@example.net"),
    (dict(Package="page", Version="a:1", Maintainer="A Maker <https://example.net>"), "page@a:1", "page a:1 - 0",
     "A Maker", None),
    (dict(Package="twice", Version="1", Maintainer="<a@b@example.net>"), "twice@1", "twice 1 - 0",
     "<a@b@example.net>", None),
    (dict(Package="removed", Version="1", Status="deinstall ok config-files"), None, None, None, None),
]

# What has to stand in the documents of machines with packages of other formats.
PURLS = {
    "laptop": [*(f"pkg:rpm/tumble/{name}?arch={arch}&distro=tumble-20240701{more}" for name, arch, more in [
                   ("bash@5.2.26-11.1", "x86_64", ""), ("kernel-default@6.9.6-1.1", "x86_64", ""),
                   ("libexample1@1.3-5.2", "x86_64", "&epoch=2&upstream=example-1.3-5.2.src.rpm"),
                   ("timezone@2024a-1.1", "noarch", "&upstream=timezone-all-2024a-2.1.src.rpm")]),
               "pkg:pypi/example-tool@1.4", "pkg:npm/%40example/cli@0.2.0"],
    "container": [f"pkg:apk/alpine/{name}?arch=x86_64&distro=alpine-3.19.1{more}" for name, more in [
                      ("busybox@1.36.1-r15", ""), ("libcrypto3@3.1.4-r5", "&upstream=openssl%403.1.4-r5")]],
}

# A document of another program, which knows no states of classes.
FOREIGN = """<CIM CIMVERSION="2.0" DTDVERSION="2.0"><DECLARATION><DECLGROUP>
<QUALIFIER.DECLARATION NAME="Key" TYPE="boolean"><SCOPE PROPERTY="true"/></QUALIFIER.DECLARATION>
<VALUE.OBJECT><CLASS NAME="MOLTA_OperatingSystem"><PROPERTY NAME="Name" TYPE="string"><QUALIFIER NAME="Key"
TYPE="boolean"><VALUE>true</VALUE></QUALIFIER></PROPERTY></CLASS></VALUE.OBJECT>
<VALUE.OBJECT><CLASS NAME="MOLTA_Package"><PROPERTY NAME="Name" TYPE="string"><QUALIFIER NAME="Key"
TYPE="boolean"><VALUE>true</VALUE></QUALIFIER></PROPERTY></CLASS></VALUE.OBJECT>
<VALUE.OBJECT><INSTANCE CLASSNAME="MOLTA_OperatingSystem"><PROPERTY NAME="Name" TYPE="string"><VALUE>An OS</VALUE>
</PROPERTY></INSTANCE></VALUE.OBJECT></DECLGROUP></DECLARATION></CIM>"""


def run(*command, root=None):
    environment = dict(os.environ, TZ="UTC", **({"KYR_SYSTEM_ROOT": root} if root else {}))
    done = subprocess.run(command, env=environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if done.returncode not in (0, 1):
        sys.exit(f"{command}: exit status {done.returncode}: {done.stderr.decode(errors='replace')[:500]}")
    return done.stdout


def export(kyr, file, *options):
    return json.loads(run(kyr, "export", "--cyclonedx", *options, file))


def properties(component):
    return {each["name"]: each["value"] for each in component.get("properties", [])}


def make_machine(folder, packages):
    shutil.rmtree(folder, ignore_errors=True)
    for directory in ("etc", "proc", "sys", "var/lib/dpkg"):
        os.makedirs(f"{folder}/{directory}")
    with open(f"{folder}/etc/os-release", "w", encoding="utf-8") as file:
        file.write("ID=debian\nNAME=Debian\nVERSION_ID=12\n")
    # Drivers name batteries after their serial numbers.
    battery = f"{folder}/sys/class/power_supply/hid-4C1F22A0-battery"
    os.makedirs(battery)
    for name, text in dict(type="Battery", serial_number="4C1F22A0", model_name="Pen 4C1F22A0").items():
        with open(f"{battery}/{name}", "w", encoding="utf-8") as file:
            file.write(text + "\n")
    usual = dict(Architecture="amd64", Status="install ok installed", Maintainer="A Maker <maker@example.net>")
    with open(f"{folder}/var/lib/dpkg/status", "w", encoding="utf-8") as file:
        for package in packages:
            file.write("".join(f"{key}: {value}\n" for key, value in {**usual, **package}.items()) + "\n")


class Bom:
    """A document, its parts by their references, and what is wrong with it."""

    def __init__(self, document):
        self.document, self.faults = document, []
        every = [document["metadata"]["component"], *document["components"]]
        self.components = {each["bom-ref"]: each for each in every}
        self.expect(len(every) == len(self.components), "a reference is not unique")
        self.dependencies = {each["ref"]: each["dependsOn"] for each in document["dependencies"]}
        self.aggregates = {ref: each["aggregate"] for each in document["compositions"]
                           for ref in each["dependencies"]}
        known = set(self.components)
        self.expect(known >= set(self.dependencies) | set(sum(self.dependencies.values(), [])) | set(self.aggregates),
                    "a reference leads nowhere")

    def expect(self, holds, *fault):
        if not holds:
            self.faults.append(" ".join(map(str, fault)))

    def packages(self, kind="package:"):
        return [each for ref, each in self.components.items() if ref.startswith(kind)]


class Shown:
    """The same collection as kyr show prints it."""

    def __init__(self, document):
        self.document = document
        self.classes = {each["name"]: each for each in document["classes"]}

    def values(self, cls, name):
        return [each["properties"].get(name, {"text": None})["text"] for each in self.classes[cls]["instances"]]

    def is_complete(self, names):
        return all(self.classes[name]["state"] == "complete" for name in names)

    def identifiers(self):
        """Those that are long enough not to stand in a document by chance, and name no place on a bus."""
        places = {text for cls in self.classes for text in self.values(cls, "DeviceID")}
        texts = {text for cls in HARDWARE | {"MOLTA_ComputerSystem"} for name in IDENTIFIERS
                 for text in self.values(cls, name) if text and len(text) > 5 and len(set(text)) > 4}
        return texts - places | {text.replace(":", "") for text in texts if text.count(":") == 5}


def id_of(component):
    """What sets a package apart from others of its name, the number that makes a reference unique taken off."""
    return re.sub(r"#\d+$", "", component["bom-ref"].removeprefix(f"package:{component['name']}:"))


def check_document(bom, shown):
    installed = [row for row in zip(*(shown.values("MOLTA_Package", name) for name in
                                      ("Name", "Version", "SoftwareElementID", "PackageStatus")))
                 if row[3] == "installed"]
    told = [(each["name"], each.get("version", ""), id_of(each)) for each in bom.packages()]
    bom.expect(sorted(told) == sorted((name, version or "", id) for name, version, id, _ in installed), "packages:", told, installed)
    languages = bom.packages(("pypi:", "npm:"))
    bom.expect(sorted((each["name"], each.get("version", ""), each["purl"].split("/")[0]) for each in languages) ==
               sorted((name, version or "", {"Python": "pkg:pypi", "npm": "pkg:npm"}[word]) for name, version, word in
                      zip(*(shown.values("MOLTA_LanguagePackage", name) for name in
                            ("Name", "Version", "PackageFormat")))), "packages of languages:", languages)
    refs = {each["bom-ref"] for each in bom.packages() + languages}
    system = "os" if "os" in bom.components else "machine"
    told = {ref for ref in bom.dependencies.get(system, []) if ref.startswith(("package:", "pypi:", "npm:"))}
    bom.expect(told == refs, "the system does not depend on its packages")
    for ref, classes in ("machine", HARDWARE), (system, {"MOLTA_Package", "MOLTA_LanguagePackage"} | (HARDWARE if system != "os" else set())):
        bom.expect(("complete" == bom.aggregates[ref]) == shown.is_complete(classes), ref, "is", bom.aggregates[ref])
    firmware = [row for cls, name in (("Processor", "MicrocodeRevision"), ("DiskDrive", "FirmwareRevision"),
                                      ("PhysicalMemory", "FirmwareVersion"), ("NetworkAdapter", "FirmwareVersion"),
                                      ("StorageEnclosure", "FirmwareRevision"), ("SystemBIOSElement", "Version"))
                for row in shown.values(f"MOLTA_{cls}", name) if row]
    bom.expect(sorted(firmware) == sorted(each["version"] for each in bom.packages("firmware:")), "firmware", firmware)
    disks = [properties(each)["cdx:device:location"] for each in bom.packages("disk:")]
    bom.expect(sorted(disks) == sorted(shown.values("MOLTA_DiskDrive", "DeviceID")), "disks", disks)


def check_identifiers(plain, full, shown):
    secrets = shown.identifiers()
    text = json.dumps(plain.document, ensure_ascii=False)
    plain.expect(not any(each in text for each in secrets), "tells", [each for each in secrets if each in text])
    serials = {text for text in shown.values("MOLTA_DiskDrive", "SerialNumber") if text in secrets}
    told = {properties(each).get("cdx:device:serialNumber") for each in full.packages("disk:")}
    full.expect(serials <= told, "serial numbers:", serials - told)


def check_machine(kyr, options, folder, root):
    file = f"{folder}/machine.xml"
    run(kyr, "collect", *options, "-o", file, root=root)
    shown = Shown(json.loads(run(kyr, "show", "--json", "--class", "CIM_ManagedElement", file)))
    plain, full = Bom(export(kyr, file, "--stable")), Bom(export(kyr, file, "--identifiers", "--source-packages"))
    for bom in plain, full:
        check_document(bom, shown)
    check_identifiers(plain, full, shown)
    live = json.loads(run(kyr, "export", "--cyclonedx", "--stable", *options, root=root)) if root else None
    plain.expect(live in (None, plain.document), "another document without the file")
    plain.expect("timestamp" not in plain.document["metadata"] and "timestamp" in full.document["metadata"], "time")
    plain.expect(plain.document["serialNumber"] != full.document["serialNumber"], "one serial number for two")
    wanted = set(PURLS.get(os.path.basename(root or ""), []))
    plain.expect(wanted <= {each.get("purl") for each in plain.components.values()}, "lacks some of", wanted)
    return plain.faults + full.faults


def check_purls(kyr, options, folder):
    """The made-up machine: the table above, and a package that is half there."""
    root = f"{folder}/root"
    make_machine(root, [package for package, *_ in PACKAGES])
    faults = check_machine(kyr, options, folder, root)
    bom = Bom(export(kyr, f"{folder}/machine.xml", "--source-packages"))
    for package, purl, source, supplier, email in PACKAGES:
        component = bom.components.get(f"package:{package['Package']}:amd64")
        bom.expect((component is None) == (purl is None), package, "is there or not")
        if purl is None or component is None:
            continue
        name, _, upstream = purl.partition("&")
        wanted = f"pkg:deb/debian/{name}?arch=amd64&distro=debian-12{'&' if upstream else ''}{upstream}"
        told = properties(component)
        bom.expect(component["purl"] == wanted, component["purl"], "is not", wanted)
        parts = " ".join(told.get(TRIVY + part, "-") for part in ("Name", "Version", "Release", "Epoch"))
        bom.expect(parts == source, parts, "is not", source)
        email_told = component["supplier"].get("contact", [{"email": None}])[0]["email"]
        bom.expect((component["supplier"]["name"], email_told) == (supplier, email), component["supplier"])
    sources = {each["purl"] for each in bom.packages("source:")}
    bom.expect("pkg:deb/debian/c%2B%2B@1:0.9%2Bx-2?arch=source&distro=debian-12" in sources, sources)
    make_machine(root, [dict(Package="half", Version="1", Status="install ok half-configured")])
    half = Bom(json.loads(run(kyr, "export", "--cyclonedx", "--identifiers", *options, root=root)))
    name = properties(half.components["machine"]).get("kyr:hostName")
    half.expect(name is None, "the name that stands in for that of the host:", name)
    half.expect(not half.packages() and half.aggregates["os"] == "incomplete", "half installed:", half.aggregates)
    return faults + bom.faults + half.faults


def check_foreign(kyr, folder):
    with open(f"{folder}/foreign.xml", "w", encoding="utf-8") as file:
        file.write(FOREIGN)
    bom = Bom(export(kyr, file.name))
    bom.expect(bom.aggregates == {"machine": "incomplete", "os": "unknown"}, bom.aggregates)
    bom.expect(bom.components["os"]["name"] == "An OS", bom.components["os"])
    return bom.faults


def source_of(component):
    """The source package as its package URL tells it."""
    upstream = unquote(dict(re.findall(r"[?&](\w+)=([^&]*)", component["purl"])).get("upstream", ""))
    return tuple(upstream.split("@")) if upstream else (component["name"], component["version"])


def check_dpkg(kyr, folder):
    """This machine, of which check_machine left the file."""
    form = "${db:Status-Status} ${Package} ${Version} ${Architecture} ${source:Package} ${source:Version}\n"
    rows = [row.split(" ") for row in run("dpkg-query", "-W", "-f", form).decode().splitlines()]
    bom = Bom(export(kyr, f"{folder}/machine.xml"))
    theirs = {(name, version, arch): tuple(source) for status, name, version, arch, *source in rows
              if status == "installed"}
    ours = {(each["name"], each["version"], id_of(each)): source_of(each) for each in bom.packages()
            if each.get("purl", "pkg:deb/").startswith("pkg:deb/")}
    bom.expect(theirs == ours, "dpkg-query tells otherwise:", sorted(theirs.items() ^ ours.items())[:10])
    return bom.faults


def check_schema(kyr, options, folder, root):
    from jsonschema import Draft7Validator, FormatChecker, RefResolver
    documents = {}
    for name in ("bom-1.6", "spdx", "jsf-0.82"):
        with open(f"{SCHEMAS}/{name}.SNAPSHOT.schema.json", encoding="utf-8") as file:
            documents[name] = json.load(file)
    store = {f"http://cyclonedx.org/schema/{name}.SNAPSHOT.schema.json": each for name, each in documents.items()}
    schema = documents["bom-1.6"]
    validator = Draft7Validator(schema, resolver=RefResolver.from_schema(schema, store=store),
                                format_checker=FormatChecker())
    file = f"{folder}/machine.xml"
    run(kyr, "collect", *options, "-o", file, root=root)
    return [f"{'/'.join(map(str, error.path))}: {error.message[:200]}"
            for document in (export(kyr, file), export(kyr, file, "--identifiers", "--source-packages", "--stable"))
            for error in validator.iter_errors(document)]


def can_validate():
    try:
        import jsonschema  # noqa: F401
    except ImportError:
        return False
    return os.path.isfile(f"{SCHEMAS}/bom-1.6.SNAPSHOT.schema.json")


def main(machines, kyr, *options):
    with_schema = machines == "--schema"
    if with_schema:
        machines, kyr, *options = kyr, *options
        if not can_validate():
            print("skipped: KYRCORE_CYCLONEDX_SCHEMAS names no folder with the published schema, or there is no "
                  "python3-jsonschema")
            return 77
    check, faults = check_schema if with_schema else check_machine, []
    with tempfile.TemporaryDirectory() as folder:
        for name in sorted(os.listdir(machines)):
            faults += [f"{name}: {fault}" for fault in check(kyr, options, folder, f"{machines}/{name}")]
        if not with_schema:
            faults += [f"made-up machine: {fault}" for fault in check_purls(kyr, options, folder)]
            faults += [f"foreign document: {fault}" for fault in check_foreign(kyr, folder)]
        faults += [f"this machine: {fault}" for fault in check(kyr, options, folder, None)]
        if not with_schema and shutil.which("dpkg-query"):
            faults += [f"this machine: {fault}" for fault in check_dpkg(kyr, folder)]
    print("\n".join(faults))
    return 1 if faults else 0


sys.exit(main(*sys.argv[1:]))
