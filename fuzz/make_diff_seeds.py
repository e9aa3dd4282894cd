#!/usr/bin/env python3
"""Seeds for the differential fuzz targets: real lookup and page files, cut down to a few entries,
and mutations of them where a reader built on parser events is easily wrong while a reader of
a parsed tree is not (duplicate keys, keys in unusual order, escapes in keys and texts, wrong
kinds, a missing key followed by a syntax error, the nesting limit, documents whose key is
taken, page replacements).

    fuzz/make_diff_seeds.py [--corpus DIR]

DIR is a corpus made by the benchmark's generator (build/<preset>/bench/refdoc_corpus DIR
--products 3); without it only the sample documentation root is used. Writes
fuzz/corpus/lookup_diff and fuzz/corpus/page_diff afresh. The output depends on the input
files only: the same files give the same seeds.
"""

import argparse
import json
import pathlib
import shutil

ROOT = pathlib.Path(__file__).resolve().parent.parent
SAMPLES = ROOT / "examples" / "docroot" / "docCatalog"
SEPARATOR = "\n#ja#\n"  # PageFileTarget::kLocalizedSeparator
HEADER_KEYS = ("productName", "baseCode", "helpFolder", "helpLocation")


class Obj(list):
    """A JSON object as its members in text order; a key may occur more than once."""

    def get(self, key, default=None):
        found = [v for k, v in self if k == key]
        return found[-1] if found else default

    def set(self, key, value):
        for i, (k, _) in enumerate(self):
            if k == key:
                self[i] = (k, value)
                return
        self.append((key, value))

    def remove(self, key):
        self[:] = [(k, v) for k, v in self if k != key]

    def move_last(self, key):
        members = [(k, v) for k, v in self if k == key]
        self.remove(key)
        self.extend(members)

    def insert_before(self, key, member):
        for i, (k, _) in enumerate(self):
            if k == key:
                self.insert(i, member)
                return
        self.insert(0, member)


class Raw(str):
    """JSON text written as it is (a key or string spelled with escapes)."""


def load(path):
    return json.loads(path.read_text(encoding="utf-8"), object_pairs_hook=Obj)


def dump(value):
    if isinstance(value, Raw):
        return str(value)
    if isinstance(value, Obj):
        return "{" + ",".join(dump(k) + ":" + dump(v) for k, v in value) + "}"
    if isinstance(value, list):
        return "[" + ",".join(dump(v) for v in value) + "]"
    return json.dumps(value, ensure_ascii=False)


def copy(value):
    if isinstance(value, Obj):
        return Obj((k, copy(v)) for k, v in value)
    if isinstance(value, list):
        return [copy(v) for v in value]
    return value


def trimmed(value, items=3):
    """Every array cut to `items` elements and long texts cut short, so that seeds stay small."""
    if isinstance(value, Obj):
        return Obj((k, trimmed(v, items)) for k, v in value)
    if isinstance(value, list):
        return [trimmed(v, items) for v in value[:items]]
    if isinstance(value, str) and len(value) > 120:
        return value[:120]
    return value


def escaped(text, every=2):
    """A JSON string of `text` with every `every`-th character written as a \\u escape."""
    out = []
    for i, ch in enumerate(text):
        if i % every == 0 and ord(ch) < 0x10000:
            out.append("\\u%04x" % ord(ch))
        else:
            out.append(json.dumps(ch, ensure_ascii=False)[1:-1])
    return Raw('"' + "".join(out) + '"')


def long_escaped(length):
    """JSON string text longer than the JSON parser's buffer for unescaped text, full of escapes."""
    return Raw('"' + "".join("\\u00e9" if i % 7 == 0 else "\\n" if i % 11 == 0 else "x" for i in range(length)) + '"')


def long_texts(doc, text_key, enum_key):
    item = first_item(doc)
    item.set(text_key, long_escaped(4500))
    item.set(enum_key, long_escaped(4500))
    return dump(doc)


def nested(depth):
    value = []
    for _ in range(depth - 1):
        value = [value]
    return value


def depth_of(path_depth, total):
    """Arrays to add below a member at `path_depth` (the root object is depth 1) to reach `total`."""
    return total - path_depth


def items(document):
    return document.get("refItems") or []


def first_item(document):
    found = items(document)
    if not found:
        document.set("refItems", [Obj([("name", "x"), ("href", "h"), ("refpurpose", "p")])])
        found = items(document)
    return found[0]


def package(base_code, refitems):
    return Obj([("productName", "Package " + base_code), ("baseCode", base_code), ("helpFolder", base_code.lower()),
                ("helpLocation", "help/" + base_code.lower()), ("refItems", refitems)])


# ---- Mutations shared by both formats. Each takes a document (already a copy) and returns the
# text, so that a mutation may also break the syntax.

