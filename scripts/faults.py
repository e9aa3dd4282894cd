#!/usr/bin/env python3
"""Deliberate faults: puts each one into the sources, builds, runs the whole suite and records
which tests fail, then takes the fault out again. A fault no test catches is a gap in the suite.

  scripts/faults.py                 every fault, debug preset, table on stdout
  scripts/faults.py --only F03 F11  some of them
  scripts/faults.py --list          the table of faults without running anything
  scripts/faults.py --check         that every fault's text still stands in its file, once
  scripts/faults.py --json out.json the results as JSON as well

The sources are restored after each fault, also when the build or a test run fails or the script
is interrupted. Run it on a clean tree: it refuses to start when a file it edits has changes.
"""

import argparse
import json
import pathlib
import re
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent

# Each fault: an id, the area it belongs to, what it breaks, and the edits that put it in
# (file, text as it stands, text that replaces it). Every text must occur exactly once.
FAULTS = [
    ("F01", "merge", "merge precedence inverted: the English data wins over the variant",
     [("src/docparser/loading/MergeResources.cpp",
       "    if (sourceTakesPrecedence) {\n        std::swap(target, source);",
       "    if (!sourceTakesPrecedence) {\n        std::swap(target, source);")]),
    ("F02", "reader", "a support package whose key is taken replaces the earlier document",
     [("src/docparser/parsing/ResourceFile.hpp",
       "if (!result.try_emplace(packageKey, std::move(packages[i])).second) {",
       "if (!result.insert_or_assign(packageKey, std::move(packages[i])).second) {")]),
    ("F03", "locales", "loose locale variants of other languages are kept",
     [("src/docparser/loading/ProductEnumeration.cpp",
       "if (isVariant && !std::u16string_view(stem).ends_with(currentLocaleSuffix)) {",
       "if (false && isVariant && !std::u16string_view(stem).ends_with(currentLocaleSuffix)) {")]),
    ("F04", "locales", "packed locale variants of other languages are kept",
     [("src/docparser/loading/Pipeline.cpp",
       "if (isVariant && !stem.ends_with(info.localeSuffix)) {",
       "if (false && isVariant && !stem.ends_with(info.localeSuffix)) {")]),
    ("F05", "reader", "block pages no longer read member names as UTF-8",
     [("src/docparser/parsing/RefItemParser.cpp",
       "item.setBlock(item.isBlock || entity.type == RefEntityType::Block);",
       "item.setBlock(item.isBlock);")]),
    ("F06", "zip", "the entry size bound is not checked",
     [("src/docparser/loading/ZipPackage.cpp",
       "if (stat.size > limits_.maxEntrySize) {",
       "if (false) {")]),
    ("F07", "zip", "the entry count bound is not checked",
     [("src/docparser/loading/ZipPackage.cpp",
       "static_cast<std::uint64_t>(count) > limits_.maxEntryCount",
       "false")]),
    ("F08", "reader", "a lookup entry without \"href\" is accepted",
     [("src/docparser/parsing/LookupParser.cpp",
       "ev::text<&EntryDraft::href, detail::asciiField>(keys::kHref, true),",
       "ev::text<&EntryDraft::href, detail::asciiField>(keys::kHref, false),")]),
    ("F09", "reader", "class property anchors lose their \"prop_\" prefix",
     [("src/docparser/parsing/RefItemParser.cpp",
       "static const std::u16string prefix(u\"#prop_\");",
       "static const std::u16string prefix(u\"#\");")]),
    ("F10", "reader", "texts read as UTF-8 are widened byte by byte",
     [("src/docparser/parsing/FieldAccess.hpp",
       "if (type == StringParsingType::Ascii || text::isPlainAscii(bytes)) {",
       "if (type == StringParsingType::Ascii || !text::isPlainAscii(bytes) || true) {")]),
    ("F11", "diagnostics", "JSON pointers count array elements from 1",
     [("src/docparser/parsing/EventReader.cpp",
       "diagnostics::appendPointerToken(pointer, std::to_string(level.index - 1));",
       "diagnostics::appendPointerToken(pointer, std::to_string(level.index));")]),
    ("F12", "diagnostics", "syntax error columns count bytes, not characters",
     [("src/docparser/diagnostics/ReadFailure.cpp",
       "if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {",
       "if (true) {")]),
    ("F13", "settings", "restoreDefaultSettings keeps the test products",
     [("src/docparser/loading/Settings.cpp",
       "oldProvider = std::exchange(topLevelProductsProvider, TopLevelProductsProvider(getInstalledTopLevelProducts));",
       "oldProvider = topLevelProductsProvider;")]),
    ("F14", "settings", "installed support packages do not count as installed",
     [("src/docparser/loading/Settings.cpp",
       "    return supportPackages && supportPackages->contains(name);",
       "    return false;")]),
    ("F15", "zip", "an entry longer than it declares is read as its declared prefix",
     [("src/docparser/loading/ZipPackage.cpp",
       "    if (extra > 0) {\n        failEntry(entry, \"longer than its declared size\");",
       "    if (false) {\n        failEntry(entry, \"longer than its declared size\");")]),
    ("F16", "locales", "the current language is left out of the supported locales",
     [("src/docparser/loading/Locales.cpp",
       "locales.erase(std::remove(locales.begin(), locales.end(), kEnglishLocale), locales.end());",
       "locales.erase(std::remove(locales.begin(), locales.end(), getCurrentLocale()), locales.end());")]),
    ("F17", "reader", "a repeated key keeps the failures found in the value it replaces",
     [("src/docparser/parsing/EventReader.cpp",
       "        level.failedRows &= ~bit;\n",
       "")]),
    ("F18", "reader", "a page read again ignores what the first reading learnt of its items",
     [("src/docparser/parsing/RefItemParser.cpp",
       "if (read->nextHint < read->hints.size() && read->hints[read->nextHint].ordinal == ordinal) {",
       "if (false) {")]),
    ("F19", "diagnostics", "warnings come in text order rather than in the order the format reads members",
     [("src/docparser/parsing/EventReader.cpp",
       "[](const Warning& a, const Warning& b) { return a.position < b.position; }",
       "[](const Warning&, const Warning&) { return false; }")]),
    ("F20", "diagnostics", "a read that gives no text is reported as a syntax error instead of its reason",
     [("src/docparser/loading/Pipeline.cpp",
       "    if (!read.read()) {\n        // The text was empty",
       "    if (false) {\n        // The text was empty")]),
    ("F21", "reader", "a failed object is undone only while diagnostics are recorded",
     [("src/docparser/parsing/EventReader.cpp",
       "if (level.build && format.abandon != nullptr) {",
       "if (level.build && record_ != nullptr) {")]),
    ("F22", "loading", "a page name that leads out of the reference folder is followed",
     [("src/docparser/loading/LoadingEntries.cpp",
       "    if (!isBaseName(name)) {",
       "    if (false && !isBaseName(name)) {")]),
    ("F23", "search", "names within two edits are not found from eight characters on",
     [("src/search/NameMatch.cpp",
       "    return queryLength < 8 ? 1 : 2;",
       "    return 1;")]),
    ("F24", "search", "case folding beyond ASCII is skipped",
     [("src/search/CodeText.cpp",
       "const UChar32 f = u_foldCase(c, U_FOLD_CASE_DEFAULT);",
       "const UChar32 f = c;")]),
    ("F25", "search", "ties between names that differ in a digit run go by code units, not by number",
     [("src/search/CodeText.cpp",
       "    } else if (!isDigit(a[k]) && !isDigit(b[k]) && !(k > 0 && isDigit(a[k - 1]))) {",
       "    } else if (true) {")]),
    ("F26", "serve", "a data file rewritten with the same size is not loaded again",
     [("tools/refdoc/ServeSnapshots.hpp",
       "    bool operator==(const FileStamp&) const = default;",
       "    bool operator==(const FileStamp& other) const { return name == other.name && size == other.size; }")]),
    ("F27", "serve", "the search box may open a link that is not a page of the root",
     [("tools/refdoc/ServeViews.cpp",
       'object["url"] = ref ? boost::json::value(refUrl(*ref, snapshot.language())) : boost::json::value(nullptr);',
       'object["url"] = boost::json::value("/ref/" + toUtf8(hit.item->getHref()));')]),
    ("F28", "tool", "find --installed-only is not passed to the search",
     [("tools/refdoc/Search.cpp",
       "    query.installedOnly = options.installedOnly;",
       "")]),
    ("F29", "tool", "check --strict passes with warnings",
     [("tools/refdoc/CheckCommand.cpp",
       "const bool failed = dropped != 0 || (options.strict && warnings != 0);",
       "const bool failed = dropped != 0;")]),
    ("F30", "check", "see-also links to pages of no page file are not reported",
     [("tools/refdoc/CrossReferences.cpp",
       "if (target16.empty() || hasScheme(url16) || allPages_.count(target16) != 0) {",
       "if (true) {")]),
    ("F31", "check", "an entry whose page its product's page file lacks is not reported",
     [("tools/refdoc/CrossReferences.cpp",
       "        const std::string entryName = quoted(toUtf8(entry.getName()));\n        if (!hasPageFile) {",
       "        if (hasPageFile) {\n            return;\n        }\n"
       "        const std::string entryName = quoted(toUtf8(entry.getName()));\n        if (!hasPageFile) {")]),
    ("F32", "check", "a translated entry equal to English counts as localized",
     [("tools/refdoc/Coverage.cpp",
       "if (found != translated->end() && found->second != list) {",
       "if (found != translated->end()) {")]),
    ("F33", "check", "translated pages are never found to lack sections",
     [("tools/refdoc/PageView.cpp",
       "        if (std::find(present.begin(), present.end(), section) == present.end()) {",
       "        if (false) {")]),
]


