#!/usr/bin/env python3
"""The published JSON Schemas and the library agree on which data files are valid.

The library's verdict on a file comes from `refdoc check --json`, which reads every lookup and
page file of a root with the library's own loading code and says which ones it drops. The
schema's verdict comes from validating the parsed file against schemas/lookup.schema.json or
schemas/page.schema.json. Checked here:

- the sample root: every data file, loose or inside a zip package;
- generated files: valid variants, a table of broken files with the verdict each must get, and a
  sweep that breaks every member of two full files in every way (left out, each JSON kind);
- the few things a schema cannot say (the JSON parser's own limits), each with its reason: the
  library must reject those files while their parsed value still passes the schema.

Usage: check_schemas.py --tool PATH/refdoc --schemas DIR --sample-root DIR
"""

import argparse
import copy
import json
import os
import re
import subprocess
import sys
import tempfile
import zipfile

try:
    import jsonschema
except ImportError:
    sys.exit("check_schemas: the Python module jsonschema is missing (Debian: python3-jsonschema; "
             "scripts/setup.sh installs it)")

LOOKUP, PAGE = "lookup", "page"
FOLDERS = {LOOKUP: "docCatalog/referenceapi_lookup", PAGE: "docCatalog/referenceapi"}
ACCEPT, REJECT = "accept", "reject"

# ---- files to start from ---------------------------------------------------------------------


def header(product="Signal Toolkit", base="SG", folder="signal"):
    return {"productName": product, "baseCode": base, "helpFolder": folder, "helpLocation": "help/" + folder}


def lookup_entry(name="fastfilter"):
    return {"name": name, "refpurpose": "Filter data", "href": "signal/ref/%s.html" % name}


def full_lookup():
    """A lookup file with every member the format has, a support package included."""
    entry = dict(lookup_entry(), type="function", fcntype="ordinary", deprecated=True)
    package = dict(header("USB Data Acquisition", "usbdaq", "usbdaq"),
                   refItems=[dict(lookup_entry("daqread"), type="function", fcntype="builtin", deprecated=False)])
    return dict({"$schema": "https://refdoc.invalid/schemas/lookup.schema.json"}, **header(),
                refItems=[entry, lookup_entry("ratechange")], supportPackages=[package])


def page_item(href="signal/ref/fastfilter.html"):
    return {"href": href, "refpurpose": "Filter data"}


def argument(name, **more):
    return dict({"name": name, "purpose": "The " + name}, **more)


def full_page_item():
    """A page with every member the format has, each optional one present."""
    return dict(
        page_item(),
        refentity=[{"type": "function", "fcntype": "ordinary", "name": "fastfilter"}],
        packagename="signal",
        introduced="1.0",
        description="Filters x with b.",
        appthumbnail={"fileref": "images/fastfilter.png", "alt": "A filtered signal"},
        deprecationstatus="current",
        syntaxgroup=[{"syntaxtype": "function", "title": "Filter", "syntax": ["y = fastfilter(b,x)"]}],
        inputgroup=[
            {"title": "Input Arguments",
             "inputs": [argument("b", defaultvalue="1", syntaxtype="required", htmlid="input_b",
                                 value=["vector", "matrix"])]},
            {"namevaluepairs": [{"title": "Name-Value Arguments",
                                 "inputs": [argument("Device", defaultvalue="\"cpu\"", syntaxtype="namevalue",
                                                     htmlid="namevalue_device", value=["\"cpu\"", "\"gpu\""])]}]},
        ],
        outputs=[argument("y", syntaxtype="output", htmlid="output_y", value=["vector"])],
        classpropertygroup=[{"title": "Properties",
                             "classproperty": [argument("Order", value=["integer"], defaultvalue="2")]}],
        seealso=[{"url": "signal/ref/ratechange.html", "name": "ratechange"}],
        examples=[{"url": "signal/ug/filter.html", "open_command": "openExample('filter')",
                   "title": "Filter Noisy Data"}],
        parameters=[argument("Gain", defaultvalue="1", htmlid="param_gain", value=["scalar"])],
    )


