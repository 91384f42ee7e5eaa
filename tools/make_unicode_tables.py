#!/usr/bin/env python3
"""Make src/scl/text/unicode_tables.cpp from the data files of the Unicode Character Database.

Usage: tools/make_unicode_tables.py [DIRECTORY]

DIRECTORY holds UnicodeData.txt and the other files of the database; it is /usr/share/unicode
(Debian package unicode-data) unless given. The version of the data must be the one that
SCL_UNICODE_VERSION in src/scl/text/scl_unicode.hpp names.
"""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
HEADER = ROOT / "src/scl/text/scl_unicode.hpp"
OUTPUT = ROOT / "src/scl/text/unicode_tables.cpp"

CODE_POINTS = 0x110000
TABLE_LENGTH = 0x10000
BLOCK = 128

CLASS_OF_CATEGORY = {"L": 1, "N": 2, "P": 3, "S": 4, "M": 5, "Cf": 5}
WHITE_SPACE_CLASS = 6

# The places of the enumeration Scl_word_break.
WORD_BREAKS = [
    "Other", "ALetter", "Hebrew_Letter", "Katakana", "Numeric", "ExtendNumLet", "MidLetter",
    "MidNum", "MidNumLet", "Single_Quote", "Double_Quote", "Extend", "Format", "ZWJ", "WSegSpace",
    "CR", "LF", "Newline", "Regional_Indicator", "Pictographic", "ALetter_Pictographic",
]  # fmt: skip
WITH_PICTOGRAPHIC = {"Other": "Pictographic", "ALetter": "ALetter_Pictographic"}
TAILORED_WORD_BREAKS = {0x202F: "WSegSpace"}


class Data:
    """The data files of one directory, read on demand."""

    def __init__(self, directory):
        self.directory = Path(directory)

    def text(self, name):
        return (self.directory / name).read_text(encoding="utf-8")

    def rows(self, name):
        """The fields of each line, without comments and blanks."""
        for line in self.text(name).splitlines():
            line = line.partition("#")[0]
            if line.strip():
                yield [field.strip() for field in line.split(";")]

    def ranges(self, name):
        """(code points, further fields) of each line of a file that lists ranges."""
        for code_points, *fields in self.rows(name):
            first, _, last = code_points.partition("..")
            yield range(int(first, 16), int(last or first, 16) + 1), fields

    def having(self, name, *wanted):
        """The set of code points whose further fields are the wanted ones."""
        found = set()
        for code_points, fields in self.ranges(name):
            if fields == list(wanted):
                found.update(code_points)
        return found

    def values(self, name):
        """Code point to value, for a file with one property."""
        return {c: fields[0] for points, fields in self.ranges(name) for c in points}

    def characters(self):
        """(code point, fields) of UnicodeData.txt, its First/Last pairs spelt out."""
        first = None
        for code_point, *fields in self.rows("UnicodeData.txt"):
            code_point = int(code_point, 16)
            if fields[0].endswith(", First>"):
                first = code_point
                continue
            for each in range(code_point if first is None else first, code_point + 1):
                yield each, fields
            first = None


def require(condition, message):
    if not condition:
        sys.exit("make_unicode_tables.py: " + message)


def header_version():
    return re.search(r'SCL_UNICODE_VERSION = "([^"]+)"', HEADER.read_text()).group(1)


def check_version(data, version):
    names = ["PropList", "CaseFolding", "SpecialCasing", "DerivedCoreProperties",
             "DerivedNormalizationProps", "auxiliary/WordBreakProperty"]  # fmt: skip
    for name in names:
        head = f"# {name.rpartition('/')[2]}-{version}.txt\n"
        require(data.text(f"{name}.txt").startswith(head), f"{name}.txt is not of {version}")
    # UnicodeData.txt and emoji-data.txt do not say; the file that goes with all of them does.
    require(f"Version {version} of" in data.text("ReadMe.txt"), f"the data is not of {version}")


def class_of(category):
    return CLASS_OF_CATEGORY.get(category, CLASS_OF_CATEGORY.get(category[0], 0))