def run(cmd, **kwargs):
    return subprocess.run(cmd, cwd=ROOT, text=True, capture_output=True, **kwargs)


def apply(edits):
    """Puts the edits in; returns the original contents to restore."""
    originals = {}
    for path, old, new in edits:
        file = ROOT / path
        text = originals.get(path) or file.read_text()
        originals.setdefault(path, text)
        current = file.read_text()
        count = current.count(old)
        if count != 1:
            raise SystemExit(f"{path}: the text to replace occurs {count} times:\n{old}")
        file.write_text(current.replace(old, new))
    return originals


def restore(originals):
    for path, text in originals.items():
        (ROOT / path).write_text(text)


def failing_tests(preset, timeout):
    result = run(["ctest", "--preset", preset, "-j2", "--timeout", str(timeout)])
    failed = re.findall(r"^\s*\d+ - (\S+) \(", result.stdout, re.MULTILINE)
    return sorted(set(failed)), result.returncode


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--preset", default="debug")
    parser.add_argument("--only", nargs="*", default=None)
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--json", type=pathlib.Path)
    parser.add_argument("--timeout", type=int, default=600, help="seconds per test")
    args = parser.parse_args()

    faults = [f for f in FAULTS if args.only is None or f[0] in args.only]
    if args.check:
        stale = [(fid, path) for fid, _, _, edits in faults for path, old, _ in edits
                 if (ROOT / path).read_text().count(old) != 1]
        for fid, path in stale:
            print(f"{fid}: its text no longer stands once in {path}")
        return 1 if stale else 0
    if args.list:
        for fid, area, what, _ in faults:
            print(f"{fid}  {area:12} {what}")
        return 0

    edited = sorted({path for _, _, _, edits in faults for path, _, _ in edits})
    if run(["git", "diff", "--quiet", "--", *edited]).returncode != 0:
        raise SystemExit("the files the faults edit have uncommitted changes; commit or stash them first")

    subprocess.run(["cmake", "--preset", args.preset], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    build = ["cmake", "--build", "--preset", args.preset]
    if run(build).returncode != 0:
        raise SystemExit("the tree does not build without faults")
    clean, _ = failing_tests(args.preset, args.timeout)
    if clean:
        raise SystemExit("tests fail without faults: " + ", ".join(clean))

    results = []
    try:
        for fid, area, what, edits in faults:
            started = time.time()
            originals = apply(edits)
            try:
                built = run(build)
                if built.returncode != 0:
                    failed, status = ["(does not build)"], "build"
                else:
                    failed, _ = failing_tests(args.preset, args.timeout)
                    status = "caught" if failed else "MISSED"
            finally:
                restore(originals)
            results.append({"id": fid, "area": area, "fault": what, "status": status, "failed": failed})
            print(f"{fid} {status:7} {len(failed):3} tests  ({time.time() - started:.0f} s)  {what}",
                  file=sys.stderr, flush=True)
    finally:
        run(build)

    print("| Fault | Area | What it breaks | Tests that fail |")
    print("|---|---|---|---|")
    for r in results:
        tests = ", ".join(f"`{t}`" for t in r["failed"]) if r["failed"] else "**none**"
        print(f"| {r['id']} | {r['area']} | {r['fault']} | {len(r['failed'])}: {tests} |")
    if args.json:
        args.json.write_text(json.dumps(results, indent=2) + "\n")
    return 0 if all(r["status"] == "caught" for r in results) else 1


if __name__ == "__main__":
    sys.exit(main())
