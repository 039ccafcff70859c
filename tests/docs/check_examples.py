"""check_examples.py PAGE KYR

Holds the page about kyr check true: it has all rules in their words, each breaking example is told as a violation of its
rule and of no other one, and each passing example is clean.
"""
import json
import os
import re
import subprocess
import sys
import tempfile

page, kyr = sys.argv[1:]
WITH_EXAMPLES = "DSVX"  # the kinds of rules that a document violates
TOO_LARGE = {"D16"}
FRAME = """<?xml version="1.0" encoding="utf-8"?>
<CIM CIMVERSION="2.0" DTDVERSION="2.0">
<DECLARATION><DECLGROUP>
{}
</DECLGROUP></DECLARATION>
</CIM>
"""
THING = """<CLASS NAME="EX_Thing">
{}
</CLASS>
"""
KEY = """<PROPERTY NAME="Name" TYPE="string">
  <QUALIFIER NAME="Key" TYPE="boolean"><VALUE>true</VALUE></QUALIFIER>
</PROPERTY>
"""
DESCRIPTION = '<QUALIFIER NAME="Description" TYPE="string"><VALUE>What {} is.</VALUE></QUALIFIER>'
OF_DESCRIPTIONS = ("S19", "S20")  # their examples have those that are meant
BEHIND_QUALIFIERS = re.compile(r"(?=<PROPERTY|<METHOD|<!--)|\Z")


faults = []


def fail(text):
    faults.append(f"{page}: {text}")


def kyr_check(*arguments):
    return subprocess.run([kyr, "check", *arguments], check=False, capture_output=True, text=True)


def described(text):
    """The text with a description in each class and property of it."""
    text = re.sub(r"<(PROPERTY[^\s>]*)([^>]*)/>", r"<\1\2></\1>", text)
    def with_description(tag):
        return tag[1] + DESCRIPTION.format(re.sub(r"\W", " ", tag[2]))
    return re.sub(r"(<(?:CLASS|PROPERTY(?:\.\w+)?)\s([^>]*)>)", with_description, text)


def document(example, rule):
    """The whole document for an example that is a part of one."""
    if example.startswith("<?xml"):
        return example
    if not re.search(r"<(CLASS|QUALIFIER\.DECLARATION)\b", example):
        in_class = re.sub(BEHIND_QUALIFIERS, lambda _: KEY, example, count=1)
        if rule == "S19":
            in_class = described(KEY) + example
        example = THING.format(in_class)
    if rule not in OF_DESCRIPTIONS:
        example = re.sub(r"(<INSTANCE.*?</INSTANCE>)|(.+?)(?=<INSTANCE|\Z)",
                         lambda part: part[1] or described(part[2]), example, flags=re.S)
    else:
        example = example.replace('NAME="EX_Thing">', 'NAME="EX_Thing">' + DESCRIPTION.format("it"))
    return FRAME.format(re.sub(r"<(CLASS|INSTANCE)\b.*?</\1>", r"<VALUE.OBJECT>\g<0></VALUE.OBJECT>", example,
                               flags=re.S))


def findings(text, name):
    with tempfile.TemporaryDirectory() as plugins:
        folder = os.path.join(plugins, os.path.dirname(name) or "example")
        os.mkdir(folder)
        open(os.path.join(folder, "libexample.pi.so"), "w", encoding="utf-8").close()
        path = os.path.join(folder, os.path.basename(name))
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        run = kyr_check("--json", path)
        if run.stderr:
            fail(run.stderr)
        return [finding for finding in json.loads(run.stdout)["findings"] if finding["allowed"] is None]


def ids(found):
    return sorted({finding["rule"] for finding in found})


def words(text):
    return " ".join(text.split())


with open(page, encoding="utf-8") as file:
    text = file.read()
rules = [line.split()[0] for line in kyr_check("--rules").stdout.splitlines()]
told = re.findall(r"^### (\w\d\d) ", text, re.M)
if told != rules:
    fail(f"it has the rules {told}, and kyr has {rules}")
examples = {(rule, kind): (example, name) for rule, kind, name, example in
            re.findall(r"^```xml (\w\d\d) (breaks|passes) ?(\S*)\n(.*?)^```$", text, re.M | re.S)}
for rule in rules:
    heading, paragraph = kyr_check("--explain", rule).stdout.strip().split("\n\n", 1)
    level, title = re.fullmatch(r"\w+, (\w+): (.*)", heading).groups()
    if f"### {rule} {title} ({level})\n" not in text or words(paragraph) not in words(text):
        fail(f"it explains {rule} in other words than kyr check --explain")
    if rule[0] not in WITH_EXAMPLES or rule in TOO_LARGE:
        continue
    for kind, expected in (("breaks", [rule]), ("passes", [])):
        example, name = examples[rule, kind]
        found = findings(document(example, rule), name or "example.properties.xml")
        if ids(found) != expected:
            fail(f"the example {rule} {kind} gives {json.dumps(found, indent=1)}\n{document(example, rule)}")
for megabytes in (9, 33):
    large = document("", "D16").replace("</CIM>", "<!--" + "-" * (megabytes << 20) + "--></CIM>")
    if ids(findings(large, "example.properties.xml")) != ["D16"]:
        fail(f"a document of {megabytes} MiB violates not D16 alone")
if not examples:
    fail("it has no examples")
sys.exit("\n".join(faults) or None)