def dup_first_invalid(doc, key):
    item = first_item(doc)
    item.insert_before(key, (key, 5))
    return dump(doc)


def dup_second_invalid(doc, key):
    first_item(doc).append((key, [key]))
    return dump(doc)


def dup_refitems_first_empty(doc):
    doc.insert_before("refItems", ("refItems", []))
    return dump(doc)


def dup_refitems_first_wrong(doc):
    doc.insert_before("refItems", ("refItems", Obj([("refItems", 1)])))
    return dump(doc)


def header_last(doc):
    for key in HEADER_KEYS:
        doc.move_last(key)
    return dump(doc)


def keys_reversed(doc, key):
    for item in items(doc):
        item.reverse()
        item.move_last(key)
    return dump(doc)


def escaped_keys_and_texts(doc, keys):
    for item in items(doc):
        for i, (k, v) in enumerate(item):
            if k in keys:
                item[i] = (escaped(k, 3), escaped(v, 2) if isinstance(v, str) else v)
            elif isinstance(v, str):
                item[i] = (k, v + "\u0000" + v[:3])
    doc.append((Raw('"refItems\\u0000"'), 1))
    return dump(doc)


def missing_then_syntax_error(doc, key, breakage):
    last = items(doc)[-1] if items(doc) else first_item(doc)
    last.remove(key)
    text = dump(doc)
    if breakage == "trailing comma":
        return text[:-1] + ",}"
    return text[: len(text) - 2]  # cut short after the last entry


def deep_member(doc, total):
    doc.append(("deep", nested(depth_of(1, total))))
    return dump(doc)


def deep_in_item(doc, total):
    first_item(doc).append(("deep", Obj([("x", nested(depth_of(4, total)))])))
    return dump(doc)


def taken_package_keys(doc, broken_member):
    """A package under the main document's key, then two packages sharing one key; the first taken
    one lacks `broken_member` in an entry when that is given (a dropped document is still read)."""
    entry = copy(first_item(doc))
    if broken_member:
        entry.remove(broken_member)
    packages = [package("X", [entry]), package("PK", [copy(first_item(doc))]), package("PK", [])]
    packages[0].set("baseCode", doc.get("helpFolder"))
    doc.set("supportPackages", packages)
    return dump(doc)


def same_keys_elsewhere(doc, item_keys):
    item = first_item(doc)
    for key in item_keys:
        doc.append((key, "document level"))
    item.append(("refItems", [copy(item)]))
    item.append(("supportPackages", [1]))
    for key in HEADER_KEYS:
        item.append((key, 0))
    pk = package("SK", [copy(item)])
    pk.append(("supportPackages", [package("INNER", "not an array")]))
    doc.set("supportPackages", [pk])
    return dump(doc)


def wrong_kind(doc, where):
    if where == "root":
        return dump([doc])
    if where == "refItems":
        doc.set("refItems", Obj([("0", items(doc)[:1])]))
    elif where == "item":
        doc.set("refItems", items(doc) + ["entry"])
    elif where == "supportPackages":
        doc.set("supportPackages", Obj())
    elif where == "package":
        doc.set("supportPackages", [package("P1", []), 7])
    elif where == "header":
        doc.set("helpFolder", ["signal"])
    return dump(doc)


def set_in_first_item(doc, key, value):
    first_item(doc).set(key, value)
    return dump(doc)


def shared_mutations(first, second, text, enum, escaped_keys, same_keys):
    """The mutations of both formats: `first` and `second` are required string members of an
    entry, `text` an optional text member and `enum` an enumeration member."""
    return [
        (f"dup_{first}_first_invalid", lambda d: dup_first_invalid(d, first)),
        (f"dup_{second}_second_invalid", lambda d: dup_second_invalid(d, second)),
        ("dup_refitems_first_empty", dup_refitems_first_empty),
        ("dup_refitems_first_wrong_kind", dup_refitems_first_wrong),
        ("header_after_refitems", header_last),
        ("href_last_keys_reversed", lambda d: keys_reversed(d, "href")),
        ("escaped_keys_nul_texts", lambda d: escaped_keys_and_texts(d, escaped_keys)),
        (f"missing_{first}_then_trailing_comma", lambda d: missing_then_syntax_error(d, first, "trailing comma")),
        (f"missing_{second}_then_cut_short", lambda d: missing_then_syntax_error(d, second, "cut")),
        ("depth_32", lambda d: deep_member(d, 32)),
        ("long_escaped_texts", lambda d: long_texts(d, text, enum)),
        ("taken_package_keys", lambda d: taken_package_keys(d, None)),
        (f"taken_package_missing_{first}", lambda d: taken_package_keys(d, first)),
        ("same_keys_elsewhere", lambda d: same_keys_elsewhere(d, same_keys)),
        ("wrong_kind_root", lambda d: wrong_kind(d, "root")),
        ("wrong_kind_package", lambda d: wrong_kind(d, "package")),
    ]