def full_page():
    package = dict(header("USB Data Acquisition", "usbdaq", "usbdaq"), refItems=[page_item("usbdaq/ref/daqread.html")])
    return dict({"$schema": "https://refdoc.invalid/schemas/page.schema.json"}, **header(),
                refItems=[full_page_item(), page_item("signal/ref/ratechange.html")], supportPackages=[package])


# ---- editing a file ---------------------------------------------------------------------------

DELETE = object()


def parse_pointer(pointer):
    return [int(t) if t.isdigit() else t.replace("~1", "/").replace("~0", "~") for t in pointer.split("/")[1:]]


def edited(document, *edits):
    """A copy of the document with (pointer, value) edits applied; DELETE removes the member."""
    result = copy.deepcopy(document)
    for pointer, value in edits:
        if pointer == "":
            result = value
            continue
        *path, last = parse_pointer(pointer)
        parent = result
        for token in path:
            parent = parent[token]
        if value is DELETE:
            del parent[last]
        else:
            parent[last] = value
    return result


def members(value, pointer=""):
    """The JSON Pointer of every member and array element below value."""
    children = value.items() if isinstance(value, dict) else enumerate(value) if isinstance(value, list) else ()
    for key, child in children:
        child_pointer = "%s/%s" % (pointer, str(key).replace("~", "~0").replace("/", "~1"))
        yield child_pointer
        yield from members(child, child_pointer)


# ---- the cases --------------------------------------------------------------------------------
# A case is (kind, name, content, expected). Content is a JSON value, written as UTF-8 without
# escapes, or bytes written as they are. Expected is ACCEPT or REJECT for both sides, or None for
# the sweep (the two sides need only agree).

L, P = full_lookup(), full_page()
NVP = "/refItems/0/inputgroup/1"
NVP_GROUP = NVP + "/namevaluepairs/0"
INPUT = "/refItems/0/inputgroup/0/inputs/0"
PROPERTY = "/refItems/0/classpropertygroup/0/classproperty/0"


def deep_value(levels):
    return json.loads("[" * levels + "]" * levels)