def word_breaks(data):
    """Code point to the place of its word-break value, for those that are not Other."""
    names = data.values("auxiliary/WordBreakProperty.txt")
    names.update(TAILORED_WORD_BREAKS)
    for code_point in data.having("emoji/emoji-data.txt", "Extended_Pictographic"):
        name = names.get(code_point, "Other")
        require(name in WITH_PICTOGRAPHIC, f"pictographic {name} needs a value of its own")
        names[code_point] = WITH_PICTOGRAPHIC[name]
    return {code_point: WORD_BREAKS.index(name) for code_point, name in names.items()}


def bit_table(data):
    """The byte of every code point: class below, word-break property above."""
    table = bytearray(CODE_POINTS)
    for code_point, fields in data.characters():
        table[code_point] = class_of(fields[1])
    for code_point in data.having("PropList.txt", "White_Space"):
        require(code_point < TABLE_LENGTH, "white space beyond the 16-bit units")
        table[code_point] = WHITE_SPACE_CLASS
    for code_point, value in word_breaks(data).items():
        table[code_point] |= value << 3
    return table


def lower_mappings(data):
    """Code point to its simple lower-case mapping."""
    lower = {c: int(fields[12], 16) for c, fields in data.characters() if fields[12]}
    for code_point, mapped, _, _, *conditions in data.rows("SpecialCasing.txt"):
        if not any(conditions) and " " in mapped:
            require(code_point == "0130", "one more mapping to several characters")
    return lower


def foldings(data):
    """Code point to its simple case folding."""
    rows = data.rows("CaseFolding.txt")
    return {int(c, 16): int(to, 16) for c, status, to, *_ in rows if status in "CS"}


def decompositions(data):
    """Code point to its canonical decomposition, one step, as a pair; a lone one ends in 0."""
    pairs = {}
    for code_point, fields in data.characters():
        if fields[4] and not fields[4].startswith("<"):
            first, *second = (int(part, 16) for part in fields[4].split())
            pairs[code_point] = (first, second[0] if second else 0)
    for _, second in pairs.values():
        require(second not in pairs, "a second part that decomposes further")
    return pairs


def compositions(data, pairs):
    """The decompositions that are undone by composition."""
    excluded = data.having("DerivedNormalizationProps.txt", "Full_Composition_Exclusion")
    return {c: pair for c, pair in pairs.items() if c not in excluded}


def check_starters(pairs, combining, maybe, never):
    """A starter that is always right in NFC must decompose to such a starter first: the text is
    cut before it when a stretch is brought to NFC."""
    for code_point, (first, _) in pairs.items():
        if code_point in combining or code_point in maybe or code_point in never:
            continue
        while first in pairs:
            first = pairs[first][0]
        require(first not in combining and first not in maybe, f"{code_point:04X} is no boundary")


def check_lower(lower, data, combining, maybe, never):
    """What changes when a text in NFC is lower-cased must neither join what is before it nor matter
    differently to a sigma near by: the code looks at a character's successor only, and maps in
    place while it looks back."""
    cased = data.having("DerivedCoreProperties.txt", "Cased")
    ignorable = data.having("DerivedCoreProperties.txt", "Case_Ignorable")
    for code_point, mapped in lower.items():
        for each in (code_point, mapped):
            joins = each in combining or each in maybe
            require(not joins and each not in ignorable and each in cased, f"{each:04X} is odd")
        require(code_point in never or mapped not in never, f"{code_point:04X} leaves NFC")


def same_length(mapping):
    """Case mappings keep the number of 16-bit units; the code maps in place."""
    for code_point, mapped in mapping.items():
        require((code_point < 0x10000) == (mapped < 0x10000), f"{code_point:04X} changes length")


def property_rows(data, bits, pairs):
    """The properties of every code point as the fields of Properties."""
    lower, fold = lower_mappings(data), foldings(data)
    same_length(lower)
    same_length(fold)
    combining = {c: int(fields[2]) for c, fields in data.characters() if fields[2] != "0"}
    maybe = data.having("DerivedNormalizationProps.txt", "NFC_QC", "M")
    never = data.having("DerivedNormalizationProps.txt", "NFC_QC", "N")
    check_starters(pairs, combining, maybe, never)
    check_lower(lower, data, combining, maybe, never)
    cased = data.having("DerivedCoreProperties.txt", "Cased")
    ignorable = data.having("DerivedCoreProperties.txt", "Case_Ignorable")
    for c in range(CODE_POINTS):
        flags = (c not in maybe and c not in never, c in maybe, c in pairs, c in cased,
                 c in ignorable)  # fmt: skip
        yield (lower.get(c, c) - c, fold.get(c, c) - c, combining.get(c, 0), bits[c], *flags)