# ---- Lookup files

def lookup_mutations():
    def unknown_enums(doc):
        for i, item in enumerate(items(doc)):
            item.set("type", [Raw('"\\u0062lock"'), "widget", ""][i % 3])
            item.set("fcntype", ["Ordinary", "method ", "\u00e9"][i % 3])
        return dump(doc)

    def unknown_enum_then_missing_key(doc):
        first_item(doc).set("type", "gadget")
        doc.set("refItems", items(doc) + [Obj([("type", "gizmo"), ("refpurpose", "p"), ("href", "h")])])
        return dump(doc)

    def deprecated_kinds(doc):
        for item, value in zip(items(doc), [False, None, Obj()]):
            item.set("deprecated", value)
        return dump(doc)

    def duplicate_names(doc):
        entries = items(doc)
        if len(entries) > 1:
            entries[1].set("name", entries[0].get("name"))
        entries[0].append(("name", "renamed by a later member"))
        return dump(doc)

    return shared_mutations(first="href", second="name", text="refpurpose", enum="type", escaped_keys={"name", "href", "type"},
                            same_keys=["name", "href", "type"]) + [
        ("dup_names_and_name_key", duplicate_names),
        ("depth_33", lambda d: deep_member(d, 33)),
        ("depth_33_in_entry", lambda d: deep_in_item(d, 33)),
        ("unknown_enum_texts", unknown_enums),
        ("unknown_enum_then_missing_key", unknown_enum_then_missing_key),
        ("deprecated_any_kind", deprecated_kinds),
        ("wrong_kind_refitems", lambda d: wrong_kind(d, "refItems")),
        ("wrong_kind_entry", lambda d: wrong_kind(d, "item")),
        ("wrong_kind_support_packages", lambda d: wrong_kind(d, "supportPackages")),
        ("wrong_kind_header", lambda d: wrong_kind(d, "header")),
        ("wrong_kind_purpose", lambda d: set_in_first_item(d, "refpurpose", Obj([("text", "p")]))),
        ("wrong_kind_type", lambda d: set_in_first_item(d, "type", 12)),
    ]


# ---- Page files

def inputs_group(names):
    return Obj([("title", "Inputs"), ("inputs", [Obj([("name", n), ("purpose", "p"), ("htmlid", "in_" + str(i))])
                                                 for i, n in enumerate(names)])])