VALID = [
    (LOOKUP, "minimal document", dict(header(), refItems=[])),
    (LOOKUP, "entry with its required members only", dict(header(), refItems=[lookup_entry()])),
    (LOOKUP, "every member, support package included", L),
    (LOOKUP, "empty supportPackages", edited(L, ("/supportPackages", []))),
    (LOOKUP, "non-ASCII texts", dict(header("信号処理 Toolbox — ü", "SG", "signal"), refItems=[
        {"name": "高速フィルター", "refpurpose": "Filtre rapide ✓ 🎛", "href": "signal/ref/ü.html"}])),
    (LOOKUP, "unknown enumeration texts", edited(L, ("/refItems/0/type", "gadget"), ("/refItems/0/fcntype", "Ordinary"),
                                                  ("/supportPackages/0/refItems/0/type", ""))),
    (LOOKUP, "unknown members of every kind", edited(
        L, ("/comment", {"any": [1, None]}), ("/refItems/0/weight", 3.5), ("/supportPackages/0/extra", None),
        ("/supportPackages/0/refItems/0/tags", ["a", 1]))),
    (LOOKUP, "$schema member that is not a string", edited(L, ("/$schema", 5))),
    (LOOKUP, "deprecated with non-boolean values", edited(
        L, ("/refItems/0/deprecated", None), ("/refItems/1/deprecated", {"since": [2]}),
        ("/supportPackages/0/refItems/0/deprecated", "no"))),
    (LOOKUP, "supportPackages inside a package is not read", edited(L, ("/supportPackages/0/supportPackages", 7))),
    (LOOKUP, "package whose key the main document holds", edited(L, ("/supportPackages/0/baseCode", "signal"))),
    (LOOKUP, "empty texts", dict({k: "" for k in header()}, refItems=[{"name": "", "refpurpose": "", "href": ""}])),
    (LOOKUP, "unknown member 32 levels deep", dict(header(), refItems=[], x=deep_value(31))),
    (LOOKUP, "repeated key: the last value counts",
     b'{"productName": 1, "productName": "P", "baseCode": "b", "helpFolder": "h", "helpLocation": "l",'
     b' "refItems": [{"name": "n", "refpurpose": "p", "href": null, "href": "x.html"}]}'),
    (PAGE, "minimal document", dict(header(), refItems=[])),
    (PAGE, "page with its required members only", dict(header(), refItems=[page_item()])),
    (PAGE, "every member, support package included", P),
    (PAGE, "empty lists everywhere", edited(
        P, ("/refItems/0/refentity", []), ("/refItems/0/syntaxgroup/0/syntax", []), ("/refItems/0/outputs", []),
        (INPUT + "/value", []), ("/refItems/0/classpropertygroup/0/classproperty", []), ("/refItems/0/seealso", []),
        ("/refItems/0/examples", []), ("/refItems/0/parameters", []), (NVP + "/namevaluepairs", []),
        ("/supportPackages", []))),
    (PAGE, "optional members left out", edited(
        P, (INPUT + "/htmlid", DELETE), (INPUT + "/defaultvalue", DELETE), (INPUT + "/syntaxtype", DELETE),
        ("/refItems/0/inputgroup/0/inputs", DELETE), ("/refItems/0/classpropertygroup/0/title", DELETE),
        ("/refItems/0/examples/0/open_command", DELETE), ("/refItems/0/syntaxgroup/0/syntaxtype", DELETE),
        ("/refItems/0/refentity/0/type", DELETE), ("/refItems/0/refentity/0/fcntype", DELETE))),
    (PAGE, "non-ASCII texts on a block page", edited(
        P, ("/productName", "信号処理 — ü"), ("/refItems/0/refentity", [{"type": "block", "name": "Filtre à ✓"}]),
        (INPUT + "/name", "Coefficients ß"), (PROPERTY + "/name", "Ordnung 🎛"), ("/refItems/0/description", "説明"),
        ("/refItems/0/href", "signal/ref/ü.html"))),
    (PAGE, "unknown enumeration texts", edited(
        P, ("/refItems/0/refentity/0/type", "gadget"), ("/refItems/0/refentity/0/fcntype", "FUNCTION"),
        ("/refItems/0/deprecationstatus", "sunset"), ("/refItems/0/syntaxgroup/0/syntaxtype", "?"),
        (INPUT + "/syntaxtype", "mandatory"), ("/refItems/0/outputs/0/syntaxtype", ""))),
    (PAGE, "unknown members of every kind", edited(
        P, ("/generator", {"v": [1]}), ("/refItems/0/deprecated", True), ("/refItems/0/appthumbnail/width", 64),
        (INPUT + "/extra", None), (NVP_GROUP + "/note", []), ("/refItems/0/seealso/0/kind", 1),
        ("/supportPackages/0/refItems/0/x", {}))),
    (PAGE, "$schema member that is not a string", edited(P, ("/$schema", ["not", "a", "string"]))),
    (PAGE, "class property htmlid is not read", edited(P, (PROPERTY + "/htmlid", 17))),
    (PAGE, "name-value group: its own title and inputs are not read",
     edited(P, (NVP + "/title", 7), (NVP + "/inputs", "none"))),
    (PAGE, "namevaluepairs inside a name-value group is not read", edited(P, (NVP_GROUP + "/namevaluepairs", 3))),
    (PAGE, "supportPackages inside a package is not read", edited(P, ("/supportPackages/0/supportPackages", "x"))),
    (PAGE, "two pages with one href", edited(P, ("/refItems/1/href", P["refItems"][0]["href"]))),
]

# One row per way to break a file: what is broken, and where.
BROKEN = []
for kind, full, document_members in (
        (LOOKUP, L, ["productName", "baseCode", "helpFolder", "helpLocation", "refItems"]),
        (PAGE, P, ["productName", "baseCode", "helpFolder", "helpLocation", "refItems"])):
    for prefix in ("", "/supportPackages/0"):
        for member in document_members:
            BROKEN.append((kind, "missing %s/%s" % (prefix, member), edited(full, (prefix + "/" + member, DELETE))))