def places(rows):
    """(unique items in the order of their first use, place of each row among them)"""
    unique = {}
    found = [unique.setdefault(row, len(unique)) for row in rows]
    return list(unique), found


def filled(items, indent="    "):
    """Items with a comma after each, as many to a line as 100 columns take."""
    lines, line = [], indent
    for item in items:
        if len(line) + len(item) + 1 > 100:
            lines.append(line)
            line = indent
        line += item + ","
    lines.append(line)
    return "\n".join(lines)


def definition(declared, items):
    return f"{declared} = {{\n{filled(items)}\n}};\n"


def spanned(kind, name, items):
    """An array for this file only, and the span that others see."""
    hidden = f"{name}_DATA"
    array = definition(f"constexpr {kind} {hidden}[]", items)
    return f"namespace {{\n{array}}} // namespace\n" + (
        f"constinit const std::span<const {kind}> {name}({hidden});\n"
    )


def derived(kind, name, maker):
    """A table that the compiler makes from the properties."""
    return (f"constinit const {kind} {name} =\n"
            f"    {maker}(PROPERTIES_DATA, PROPERTY_PLACES_DATA, PROPERTY_BLOCKS.data());\n")


def property_item(row):
    return "{" + ",".join(str(int(field)) for field in row) + "}"


def decomposition_items(pairs):
    return ["{" + f"{c:#x},{first:#x},{second:#x}" + "}" for c, (first, second) in pairs]


def property_definitions(rows):
    records, record_places = places(rows)
    require(len(records) <= 256, "a place among the properties takes more than a byte")
    blocks = (tuple(record_places[i : i + BLOCK]) for i in range(0, CODE_POINTS, BLOCK))
    unique, block_places = places(blocks)
    return [
        spanned("Properties", "PROPERTIES", map(property_item, records)),
        spanned("std::uint8_t", "PROPERTY_PLACES", (str(p) for b in unique for p in b)),
        definition(f"constexpr std::array<std::uint16_t, {CODE_POINTS // BLOCK}> PROPERTY_BLOCKS",
                   map(str, block_places)),
        derived("Unit_traits", "UNIT_TRAITS", "make_unit_traits"),
        derived("Small_letters", "SMALL_LETTERS", "make_small_letters"),
        derived("Plain_units", "PLAIN_UNITS", "make_plain_units"),
        derived("Plain_units", "PLAIN_SMALL_UNITS", "make_plain_small_units"),
    ]  # fmt: skip


def source(data, version):
    bits = bit_table(data)
    pairs = decompositions(data)
    composed = compositions(data, pairs)
    return "\n".join([
        "// Generated by tools/make_unicode_tables.py from the Unicode Character Database,",
        f"// version {version}. Do not edit: run the command again.",
        '#include "scl/text/unicode_tables.hpp"\n\n#include "scl/text/scl_unicode.hpp"',
        '#include "scl/text/unit_tables.hpp"\n',
        "// clang-format off",
        f'static_assert(scl::SCL_UNICODE_VERSION == "{version}");\n\nnamespace scl::impl {{\n',
        definition(f"const std::array<std::uint8_t, {TABLE_LENGTH}> SCL_UNICODE_BIT_TABLE",
                   map(str, bits[:TABLE_LENGTH])),
        *property_definitions(property_rows(data, bits, pairs)),
        spanned("Decomposition", "DECOMPOSITIONS",
                decomposition_items(sorted(pairs.items()))),
        spanned("Decomposition", "COMPOSITIONS",
                decomposition_items(sorted(composed.items(), key=lambda item: item[1]))),
        "} // namespace scl::impl\n// clang-format on\n",
    ])  # fmt: skip


def main():
    data = Data(sys.argv[1] if len(sys.argv) > 1 else "/usr/share/unicode")
    version = header_version()
    check_version(data, version)
    OUTPUT.write_text(source(data, version))


if __name__ == "__main__":
    main()
