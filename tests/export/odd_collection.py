"""A saved collection with what engines and formats trip over."""
import re

NUMBERS = {"uint8": 255, "sint8": -128, "uint16": 65535, "sint16": -32768, "uint32": 2**32 - 1, "sint32": -2**31,
           "uint64": 2**64 - 1, "sint64": -2**63}
LONG_NAME = "Property" + "WithALongName" * 6
PROPERTIES = [("Key", "string", "", "a\tb\\N\\.\nc,\"d\"\re'; DROP TABLE host; --"), ("Order", "string", "", "\\."),
              ("Text", "string", "", "\N{SNOWMAN}\U0001F600"), ("Host", "string", "", "column of the same name"),
              (LONG_NAME, "uint64", "KiloBytes", 2**64 - 1), (LONG_NAME + "Two", "uint64", "Bytes", 1),
              ("NoNumber", "real64", "", "NaN"), ("Endless", "real64", "", "-INF"), ("Small", "real32", "Volts", 1.1),
              ("Milli", "uint32", "MilliAmperes", 1500), ("Yes", "boolean", "", "TRUE"),
              ("Time", "datetime", "", "00010102000000.000000+720"), ("Late", "datetime", "", "99991230235959.999999-720"),
              ("Never", "datetime", "", "20261340000000.000000+000"), ("Length", "datetime", "", "99999999235959.999999:000")]
PROPERTIES += [(kind.capitalize(), kind, "", number) for kind, number in NUMBERS.items()]
ARRAYS = [("Texts", "string", ["a,b", "\\.", "", "\t"]), ("Sizes", "uint64", [2**64 - 1, 0]),
          ("Flags", "boolean", ["TRUE", "FALSE"])]
WIDE = 700


def escaped(text):
    return re.sub(r"[&<>\"\t\n\r]", lambda found: f"&#{ord(found[0])};", str(text))


def declaration(name, kind, unit="", key=False):
    qualifiers = '<QUALIFIER NAME="Key" TYPE="boolean"><VALUE>true</VALUE></QUALIFIER>' if key else ""
    if unit:
        qualifiers += f'<QUALIFIER NAME="Units" TYPE="string"><VALUE>{unit}</VALUE></QUALIFIER>'
    return f'<PROPERTY NAME="{name}" TYPE="{kind}">{qualifiers}</PROPERTY>'


def value(name, kind, content):
    return f'<PROPERTY NAME="{name}" TYPE="{kind}"><VALUE>{escaped(content)}</VALUE></PROPERTY>'


def array(name, kind, content):
    values = "".join(f"<VALUE>{escaped(each)}</VALUE>" for each in content)
    return f'<PROPERTY.ARRAY NAME="{name}" TYPE="{kind}"><VALUE.ARRAY>{values}</VALUE.ARRAY></PROPERTY.ARRAY>'


def instance(name, properties):
    return f'<VALUE.OBJECT><INSTANCE CLASSNAME="{name}">{properties}</INSTANCE></VALUE.OBJECT>'


def classes():
    odd = "".join(declaration(name, kind, unit, name == "Key") for name, kind, unit, _ in PROPERTIES)
    odd += "".join(f'<PROPERTY.ARRAY NAME="{name}" TYPE="{kind}"></PROPERTY.ARRAY>' for name, kind, _ in ARRAYS)
    wide = declaration("Key", "string", key=True) + "".join(declaration(f"P{i}", "string") for i in range(WIDE))
    clash = declaration("DeviceID", "string", key=True)
    for name, properties in (("ACME_Odd", odd), ("ACME_Wide", wide), ("ACME_DiskDrive", clash)):
        yield f'<VALUE.OBJECT><CLASS NAME="{name}" SUPERCLASS="CIM_ManagedElement">{properties}</CLASS></VALUE.OBJECT>'


def instances():
    yield instance("ACME_Odd", "".join(value(name, kind, content) for name, kind, _, content in PROPERTIES) +
                   "".join(array(*each) for each in ARRAYS))
    yield instance("ACME_Odd", value("Key", "string", "nothing else"))
    yield instance("ACME_Wide", value("Key", "string", "w") +
                   "".join(value(f"P{i}", "string", f"value of column {i}") for i in range(WIDE)))
    yield instance("ACME_DiskDrive", value("DeviceID", "string", "/dev/sda"))


def add_odd_classes(document):
    """The text of a saved collection with those classes and instances added."""
    first = document.index("<VALUE.OBJECT><INSTANCE ")
    text = document[:first] + "\n".join(classes()) + document[first:]
    return text.replace("</DECLGROUP>", "\n".join(instances()) + "</DECLGROUP>")