for pointer in ("/refItems/0/name", "/refItems/0/refpurpose", "/refItems/0/href",
                "/supportPackages/0/refItems/0/name", "/supportPackages/0/refItems/0/refpurpose",
                "/supportPackages/0/refItems/0/href"):
    BROKEN.append((LOOKUP, "missing " + pointer, edited(L, (pointer, DELETE))))
for pointer, wrong in (("/productName", 1), ("/baseCode", None), ("/helpFolder", ["signal"]),
                       ("/helpLocation", {"path": "help"}), ("/refItems", {}), ("/refItems/0", "fastfilter"),
                       ("/refItems/0/name", 1), ("/refItems/0/refpurpose", True), ("/refItems/0/href", None),
                       ("/refItems/0/type", 3), ("/refItems/0/fcntype", ["ordinary"]), ("/supportPackages", {}),
                       ("/supportPackages/0", []), ("/supportPackages/0/baseCode", 0),
                       ("/supportPackages/0/refItems/0/href", 1), ("/supportPackages/0/refItems/0/type", False)):
    BROKEN.append((LOOKUP, "%s is %s" % (pointer, json.dumps(wrong)), edited(L, (pointer, wrong))))
for pointer in ("/refItems/0/href", "/refItems/0/refpurpose", "/refItems/0/refentity/0/name",
                "/refItems/0/appthumbnail/fileref", "/refItems/0/appthumbnail/alt",
                "/refItems/0/syntaxgroup/0/title", "/refItems/0/syntaxgroup/0/syntax",
                "/refItems/0/inputgroup/0/title", NVP_GROUP + "/title", INPUT + "/name", INPUT + "/purpose",
                NVP_GROUP + "/inputs/0/name", "/refItems/0/outputs/0/name", "/refItems/0/outputs/0/purpose",
                "/refItems/0/parameters/0/name", "/refItems/0/parameters/0/purpose",
                "/refItems/0/classpropertygroup/0/classproperty", PROPERTY + "/name", PROPERTY + "/purpose",
                "/refItems/0/seealso/0/url", "/refItems/0/seealso/0/name", "/refItems/0/examples/0/url",
                "/refItems/0/examples/0/title", "/supportPackages/0/refItems/0/href",
                "/supportPackages/0/refItems/0/refpurpose"):
    BROKEN.append((PAGE, "missing " + pointer, edited(P, (pointer, DELETE))))