def page_mutations():
    def inputgroup_before_block(doc):
        item = first_item(doc)
        item.set("inputgroup", [inputs_group(["Gr\u00f6\u00dfe", "x"])])
        item.set("classpropertygroup", [Obj([("classproperty", [Obj([("name", "Farbe \u00e9"), ("purpose", "p")])])])])
        item.set("refentity", [Obj([("type", "function"), ("name", "f")]), Obj([("name", "B"), ("type", "block")])])
        item.move_last("refentity")
        return dump(doc)

    def refentity_duplicate(doc):
        item = first_item(doc)
        item.set("inputgroup", [inputs_group(["\u65e5\u672c"])])
        item.insert_before("inputgroup", ("refentity", [Obj([("type", "block"), ("name", "B")])]))
        item.append(("refentity", [Obj([("type", "block"), ("name", "B"), ("type", "class")])]))
        return dump(doc)

    def name_value_pairs(doc):
        item = first_item(doc)
        item.set("inputgroup", [
            Obj([("inputs", 1), ("namevaluepairs", [inputs_group(["A"]), Obj([("title", "No inputs")])])]),
            Obj([("namevaluepairs", [])]),
            Obj([("title", "Plain"), ("inputs", []), ("namevaluepairs", Obj()), ("namevaluepairs", [inputs_group(["B"])])]),
        ])
        return dump(doc)

    def unknown_enums(doc):
        for item in items(doc):
            item.set("deprecationstatus", "gone")
            item.set("outputs", [Obj([("syntaxtype", "odd"), ("name", "y"), ("purpose", "p")])])
            item.set("refentity", [Obj([("type", "gizmo"), ("fcntype", "weird"), ("name", "g")])])
        return dump(doc)

    def unknown_enum_then_missing_key(doc):
        item = first_item(doc)
        item.set("deprecationstatus", "gone")
        item.remove("refpurpose")
        item.move_last("href")
        return dump(doc)

    def with_sibling(doc, change_sibling):
        sibling = copy(doc)
        change_sibling(sibling)
        return dump(doc) + SEPARATOR + dump(sibling)

    def translated(sibling):
        sibling.set("productName", sibling.get("productName", "") + " \u65e5\u672c\u8a9e")
        entries = items(sibling)
        sibling.set("refItems", entries[1:] + [Obj([("href", "only/in/translation.html"), ("refpurpose", "\u8a33")])])
        for item in items(sibling):
            item.set("refpurpose", "\u8a33 " + str(item.get("refpurpose")))

    def english_broken_where_replaced(doc):
        # The translation covers the first page; the English one lacks its purpose, which still fails.
        sibling = copy(doc)
        sibling.set("refItems", items(sibling)[:1])
        first_item(doc).remove("refpurpose")
        return dump(doc) + SEPARATOR + dump(sibling)

    def sibling_with_packages(doc):
        pk = package("PK", [copy(first_item(doc))])
        doc.set("supportPackages", [pk, copy(pk)])
        sibling = copy(doc)
        sibling.set("supportPackages", [package("PK", [])])
        return dump(doc) + SEPARATOR + dump(sibling)

    return shared_mutations(first="refpurpose", second="href", text="description", enum="deprecationstatus",
                            escaped_keys={"href", "refpurpose", "refentity", "inputgroup"},
                            same_keys=["href", "refpurpose", "inputgroup"]) + [
        ("inputgroup_before_block_entity", inputgroup_before_block),
        ("refentity_duplicate_keys", refentity_duplicate),
        ("namevaluepairs_variants", name_value_pairs),
        ("depth_33_in_page", lambda d: deep_in_item(d, 33)),
        ("unknown_enum_texts", unknown_enums),
        ("unknown_enum_then_missing_key", unknown_enum_then_missing_key),
        ("wrong_kind_page", lambda d: wrong_kind(d, "item")),
        ("wrong_kind_thumbnail", lambda d: set_in_first_item(d, "appthumbnail", "thumb.png")),
        ("empty_thumbnail", lambda d: set_in_first_item(d, "appthumbnail", Obj())),
        ("wrong_kind_syntax_line", lambda d: set_in_first_item(
            d, "syntaxgroup", [Obj([("title", "T"), ("syntax", ["a = f(x)", 1])])])),
        ("wrong_kind_value", lambda d: set_in_first_item(
            d, "parameters", [Obj([("name", "p"), ("purpose", "q"), ("value", ["v", None])])])),
        ("class_property_group_without_properties", lambda d: set_in_first_item(
            d, "classpropertygroup", [Obj([("title", "T")])])),
        ("sibling_translated", lambda d: with_sibling(d, translated)),
        ("sibling_english_broken_where_replaced", english_broken_where_replaced),
        ("sibling_support_packages", sibling_with_packages),
    ]


def sources(folder, corpus_folder, corpus):
    files = sorted((SAMPLES / folder).glob("*.json"))
    if corpus:
        found = sorted((corpus / "docCatalog" / corpus_folder).glob("*.json"))
        # One English file and one variant of each language: the shapes the generator writes.
        picked, languages = [], set()
        for path in found:
            language = path.stem.rpartition("_")[2] if "_" in path.stem else "en"
            if language not in languages:
                languages.add(language)
                picked.append(path)
        files += picked
    return files


def write(folder, name, text):
    (folder / name).write_text(text, encoding="utf-8", newline="")


def complete(document, required):
    """Whether every entry of the document and of its packages has the required members."""
    documents = [document] + [p for p in (document.get("supportPackages") or []) if isinstance(p, Obj)]
    return all(isinstance(d.get("refItems"), list) and
               all(isinstance(e, Obj) and all(e.get(k) is not None for k in required) for e in d.get("refItems"))
               for d in documents)


def make(target, files, mutations, items_per_array, required):
    out = ROOT / "fuzz" / "corpus" / target
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir(parents=True)
    bases = []
    for path in files:
        document = trimmed(load(path), items_per_array)
        stem = ("corpus_" if SAMPLES not in path.parents else "") + path.stem
        write(out, stem + ".json", dump(document))
        if complete(document, required):
            bases.append((stem, document))
    # Each mutation on one sound base, taking the bases in turn; a file that already fails would
    # fail the same way whatever the mutation does.
    for i, (name, mutation) in enumerate(mutations()):
        stem, document = bases[i % len(bases)]
        text = mutation(copy(document))
        write(out, f"{name}.{stem}.{'txt' if SEPARATOR in text else 'json'}", text)
    return len(files) + len(mutations())


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--corpus", type=pathlib.Path, help="a corpus made by refdoc_corpus")
    args = parser.parse_args()
    lookups = make("lookup_diff", sources("referenceapi_lookup", "referenceapi_lookup", args.corpus),
                   lookup_mutations, 3, ("name", "refpurpose", "href"))
    pages = make("page_diff", sources("referenceapi", "referenceapi", args.corpus), page_mutations, 2, ("href", "refpurpose"))
    print(f"lookup_diff: {lookups} seeds, page_diff: {pages} seeds")


if __name__ == "__main__":
    main()