for pointer, wrong in (
        ("/productName", 1), ("/refItems", "none"), ("/refItems/0", []), ("/refItems/0/href", 1),
        ("/refItems/0/refpurpose", None), ("/refItems/0/refentity", {}), ("/refItems/0/refentity/0", "function"),
        ("/refItems/0/refentity/0/type", 12), ("/refItems/0/refentity/0/fcntype", None),
        ("/refItems/0/refentity/0/name", ["fastfilter"]), ("/refItems/0/packagename", 1),
        ("/refItems/0/introduced", 1.0), ("/refItems/0/description", {"text": "x"}),
        ("/refItems/0/appthumbnail", "images/a.png"), ("/refItems/0/appthumbnail/fileref", None),
        ("/refItems/0/appthumbnail/alt", 0), ("/refItems/0/deprecationstatus", True),
        ("/refItems/0/syntaxgroup", {}), ("/refItems/0/syntaxgroup/0", "y = f(x)"),
        ("/refItems/0/syntaxgroup/0/syntaxtype", []), ("/refItems/0/syntaxgroup/0/title", 2),
        ("/refItems/0/syntaxgroup/0/syntax", "y = f(x)"), ("/refItems/0/syntaxgroup/0/syntax/0", 1),
        ("/refItems/0/inputgroup", {}), ("/refItems/0/inputgroup/0", "Input Arguments"),
        ("/refItems/0/inputgroup/0/title", None), ("/refItems/0/inputgroup/0/inputs", {}),
        ("/refItems/0/inputgroup/0/inputs/0", "b"), (NVP + "/namevaluepairs", {}), (NVP + "/namevaluepairs/0", 1),
        (NVP_GROUP + "/title", []), (NVP_GROUP + "/inputs", "Device"),
        (INPUT + "/defaultvalue", 1), (INPUT + "/syntaxtype", 1), (INPUT + "/htmlid", 1), (INPUT + "/name", 1),
        (INPUT + "/purpose", 1), (INPUT + "/value", "vector"), (INPUT + "/value/0", None),
        ("/refItems/0/outputs", {}), ("/refItems/0/outputs/0", "y"), ("/refItems/0/outputs/0/syntaxtype", {}),
        ("/refItems/0/outputs/0/htmlid", 1), ("/refItems/0/outputs/0/name", None),
        ("/refItems/0/outputs/0/purpose", 1), ("/refItems/0/outputs/0/value", {}),
        ("/refItems/0/parameters", "Gain"), ("/refItems/0/parameters/0", []),
        ("/refItems/0/parameters/0/defaultvalue", 1), ("/refItems/0/parameters/0/htmlid", None),
        ("/refItems/0/parameters/0/name", 1), ("/refItems/0/parameters/0/purpose", []),
        ("/refItems/0/parameters/0/value/0", 1.5), ("/refItems/0/classpropertygroup", {}),
        ("/refItems/0/classpropertygroup/0", "Properties"), ("/refItems/0/classpropertygroup/0/title", 1),
        ("/refItems/0/classpropertygroup/0/classproperty", {}),
        ("/refItems/0/classpropertygroup/0/classproperty/0", "Order"), (PROPERTY + "/name", 1),
        (PROPERTY + "/purpose", None), (PROPERTY + "/value", "integer"), (PROPERTY + "/defaultvalue", 2),
        ("/refItems/0/seealso", {}), ("/refItems/0/seealso/0", "ratechange"), ("/refItems/0/seealso/0/url", 1),
        ("/refItems/0/seealso/0/name", None), ("/refItems/0/examples", "x"), ("/refItems/0/examples/0", 1),
        ("/refItems/0/examples/0/url", []), ("/refItems/0/examples/0/open_command", 1),
        ("/refItems/0/examples/0/title", 1), ("/supportPackages", "usbdaq"), ("/supportPackages/0", "usbdaq"),
        ("/supportPackages/0/helpFolder", 1), ("/supportPackages/0/refItems/0/href", [])):
    BROKEN.append((PAGE, "%s is %s" % (pointer, json.dumps(wrong)), edited(P, (pointer, wrong))))
for kind in (LOOKUP, PAGE):
    for wrong in ([], "text", 1, None, True):
        BROKEN.append((kind, "the root is %s" % json.dumps(wrong), wrong))
BROKEN += [
    (LOOKUP, "repeated key: the last value is wrong",
     b'{"productName": "P", "baseCode": "b", "helpFolder": "h", "helpLocation": "l", "refItems": [],'
     b' "helpFolder": 1}'),
    (PAGE, "input group without title or namevaluepairs", edited(P, ("/refItems/0/inputgroup/0", {"inputs": []}))),
    (PAGE, "thumbnail without its members", edited(P, ("/refItems/0/appthumbnail", {}))),
]

# What a schema cannot say: the JSON parser's limits. The library rejects these files; where the
# text is still JSON to a common parser, its value passes the schema. `text` is bytes.
OUTSIDE_SCHEMA = [
    ("nesting deeper than 32 levels",
     "the library's JSON parser refuses more than 32 levels; JSON Schema has no limit on depth",
     json.dumps(dict(header(), refItems=[], x=deep_value(32))).encode()),
    ("NaN literal", "not JSON; Python's parser accepts it, the library's does not",
     b'{"productName": "P", "baseCode": "b", "helpFolder": "h", "helpLocation": "l", "refItems": [], "x": NaN}'),
    ("lone surrogate escape",
     "the library refuses a \\u escape of half a surrogate pair; to a schema it is a string like any other",
     b'{"productName": "\\ud800", "baseCode": "b", "helpFolder": "h", "helpLocation": "l", "refItems": []}'),
    ("byte order mark", "the library does not skip a UTF-8 byte order mark; Python's parser does",
     b'\xef\xbb\xbf{"productName": "P", "baseCode": "b", "helpFolder": "h", "helpLocation": "l", "refItems": []}'),
]
# Not JSON to any strict parser: no schema is asked. The library must reject them all the same.
NOT_JSON = [
    ("comment", b'{"productName": "P", "baseCode": "b", "helpFolder": "h", "helpLocation": "l", "refItems": []'
                b' // all}'),
    ("trailing comma", b'{"productName": "P", "baseCode": "b", "helpFolder": "h", "helpLocation": "l",'
                       b' "refItems": [],}'),
    ("invalid UTF-8", b'{"productName": "P\xff", "baseCode": "b", "helpFolder": "h", "helpLocation": "l",'
                      b' "refItems": []}'),
]

SWEEP_VALUES = [DELETE, "text", 7, None, True, [], ["text"], [{}], {}]


def sweep(kind, full):
    """Every member and element of a full file, left out or replaced by a value of each kind, and
    every object given a member that the format does not have."""
    for pointer in members(full):
        for value in SWEEP_VALUES:
            yield kind, "sweep %s = %s" % (pointer, "deleted" if value is DELETE else json.dumps(value)), \
                edited(full, (pointer, value))
    for pointer in [""] + list(members(full)):
        if isinstance(resolve(full, pointer), dict):
            yield kind, "sweep %s/unknownMember added" % pointer, edited(full, (pointer + "/unknownMember", [{}]))


def resolve(document, pointer):
    for token in parse_pointer(pointer) if pointer else []:
        document = document[token]
    return document


# ---- the two verdicts -------------------------------------------------------------------------


def encode(content):
    return content if isinstance(content, bytes) else json.dumps(content, ensure_ascii=False, indent=1).encode()


def schema_accepts(validator, data):
    """The schema's verdict on the file's bytes; None when they are not JSON at all."""
    try:
        value = json.loads(data)
    except ValueError:
        return None
    return validator.is_valid(value)


def library_verdicts(tool, root, extra=()):
    """(path, zip entry or None) -> the check report's entry for every data file of the root."""
    run = subprocess.run([tool, "check", "--json", "--root", root, *extra], capture_output=True, text=True)
    if run.returncode not in (0, 1):
        sys.exit("check_schemas: refdoc check failed (%d): %s" % (run.returncode, run.stderr))
    report = json.loads(run.stdout)
    return {(f["path"], f["entry"]): f for f in report["files"] if f["source"] != "package"}


def slug(text, used):
    base = re.sub(r"[^a-z0-9]+", "-", text.lower()).strip("-")[:60] or "case"
    name, n = base, 1
    while name in used:
        n += 1
        name = "%s-%d" % (base, n)
    used.add(name)
    return name


class Failures:
    def __init__(self):
        self.lines = []

    def add(self, text):
        self.lines.append(text)


def check_sample_root(tool, sample_root, validators, failures):
    """Every data file of the sample root: the schema's verdict is the library's, and only
    instrument.json (missing "href") is rejected."""
    verdicts = library_verdicts(tool, sample_root)
    seen = set()
    for kind, folder in FOLDERS.items():
        directory = os.path.join(sample_root, folder)
        for name in sorted(os.listdir(directory)):
            path = os.path.join(folder, name)
            if name.endswith(".json"):
                with open(os.path.join(directory, name), "rb") as f:
                    contents = [(None, f.read())]
            elif name.endswith(".zip") and kind == LOOKUP:
                with zipfile.ZipFile(os.path.join(directory, name)) as package:
                    contents = [(e, package.read(e)) for e in package.namelist() if e.endswith(".json")]
            else:
                continue
            for entry, data in contents:
                label = path + ("!" + entry if entry else "")
                seen.add((path, entry))
                report = verdicts.get((path, entry))
                if report is None:
                    failures.add("sample %s: refdoc check does not report it" % label)
                    continue
                expected = name != "instrument.json"
                schema = schema_accepts(validators[kind], data)
                library = not report["dropped"]
                if schema != library or library != expected:
                    failures.add("sample %s: schema %s, library %s, expected %s"
                                 % (label, verdict(schema), verdict(library), verdict(expected)))
    for key in sorted(set(verdicts) - seen, key=str):
        failures.add("sample: refdoc check reports %s, which the test did not validate" % (key,))
    return len(seen)


def verdict(accepted):
    return "no verdict (not JSON)" if accepted is None else ACCEPT if accepted else REJECT


def check_generated(tool, validators, failures):
    cases = [(k, "valid: " + n, c, ACCEPT) for k, n, c in VALID]
    cases += [(k, "broken: " + n, c, REJECT) for k, n, c in BROKEN]
    cases += [(k, n, c, None) for k, n, c in list(sweep(LOOKUP, L)) + list(sweep(PAGE, P))]
    outside = [(LOOKUP, "outside the schema: " + n, t, REJECT) for n, _, t in OUTSIDE_SCHEMA]
    outside += [(LOOKUP, "not JSON: " + n, t, REJECT) for n, t in NOT_JSON]
    with tempfile.TemporaryDirectory(prefix="refdoc-schemas-") as root:
        for folder in FOLDERS.values():
            os.makedirs(os.path.join(root, folder))
        used, files = set(), []
        for kind, name, content, expected in cases + outside:
            path = os.path.join(FOLDERS[kind], slug(kind + " " + name, used) + ".json")
            data = encode(content)
            with open(os.path.join(root, path), "wb") as f:
                f.write(data)
            files.append((kind, name, path, data, expected))
        verdicts = library_verdicts(tool, root, ["--languages", "en", "--lang", "en"])
        outside_names = {name for _, name, _, _ in outside}
        for kind, name, path, data, expected in files:
            report = verdicts.get((path, None))
            if report is None:
                failures.add("%s %s: refdoc check does not report %s" % (kind, name, path))
                continue
            library = not report["dropped"]
            schema = schema_accepts(validators[kind], data)
            why = "" if library else " (library: %s %s)" % (report["message"], report["jsonPath"] or "")
            if name in outside_names:
                # The library rejects it with a syntax error; the schema either passes the value
                # (it cannot express the limit) or never sees it (not JSON).
                wanted_schema = None if name.startswith("not JSON") else True
                if library or report["reason"] != "syntax error" or schema is not wanted_schema:
                    failures.add("%s %s: library %s%s, schema %s; expected library %s with a syntax error, "
                                 "schema %s" % (kind, name, verdict(library), why, verdict(schema), REJECT,
                                                verdict(wanted_schema)))
            elif schema is None or schema != library or (expected is not None and verdict(library) != expected):
                failures.add("%s %s: schema %s, library %s%s%s"
                             % (kind, name, verdict(schema), verdict(library), why,
                                "" if expected is None else ", expected " + expected))
    return len(cases) + len(outside)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--tool", required=True, help="the refdoc executable")
    parser.add_argument("--schemas", required=True, help="the folder holding the schemas")
    parser.add_argument("--sample-root", required=True, help="the bundled sample documentation root")
    args = parser.parse_args()

    validators = {}
    for kind in (LOOKUP, PAGE):
        with open(os.path.join(args.schemas, kind + ".schema.json"), encoding="utf-8") as f:
            schema = json.load(f)
        jsonschema.Draft202012Validator.check_schema(schema)
        validators[kind] = jsonschema.Draft202012Validator(schema)

    failures = Failures()
    sample = check_sample_root(args.tool, args.sample_root, validators, failures)
    generated = check_generated(args.tool, validators, failures)
    for line in failures.lines:
        print("FAIL " + line)
    print("%d sample files, %d generated files (%d valid, %d broken, %d outside the schema); %d disagreements"
          % (sample, generated, len(VALID), len(BROKEN), len(OUTSIDE_SCHEMA) + len(NOT_JSON), len(failures.lines)))
    return 1 if failures.lines else 0


if __name__ == "__main__":
    sys.exit(main())
